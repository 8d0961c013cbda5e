// Panes of a status bar: where they are, what of them is painted, and what the mouse does there.
#include "CUI/ControlBar.h"
#include "CUI/StatusBar.h"

#include <commctrl.h>

#include "CUI/Data.h"
#include "Support/DotsPerInch.h"
#include "Support/Reports.h"
#include "Support/TestBitmap.h"
#include "Support/Threads.h"
#include "Support/UpdateArea.h"

namespace {

// One along the lower edge of its window.
struct CStatusBar : CScripted<CCUIStatusBar>
{
    explicit CStatusBar(HWND hFrame) { CreateBar(hFrame, 3), Place(); }
    void Place(int cx = 0)
    {
        const RECT rc = ClientOf(GetParent(m_hWnd));
        const int cy = GetFixedSize();
        MoveWindow(m_hWnd, 0, rc.bottom - cy, cx ? cx : rc.right, cy, TRUE);
        UpdateWindow(m_hWnd);
    }
    std::string Widths() const
    {
        std::string widths;
        for (int i = 0; i < GetPaneCount(); ++i)
            widths += Text("%ld ", GetPaneRect(i).right - GetPaneRect(i).left);
        return widths;
    }
};

}  // namespace

TEST(StatusBar, SharesItsWidthAmongPanesAndRepaintsTheOneThatChanges)
{
    CReports reports;
    const CTestPopup frame;
    CStatusBar bar(frame);
    const int nFixed = bar.AddPane(CUI_PANE_FIXED, 50), nFit = bar.AddPane(CUI_PANE_FIT, 20);
    EXPECT_EQ("126 50 20 ", bar.Widths());
    bar.SetPaneWidth(0, CUI_PANE_STRETCH, 0x7FFFFFFF);  // which counts as 32767
    bar.SetPaneWidth(nFit, CUI_PANE_STRETCH, 16384);
    EXPECT_EQ("97 50 49 ", bar.Widths());
    bar.Place(40);
    EXPECT_EQ("0 50 0 ", bar.Widths());
    bar.Place(200);
    bar.SetPaneWidth(nFit, CUI_PANE_FIT, 0);
    bar.SetText(nFixed, "mm");
    bar.SetText(nFit, "\t\twide enough");
    SIZE size = {};
    CTestSurface surface(CPixelMap(1, 1));
    SelectObject(surface, CUIGetWinData()->hStatusFont);
    GetTextExtentPoint32A(surface, "wide enough", 11, &size);
    EXPECT_EQ(200 - size.cx - 2 - 6, bar.GetPaneRect(nFit).left);
    UpdateWindow(bar);
    bar.SetText(nFixed, "mm");
    EXPECT_EQ("0,0,0,0", UpdateArea(bar));
    bar.SetText(nFixed, "nn");
    EXPECT_EQ(Of(bar.GetPaneRect(nFixed)), UpdateArea(bar));
    bar.RemovePane(0);
    EXPECT_STREQ("nn", bar.GetText(0));
    CCUIControlBar buttons;
    buttons.CreateBar(frame, 2);
    CThreads::Run(
        1, [&](int) { bar.SetText(0, "done"), buttons.AddSeparator(); }, PumpWaiting);
    bar.SetText(2, "");
    EXPECT_STREQ("", bar.GetText(-1));
    EXPECT_EQ(1, reports.Count("IsOwnThread()", "StatusBar"));
    EXPECT_EQ(1, reports.Count("IsOwnThread()", "ControlBar"));
    EXPECT_EQ(2, reports.Count("pPane", "StatusBar"));
    const int nHeight = bar.GetFixedSize();
    const CDotsPerInch dpi(192);
    SendMessageA(bar, WM_WININICHANGE, 0, 0);
    EXPECT_EQ(nHeight + 6, bar.GetFixedSize());
}

