#pragma once

class CCUTimer;

// What tells the classes of timers apart: the table of their virtual functions.
inline const void *CUTimerClassOf(const CCUTimer *pTimer)
{
    return *reinterpret_cast<const void *const *>(pTimer);
}

// Counts a call of TimeOut, the nServed-th of its pass, which took nTook milliseconds. True when
// the user wants it to be traced.
bool CUCountTimeOut(long nTook, const void *pClass, long nServed);
// The process-info handler "timertask".
void CUDumpTimerInfo();
