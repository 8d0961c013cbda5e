#include "CU/TimerTask.h"

#include "Base/Module.h"
#include "Base/KeepLastError.h"
#include "Base/Lock.h"
#include "Base/Multimedia.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "CU/Timer.h"
#include "Process/Shutdown.h"
#include "Time/TimerTask.h"
#include "Time/TimerTrace.h"

#define CU_SOURCE "TimerTask"

namespace {

const long PASS_TIME = 100;                      // ms, so that input stays responsive
const unsigned long LONGEST_ALARM = 0x3FFFFFFF;  // ms, some 12 days

CCULazyLock s_lock;
CCUTimerTask *s_pFirstTask = nullptr;  // guarded by the lock
bool s_bInitialized = false;           // guarded by the lock
volatile LONG s_nSlot = -1;            // each thread's task; written under the lock

// When a timer that is armed at uNow is due. pPassStart: when the pass began from within which it
// is armed, null outside of one.
unsigned long DueTime(unsigned long uNow, long nDelay, const unsigned long *pPassStart)
{
    unsigned long uDue = uNow + static_cast<unsigned long>(nDelay);
    // A pass serves all that is due when it begins. What is armed in it waits for a later one: a
    // timer that keeps arming itself with 0 would otherwise be served until the clock ticks.
    const bool bDueInThisPass = pPassStart && !CUIsTimerLater(uDue, *pPassStart);
    // With a delay above 0 the clock has come around: that is meant for "never".
    if (bDueInThisPass)
        uDue = *pPassStart + (nDelay > 0 ? LONGEST_ALARM : 1);
    return CUTimerStamp(uDue);
}

// At process exit, on the thread that leaves: the class goes after that thread's window.
void EndTimers()
{
    if (g_moduleEnd == CUModuleEndsWithProcess)
        return;
    if (CCUTimerTask *pTask = CUCurrentTimerTask())
        pTask->OnThreadExit(true);
    CUShutdown();
    if (CUUnregisterTimerClass())
        return;
    char szText[128];
    wsprintfA(szText, "CCUTimerTask unable to unregister class %s - gle: %d\n", CU_TIMER_CLASS,
              GetLastError());
    OutputDebugStringA(szText);
}

}  // namespace

CCUTimerTask *CUCurrentTimerTask()
{
    return static_cast<CCUTimerTask *>(CUGetThreadLocalStorage(s_nSlot));
}

// The arming of a timer stands here, so that a program which arms none is linked without all this:
// that saves it 1,000 bytes and the making of three debug switches at its start.

void CCUTimer::SetAlarm(long nMilliseconds)
{
    if (CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask())
        pTask->SetAlarm(this, nMilliseconds);
}

void CCUTimer::SetAlarmIfEarlier(long nMilliseconds)
{
    const bool bDueByThen =
        m_uAlarm != 0 && CUTimerDifference(m_uAlarm, CUGetTime()) <= nMilliseconds;
    if (!bDueByThen)
        SetAlarm(nMilliseconds);
}

void CCUTimer::KillAlarm()
{
    if (m_uAlarm == 0)
        return;
    if (CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask())
        pTask->KillAlarm(this);
}

CCUTimerTask *CCUTimerTask::GetThreadTimerTask()
{
    if (s_nSlot == -1)
        Initialize();
    CCUTimerTask *pTask = CUCurrentTimerTask();
    if (!pTask) {
        pTask = new CCUTimerTask;
        // Without a slot nobody would find the task again; without the notice it would never end.
        if (!CUSetThreadLocalStorage(s_nSlot, pTask) || !CURegisterThreadExitHandler(pTask)) {
            delete pTask;
            return nullptr;
        }
        CCULockGuard guard(s_lock);
        CCUTimerTask **link = &s_pFirstTask;
        while (*link)
            link = &(*link)->m_pNextTask;
        *link = pTask;
    }
    return pTask;
}

void CCUTimerTask::Initialize()
{
    CCULockGuard guard(s_lock);
    if (!s_bInitialized) {
        s_bInitialized = true;
        CURegisterTimerMessages();
        CURegisterProcessInfoHandler("timertask", CUDumpTimerInfo);
        CURegisterTerminationHandler(EndTimers);
        CCUTimer::s_forget = Forget;
    }
    if (s_nSlot == -1) {
        CURegisterTimerClass(WindowProc);
        InterlockedExchange(&s_nSlot, CUAllocateThreadLocalStorageIndex());
    }
}

void CCUTimerTask::SetAlarm(CCUTimer *pTimer, long nMilliseconds)
{
    if (CUIsShutdown())
        return;
    if (!m_hWnd)
        MakeWindow();
    const unsigned long uNow = CUGetTime();
    if (pTimer->m_uAlarm != 0)
        KillAlarm(pTimer);
    const unsigned long uAlarm = DueTime(uNow, nMilliseconds, m_pPassStart);
    pTimer->m_uAlarm = uAlarm;

    // Behind all timers that are due no later.
    CCUTimer **link = &m_pFirst;
    unsigned long uCounter = 0;
    while (*link && !CUIsTimerLater((*link)->m_uAlarm, uAlarm)) {
        CU_ASSERT(++uCounter <= m_uListLength);
        link = &(*link)->m_pNext;
    }
    pTimer->m_pNext = *link;
    *link = pTimer;
    ++m_uListLength;
    const bool bFirst = link == &m_pFirst;
    if (bFirst)
        ResetTimer();
}

