// The thread's message loops, and what happens between two messages.

#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/Time.h"
#include "CUI/CommandMap.h"
#include "CUI/Window.h"

#define CU_SOURCE "Window"

namespace {

// What the multimedia system posts: input and output of data, and the end of a command.
constexpr UINT s_nWaveInput = 0x03C0;
constexpr UINT s_nMciNotify = 0x03B9;
constexpr UINT s_nMidiInput = 0x03C3;
constexpr UINT s_nDriverData = 0x03D2;
// The timer of the system's own caret blinking and menu delays.
constexpr UINT s_nSystemTimer = 0x0118;

constexpr LPARAM s_nPreviousKeyState = 1L << 30;
constexpr long s_nSlow = 1000;

// Ownership is set by the program and may run in a circle.
constexpr int s_nMostOwners = 1000;
constexpr int s_nMostRestarts = 100;

CCUDebugSwitch s_messageDebug("\\Debug\\Window", "MessageDebug");

unsigned long s_nStartTime;
unsigned long s_nLastIdleTime;
long s_nIdleTime;
CCUIIdleCallback *s_pIdleCallback;

bool IsMultimedia(UINT message)
{
    return message == s_nMciNotify || message == s_nWaveInput || message == s_nMidiInput ||
           message == s_nDriverData;
}

bool IsActivity(UINT message)
{
    switch (message) {
    case WM_MOUSEMOVE:
    case WM_NCMOUSEMOVE:
    case WM_TIMER:
    case WM_PAINT:
    case s_nSystemTimer: return false;
    default: return message < WM_USER && !IsMultimedia(message) && !CUIsYourMessage(message);
    }
}

int TraceArg(unsigned long nValue)
{
    return static_cast<int>(nValue);
}

// True when what began at nFrom took so long that it is traced. `end` follows the last number.
bool TraceSlow(const char *what, unsigned long nFrom, const char *end)
{
    const unsigned long nTo = CUGetTime();
    if (static_cast<long>(nTo - nFrom) <= s_nSlow || s_messageDebug.Get() < 1)
        return false;
    const CCUString sNow = CCUTime().Format("%c");
    CUDump("%s\n", static_cast<const char *>(sNow));
    CUDump("%s took %d (called at %d, finished at %d%s)\n", what, TraceArg(nTo - nFrom),
           TraceArg(nFrom), TraceArg(nTo), end);
    return true;
}

// One pass is enough until something happens again, so the answer is always no.
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

void HandleMessage(MSG *pMsg)
{
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

bool IsMessageWaiting(MSG &msg)
{
    return PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE) != 0;
}

// Takes a message that even a restricted idle loop serves.
bool TakeRestricted(MSG &msg)
{
    static const UINT s_nServed[] = {s_nWaveInput, s_nMciNotify, s_nMidiInput, s_nDriverData,
                                     WM_TIMER};
    for (const UINT message : s_nServed) {
        if (PeekMessageA(&msg, nullptr, message, message, PM_REMOVE))
            return true;
    }
    const HWND hWnd = CUFindWindow();
    return hWnd && PeekMessageA(&msg, hWnd, WM_USER, WM_USER + 2, PM_REMOVE);
}

// One message of an idle loop: 1 handled, 0 nothing there, -1 the thread is to quit.
int IdleStep(int bRestricted)
{
    MSG msg;
    if (!bRestricted) {
        if (!IsMessageWaiting(msg))
            return 0;
        return CCUIWindow::PumpMessage(&msg) ? 1 : -1;
    }
    if (!TakeRestricted(msg))
        return 0;
    // WM_QUIT passes every filter.
    if (msg.message == WM_QUIT)
        return -1;
    HandleMessage(&msg);
    return 1;
}

// Presses the control, where there is one.
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

int CCUIWindow::PerformPreTranslation(MSG *pMsg)
{
    HWND hWnd = pMsg->hwnd;
    for (int i = 0; hWnd && i < s_nMostOwners; ++i) {
        CCUIWindow *const pWindow = FromHandle(hWnd);
        const HWND hOwner = pWindow ? pWindow->GetOwner() : nullptr;
        if (pWindow && pWindow->PreTranslateMessage(pMsg))
            return 1;
        const HWND hParent = GetParent(hWnd);
        hWnd = pWindow && !FromHandle(hParent) ? hOwner : hParent;
    }
    // A window may show another cursor while a key is down: a cursor that is set where it is makes
    // the system ask again.
    const bool bFirstDown = pMsg->message == WM_KEYDOWN && !(pMsg->lParam & s_nPreviousKeyState);
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
    long nCount = 0;
    bool bIdle = true;
    for (;;) {
        while (bIdle && !IsMessageWaiting(msg))
            bIdle = IdlePass(nCount++);
        do {
            if (!PumpMessage(&msg))
                return static_cast<int>(msg.wParam);
            if (IsActivity(msg.message)) {
                nCount = 0;
                bIdle = true;
            }
        } while (IsMessageWaiting(msg));
    }
}

void CCUIWindow::ModalLoop()
{
    MSG msg;
    CWatch watch(this);
    // A look at the queue serves what other threads sent, and that may end the run.
    // The object may have gone on to another run with another window, or its window may have gone
    // unheard.
    const HWND hWnd = m_hWnd;
    const auto isOver = [&] {
        return watch.IsGone() || m_bEnded || m_hWnd != hWnd || (hWnd && FromHandle(hWnd) != this);
    };
    const HWND hParent = GetParent(hWnd);
    long nCount = 0;
    bool bIdle = true;
    while (!isOver()) {
        while (bIdle && !IsMessageWaiting(msg) && !isOver()) {
            if (hParent && nCount == 0)
                SendMessageA(hParent, WM_ENTERIDLE, MSGF_DIALOGBOX, reinterpret_cast<LPARAM>(hWnd));
            bIdle = IdlePass(nCount++);
        }
        do {
            if (isOver())
                return;
            // The system writes the message when it has one: until then the loop waits.
            msg.message = NoMessage;
            m_pAwaited = &msg;
            const int bGoOn = PumpMessage(&msg);
            if (!watch.IsGone())
                m_pAwaited = nullptr;
            if (!bGoOn) {
                PostQuitMessage(0);
                return;
            }
            CU_ASSERT_TEXT(!watch.IsGone() && !m_bDead, "!m_bDead");
            if (isOver())
                return;
            if (IsActivity(msg.message)) {
                nCount = 0;
                bIdle = true;
            }
        } while (IsMessageWaiting(msg));
    }
}

void CCUIWindow::IdleLoop(long nMilliseconds, int bRestricted)
{
    const auto nGiven = static_cast<unsigned long>(nMilliseconds);
    const unsigned long nDeadline = CUGetTime() + (nMilliseconds < 0 ? 0 - nGiven : nGiven);
    for (;;) {
        const int nStep = IdleStep(bRestricted);
        if (nStep < 0) {
            PostQuitMessage(0);
            return;
        }
        const bool bOver = nMilliseconds == 0 || static_cast<long>(CUGetTime() - nDeadline) >= 0;
        if (bOver || (nStep == 0 && nMilliseconds > 0))
            return;
        if (nStep == 0)
            Sleep(10);
    }
}

void CCUIWindow::AbortDialog(HWND hWnd)
{
    // Closing a dialog may close others, and with them the way to the next one. Only where it is
    // closed itself all start again: one that stays open is asked once.
    int nRestarts = 0;
    HWND hDialog = GetWindow(hWnd, GW_HWNDFIRST);
    while (hDialog && nRestarts < s_nMostRestarts) {
        HWND hNext = GetWindow(hDialog, GW_HWNDNEXT);
        if (IsDialogOf(hDialog, hWnd)) {
            AbortDialog(hDialog);
            if (IsWindow(hDialog))
                hNext = GetWindow(hDialog, GW_HWNDNEXT);
            SendCommand(hDialog, IDCANCEL);
            SendCommand(hDialog, IDNO);
        }
        if (hNext && !IsWindow(hNext)) {
            hNext =
                IsWindow(hDialog) ? GetWindow(hDialog, GW_HWNDNEXT) : GetWindow(hWnd, GW_HWNDFIRST);
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
