#pragma once

#include "CU/Platform.h"

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
            __atomic_store_n(&m_nLock, 0, __ATOMIC_RELEASE);
    }
    CCUTryLock(const CCUTryLock &) = delete;
    CCUTryLock &operator=(const CCUTryLock &) = delete;

    bool IsTaken() const { return m_bTaken; }

private:
    volatile LONG &m_nLock;
    const bool m_bTaken;
};
