// Apart from the timer itself: only who arms timers is linked with the timer task.

#include "CU/CU.h"
#include "CU/Timer.h"
#include "CU/TimerTask.h"

void CCUTimer::SetAlarm(long nMilliseconds)
{
    if (CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask())
        pTask->SetAlarm(this, nMilliseconds);
}

void CCUTimer::SetAlarmIfEarlier(long nMilliseconds)
{
    if (m_uAlarm != 0 && static_cast<long>(m_uAlarm - CUGetTime()) <= nMilliseconds)
        return;
    SetAlarm(nMilliseconds);
}

void CCUTimer::KillAlarm()
{
    if (m_uAlarm == 0)
        return;
    if (CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask())
        pTask->KillAlarm(this);
}
