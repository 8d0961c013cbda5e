// The launcher's dialog from inside: what it leaves behind, and what is not seen from outside.
#include <gtest/gtest.h>

#include "AutoRunDlg.h"
#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/TestWindow.h"

namespace {

// Opens the dialog, runs `act` in it, and closes it.
template <typename Act>
void InDialog(Act act)
{
    CScripted<CAutoRunDlg> dialog(GetModuleHandleA(nullptr));
    dialog.m_on[WM_SHOWWINDOW] = [&] {
        PostMessageA(dialog, WM_APP, 0, 0);
        return 0;
    };
    dialog.m_on[WM_APP] = [&] {
        act(static_cast<HWND>(dialog));
        PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        return 0;
    };
    EXPECT_EQ(2, dialog.DoModal(nullptr));
}

const UINT MESSAGES[] = {
    WM_INITDIALOG,      WM_SYSCOLORCHANGE, WM_SETTINGCHANGE,     WM_DISPLAYCHANGE, WM_FONTCHANGE,
    WM_QUERYNEWPALETTE, WM_PALETTECHANGED, WM_PALETTEISCHANGING, WM_ERASEBKGND,    WM_PAINT,
    WM_CTLCOLORDLG,     WM_CANCELMODE,     WM_CAPTURECHANGED};

// Messages of others, and every line lit in turn.
void RunDialog(int nRounds)
{
    InDialog([nRounds](HWND hWnd) {
        // Seen from this process only: elsewhere the handle says nothing.
        const LRESULT hBig = SendMessageA(hWnd, WM_GETICON, ICON_BIG, 0);
        EXPECT_TRUE(hBig && hBig == SendMessageA(hWnd, WM_GETICON, ICON_SMALL, 0));
        EXPECT_EQ(WS_EX_APPWINDOW, GetWindowLongA(hWnd, GWL_EXSTYLE) & WS_EX_APPWINDOW);
        for (int i = 0; i < nRounds; ++i) {
            SendMessageA(hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(50, 145 + i % 5 * 32));
            for (const UINT message : MESSAGES)
                SendMessageA(hWnd, message, 0, 0);
        }
    });
}

HPALETTE g_hSelected;

// Realised: the colours changed, the window is to be painted again; the second time neither.
void ExpectRealised(HWND hWnd, bool bRealised, UINT message, WPARAM wParam, LPARAM lParam)
{
    UnrealizeObject(g_hSelected);  // as after another palette has taken its colours
    for (const bool bExpected : {bRealised, false}) {
        ValidateRect(hWnd, nullptr);
        EXPECT_EQ(bExpected, SendMessageA(hWnd, message, wParam, lParam)) << message;
        EXPECT_EQ(bExpected, GetUpdateRect(hWnd, nullptr, FALSE) != 0) << message;
    }
}

int g_nStarted;
UINT WINAPI CountStarts(const char *, UINT)
{
    return ++g_nStarted ? 33 : 0;
}

}  // namespace

TEST(Dialog, LeavesNothingBehind)
{
    RunDialog(5);
    const int nWindows = WindowCount();
    ExpectNoGdiLeft(20, [] { RunDialog(5); });
    EXPECT_EQ(nWindows, WindowCount());
}

TEST(Dialog, ForgetsAPressWithItsCapture)
{
    const CImportHook start("WinExec", CountStarts);
    InDialog([](HWND hWnd) {
        const UINT LOSSES[] = {WM_NULL, WM_CANCELMODE, WM_CAPTURECHANGED};
        const LPARAM run = MAKELPARAM(60, 180);
        for (const UINT message : LOSSES) {
            SendMessageA(hWnd, WM_LBUTTONDOWN, MK_LBUTTON, run);
            EXPECT_EQ(hWnd, GetCapture());
            SendMessageA(hWnd, message, 0, 0);
            SendMessageA(hWnd, WM_LBUTTONUP, 0, run);
            EXPECT_EQ(nullptr, GetCapture());
            EXPECT_EQ(1, g_nStarted) << message;
        }
    });
}

TEST(Palette, IsRealizedWhenItIsAskedForAndWhenAnotherWas)
{
    InDialog([](HWND hWnd) {
        if (!(GetDeviceCaps(GetDC(hWnd), RASTERCAPS) & RC_PALETTE))
            GTEST_SKIP() << "the screen has no palette";
        {
            // The palette is the one that painting selects.
            const CFakeCall<HPALETTE(HDC, HPALETTE, BOOL)> watch(
                "SelectPalette", [&](HDC hDC, HPALETTE hPalette, BOOL bForce) {
                    return watch.Original(hDC, g_hSelected = hPalette, bForce);
                });
            RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        }
        EXPECT_TRUE(g_hSelected);
        ExpectRealised(hWnd, true, WM_QUERYNEWPALETTE, 0, 0);
        ExpectRealised(hWnd, true, WM_PALETTECHANGED, 0x1234, 0);
        ExpectRealised(hWnd, false, WM_PALETTECHANGED, 0x1234, reinterpret_cast<LONG>(hWnd));
    });
}
