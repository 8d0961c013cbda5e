#pragma once

#include "CU/TimerTask.h"

// What the two halves of CCUTimerTask share: the list of the alarms (TimerTask.cpp) and how the
// task hears that the first one is due (TimerNotice.cpp).

const char CU_TIMER_CLASS[] = "CCUTimerTask";
const UINT CU_TIMER_START_TICK = 1;  // the window timer's number

// Milliseconds from b to a on the clock that wraps.
inline long CUTimerDifference(unsigned long a, unsigned long b)
{
    return static_cast<long>(a - b);
}

inline bool CUIsTimerLater(unsigned long uTime, unsigned long uThan)
{
    return CUTimerDifference(uTime, uThan) > 0;
}

// A time for a member in which 0 means that there is none.
inline unsigned long CUTimerStamp(unsigned long uTime)
{
    return uTime ? uTime : 1;
}

// The calling thread's; null when there is none.
CCUTimerTask *CUCurrentTimerTask();
// Of all threads.
long CUCountArmedTimers();

void CURegisterTimerMessages();
void CURegisterTimerClass(WNDPROC windowProc);
bool CUUnregisterTimerClass();
