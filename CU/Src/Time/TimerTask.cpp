#include "CU/TimerTask.h"

#include "Base/Module.h"
#include "Base/KeepLastError.h"
#include "Base/Lock.h"
#include "Base/Multimedia.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/Time.h"
#include "CU/Timer.h"
#include "Process/Shutdown.h"

#define CU_SOURCE "TimerTask"

namespace {

// How a task hears that its first timer is due. It is always in one of four states:
//
// none           Nothing comes: no timer is armed, or the system had no notification to give.
// start-up tick  The window's WM_TIMER comes, once, half a second after the window was made
//                (m_uStartTick). A first timer that is due later waits for it, and only then asks.
// real           A multimedia timer runs until the first timer is due (m_uTimerID); its callback
//                posts the message "TimerTaskReal".
// mock           The first timer is due already: the message "TimerTaskMock" is posted at once
//                (m_bMockTimerSet).
//
// A message that comes too early, or for a timer that was disarmed, does no harm: it serves what is
// due and asks for the next.

const char CLASS_NAME[] = "CCUTimerTask";
const UINT START_TIMER = 1;
const UINT START_TICK = 500;                     // ms
const long LONGEST_WAIT = 60000;                 // ms
const UINT RESOLUTION = 2;                       // ms
const long PASS_TIME = 100;                      // ms, so that input stays responsive
const unsigned long LONGEST_ALARM = 0x3FFFFFFF;  // ms, some 12 days
const long MOST_SERVED = 200;                    // the debug switches' values where they are 0
const long MOST_TIME = 1000;                     // ms

CCULazyLock s_lock;
CCUTimerTask *s_pFirstTask = nullptr;  // guarded by the lock
bool s_bInitialized = false;           // guarded by the lock
volatile LONG s_nSlot = -1;            // each thread's task; written under the lock
UINT s_uReal = 0;
UINT s_uMock = 0;

volatile LONG s_nTimeOuts = 0;
volatile LONG s_nLongest = 0;                   // ms, written under the lock
const void *volatile s_longestClass = nullptr;  // of the object that took it

CCUDebugSwitch s_debug("\\Debug\\Timer", "TimerDebug");
CCUDebugSwitch s_countThreshold("\\Debug\\Timer", "TimerCountThreshold");
CCUDebugSwitch s_timeThreshold("\\Debug\\Timer", "TimeOutThreshold");

// Milliseconds from b to a on the clock that wraps.
long Difference(unsigned long a, unsigned long b)
{
    return static_cast<long>(a - b);
}

bool IsLater(unsigned long uTime, unsigned long uThan)
{
    return Difference(uTime, uThan) > 0;
}

// A time for a member in which 0 means that there is none.
unsigned long Stamp(unsigned long uTime)
{
    return uTime ? uTime : 1;
}

// When a timer that is armed at uNow is due. pPassStart: when the pass began from within which it
// is armed, null outside of one.
unsigned long DueTime(unsigned long uNow, long nDelay, const unsigned long *pPassStart)
{
    unsigned long uDue = uNow + static_cast<unsigned long>(nDelay);
    // A pass serves all that is due when it begins. What is armed in it waits for a later one: a
    // timer that keeps arming itself with 0 would otherwise be served until the clock ticks.
    const bool bDueInThisPass = pPassStart && !IsLater(uDue, *pPassStart);
    // With a delay above 0 the clock has come around: that is meant for "never".
    if (bDueInThisPass)
        uDue = *pPassStart + (nDelay > 0 ? LONGEST_ALARM : 1);
    return Stamp(uDue);
}

long Threshold(CCUDebugSwitch &debugSwitch, long nDefault)
{
    const long nValue = debugSwitch.Get();
    return nValue ? nValue : nDefault;
}

CCUTimerTask *CurrentTask()
{
    return static_cast<CCUTimerTask *>(CUGetThreadLocalStorage(s_nSlot));
}

// What tells the classes of timers apart: the table of their virtual functions.
const void *ClassOf(const CCUTimer *pTimer)
{
    return *reinterpret_cast<const void *const *>(pTimer);
}

void CountTimeOut(long nTook, const void *pClass)
{
    InterlockedIncrement(&s_nTimeOuts);
    if (nTook <= s_nLongest)
        return;
    CCULockGuard guard(s_lock);
    if (nTook > s_nLongest) {
        s_nLongest = nTook;
        s_longestClass = pClass;
    }
}

void DumpProcessInfo()
{
    long nTimeOuts, nLongest;
    const void *pClass;
    {
        CCULockGuard guard(s_lock);
        nTimeOuts = InterlockedExchange(&s_nTimeOuts, 0);
        nLongest = InterlockedExchange(&s_nLongest, 0);
        pClass = s_longestClass;
        s_longestClass = nullptr;
    }
    CUDump("#timers:%ld  max:%ld  vtbl:%08lx\n", nTimeOuts, nLongest,
           reinterpret_cast<unsigned long>(pClass));
}

// Runs on the system's timer thread: all else is done where the message arrives.
void CALLBACK OnMultimediaTimer(UINT uTimerID, UINT, DWORD_PTR hWnd, DWORD_PTR, DWORD_PTR)
{
    if (uTimerID != 0)
        PostMessageA(reinterpret_cast<HWND>(hWnd), s_uReal, uTimerID, 0);
}

// Where the system has no number left to register, one that is private to the window's class will
// do: nobody else sends to this window.
UINT MessageId(const char *name, UINT uPrivate)
{
    const UINT uMessage = CURegisterMessageId(name);
    return uMessage ? uMessage : uPrivate;
}

void RegisterTaskClass(WNDPROC windowProc)
{
    WNDCLASSA wndClass = {};
    wndClass.style = CS_HREDRAW | CS_VREDRAW;
    wndClass.lpfnWndProc = windowProc;
    wndClass.hInstance = CUInstance();
    wndClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    wndClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    wndClass.lpszClassName = CLASS_NAME;
    if (RegisterClassA(&wndClass))
        return;
    const DWORD dwError = GetLastError();
    CU_ASSERT(dwError == ERROR_CLASS_ALREADY_EXISTS);
}

// At process exit, on the thread that leaves: the class goes after that thread's window.
void EndTimers()
{
    if (g_moduleEnd == CUModuleEndsWithProcess)
        return;
    if (CCUTimerTask *pTask = CurrentTask())
        pTask->OnThreadExit(true);
    CUShutdown();
    if (UnregisterClassA(CLASS_NAME, CUInstance()))
        return;
    char szText[128];
    wsprintfA(szText, "CCUTimerTask unable to unregister class %s - gle: %d\n", CLASS_NAME,
              GetLastError());
    OutputDebugStringA(szText);
}

}  // namespace

