// Panes of a status bar: where they are, what of them is painted, and what the mouse does there.
#include "CUI/StatusBar.h"

#include <commctrl.h>

#include "CUI/BmpLoad.h"
#include "CUI/CommandHandler.h"
#include "CUI/Data.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/UpdateArea.h"

namespace {

typedef CScripted<CCUIStatusBar> CStatusBar;

const DWORD FRAME_STYLE = WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN;

struct CFrame : CTestWindow
{
    explicit CFrame(DWORD nStyle = FRAME_STYLE) : CTestWindow(nullptr, nStyle) {}
    // Along the lower edge.
    void Place(CCUIStatusBar &bar, int cx = 0)
    {
        RECT rc;
        GetClientRect(m_hWnd, &rc);
        const int cy = bar.GetFixedSize();
        MoveWindow(bar, 0, rc.bottom - cy, cx ? cx : rc.right, cy, TRUE);
        UpdateWindow(bar);
    }
};

// As it is after what was asked of it.
CPixelMap Picture(HWND hWnd, const RECT &rc)
{
    UpdateWindow(hWnd);
    const HDC hDC = GetDC(hWnd);
    SetViewportOrgEx(hDC, rc.left, rc.top, nullptr);
    const CPixelMap map = ReadPixels(hDC, rc.right - rc.left, rc.bottom - rc.top);
    return ReleaseDC(hWnd, hDC), map;
}

std::string Widths(const CCUIStatusBar &bar)
{
    std::string widths;
    for (int i = 0; i < bar.GetPaneCount(); ++i)
        widths += Text("%ld ", bar.GetPaneRect(i).right - bar.GetPaneRect(i).left);
    return widths;
}

}  // namespace

TEST(StatusBar, SharesItsWidthAmongPanesAndRepaintsTheOneThatChanges)
{
    CReports reports;
    CFrame frame;
    CStatusBar bar;
    const int nFixed = bar.AddPane(CUI_PANE_FIXED, 50), nFit = bar.AddPane(CUI_PANE_FIT, 20);
    ASSERT_TRUE(bar.CreateBar(frame, 3));
    frame.Place(bar, 200);
    EXPECT_EQ("126 50 20 ", Widths(bar));
    bar.SetPaneWidth(0, CUI_PANE_STRETCH, 0x7FFFFFFF);
    bar.SetPaneWidth(nFit, CUI_PANE_STRETCH, 0x7FFFFFFF);
    EXPECT_EQ("73 50 73 ", Widths(bar));
    bar.SetPaneWidth(0, CUI_PANE_STRETCH, 2), bar.SetPaneWidth(nFit, CUI_PANE_STRETCH, 1);
    EXPECT_EQ("97 50 49 ", Widths(bar));
    frame.Place(bar, 40);
    EXPECT_EQ("0 50 0 ", Widths(bar));
    // A fitting pane takes from the stretching one, and the text between stays as it is.
    frame.Place(bar, 200);
    bar.SetPaneWidth(nFit, CUI_PANE_FIT, 0);
    bar.SetText(nFixed, "mm");
    bar.SetText(nFit, "\t\twide enough");
    const LONG nBefore = bar.GetPaneRect(nFit).left;
    SIZE size = {};
    CTestSurface surface(CPixelMap(1, 1));
    SelectObject(surface, CUIGetWinData()->hStatusFont);
    GetTextExtentPoint32A(surface, "wide enough", 11, &size);
    EXPECT_EQ(200 - size.cx - 2 - 6, nBefore);
    UpdateWindow(bar);
    bar.SetText(nFixed, "mm");
    EXPECT_EQ("0 0 0 0", UpdateArea(bar));
    bar.SetText(nFixed, "nn");
    EXPECT_EQ(Of(bar.GetPaneRect(nFixed)), UpdateArea(bar));
    UpdateWindow(bar);
    bar.ShowHelp("help");
    EXPECT_EQ(Of(bar.GetPaneRect(0)), UpdateArea(bar));
    EXPECT_EQ(0, bar.HitTest({5, 10}));
    bar.RemovePane(0);
    EXPECT_STREQ("nn", bar.GetText(0));
    EXPECT_EQ("pPane; pPane", reports.Of("StatusBar", [&] {
        bar.SetText(2, "");
        EXPECT_STREQ("", bar.GetText(-1));
    }));
}

TEST(StatusBar, ShowsTextPictureProgressAndHelpInItsPixels)
{
    CFrame frame;
    CStatusBar bar;
    const int nPane = bar.AddPane(CUI_PANE_FIXED, 102);
    ASSERT_TRUE(bar.CreateBar(frame, 3));
    frame.Place(bar);
    const RECT rcPane = bar.GetPaneRect(nPane), rcFirst = bar.GetPaneRect(0);
    const CPixelMap empty = Picture(bar, rcPane);
    // A part of a progress is done in its own colour, and the next step paints no more than that.
    bar.SetProgress(nPane, 30, 100);
    const CPixelMap done = Picture(bar, rcPane);
    const COLORREF crDone = GetSysColor(COLOR_HIGHLIGHT);
    EXPECT_TRUE(done.At(1, 3) == crDone && done.At(30, 3) == crDone && done.At(31, 3) != crDone);
    std::string painted;
    bar.m_on[WM_PAINT] = [&] { return painted = UpdateArea(bar), bar.DefProc(WM_PAINT, 0, 0); };
    bar.SetProgress(nPane, 70, 100);
    EXPECT_EQ(Of({rcPane.left + 31, rcPane.top + 1, rcPane.left + 71, rcPane.bottom - 1}), painted);
    bar.m_on.clear();
    bar.SetProgress(nPane, 7, 0);
    InvalidateRect(bar, nullptr, FALSE);
    EXPECT_EQ(empty, Picture(bar, rcPane));
    // Text and picture give way to the help and come back.
    const CPixelMap picture = TestPicture(9, 8, 3);
    CTestSurface surface(picture);
    bar.SetText(0, "Text");
    bar.SetPicture(0, CCUIBitmap(CUICopyBitmap(surface.Bitmap(), 9, 8, nullptr), nullptr));
    const CPixelMap shown = Picture(bar, rcFirst);
    const LONG y = rcFirst.top + (rcFirst.bottom - rcFirst.top - 8) / 2;
    EXPECT_EQ(picture, Picture(bar, {4, y, 13, y + 8}));
    bar.ShowHelp("Help & more");
    const CPixelMap help = Picture(bar, rcFirst);
    EXPECT_FALSE(help == shown);
    bar.ClearHelp();
    EXPECT_EQ(shown, Picture(bar, rcFirst));
    bar.SetPicture(0, CCUIBitmap());
    bar.SetText(0, "Help & more");
    EXPECT_EQ(help, Picture(bar, rcFirst));
}

