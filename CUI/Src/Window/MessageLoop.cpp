// The thread's message loops, and what happens between two messages.

#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/Prober.h"
#include "CU/String.h"
#include "CU/Time.h"
#include "CUI/CommandMap.h"
#include "CUI/Window.h"
#include "Window/PreTranslation.h"

#define CU_SOURCE "Window"

namespace {

// What the multimedia system posts: input and output of data, and the end of a command.
const UINT WAVE_INPUT = 0x03C0;
const UINT MCI_NOTIFY = 0x03B9;
const UINT MIDI_INPUT = 0x03C3;
const UINT DRIVER_DATA = 0x03D2;
// The timer with which the system blinks the caret and delays menus.
const UINT SYSTEM_TIMER = 0x0118;

const LPARAM PREVIOUS_KEY_STATE = 1L << 30;
// Milliseconds; what takes longer is traced.
const long SLOW = 1000;

// The program sets who owns whom, and may do so in a circle.
const int MOST_OWNERS = 1000;
const int MOST_RESTARTS = 100;

CCUDebugSwitch s_messageDebug("\\Debug\\Window", "MessageDebug",
                              "above 0: slow messages and idle passes are traced");
volatile LONG s_nMessages = 0;  // that loops have handled, of all threads

// Since the last reading that was a second or more ago.
long MessagesPerSecond(void *)
{
    static unsigned long s_nLastTime;
    static LONG s_nLastMessages;
    static long s_nRate;
    const CCUMutexGuard guard;
    const unsigned long nPassed = CUGetTime() - s_nLastTime;
    if (nPassed >= 1000) {
        const LONG nMessages = s_nMessages;
        s_nRate = MulDiv(nMessages - s_nLastMessages, 1000, static_cast<int>(nPassed));
        s_nLastMessages = nMessages;
        s_nLastTime += nPassed;
    }
    return s_nRate;
}
CCUProberFunction s_messageRate("\\CUI\\Messages", "PerSecond", MessagesPerSecond,
                                "messages that loops handle", "1/s");

unsigned long s_nStartTime;
unsigned long s_nLastIdleTime;
long s_nIdleTime;
CCUIIdleCallback *s_pIdleCallback;

bool IsMultimedia(UINT message)
{
    return message == MCI_NOTIFY || message == WAVE_INPUT || message == MIDI_INPUT ||
           message == DRIVER_DATA;
}

// Whether the message may have changed what the commands show, so that an idle pass is due.
bool IsActivity(UINT message)
{
    switch (message) {
    case WM_MOUSEMOVE:
    case WM_NCMOUSEMOVE:
    case WM_TIMER:
    case WM_PAINT:
    case SYSTEM_TIMER: return false;
    default: return message < WM_USER && !IsMultimedia(message) && !CUIsYourMessage(message);
    }
}

int TraceArg(unsigned long nValue)
{
    return static_cast<int>(nValue);
}

// Traces what began at nFrom if it took too long, and answers whether. `end` follows the last
// number.
bool TraceSlow(const char *what, unsigned long nFrom, const char *end)
{
    const unsigned long nTo = CUGetTime();
    if (static_cast<long>(nTo - nFrom) <= SLOW || s_messageDebug.Get() < 1)
        return false;
    const CCUString sNow = CCUTime().Format("%c");
    CUDump("%s\n", sNow.GetString());
    CUDump("%s took %d (called at %d, finished at %d%s)\n", what, TraceArg(nTo - nFrom),
           TraceArg(nFrom), TraceArg(nTo), end);
    return true;
}

// The idle pass number nCount since the last activity. Answers whether it wants to be called again:
// never, for one is enough until something happens.
bool IdlePass(long nCount)
{
    if (nCount <= 0) {
        const unsigned long nUpdateFrom = CUGetTime();
        CCUICommandMap::IdleUpdate();
        TraceSlow("IdleUpdate()", nUpdateFrom, "");
    }
    const unsigned long nFrom = CUGetTime();
    s_nLastIdleTime = nFrom;
    if (s_pIdleCallback) {
        s_pIdleCallback->OnIdle();
        TraceSlow("OnIdleUpdate()", nFrom, "");
    }
    return false;
}

// Offers the message to those who want it first, else dispatches it.
void HandleMessage(MSG *pMsg)
{
    InterlockedIncrement(&s_nMessages);
    const MSG copy = *pMsg;
    const unsigned long nFrom = CUGetTime();
    if (!CCUIWindow::PerformPreTranslation(pMsg)) {
        TranslateMessage(pMsg);
        DispatchMessageA(pMsg);
    }
    if (TraceSlow("PumpMessage", nFrom, "\n"))
        CUDump("Dispatched hwnd: %x msg: %x wparam: %x lparam: %x time: %d\n",
               reinterpret_cast<UINT>(copy.hwnd), copy.message, copy.wParam,
               static_cast<UINT>(copy.lParam), TraceArg(copy.time));
}

// Also serves what other threads have sent, so handlers may run.
bool IsMessageWaiting(MSG &msg)
{
    return PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE) != 0;
}