// The arming of a timer stands here, so that a program which arms none is linked without all this:
// that saves it 1,000 bytes and the making of three debug switches at its start.

void CCUTimer::SetAlarm(long nMilliseconds)
{
    if (CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask())
        pTask->SetAlarm(this, nMilliseconds);
}

void CCUTimer::SetAlarmIfEarlier(long nMilliseconds)
{
    const bool bDueByThen = m_uAlarm != 0 && Difference(m_uAlarm, CUGetTime()) <= nMilliseconds;
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
    CCUTimerTask *pTask = CurrentTask();
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
        s_uReal = MessageId("TimerTaskReal", WM_USER);
        s_uMock = MessageId("TimerTaskMock", WM_USER + 1);
        CURegisterProcessInfoHandler("timertask", DumpProcessInfo);
        CURegisterTerminationHandler(EndTimers);
        CCUTimer::s_forget = Forget;
    }
    if (s_nSlot == -1) {
        RegisterTaskClass(WindowProc);
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
    while (*link && !IsLater((*link)->m_uAlarm, uAlarm)) {
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
    CCUTimerTask *pTask = CurrentTask();
    if (pTimer->m_uAlarm != 0 && pTask && pTask->Unlink(pTimer))
        --pTask->m_uListLength;
}

// Leaves the state "real" for none, then goes to the state that the first timer asks for.
void CCUTimerTask::ResetTimer()
{
    if (CUIsShutdown() || !m_hWnd)
        return;
    if (m_uTimerID != 0)
        CancelNotification();
    // Real only where a handler that the cancelling has let in has asked anew.
    const bool bRealOrMock = m_uTimerID != 0 || m_bMockTimerSet;
    if (bRealOrMock || !m_pFirst)
        return;
    const bool bStartTickIsSooner = m_uStartTick != 0 && IsLater(m_pFirst->m_uAlarm, m_uStartTick);
    if (bStartTickIsSooner)
        return;
    const long nDelay = Difference(m_pFirst->m_uAlarm, CUGetTime());
    CU_ASSERT_TEXT(!m_bMockTimerSet && m_uTimerID == 0, "! m_bMockTimerSet && m_uTimerID == 0");
    if (nDelay > 0)
        StartMultimediaTimer(nDelay < LONGEST_WAIT ? nDelay : LONGEST_WAIT);
    else
        PostMock();
}

// From real to none, the message that may be in the queue already included.
void CCUTimerTask::CancelNotification()
{
    const bool bKilled = g_multimedia.killEvent(m_uTimerID) == TIMERR_NOERROR;
    m_uTimerID = 0;
    if (bKilled || RemoveRealMessage())
        --m_nPending;
    else
        CUDump(">>> CCUTimerTask::ResetTimer Failed to remove pending timer message.\n");
}

// PeekMessage serves messages that other threads have sent: their handlers may arm timers.
bool CCUTimerTask::RemoveRealMessage()
{
    MSG msg;
    if (!PeekMessageA(&msg, m_hWnd, s_uReal, s_uReal, PM_REMOVE))
        return false;
    if (msg.message != WM_QUIT) {
        // The message removed may belong to a multimedia timer that such a handler has started.
        if (msg.wParam == m_uTimerID)
            m_uTimerID = 0;
        return true;
    }
    // PeekMessage gives WM_QUIT whatever the filter. It is for the message loop.
    PostQuitMessage(static_cast<int>(msg.wParam));
    return false;
}

void CCUTimerTask::StartMultimediaTimer(long nDelay)
{
    g_bMultimediaInUse = true;
    const LPTIMECALLBACK callback =
        CUModuleTimerCallback ? CUModuleTimerCallback(s_uReal) : OnMultimediaTimer;
    m_uTimerID = g_multimedia.setEvent(static_cast<UINT>(nDelay), RESOLUTION, callback,
                                       reinterpret_cast<DWORD_PTR>(m_hWnd), TIME_ONESHOT);
    if (m_uTimerID != 0)
        ++m_nPending;
    else
        CUDump("CUTimerTask: >>>> Failed to set timer (%ld) <<<<\n", nDelay);
}

void CCUTimerTask::PostMock()
{
    // A message that the queue has no room for will not come and must not be waited for.
    if (!PostMessageA(m_hWnd, s_uMock, 0, 0))
        return;
    m_bMockTimerSet = TRUE;
    ++m_nPending;
}

void CCUTimerTask::MakeWindow()
{
    m_hWnd = CreateWindowExA(0, CLASS_NAME, CLASS_NAME, 0, 0, 0, 32, 32, nullptr, nullptr,
                             CUInstance(), nullptr);
    CU_ASSERT(m_hWnd);
    if (!m_hWnd)
        return;  // the next arming tries again
    // The class may be from an earlier load of a module, without that one's procedure.
    SetWindowLongA(m_hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(WindowProc));
    // Where somebody else has destroyed an earlier window, its mock message is gone with it.
    if (m_bMockTimerSet) {
        m_bMockTimerSet = FALSE;
        --m_nPending;
    }
    const UINT_PTR nTimer = SetTimer(m_hWnd, START_TIMER, START_TICK, nullptr);
    m_uStartTick = nTimer ? Stamp(CUGetTime() + START_TICK) : 0;
}

LRESULT CALLBACK CCUTimerTask::WindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    CCUTimerTask *pTask = CurrentTask();
    if (pTask && pTask->OnMessage(uMessage))
        return 0;
    return DefWindowProcA(hWnd, uMessage, wParam, lParam);
}

