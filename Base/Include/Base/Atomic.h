#pragma once

#include <atomic>

#include "Base/Compiler.h"
#include "CU/Platform.h"

// All that threads share without a lock goes by this header: what is read and written here, what is
// changed in one step by the system's Interlocked functions.

// Whoever reads a value sees all that its writer has written before. On this processor both are
// plain moves, and the fences are for the compiler, which keeps their order. Always inline: a call
// would be longer than the move.
template <typename T>
CU_ALWAYS_INLINE T CULoadAcquire(const volatile T &place)
{
    const T value = place;
    std::atomic_thread_fence(std::memory_order_acquire);
    return value;
}
template <typename T>
CU_ALWAYS_INLINE void CUStoreRelease(volatile T &place, T value)
{
    std::atomic_thread_fence(std::memory_order_release);
    place = value;
}

// A word that is written by one thread at a time and read by all: no plain access slips in.
template <typename T>
class CCUAtomic
{
public:
    constexpr explicit CCUAtomic(T value = T()) : m_value(value) {}
    CCUAtomic(const CCUAtomic &) = delete;
    CCUAtomic &operator=(const CCUAtomic &) = delete;

    CU_ALWAYS_INLINE T Get() const { return CULoadAcquire(m_value); }
    CU_ALWAYS_INLINE void Set(T value) { CUStoreRelease(m_value, value); }

private:
    T m_value;
};

enum CUOnceState : LONG
{
    CUOnceUntouched,
    CUOnceRunning,
    CUOnceDone
};

// True for the thread that is to do the work; the others come back when it is done.
CU_NOINLINE inline bool CUBeginOnce(volatile LONG &nState)
{
    if (InterlockedCompareExchange(&nState, CUOnceRunning, CUOnceUntouched) == CUOnceUntouched)
        return true;
    // Sleep(0) would not let a thread of lower priority finish the work.
    while (nState != CUOnceDone)
        Sleep(1);
    return false;
}

// Runs `make` once in the process, whichever threads come first; the others wait for its end.
// nState is plain static data, 0 at first. (The compiler's own guards of local statics are switched
// off: see cmake/Options.cmake.)
//
// Not for work that a crash report needs, nor where a thread that waits may hold the loader's lock
// and the one that works needs it: see CUOnceWithoutWait.
template <typename F>
inline void CUOnce(volatile LONG &nState, F make)
{
    // What `make` has written is read after this.
    if (CULoadAcquire(nState) == CUOnceDone || !CUBeginOnce(nState))
        return;
    make();
    InterlockedExchange(&nState, CUOnceDone);
}

// The same where nobody may wait: threads that meet all do the work, with the same result. None
// reads it before it is whole. nMade is plain static data, 0 at first.
template <typename F>
inline void CUOnceWithoutWait(volatile LONG &nMade, F make)
{
    if (CULoadAcquire(nMade))
        return;
    make();
    InterlockedExchange(&nMade, 1);
}

// Counts the threads that are inside of something, each with a CInside on its stack: who gives that
// back leaves alone what others still use. Plain static data, 0 at first.
class CCUInsideCount
{
public:
    class CInside
    {
    public:
        explicit CInside(CCUInsideCount &count) : m_count(count)
        {
            InterlockedIncrement(&count.m_nThreads);
        }
        ~CInside() { InterlockedDecrement(&m_count.m_nThreads); }
        CInside(const CInside &) = delete;
        CInside &operator=(const CInside &) = delete;

    private:
        CCUInsideCount &m_count;
    };

    // Asked after the way in has been closed: the read waits for that write, as a plain one need
    // not.
    bool IsAnybodyInside() { return InterlockedExchangeAdd(&m_nThreads, 0) != 0; }

private:
    LONG m_nThreads = 0;
};

// Puts an item at the head of a list that other threads push to and read at the same time.
template <typename T>
void CUPushFront(T *volatile &pFirst, T *pItem, T *T::*pNext)
{
    T *pOld;
    do {
        pOld = pFirst;
        pItem->*pNext = pOld;
    } while (InterlockedCompareExchangePointer(
                 reinterpret_cast<void *volatile *>(const_cast<T **>(&pFirst)), pItem, pOld) !=
             pOld);
}
