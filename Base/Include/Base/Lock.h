#pragma once

#include "CU/Platform.h"

#include "Base/Atomic.h"
#include "Base/Compiler.h"

// The two kinds of locks. CCULazyLock is waited for and may be taken again by the thread that has
// it; CCUTryLock is for caches, where nobody needs to wait but who changes them (CCUTryLockWait).

// A critical section that exists from its first use on, whichever thread comes first and whatever
// has been constructed by then: a static of this class needs no constructor to run.
class CCULazyLock
{
public:
    constexpr CCULazyLock()
        : m_nState(CUOnceUntouched), m_bListed(false), m_pNext(nullptr), m_section()
    {
    }
    CCULazyLock(const CCULazyLock &) = delete;
    CCULazyLock &operator=(const CCULazyLock &) = delete;

    void Enter()
    {
        CUOnce(m_nState, [this] { Make(); });
        EnterCriticalSection(&m_section);
    }
    void Leave() { LeaveCriticalSection(&m_section); }
    // Every one of the program or module. Only when there is no other thread that may be inside, or
    // come again. A lock that is entered later makes itself anew.
    static void DeleteAll()
    {
        for (CCULazyLock *pLock = s_pFirst; pLock; pLock = pLock->m_pNext) {
            if (InterlockedExchange(&pLock->m_nState, CUOnceUntouched) == CUOnceDone)
                DeleteCriticalSection(&pLock->m_section);
        }
    }

private:
    CU_NOINLINE void Make()
    {
        InitializeCriticalSection(&m_section);
        if (!m_bListed) {
            m_bListed = true;
            CUPushFront(s_pFirst, this, &CCULazyLock::m_pNext);
        }
    }

    inline static CCULazyLock *volatile s_pFirst = nullptr;  // of those ever used
    volatile LONG m_nState;                                  // CUOnce's
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

// Takes a cache for as long as the object lives. Nobody waits: who finds the cache taken, by
// another thread or further up on this one, works without it.
class CCUTryLock
{
public:
    explicit CCUTryLock(volatile LONG &nLock)
        : m_nLock(nLock), m_bTaken(InterlockedExchange(&nLock, 1) == 0)
    {
    }
    // A plain store gives it back, after all others: a locked one would double the cost.
    ~CCUTryLock()
    {
        if (m_bTaken)
            CUStoreRelease<LONG>(m_nLock, 0);
    }
    CCUTryLock(const CCUTryLock &) = delete;
    CCUTryLock &operator=(const CCUTryLock &) = delete;

    bool IsTaken() const { return m_bTaken; }

private:
    volatile LONG &m_nLock;
    const bool m_bTaken;
};

// The same, but waits: for who must change what those with a CCUTryLock read. They have it for
// less than a microsecond each: where it stays taken for a second the end of the process has killed
// the thread that had it, and it counts as free.
class CCUTryLockWait
{
public:
    explicit CCUTryLockWait(volatile LONG &nLock) : m_nLock(nLock)
    {
        for (int i = 0; InterlockedExchange(&nLock, 1) != 0 && i < 1000; ++i)
            Sleep(1);
    }
    ~CCUTryLockWait() { CUStoreRelease<LONG>(m_nLock, 0); }
    CCUTryLockWait(const CCUTryLockWait &) = delete;
    CCUTryLockWait &operator=(const CCUTryLockWait &) = delete;

private:
    volatile LONG &m_nLock;
};