// The loop of a thread. It has two ends: WM_QUIT, where it answers false, and isOver. When the
// queue goes empty after some activity there is one idle pass, which beforeIdle is told of.
template <typename IsOver, typename BeforeIdle, typename Pump>
bool Loop(MSG &msg, IsOver isOver, BeforeIdle beforeIdle, Pump pump)
{
    long nCount = 0;
    bool bIdle = true;
    while (!isOver()) {
        while (bIdle && !IsMessageWaiting(msg) && !isOver()) {
            beforeIdle(nCount);
            bIdle = IdlePass(nCount++);
        }
        do {
            if (isOver())
                return true;
            if (!pump())
                return false;
            if (isOver())
                return true;
            if (IsActivity(msg.message)) {
                nCount = 0;
                bIdle = true;
            }
        } while (IsMessageWaiting(msg));
    }
    return true;
}

// Takes a message that even a restricted idle loop serves.
bool TakeRestricted(MSG &msg)
{
    static const UINT SERVED[] = {WAVE_INPUT, MCI_NOTIFY, MIDI_INPUT, DRIVER_DATA, WM_TIMER};
    for (const UINT message : SERVED) {
        if (PeekMessageA(&msg, nullptr, message, message, PM_REMOVE))
            return true;
    }
    const HWND hWnd = CUFindWindow();
    return hWnd && PeekMessageA(&msg, hWnd, WM_USER, WM_USER + 2, PM_REMOVE);
}

enum IdleStep
{
    StepNothing,  // no message was there
    StepHandled,
    StepQuit  // it was WM_QUIT
};

// One message of an idle loop.
IdleStep Step(int bRestricted)
{
    MSG msg;
    if (!bRestricted) {
        if (!IsMessageWaiting(msg))
            return StepNothing;
        return CCUIWindow::PumpMessage(&msg) ? StepHandled : StepQuit;
    }
    if (!TakeRestricted(msg))
        return StepNothing;
    // PeekMessage gives WM_QUIT whatever range it is asked for.
    if (msg.message == WM_QUIT)
        return StepQuit;
    HandleMessage(&msg);
    return StepHandled;
}

// Presses the dialog's button of that identifier, if there is one.
void SendCommand(HWND hWnd, int nID)
{
    const HWND hControl = GetDlgItem(hWnd, nID);
    if (hControl)
        SendMessageA(hWnd, WM_COMMAND, static_cast<WPARAM>(nID),
                     reinterpret_cast<LPARAM>(hControl));
}

bool IsDialogOf(HWND hWnd, HWND hOwner)
{
    char szClass[32] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    return GetParent(hWnd) == hOwner && lstrcmpA(szClass, "tooltips_class32") != 0;
}

}  // namespace

int CCUIWindow::PumpMessage(MSG *pMsg)
{
    if (!GetMessageA(pMsg, nullptr, 0, 0))
        return 0;
    HandleMessage(pMsg);
    return 1;
}

const MSG *CUIPreTranslation::s_pMsg;
bool CUIPreTranslation::s_bAsked;

int CCUIWindow::PerformPreTranslation(MSG *pMsg)
{
    const CUIPreTranslation preTranslation(pMsg);
    HWND hWnd = pMsg->hwnd;
    for (int i = 0; hWnd && i < MOST_OWNERS; ++i) {
        CCUIWindow *const pWindow = FromHandle(hWnd);
        const HWND hOwner = pWindow ? pWindow->GetOwner() : nullptr;
        if (pWindow && pWindow->PreTranslateMessage(pMsg))
            return 1;
        const HWND hParent = GetParent(hWnd);
        hWnd = pWindow && !FromHandle(hParent) ? hOwner : hParent;
    }
    // A window may show another cursor while a key is down. To set the cursor where it is makes the
    // system ask the window again.
    const bool bFirstDown = pMsg->message == WM_KEYDOWN && !(pMsg->lParam & PREVIOUS_KEY_STATE);
    if (bFirstDown || pMsg->message == WM_KEYUP) {
        POINT point;
        if (GetCursorPos(&point))
            SetCursorPos(point.x, point.y);
    }
    return 0;
}