// Whether the message is done with.
bool CCUTimerTask::OnMessage(UINT uMessage)
{
    if (uMessage == s_uReal) {
        m_uTimerID = 0;
        --m_nPending;
        ServeTimers();
        return true;
    }
    if (uMessage == s_uMock) {
        if (CU_ASSERT_TEXT(m_bMockTimerSet, "TimerTask->m_bMockTimerSet"))
            return true;
        m_bMockTimerSet = FALSE;
        --m_nPending;
        ServeTimers();
        return true;
    }
    if (uMessage == WM_TIMER) {
        m_uStartTick = 0;
        KillTimer(m_hWnd, START_TIMER);
        ResetTimer();
        return true;
    }
    if (uMessage == WM_DESTROY)
        m_hWnd = nullptr;
    return false;
}

void CCUTimerTask::ServeTimers()
{
    const unsigned long uStart = CUGetTime();
    const long nCountLimit = Threshold(s_countThreshold, MOST_SERVED);
    const long nTimeLimit = Threshold(s_timeThreshold, MOST_TIME);
    // A modal loop in a TimeOut may run another pass within this one.
    const unsigned long *const pOuterStart = m_pPassStart;
    m_pPassStart = &uStart;
    long nServed = 0;
    long nElapsed = 0;
    while (m_pFirst && !IsLater(m_pFirst->m_uAlarm, uStart) && nElapsed < PASS_TIME) {
        CCUTimer *const pTimer = m_pFirst;
        m_pFirst = pTimer->m_pNext;
        --m_uListLength;
        pTimer->m_uAlarm = 0;
        pTimer->m_pNext = nullptr;
        ++nServed;

        // TimeOut may delete the timer, so its class is read before.
        const void *const pClass = ClassOf(pTimer);
        const unsigned long uBefore = CUGetTime();
        pTimer->TimeOut(static_cast<long>(uStart));
        const unsigned long uAfter = CUGetTime();
        const long nTook = Difference(uAfter, uBefore);
        CountTimeOut(nTook, pClass);
        if (s_debug.Get() > 0 && (nServed > nCountLimit || nTook > nTimeLimit))
            TraceTimeOut(pTimer, uBefore, uAfter);
        if (CurrentTask() != this)
            return;  // TimeOut has ended this task: the object is deleted
        nElapsed = Difference(uAfter, uStart);
    }
    m_pPassStart = pOuterStart;
    ResetTimer();
}

void CCUTimerTask::TraceTimeOut(const void *pTimer, unsigned long uBefore, unsigned long uAfter)
{
    CUDump("%s ", CCUTime().Format("%c").GetString());
    CUDump("TimeOut took %d (called at %d, finished at %d\n)\n", static_cast<int>(uAfter - uBefore),
           static_cast<int>(uBefore), static_cast<int>(uAfter));
    CUDump("For object %x\n", static_cast<unsigned int>(reinterpret_cast<ULONG_PTR>(pTimer)));
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
        KillTimer(m_hWnd, START_TIMER);
        DestroyWindow(m_hWnd);
        if (m_hWnd) {
            CUDump("Failed to destroy CCUTimerTask window for thread %lx\n", GetCurrentThreadId());
        }
    }
    // Only now: the window procedure finds the task there.
    CUSetThreadLocalStorage(s_nSlot, nullptr);
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
        UnregisterClassA(CLASS_NAME, CUInstance());
}
