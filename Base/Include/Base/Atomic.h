#pragma once

#include "CU/Platform.h"

// Runs `make` once in the process, whichever threads come first; the others wait for its end.
// nState is plain static data, 0 at first. (The runtime's own guards for statics are off.)
template <typename F>
void CUOnce(volatile LONG &nState, F make)
{
    enum : LONG
    {
        untouched,
        running,
        done
    };
    if (nState == done)
        return;
    if (InterlockedCompareExchange(&nState, running, untouched) == untouched) {
        make();
        InterlockedExchange(&nState, done);
        return;
    }
    while (nState != done)
        Sleep(1);
}

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
