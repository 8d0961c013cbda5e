#include "CU/Timer.h"

#include "CU/CU.h"
#include "CU/TimerTask.h"
#include "KeepLastError.h"

CCUTimer::~CCUTimer()
{
    if (m_uAlarm == 0)
        return;
    const CCUKeepLastError keepLastError;
    KillAlarm();
    // After CUShutdown nothing is disarmed any more, but the list must not keep a dead object.
    if (m_uAlarm != 0)
        CCUTimerTask::Forget(this);
}

void CCUTimer::TimeOut(long) {}

void CCUTimer::SetAlarm(long nMilliseconds)
{
    CCUTimerTask::GetThreadTimerTask()->SetAlarm(this, nMilliseconds);
}

void CCUTimer::SetAlarmIfEarlier(long nMilliseconds)
{
    if (m_uAlarm != 0 && static_cast<long>(m_uAlarm - CUGetTime()) <= nMilliseconds)
        return;
    SetAlarm(nMilliseconds);
}

void CCUTimer::KillAlarm()
{
    if (m_uAlarm != 0)
        CCUTimerTask::GetThreadTimerTask()->KillAlarm(this);
}
