// The launcher's palette messages, on a screen that has a palette.
#include <gtest/gtest.h>

#include "AutoRunDlg.h"
#include "Support/ImportHook.h"

namespace {

bool ScreenHasPalette()
{
    const HDC hScreen = GetDC(nullptr);
    const bool bPalette = (GetDeviceCaps(hScreen, RASTERCAPS) & RC_PALETTE) != 0;
    ReleaseDC(nullptr, hScreen);
    return bPalette;
}

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

class CPaletteDlg : public CAutoRunDlg
{
public:
    CPaletteDlg() : CAutoRunDlg(GetModuleHandleA(nullptr)) {}

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        PostMessageA(m_hWnd, WM_APP, 0, 0);
        return CAutoRunDlg::OnInitDialog(hFocus, lParam);
    }

    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message != WM_APP)
            return CAutoRunDlg::OnMessage(message, wParam, lParam);
        // The palette is the one that painting selects.
        {
            const CImportHook watch("SelectPalette", WatchSelectPalette);
            RedrawWindow(m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        }
        m_hPalette = g_hSelected;
        EXPECT_TRUE(m_hPalette);
        const auto nOwn = reinterpret_cast<LONG>(m_hWnd);
        Expect(1, WM_QUERYNEWPALETTE, 0, 0);
        Expect(1, WM_PALETTECHANGED, 0x1234, 0);
        // Its own change too: the window that changed the palette is in wParam.
        Expect(1, WM_PALETTECHANGED, static_cast<WPARAM>(nOwn), 0);
        Expect(0, WM_PALETTECHANGED, 0x1234, nOwn);
        EndDialog(2);
        return 0;
    }

private:
    HPALETTE m_hPalette = nullptr;

    // Realised: the colours changed, the window is to be painted again; the second time neither.
    void Expect(long nResult, UINT message, WPARAM wParam, LPARAM lParam)
    {
        UnrealizeObject(m_hPalette);  // as after another palette has taken its colours
        for (const long nExpected : {nResult, 0L}) {
            ValidateRect(m_hWnd, nullptr);
            EXPECT_EQ(nExpected, SendMessageA(m_hWnd, message, wParam, lParam)) << message;
            EXPECT_EQ(nExpected != 0, GetUpdateRect(m_hWnd, nullptr, FALSE) != 0) << message;
        }
    }
};

}  // namespace

TEST(Palette, IsRealizedWhenItIsAskedForAndWhenAnotherWas)
{
    if (!ScreenHasPalette())
        GTEST_SKIP() << "the screen has no palette";
    CPaletteDlg dialog;
    EXPECT_EQ(2, dialog.DoModal(nullptr));
}
