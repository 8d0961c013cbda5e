// A module on the framework that puts much of it to use and leaves it at work. Built twice: with
// the framework inside, for a program that loads and unloads it; and on what the launcher exports,
// for the launcher's process, which loads it for its hook.

#include <new>

#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "CU/Language.h"
#include "CU/Prober.h"
#include "CU/ThreadExit.h"
#include "CU/Timer.h"
#include "CUI/Button.h"
#include "CUI/ControlWindow.h"
#include "CUI/Dialog.h"
#include "CUI/NotifyIcon.h"
#include "CUI/OffScreenDC.h"
#include "CUI/ProgressBar.h"
#include "CUI/StatusBar.h"
#include "CUI/WindowClass.h"

namespace {

CCUProberLong s_uses("\\Module", "Uses");

class CUser : public CCUTimer, public CCUThreadExitHandler, public CCUDumpCallback
{
public:
    using CCUTimer::SetAlarm;
    // At work all the time, unless it is to be quiet.
    void TimeOut(long) override
    {
        ++m_nCalls;
        if (!m_bQuiet)
            SetAlarm(1);
    }
    void OnThreadExit(bool) override {}
    void OnDump(const CCUString &sText) override { m_sDumped += sText; }

    volatile LONG m_nCalls = 0;
    bool m_bQuiet = false;
    CCUString m_sDumped;
};

// Of classes with two bases, both of which find their functions, that the launcher exports by
// numbers.
class CStatus : public CCUIStatusBar
{
};
class CCountingButton : public CCUIButton
{
public:
    void OnClick() override { ++m_nClicks; }
    int m_nClicks = 0;
};

LRESULT CALLBACK OwnClassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_APP ? 99 : DefWindowProcA(hWnd, message, wParam, lParam);
}

// What one thread has of the framework.
struct CThreadsPart
{
    CUser m_user, m_late;
    CCUIWindow m_window, m_child, m_own;
    // Objects that still have their windows when all others are destroyed.
    alignas(CCUIWindow) char m_attached[sizeof(CCUIWindow)], m_left[sizeof(CCUIWindow)];
    CCUIControlWindow m_control;
    CStatus m_status;
    CCountingButton m_button;
    CCUIDialog m_dialog{GetModuleHandleA("Module.dll"), MAKEINTRESOURCEA(1)};

    bool Use(HWND hHosts)
    {
        m_late.SetAlarm(3600000);
        m_user.SetAlarm(0);
        CUStartExceptionHandler();
        CURegisterThreadExitHandler(&m_user);
        const HDC hDC = GetDC(nullptr);
        const bool bDrawn = CUIGetOSDC()->GetDC(hDC, 60, 60) != nullptr;
        CUIGetOSDC()->ReleaseDC();
        ReleaseDC(nullptr, hDC);
        return bDrawn && CUGetWindow() && PassTexts() && MakeWindows(hHosts);
    }

private:
    // Made on one side and let go on the other.
    bool PassTexts()
    {
        CUDumpRegister(&m_user);
        CUDump("used by thread %lx\n", GetCurrentThreadId());
        CUDumpUnRegister(&m_user);
        s_uses.Add(1);
        const long nUses = s_uses;
        CUProberValue value;
        CCUProber::Get(CCUProber::Find("\\Module\\Uses"), value);
        return value.nLong >= nUses && m_user.m_sDumped.Find("used by thread") >= 0 &&
               CCUString() == CUPchNil && PassLanguage();
    }
    // The language is the process's: one thread alone changes it.
    bool PassLanguage();
    bool MakeWindows(HWND hHosts)
    {
        const RECT rect = {0, 0, 50, 50};
        WNDCLASSA ownClass = {};
        ownClass.lpfnWndProc = OwnClassProc;
        ownClass.lpszClassName = "ModulesOwn";
        (new (m_attached) CCUIWindow)->Attach(hHosts);
        return CUIRegisterWindowClass(&ownClass) &&
               m_window.Create(nullptr, "Module", WS_POPUP | WS_VISIBLE, rect, nullptr, 0) &&
               m_child.Create("EDIT", "", WS_CHILD | WS_VISIBLE, rect, m_window, 1) &&
               m_own.Create("ModulesOwn", "", WS_POPUP, rect, nullptr, 0) &&
               SendMessageA(m_own, WM_APP, 0, 0) == 99 &&
               m_control.Create(nullptr, "", WS_CHILD, rect, m_window, 2) &&
               m_status.CreateBar(m_window, 3) && m_button.CreateControl(m_window, 4, "&Text") &&
               ClickButton() && m_dialog.DoModeless(nullptr) &&
               CCUIWindow::FromHandle(m_dialog) == &m_dialog &&
               (new (m_left) CCUIWindow)->Create("ModulesOwn", "", WS_POPUP, rect, nullptr, 0);
    }
    bool ClickButton()
    {
        SIZE size = {};
        m_button.GetNaturalSize(size);
        SendMessageA(m_button, BM_CLICK, 0, 0);
        m_button.SetCheck(BST_CHECKED);
        return size.cx > 0 && m_button.m_nClicks == 1 && m_button.GetCheck() == BST_CHECKED;
    }
};

CThreadsPart s_parts[2];

bool CThreadsPart::PassLanguage()
{
    if (this != s_parts)
        return true;
    CUSetCurrentLanguage(CCUString('x', 300));
    CCUString sText = CUGetCurrentLanguage();
    CUSetCurrentLanguage("");
    sText.SetAt(0, 'y');
    return sText.GetLength() == 300 && CUGetCurrentLanguage() == "english";
}

}  // namespace

extern "C" __declspec(dllexport) BOOL Use(int nPart, HWND hHosts)
{
    CUDisplayAssert("a report", "Module", __LINE__);
    return s_parts[nPart].Use(hHosts);
}

// What needs libraries that the module is not linked with. The control stays.
extern "C" __declspec(dllexport) BOOL UseLibraries(HWND hParent)
{
    CCUINotifyIcon().Add(LoadIconA(nullptr, MAKEINTRESOURCEA(32512)), "tip");  // IDI_APPLICATION
    static CCUIProgressBar s_bar;
    return s_bar.CreateControl(hParent, 1);
}

extern "C" __declspec(dllexport) int TimesServed(int nPart)
{
    return s_parts[nPart].m_user.m_nCalls;
}

// The last alarm is yet to come. Wine 8 starts a thread for each alarm, and crashes when a process
// ends at that moment.
extern "C" __declspec(dllexport) void Calm(int nPart)
{
    s_parts[nPart].m_user.m_bQuiet = true;
}

// Says at the window what came of it.
extern "C" __declspec(dllexport) LRESULT CALLBACK OnCall(int nCode, WPARAM wParam, LPARAM lParam)
{
    const auto &message = *reinterpret_cast<const CWPSTRUCT *>(lParam);
    if (message.message == WM_APP) {
        SIZE size = {};
        auto *pLauncher = static_cast<CCUIDialog *>(CCUIWindow::FromHandle(message.hwnd));
        const HWND hHosts =
            CreateWindowA("STATIC", "", 0, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
        if (pLauncher->GetSizeInDialogUnits(size) && size.cx == 107 && Use(0, hHosts))
            SetPropA(message.hwnd, "Used", hHosts);
    }
    if (TimesServed(0) > 2) {
        Calm(0);
        SetPropA(message.hwnd, "Served", message.hwnd);
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}
