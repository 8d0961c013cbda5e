// A module that links the launcher's import library: the other side of what the launcher exports.
// Run is called on a thread of its own in the launcher's process and does its work on the thread
// of the launcher's window.

#include <malloc.h>
#include <string.h>

#include "CU/Dump.h"
#include "CU/Language.h"
#include "CU/Timer.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/Dialog.h"

#ifdef MODULE_OF_ANOTHER_VERSION
extern "C" __declspec(dllimport) void CUAddedLater();
#endif

namespace {

// The line of the first check that failed; at first this one, for a run that never came.
volatile DWORD s_nFailed = __LINE__;

HINSTANCE s_hModule = nullptr;

void Check(bool bHolds, DWORD nLine)
{
    if (!bHolds && !s_nFailed)
        s_nFailed = nLine;
}
#define CHECK(expression) Check((expression), __LINE__)

int HeapBlocks()
{
    int nCount = 0;
    _HEAPINFO entry = {};
    while (_heapwalk(&entry) == _HEAPOK)
        nCount += entry._useflag == _USEDENTRY;
    return nCount;
}

void Strings(CCUIDialog &launcher)
{
    CHECK(GetModuleHandleA(nullptr) == GetModuleHandleA("AutoRun.exe"));
    CUSetCurrentLanguage("");
    const int nBefore = HeapBlocks();
    CHECK(nBefore > 0);
    for (int i = 1; i <= 300; ++i) {
        CUSetCurrentLanguage(CCUString('x', i));
        CCUString kept = CUGetCurrentLanguage();
        CUSetCurrentLanguage("");
        // The launcher made the text and has let it go; it is freed here.
        CHECK(kept.GetLength() == i && kept[i - 1] == 'x');
        kept.SetAt(0, 'y');
        CHECK(kept[0] == 'y' && CUGetCurrentLanguage() == "english");
        // The launcher frees the text made here and puts its own, none, in its place.
        CCUString made('z', i);
        CHECK(launcher.GetCaption(made) && made.IsEmpty());
        kept.Empty();
        CHECK(static_cast<const char *>(kept) == CUPchNil);
    }
    CHECK(_heapchk() == _HEAPOK);
    CHECK(HeapBlocks() < nBefore + 50);
}

class CModuleCallback : public CCUDumpCallback
{
public:
    void OnDump(const CCUString &sText) override { m_sText += sText; }
    CCUString m_sText;
};

void Dumps()
{
    CModuleCallback callback;
    CUDumpRegister(&callback);
    CUDump("across %s %d\n", "modules", 7);
    CUDumpUnRegister(&callback);
    CUDump("not heard\n");
    CHECK(callback.m_sText.Find("across modules 7") >= 0);
    CHECK(callback.m_sText.Find("not heard") < 0);
}

const unsigned int COMMAND = 1234;

class CModuleTimer : public CCUTimer
{
public:
    using CCUTimer::SetAlarm;
    explicit CModuleTimer(CCUIDialog &dialog) : m_dialog(dialog) {}
    void TimeOut(long) override;
    int m_nCalls = 0;

private:
    CCUIDialog &m_dialog;
};

class CModuleHandler : public CCUICommandHandler
{
public:
    explicit CModuleHandler(CModuleTimer &timer) : CCUICommandHandler(COMMAND, 1), m_timer(timer) {}
    void HandleCommand(unsigned int nID) override
    {
        m_nCommands += nID == COMMAND;
        m_timer.SetAlarm(10);
    }
    void HandleUpdate(unsigned int nID) override { m_nUpdates += nID == 0 || nID == COMMAND; }
    int m_nCommands = 0;
    int m_nUpdates = 0;

private:
    CModuleTimer &m_timer;
};

// Answers 42 when its timer fires after a command and a pass of the idle loop.
class CModuleDialog : public CCUIDialog
{
public:
    CModuleDialog() : CCUIDialog(s_hModule, MAKEINTRESOURCEA(1)), m_timer(*this), m_handler(m_timer)
    {
    }
    CModuleTimer m_timer;
    CModuleHandler m_handler;

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        CHECK(CCUIWindow::FromHandle(m_hWnd) == this);
        const int nResult = CCUIDialog::OnInitDialog(hFocus, lParam);
        CHECK(!IsWindowEnabled(GetWindow(m_hWnd, GW_OWNER)));
        PostMessageA(m_hWnd, WM_COMMAND, COMMAND, 0);
        return nResult;
    }
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override
    {
        if (nID != COMMAND) {
            CCUIDialog::OnCommand(nCode, nID, hControl);
            return;
        }
        CHECK(CCUICommandMap::Lookup(nID) == &m_handler);
        CCUICommandMap::Lookup(nID)->HandleCommand(nID);
    }
};

void CModuleTimer::TimeOut(long)
{
    const bool bUpdated = static_cast<CModuleDialog &>(m_dialog).m_handler.m_nUpdates > 0;
    if (!bUpdated && ++m_nCalls < 500)
        SetAlarm(10);
    else
        m_dialog.EndDialog(bUpdated ? 42 : 1);
}

void Dialogs(CCUIDialog &launcher)
{
    SIZE size = {};
    CHECK(launcher.GetSizeInDialogUnits(size) && size.cx == 107 && size.cy == 71);
    {
        CModuleDialog dialog;
        CHECK(dialog.DoModal(&launcher) == 42);
        CHECK(dialog.m_handler.m_nCommands == 1);
    }
    CHECK(CCUICommandMap::Lookup(COMMAND) == nullptr);
    CHECK(IsWindowEnabled(launcher));
}

void Names()
{
    SetLastError(0);
    CHECK(!GetProcAddress(GetModuleHandleA(nullptr), "CUAddedLater"));
    CHECK(GetLastError() == ERROR_PROC_NOT_FOUND);
    const auto *const ppNil = reinterpret_cast<const char *const *>(
        GetProcAddress(GetModuleHandleA(nullptr), "CUPchNil"));
    CHECK(ppNil && *ppNil == static_cast<const char *>(CCUString()) && **ppNil == '\0');
}

LRESULT CALLBACK OnCall(int nCode, WPARAM wParam, LPARAM lParam)
{
    const auto &message = *reinterpret_cast<const CWPSTRUCT *>(lParam);
    if (nCode == HC_ACTION && message.message == WM_APP && s_nFailed) {
        s_nFailed = 0;
        Names();
        Dumps();
        auto *pLauncher = static_cast<CCUIDialog *>(CCUIWindow::FromHandle(message.hwnd));
        CHECK(pLauncher != nullptr);
        if (pLauncher) {
            Strings(*pLauncher);
            Dialogs(*pLauncher);
        }
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE hModule, DWORD, void *)
{
    s_hModule = hModule;
    return TRUE;
}

extern "C" __declspec(dllexport) DWORD WINAPI Run(void *hLauncher)
{
    const auto hWnd = static_cast<HWND>(hLauncher);
    const HHOOK hHook =
        SetWindowsHookExA(WH_CALLWNDPROC, OnCall, nullptr, GetWindowThreadProcessId(hWnd, nullptr));
    SendMessageA(hWnd, WM_APP, 0, 0);
    UnhookWindowsHookEx(hHook);
#ifdef MODULE_OF_ANOTHER_VERSION
    if (s_nFailed == static_cast<DWORD>(-1))
        CUAddedLater();
#endif
    return s_nFailed;
}
