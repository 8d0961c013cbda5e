// A module with the framework inside, which a program loads, uses on two threads and unloads in the
// middle of everything.

#include <new>

#include "../../../CUI/Src/Window/WindowMap.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "CU/ThreadExit.h"
#include "CU/Timer.h"
#include "CUI/ControlWindow.h"
#include "CUI/Dialog.h"
#include "CUI/OffScreenDC.h"
#include "CUI/WindowClass.h"
#include "Support/MultimediaHook.h"

#define CU_SOURCE "Unloaded"

namespace {

class CUnloadedTimer : public CCUTimer
{
public:
    using CCUTimer::SetAlarm;
    // At work all the time: the module goes while the system is about to call back.
    void TimeOut(long) override
    {
        if (m_nCalls < 1000000)
            ++m_nCalls;
        SetAlarm(1);
    }
    volatile LONG m_nCalls = 0;
};

class CUnloadedDialog : public CCUIDialog
{
public:
    CUnloadedDialog() : CCUIDialog(GetModuleHandleA("Unloaded.dll"), MAKEINTRESOURCEA(1)) {}
};

class CUnloadedHandler : public CCUThreadExitHandler
{
public:
    void OnThreadExit(bool) override { m_bEnded = true; }
    bool m_bEnded = false;
};

LRESULT CALLBACK OwnClassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_APP ? 99 : DefWindowProcA(hWnd, message, wParam, lParam);
}

// What one thread has of the framework.
struct CThreadsPart
{
    CUnloadedTimer m_busy, m_late;
    CCUIWindow m_window, m_child, m_own;
    // Objects that still have their windows when all others are destroyed.
    alignas(CCUIWindow) char m_attached[sizeof(CCUIWindow)], m_left[sizeof(CCUIWindow)];
    CCUIControlWindow m_control;
    CUnloadedDialog m_dialog;
    CUnloadedHandler m_handler;

    bool Use(HWND hHosts)
    {
        const RECT rect = {0, 0, 50, 50};
        m_late.SetAlarm(3600000);
        m_busy.SetAlarm(0);
        (new (m_attached) CCUIWindow)->Attach(hHosts);
        WNDCLASSA ownClass = {};
        ownClass.lpfnWndProc = OwnClassProc;
        ownClass.lpszClassName = "UnloadedOwn";
        CUStartExceptionHandler();
        HDC hDC = ::GetDC(nullptr);
        const bool bDrawn = CUIGetOSDC()->GetDC(hDC, 60, 60) != nullptr;
        CUIGetOSDC()->ReleaseDC();
        ::ReleaseDC(nullptr, hDC);
        CURegisterThreadExitHandler(&m_handler);
        CUDump("used by thread %lx\n", GetCurrentThreadId());
        const bool bWindows =
            CUIRegisterWindowClass(&ownClass) && CUGetWindow() &&
            m_window.Create(nullptr, "Unloaded", WS_POPUP | WS_VISIBLE, rect, nullptr, 0) &&
            m_child.Create("EDIT", "", WS_CHILD | WS_VISIBLE, rect, m_window, 1) &&
            m_own.Create("UnloadedOwn", "", WS_POPUP, rect, nullptr, 0) &&
            SendMessageA(m_own, WM_APP, 0, 0) == 99 &&
            m_control.Create(nullptr, "", WS_CHILD, rect, m_window, 2) &&
            m_dialog.DoModeless(nullptr) && IsWindow(m_dialog);
        const bool bLeft =
            (new (m_left) CCUIWindow)->Create("UnloadedOwn", "", WS_POPUP, rect, nullptr, 0);
        return bLeft && bDrawn && bWindows;
    }
};

CThreadsPart s_parts[2];

// Notes what the system is given to call back.
decltype(&::timeSetEvent) s_setEvent = nullptr;
LPTIMECALLBACK s_callback = nullptr;

MMRESULT WINAPI SetEventNoting(UINT nDelay, UINT nResolution, LPTIMECALLBACK callback,
                               DWORD_PTR user, UINT nFlags)
{
    s_callback = callback;
    return s_setEvent(nDelay, nResolution, callback, user, nFlags);
}

}  // namespace

extern "C" __declspec(dllexport) BOOL Use(int nPart, HWND hHosts)
{
    if (nPart == 0)
        CU_ASSERT(hHosts == nullptr);
    MultimediaTime();  // loads the library
    if (!s_setEvent) {
        s_setEvent = g_multimedia.setEvent;
        g_multimedia.setEvent = SetEventNoting;
    }
    return s_parts[nPart].Use(hHosts);
}

extern "C" __declspec(dllexport) int TimesServed(int nPart)
{
    return s_parts[nPart].m_busy.m_nCalls;
}

extern "C" __declspec(dllexport) LPTIMECALLBACK TimerCallback()
{
    return s_callback;
}

// A thread that the end of the process finds in the middle of a change of the framework's data.
// Not in a call of Wine 8, which may crash when it ends a thread there.
extern "C" __declspec(dllexport) DWORD WINAPI StopInTheMiddle(void *pStopped)
{
    const CUIWindowMapLock lock;
    *static_cast<volatile LONG *>(pStopped) = TRUE;
    for (volatile bool bForEver = true; bForEver;) {
    }
    return 0;
}
