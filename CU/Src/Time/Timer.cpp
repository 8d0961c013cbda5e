#include "CU/Timer.h"

// Every window is a timer, and most never arm: set by the first arming, this keeps the timer task
// out of programs that have none.
void (*CCUTimer::s_forget)(CCUTimer *pTimer) = nullptr;

CCUTimer::~CCUTimer()
{
    if (m_uAlarm != 0)
        s_forget(this);
}

void CCUTimer::TimeOut(long) {}
