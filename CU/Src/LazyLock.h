#pragma once

#include "CU/Platform.h"

// A critical section that exists from its first use on, whichever thread comes first and whatever
// has been constructed by then: a static of this class needs no constructor to run.
class CCULazyLock
{
public:
    constexpr CCULazyLock() : m_nState(Untouched), m_section() {}
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
            InterlockedExchange(&m_nState, Ready);
            return;
        }
        // Sleep(0) would not let a thread of lower priority finish its work.
        while (InterlockedExchangeAdd(&m_nState, 0) != Ready)
            Sleep(1);
    }

    LONG m_nState;
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