TEST(StatusBar, ShowsTextPictureProgressAndHelpInItsPixels)
{
    const CTestPopup frame;
    CStatusBar bar(frame);
    const int nPane = bar.AddPane(CUI_PANE_FIXED, 102);
    const RECT rcPane = bar.GetPaneRect(nPane), rcFirst = bar.GetPaneRect(0);
    // A part of a progress is done in its own colour, and the next step paints no more than that.
    bar.SetProgress(nPane, 30, 100);
    const CPixelMap done = WindowPixels(bar, rcPane);
    const COLORREF crDone = OnScreen(GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_TRUE(done.At(1, 3) == crDone && done.At(30, 3) == crDone && done.At(31, 3) != crDone);
    std::string painted;
    bar.m_on[WM_PAINT] = [&] { return painted = UpdateArea(bar), bar.DefProc(WM_PAINT, 0, 0); };
    bar.SetProgress(nPane, 70, 100);
    EXPECT_EQ(Of({rcPane.left + 31, rcPane.top + 1, rcPane.left + 71, rcPane.bottom - 1}), painted);
    bar.m_on.clear();
    bar.SetProgress(nPane, 7, 0);
    EXPECT_EQ(0, WindowPixels(bar, rcPane).Count(crDone));
    // Texts at the left, in the middle, at the right, and disabled.
    const char *const texts[] = {"|", "\t|", "\t\t|", "|"};
    const LONG xMiddle = rcFirst.right / 2, x[] = {6, xMiddle, rcFirst.right - 5, 6};
    for (int i = 0; i < 4; ++i) {
        bar.SetText(0, texts[i]);
        EnableWindow(bar, i < 3);
        const COLORREF cr = OnScreen(GetSysColor(i < 3 ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
        EXPECT_LT(0, WindowPixels(bar, {x[i] - 3, 5, x[i] + 3, rcFirst.bottom - 3}).Count(cr)) << i;
    }
    EnableWindow(bar, TRUE);
    // Text and picture give way to the help and come back.
    const CPixelMap picture = TestPicture(9, 8, 3);
    const CCUIBitmap bitmap = BitmapOf(picture);
    bar.SetText(0, "Text");
    bar.SetPicture(0, bitmap);
    const CPixelMap shown = WindowPixels(bar, rcFirst);
    const LONG y = rcFirst.top + (rcFirst.bottom - rcFirst.top - 8) / 2;
    EXPECT_EQ(picture, WindowPixels(bar, {4, y, 13, y + 8}));
    bar.ShowHelp("Help & more");
    EXPECT_EQ(Of(rcFirst), UpdateArea(bar));
    const CPixelMap help = WindowPixels(bar, rcFirst);
    bar.ClearHelp();
    EXPECT_EQ(shown, WindowPixels(bar, rcFirst));
    bar.SetPicture(0, CCUIBitmap());
    bar.SetText(0, "Help & more");
    EXPECT_EQ(help, WindowPixels(bar, rcFirst));
    const CDotsPerInch dpi(480);
    bar.SetPicture(0, bitmap, 480);
    const int nHeight = bar.GetFixedSize();
    bar.SetPicture(0, bitmap);
    EXPECT_LT(nHeight, bar.GetFixedSize());
}

TEST(StatusBar, HasAGripWhereTheWindowCanBeSizedByIt)
{
    CTestPopup frame(WS_THICKFRAME);
    CStatusBar bar(frame);
    const auto hit = [&] {
        bar.Place();
        const RECT client = ClientOf(bar);
        POINT point = {client.right - 3, client.bottom - 3};
        ClientToScreen(bar, &point);
        return SendMessageA(bar, WM_NCHITTEST, 0, MAKELPARAM(point.x, point.y));
    };
    EXPECT_EQ(HTBOTTOMRIGHT, hit());
    frame.m_on[WM_NCLBUTTONDOWN] = [] { return 7; };
    EXPECT_EQ(7, SendMessageA(bar, WM_NCLBUTTONDOWN, HTBOTTOMRIGHT, 5));
    EXPECT_EQ(5, frame.m_lParam);
    const RECT rc = ClientOf(bar);
    EXPECT_LT(0, WindowPixels(bar, {rc.right - 12, rc.bottom - 12, rc.right, rc.bottom})
                     .Count(OnScreen(GetSysColor(COLOR_BTNSHADOW))));
    // Mirrored, at the left.
    SetWindowLongA(bar, GWL_EXSTYLE, 0x00400000);
    EXPECT_EQ(HTBOTTOMLEFT, hit());
    EXPECT_EQ(7, Send(bar, WM_NCLBUTTONDOWN, WPARAM(hit()), 5));
    SetWindowLongA(bar, GWL_EXSTYLE, 0);
    ShowWindow(frame, SW_MAXIMIZE);
    EXPECT_EQ(HTCLIENT, hit());
    ShowWindow(frame, SW_RESTORE);
    bar.Place(150);
    EXPECT_EQ("150 ", bar.Widths());
}

TEST(StatusBar, TellsClicksAndSurvivesWhatTheyBringAbout)
{
    CTestPopup frame;
    auto bar = std::make_unique<CStatusBar>(frame);
    bar->AddPane(CUI_PANE_FIXED, 40);
    frame.m_on[WM_NOTIFY] = [&] {
        const auto &click = *reinterpret_cast<CUIPaneNotification *>(frame.m_lParam);
        frame.m_told += Text("%d:%d ", static_cast<int>(click.header.code), click.nPane);
        return click.nPane != -1;
    };
    frame.m_on[WM_CONTEXTMENU] = [&] { return frame.m_told += "menu ", 0; };
    const LPARAM second = MAKELPARAM(bar->GetPaneRect(1).left + 2, 8);
    for (const int message : {WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_RBUTTONUP, WM_RBUTTONDBLCLK})
        SendMessageA(*bar, static_cast<UINT>(message), 0, second);
    SendMessageA(*bar, WM_RBUTTONUP, 0, MAKELPARAM(5, 0));
    EXPECT_EQ("-2:1 -3:1 -5:1 -6:1 -5:-1 menu ", frame.Told());
    frame.m_on[WM_NOTIFY] = [&] { return bar.reset(), 0; };
    SendMessageA(*bar, WM_RBUTTONUP, 0, second);
    EXPECT_FALSE(bar);
}
