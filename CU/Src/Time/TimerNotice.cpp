#include "Time/TimerTask.h"

#include "Base/Module.h"
#include "Base/Multimedia.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "CU/Timer.h"
#include "Process/Shutdown.h"

#define CU_SOURCE "TimerTask"

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

namespace {

const UINT START_TICK = 500;      // ms
const long LONGEST_WAIT = 60000;  // ms
const UINT RESOLUTION = 2;        // ms

UINT s_uReal = 0;
UINT s_uMock = 0;

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

}  // namespace

void CURegisterTimerMessages()
{
    s_uReal = MessageId("TimerTaskReal", WM_USER);
    s_uMock = MessageId("TimerTaskMock", WM_USER + 1);
}

void CURegisterTimerClass(WNDPROC windowProc)
{
    WNDCLASSA wndClass = {};
    wndClass.style = CS_HREDRAW | CS_VREDRAW;
    wndClass.lpfnWndProc = windowProc;
    wndClass.hInstance = CUInstance();
    wndClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    wndClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    wndClass.lpszClassName = CU_TIMER_CLASS;
    if (RegisterClassA(&wndClass))
        return;
    const DWORD dwError = GetLastError();
    CU_ASSERT(dwError == ERROR_CLASS_ALREADY_EXISTS);
}

bool CUUnregisterTimerClass()
{
    return UnregisterClassA(CU_TIMER_CLASS, CUInstance()) != FALSE;
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
    const bool bStartTickIsSooner =
        m_uStartTick != 0 && CUIsTimerLater(m_pFirst->m_uAlarm, m_uStartTick);
    if (bStartTickIsSooner)
        return;
    const long nDelay = CUTimerDifference(m_pFirst->m_uAlarm, CUGetTime());
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
    m_hWnd = CreateWindowExA(0, CU_TIMER_CLASS, CU_TIMER_CLASS, 0, 0, 0, 32, 32, nullptr, nullptr,
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
    const UINT_PTR nTimer = SetTimer(m_hWnd, CU_TIMER_START_TICK, START_TICK, nullptr);
    m_uStartTick = nTimer ? CUTimerStamp(CUGetTime() + START_TICK) : 0;
}

LRESULT CALLBACK CCUTimerTask::WindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    CCUTimerTask *pTask = CUCurrentTimerTask();
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
        KillTimer(m_hWnd, CU_TIMER_START_TICK);
        ResetTimer();
        return true;
    }
    if (uMessage == WM_DESTROY)
        m_hWnd = nullptr;
    return false;
}
