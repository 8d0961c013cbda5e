// What every timer needs. Every window is one, and most never arm: the rest is in TimerTask.cpp,
// which is only linked into programs that arm a timer.

#include "CU/Timer.h"

// Set by the first arming.
void (*CCUTimer::s_forget)(CCUTimer *pTimer) = nullptr;

CCUTimer::~CCUTimer()
{
    if (m_uAlarm != 0)
        s_forget(this);
}

void CCUTimer::TimeOut(long) {}