int CCUIWindow::RunLoop()
{
    MSG msg;
    s_nStartTime = CUGetTime();
    Loop(
        msg, [] { return false; }, [](long) {}, [&] { return PumpMessage(&msg); });
    return static_cast<int>(msg.wParam);
}

void CCUIWindow::ModalLoop()
{
    MSG msg;
    CWatch watch(this);
    const HWND hWnd = m_hWnd;
    const HWND hParent = GetParent(hWnd);
    const auto isOver = [&] {
        if (watch.IsGone() || m_bEnded)
            return true;
        const bool bOtherRun = m_hWnd != hWnd;
        return bOtherRun || (hWnd && FromHandle(hWnd) != this);  // its window has gone unheard
    };
    const auto tellParent = [=](long nCount) {
        if (hParent && nCount == 0)
            SendMessageA(hParent, WM_ENTERIDLE, MSGF_DIALOGBOX, reinterpret_cast<LPARAM>(hWnd));
    };
    const auto pump = [&] {
        // The system writes the number when it has a message: until then the loop waits.
        msg.message = NoMessage;
        m_pAwaited = &msg;
        const int bGoOn = PumpMessage(&msg);
        if (!watch.IsGone())
            m_pAwaited = nullptr;
        if (bGoOn)
            CU_ASSERT_TEXT(!watch.IsGone() && !m_bDead, "!m_bDead");
        return bGoOn;
    };
    const bool bQuit = !Loop(msg, isOver, tellParent, pump);
    if (bQuit)
        PostQuitMessage(0);
}

void CCUIWindow::IdleLoop(long nMilliseconds, int bRestricted)
{
    const bool bWaits = nMilliseconds < 0;
    const auto nGiven = static_cast<unsigned long>(nMilliseconds);
    const unsigned long nDeadline = CUGetTime() + (bWaits ? 0 - nGiven : nGiven);
    for (;;) {
        const IdleStep step = Step(bRestricted);
        if (step == StepQuit) {
            PostQuitMessage(0);
            return;
        }
        const bool bOver = nMilliseconds == 0 || static_cast<long>(CUGetTime() - nDeadline) >= 0;
        if (bOver || (step == StepNothing && !bWaits))
            return;
        if (step == StepNothing)
            Sleep(10);
    }
}

void CCUIWindow::AbortDialog(HWND hWnd)
{
    // Closing a dialog may close the next one as well. The way goes on from the dialog if that
    // stays open, so that it is asked once, else from the first window again.
    int nRestarts = 0;
    HWND hDialog = GetWindow(hWnd, GW_HWNDFIRST);
    while (hDialog && nRestarts < MOST_RESTARTS) {
        HWND hNext = GetWindow(hDialog, GW_HWNDNEXT);
        if (IsDialogOf(hDialog, hWnd)) {
            AbortDialog(hDialog);
            if (IsWindow(hDialog))
                hNext = GetWindow(hDialog, GW_HWNDNEXT);
            SendCommand(hDialog, IDCANCEL);
            SendCommand(hDialog, IDNO);
        }
        const bool bNextIsGone = hNext && !IsWindow(hNext);
        if (bNextIsGone) {
            const bool bStays = IsWindow(hDialog) != 0;
            hNext = bStays ? GetWindow(hDialog, GW_HWNDNEXT) : GetWindow(hWnd, GW_HWNDFIRST);
            ++nRestarts;
        }
        hDialog = hNext;
    }
}

void CCUIWindow::SetIdleCallback(CCUIIdleCallback *pCallback)
{
    s_pIdleCallback = pCallback;
}

void CCUIWindow::SetIdleTime(long nMilliseconds)
{
    s_nIdleTime = nMilliseconds;
}

long CCUIWindow::GetIdleTime()
{
    return s_nIdleTime;
}

unsigned long CCUIWindow::GetLoopStartTime()
{
    return s_nStartTime;
}

unsigned long CCUIWindow::GetLastIdleTime()
{
    return s_nLastIdleTime;
}
