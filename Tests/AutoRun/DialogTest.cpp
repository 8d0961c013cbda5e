// The launcher's dialog from inside: what it leaves behind, and its palette's messages.
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

void Repaint(HWND hWnd)
{
    RedrawWindow(hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
}

void RunDialog(int nRepaints)
{
    InDialog([nRepaints](HWND hWnd) {
        // Seen from this process only: elsewhere the handle says nothing.
        const LRESULT hBig = SendMessageA(hWnd, WM_GETICON, ICON_BIG, 0);
        EXPECT_TRUE(hBig && hBig == SendMessageA(hWnd, WM_GETICON, ICON_SMALL, 0));
        for (int i = 0; i < nRepaints / 2; ++i) {
            // Every line lit in turn, and none: each change is a repaint.
            const int y = i % 5 == 4 ? 0 : 145 + i % 5 * 32;
            SendMessageA(hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(50, y));
            Repaint(hWnd);
        }
    });
}

DWORD HandleCount()
{
    typedef BOOL(WINAPI * GetCount)(HANDLE, PDWORD);
    const auto pGetCount = reinterpret_cast<GetCount>(
        GetProcAddress(GetModuleHandleA("kernel32"), "GetProcessHandleCount"));
    DWORD nCount = 0;
    EXPECT_TRUE(pGetCount && pGetCount(GetCurrentProcess(), &nCount));
    return nCount;
}

// What there is when the object is made is there at its end too.
class CLeakWatch
{
public:
    ~CLeakWatch()
    {
        EXPECT_NEAR(m_nGdi, GdiCount(), 1);
        EXPECT_EQ(m_nWindows, WindowCount());
        EXPECT_NEAR(static_cast<double>(m_nHandles), static_cast<double>(HandleCount()), 2);
    }

private:
    const int m_nGdi = GdiCount(), m_nWindows = WindowCount();
    const DWORD m_nHandles = HandleCount();
};

HPALETTE g_hSelected;
HPALETTE WINAPI WatchSelectPalette(HDC hDC, HPALETTE hPalette, BOOL bForceBkgd)
{
    g_hSelected = hPalette;
    // Not through the program's own import, which leads here.
    typedef HPALETTE(WINAPI * Select)(HDC, HPALETTE, BOOL);
    static const auto s_pSelect =
        reinterpret_cast<Select>(GetProcAddress(GetModuleHandleA("gdi32"), "SelectPalette"));
    return s_pSelect(hDC, hPalette, bForceBkgd);
}

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

}  // namespace

TEST(Soak, RepaintsLeaveNothingBehind)
{
    RunDialog(100);
    const CLeakWatch watch;
    RunDialog(2000);
}

TEST(Soak, OpeningAndClosingLeavesNothingBehind)
{
    for (int i = 0; i < 5; ++i)
        RunDialog(5);
    const CLeakWatch watch;
    for (int i = 0; i < 100; ++i)
        RunDialog(2);
}

TEST(Soak, MessagesOfOthersLeaveNothingBehind)
{
    InDialog([](HWND hWnd) {
        const UINT messages[] = {WM_INITDIALOG,     WM_SYSCOLORCHANGE,    WM_SETTINGCHANGE,
                                 WM_DISPLAYCHANGE,  WM_FONTCHANGE,        WM_QUERYNEWPALETTE,
                                 WM_PALETTECHANGED, WM_PALETTEISCHANGING, WM_ERASEBKGND,
                                 WM_PAINT,          WM_CTLCOLORDLG,       WM_CTLCOLORSTATIC,
                                 WM_CANCELMODE,     WM_CAPTURECHANGED,    WM_SETICON};
        for (const UINT message : messages) {
            SCOPED_TRACE(message);
            SendMessageA(hWnd, message, 0, 0);
            const CLeakWatch watch;
            for (int i = 0; i < 100; ++i)
                SendMessageA(hWnd, message, 0, 0);
        }
    });
}

TEST(Palette, IsRealizedWhenItIsAskedForAndWhenAnotherWas)
{
    InDialog([](HWND hWnd) {
        const HDC hDC = GetDC(hWnd);
        const bool bPalette = (GetDeviceCaps(hDC, RASTERCAPS) & RC_PALETTE) != 0;
        ReleaseDC(hWnd, hDC);
        if (!bPalette)
            GTEST_SKIP() << "the screen has no palette";
        {
            // The palette is the one that painting selects.
            const CImportHook watch("SelectPalette", WatchSelectPalette);
            Repaint(hWnd);
        }
        EXPECT_TRUE(g_hSelected);
        const auto nOwn = reinterpret_cast<LONG>(hWnd);
        ExpectRealised(hWnd, true, WM_QUERYNEWPALETTE, 0, 0);
        ExpectRealised(hWnd, true, WM_PALETTECHANGED, 0x1234, 0);
        // Its own change too: the window that changed the palette is in wParam.
        ExpectRealised(hWnd, true, WM_PALETTECHANGED, static_cast<WPARAM>(nOwn), 0);
        ExpectRealised(hWnd, false, WM_PALETTECHANGED, 0x1234, nOwn);
    });
}