TEST(StatusBar, TakesTheLongHelpOfCommandsAndTheUsersFont)
{
    struct CCommand : CCUICommandHandler
    {
        CCommand() : CCUICommandHandler(1000, 1) {}
        CCUString GetLongTT(unsigned int) override { return "Long help"; }
    } command;
    struct CHearing : CCUIStatusBar
    {
        void ShowHelp(const CCUString &sText) override { m_said += sText.GetString(); }
        void ClearHelp() override { m_said += "-"; }
        std::string m_said;
    } hearing;
    CReports reports;
    for (const UINT nID : {1000U, 7U, 1001U})
        hearing.ShowCommandHelp(nID);
    hearing.ShowCommandHelp(1000, MF_POPUP), hearing.ShowCommandHelp(1000, 0xFFFF);
    EXPECT_EQ("Long help----", hearing.m_said);
    EXPECT_EQ(0, reports.Total());
    CFrame frame;
    ASSERT_TRUE(hearing.CreateBar(frame, 3));
    const int nHeight = hearing.GetFixedSize(), nDpi = CUIGetWinData()->cyPixelsPerInch;
    int nTold = 0;
    frame.m_on[CUI_WM_LAYOUT] = [&] { return ++nTold; };
    CUIGetWinData()->cyPixelsPerInch = 2 * nDpi;
    SendMessageA(hearing, WM_WININICHANGE, 0, 0);
    EXPECT_EQ(nHeight + 6, hearing.GetFixedSize());
    EXPECT_EQ(1, nTold);
    CUIGetWinData()->cyPixelsPerInch = nDpi;
}

TEST(StatusBar, HasAGripWhereTheWindowCanBeSizedByIt)
{
    CFrame frame(FRAME_STYLE | WS_THICKFRAME);
    CStatusBar bar;
    ASSERT_TRUE(bar.CreateBar(frame, 3));
    const auto hit = [&] {
        RECT rc;
        GetWindowRect(bar, &rc);
        return SendMessageA(bar, WM_NCHITTEST, 0, MAKELPARAM(rc.right - 3, rc.bottom - 3));
    };
    frame.Place(bar);
    const std::string narrow = Widths(bar);
    EXPECT_EQ(HTBOTTOMRIGHT, hit());
    frame.m_on[WM_NCLBUTTONDOWN] = [] { return 7; };
    EXPECT_EQ(7, SendMessageA(bar, WM_NCLBUTTONDOWN, HTBOTTOMRIGHT, 5));
    EXPECT_EQ(5, frame.m_lParam);
    MoveWindow(bar, 0, 0, 100, 20, TRUE);
    EXPECT_EQ(HTCLIENT, hit());
    ShowWindow(frame, SW_MAXIMIZE);
    frame.Place(bar);
    EXPECT_EQ(HTCLIENT, hit());
    ShowWindow(frame, SW_RESTORE);
    SetWindowLongA(frame, GWL_STYLE, static_cast<LONG>(FRAME_STYLE));
    frame.Place(bar, 150);
    EXPECT_EQ("150 ", Widths(bar));
}

TEST(StatusBar, TellsClicksAndSurvivesWhatTheyBringAbout)
{
    CFrame frame;
    auto bar = std::make_unique<CStatusBar>();
    ASSERT_TRUE(bar->CreateBar(frame, 3));
    bar->AddPane(CUI_PANE_FIXED, 40);
    frame.Place(*bar);
    std::string told;
    long nAnswer = 1;
    frame.m_on[WM_NOTIFY] = [&] {
        const auto &click = *reinterpret_cast<CUIPaneNotification *>(frame.m_lParam);
        told += Text("%d:%d ", static_cast<int>(click.header.code), click.nPane);
        return nAnswer;
    };
    frame.m_on[WM_CONTEXTMENU] = [&] { return told += "menu ", 0; };
    const LPARAM second = MAKELPARAM(bar->GetPaneRect(1).left + 2, 8);
    SendMessageA(*bar, WM_LBUTTONUP, 0, second);
    SendMessageA(*bar, WM_LBUTTONDBLCLK, 0, MAKELPARAM(5, 0));
    SendMessageA(*bar, WM_RBUTTONUP, 0, second);
    nAnswer = 0;
    SendMessageA(*bar, WM_RBUTTONUP, 0, second);
    EXPECT_EQ("-2:1 -3:-1 -5:1 -5:1 menu ", told);
    frame.m_on[WM_NOTIFY] = [&] { return bar.reset(), 0; };
    SendMessageA(*bar, WM_RBUTTONUP, 0, second);
    EXPECT_FALSE(bar);
}
