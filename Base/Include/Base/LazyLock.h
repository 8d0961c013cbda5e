#pragma once

#include "CU/Platform.h"

#include "Base/Atomic.h"

// A critical section that exists from its first use on, whichever thread comes first and whatever
// has been constructed by then: a static of this class needs no constructor to run.
class CCULazyLock
{
public:
    constexpr CCULazyLock() : m_nState(Untouched), m_bListed(false), m_pNext(nullptr), m_section()
    {
    }
    CCULazyLock(const CCULazyLock &) = delete;
    CCULazyLock &operator=(const CCULazyLock &) = delete;

    void Enter()
    {
        if (InterlockedExchangeAdd(&m_nState, 0) != Ready)
            Initialize();
        EnterCriticalSection(&m_section);
    }
    void Leave() { LeaveCriticalSection(&m_section); }
    // Only when no thread can be inside, or come again.
    void Delete()
    {
        if (InterlockedExchange(&m_nState, Untouched) == Ready)
            DeleteCriticalSection(&m_section);
    }
    // All of the module: for its end.
    static void DeleteAll()
    {
        for (CCULazyLock *pLock = s_pFirst; pLock; pLock = pLock->m_pNext)
            pLock->Delete();
    }

private:
    enum State : LONG
    {
        Untouched,
        InWork,
        Ready
    };

    void Initialize()
    {
        const LONG nState = InterlockedCompareExchange(&m_nState, InWork, Untouched);
        if (nState == Untouched) {
            InitializeCriticalSection(&m_section);
            if (!m_bListed) {
                m_bListed = true;
                CUPushFront(s_pFirst, this, &CCULazyLock::m_pNext);
            }
            InterlockedExchange(&m_nState, Ready);
            return;
        }
        // Sleep(0) would not let a thread of lower priority finish its work.
        while (InterlockedExchangeAdd(&m_nState, 0) != Ready)
            Sleep(1);
    }

    inline static CCULazyLock *volatile s_pFirst = nullptr;  // of those ever used
    LONG m_nState;
    bool m_bListed;
    CCULazyLock *m_pNext;
    CRITICAL_SECTION m_section;
};

// Holds a lock for as long as the guard lives.
class CCULockGuard
{
public:
    explicit CCULockGuard(CCULazyLock &lock) : m_lock(lock) { m_lock.Enter(); }
    ~CCULockGuard() { m_lock.Leave(); }
    CCULockGuard(const CCULockGuard &) = delete;
    CCULockGuard &operator=(const CCULockGuard &) = delete;

private:
    CCULazyLock &m_lock;
};