void CCUTimerTask::KillAlarm(CCUTimer *pTimer)
{
    if (CUIsShutdown() || pTimer->m_uAlarm == 0)
        return;
    if (!Unlink(pTimer)) {
        CUDump("TimerTask::KillAlarm - failed to find timer!\n");
        CU_ASSERT_TEXT(false, "0");
    }
    --m_uListLength;
    pTimer->m_pNext = nullptr;
    pTimer->m_uAlarm = 0;
}

// Does not ask for another notification: the one for a timer that is gone does no harm.
bool CCUTimerTask::Unlink(const CCUTimer *pTimer)
{
    CCUTimer **link = &m_pFirst;
    unsigned long uCounter = 0;
    while (*link && *link != pTimer) {
        CU_ASSERT(++uCounter <= m_uListLength);
        link = &(*link)->m_pNext;
    }
    if (!*link)
        return false;
    *link = pTimer->m_pNext;
    return true;
}

void CCUTimerTask::Forget(CCUTimer *pTimer)
{
    const CCUKeepLastError keepLastError;
    pTimer->KillAlarm();
    // After CUShutdown that does nothing, but the list must not keep a dead object.
    CCUTimerTask *pTask = CUCurrentTimerTask();
    if (pTimer->m_uAlarm != 0 && pTask && pTask->Unlink(pTimer))
        --pTask->m_uListLength;
}

void CCUTimerTask::ServeTimers()
{
    const unsigned long uStart = CUGetTime();
    // A modal loop in a TimeOut may run another pass within this one.
    const unsigned long *const pOuterStart = m_pPassStart;
    m_pPassStart = &uStart;
    long nServed = 0;
    long nElapsed = 0;
    while (m_pFirst && !CUIsTimerLater(m_pFirst->m_uAlarm, uStart) && nElapsed < PASS_TIME) {
        CCUTimer *const pTimer = m_pFirst;
        m_pFirst = pTimer->m_pNext;
        --m_uListLength;
        pTimer->m_uAlarm = 0;
        pTimer->m_pNext = nullptr;
        ++nServed;

        // TimeOut may delete the timer, so its class is read before.
        const void *const pClass = CUTimerClassOf(pTimer);
        const unsigned long uBefore = CUGetTime();
        pTimer->TimeOut(static_cast<long>(uStart));
        const unsigned long uAfter = CUGetTime();
        if (CUCountTimeOut(CUTimerDifference(uAfter, uBefore), pClass, nServed))
            TraceTimeOut(pTimer, uBefore, uAfter);
        if (CUCurrentTimerTask() != this)
            return;  // TimeOut has ended this task: the object is deleted
        nElapsed = CUTimerDifference(uAfter, uStart);
    }
    m_pPassStart = pOuterStart;
    ResetTimer();
}

void CCUTimerTask::OnThreadExit(bool bKillTimer)
{
    if (m_uTimerID != 0) {
        if (bKillTimer)
            g_multimedia.killEvent(m_uTimerID);
        else
            CUDump("Not killing timer for thread %lx\n", GetCurrentThreadId());
        m_uTimerID = 0;
    }
    {
        CCULockGuard guard(s_lock);
        CCUTimerTask **link = &s_pFirstTask;
        while (*link && *link != this)
            link = &(*link)->m_pNextTask;
        if (*link)
            *link = m_pNextTask;
    }
    delete this;
}

CCUTimerTask::~CCUTimerTask()
{
    while (CCUTimer *pTimer = m_pFirst) {
        m_pFirst = pTimer->m_pNext;
        pTimer->m_pNext = nullptr;
        pTimer->m_uAlarm = 0;
    }
    if (m_hWnd) {
        KillTimer(m_hWnd, CU_TIMER_START_TICK);
        DestroyWindow(m_hWnd);
        if (m_hWnd) {
            CUDump("Failed to destroy CCUTimerTask window for thread %lx\n", GetCurrentThreadId());
        }
    }
    // Only now: the window procedure finds the task there.
    CUSetThreadLocalStorage(s_nSlot, nullptr);
}

long CUCountArmedTimers()
{
    const CCULockGuard guard(s_lock);
    unsigned long uCount = 0;
    for (const CCUTimerTask *pTask = s_pFirstTask; pTask; pTask = pTask->m_pNextTask)
        uCount += pTask->m_uListLength;
    return static_cast<long>(uCount);
}

// The timers of other threads are disarmed while their objects still stand.
void CUUnloadTimers(CUUnloadPhase phase)
{
    CCUTimerTask **link = &s_pFirstTask;
    while (CCUTimerTask *const pTask = *link) {
        if (!CUIsUnloadTurn(pTask->m_hWnd, phase)) {
            link = &pTask->m_pNextTask;
            continue;
        }
        *link = pTask->m_pNextTask;
        if (pTask->m_uTimerID != 0)
            g_multimedia.killEvent(pTask->m_uTimerID);
        if (pTask->m_hWnd)
            CUUnloadWindow(pTask->m_hWnd);
        pTask->m_hWnd = nullptr;
        void *const pOwn = CUGetThreadLocalStorage(s_nSlot);
        delete pTask;
        CUSetThreadLocalStorage(s_nSlot, pOwn == pTask ? nullptr : pOwn);
    }
    if (phase == CUUnloadRest)
        CUUnregisterTimerClass();
}
