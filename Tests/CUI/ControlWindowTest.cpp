#include "CUI/ControlWindow.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

std::string Place(HWND hWnd, HWND hParent)
{
    RECT rect;
    GetWindowRect(hWnd, &rect);
    MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT *>(&rect), 2);
    return Text("%ld %ld %ld %ld", rect.left, rect.top, rect.right, rect.bottom);
}

// A layout window that writes down what its children tell it.
struct CLayout : CTestWindow
{
    CLayout() : CTestWindow(nullptr, WS_POPUP | WS_VISIBLE)
    {
        for (const UINT message : {CUI_WM_LAYOUT, CUI_WM_CHILDFOCUS, CUI_WM_TABKEY})
            m_on[message] = [=] {
                m_told += Text("%u %ld%s, ", message - WM_USER, m_lParam, m_wParam ? "" : " all");
                return 7;
            };
        SetForegroundWindow(m_hWnd);
        UpdateWindow(m_hWnd);
    }
    // What has been told since the last call, after what was posted.
    std::string Told()
    {
        PumpWaiting();
        return std::exchange(m_told, "");
    }
    std::string m_told;
};

struct CControl : CScripted<CCUIControlWindow>
{
    explicit CControl(HWND hParent)
    {
        const DWORD nStyle = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS;
        Create(nullptr, "", nStyle, {10, 20, 60, 50}, hParent, 1);
    }
};

struct CEvents : CCUIWindowEventCallback
{
    void OnWindowEvent(CCUString sEvent) override { m_events += std::string(sEvent) + " "; }
    std::string m_events;
};

}  // namespace

TEST(ControlWindow, PublishesItsLayoutDataAndTellsTheParentOfChangesOnce)
{
    CLayout layout;
    auto control = std::make_unique<CControl>(layout);
    const HWND hWnd = *control;
    const auto *const published =
        static_cast<CCUIControlWindow::PropData *>(GetPropA(hWnd, "pzl-ControlWindow"));
    ASSERT_TRUE(published);
    EXPECT_EQ(0x3FFFFFFU, published->crWindow);
    layout.Told();
    const std::string all = "51 3 all, ", one = "51 6, ";
    const struct
    {
        unsigned long nFlags;
        int nSize, bChanging;
        std::string told;
    } steps[] = {{4, 20, 0, ""},       {4, 21, 0, one},          {4, 21, 0, ""},
                 {5, 21, 0, one},      {0x100, 21, 0, all},      {4, 21, 0, all},
                 {0x1000, 21, 0, one}, {0x80000000, 21, 0, all}, {7, 23, 1, ""}};
    for (const auto &step : steps) {
        InvalidateRect(layout, nullptr, FALSE);
        control->SetColorChanging(step.bChanging);
        control->SetLayoutFlags(step.nFlags);
        EXPECT_EQ(step.told != all, GetUpdateRect(layout, nullptr, FALSE)) << step.nFlags;
        control->SetFixedSize(step.nSize);
        EXPECT_EQ(step.told, layout.Told()) << step.nFlags;
        EXPECT_EQ(step.nFlags, published->nLayoutFlags);
        EXPECT_EQ(step.nSize, published->nFixedSize);
    }
    // A new colour repaints the window and what is around it.
    RECT around = {};
    int nPaints = 0;
    layout.m_on[WM_PAINT] = [&] { return GetUpdateRect(layout, &around, 0), layout.Default(); };
    control->m_on[WM_PAINT] = [&] { return ++nPaints, control->Default(); };
    control->SetWindowColor(0x3FFFFFF);
    EXPECT_EQ(1, control->GetColorChanging());
    EXPECT_EQ(0, nPaints);
    control->SetWindowColor(0x0000FF);
    EXPECT_EQ(0, control->GetColorChanging());
    const RECT expected = {8, 18, 62, 52};
    EXPECT_TRUE(EqualRect(&expected, &around));
    EXPECT_LT(0, nPaints);
    // A window that outlives its object leads nowhere.
    control->Detach();
    control.reset();
    EXPECT_EQ(nullptr, GetPropA(hWnd, g_sControlWindowProp));
}

TEST(ControlWindow, PassesShowFocusAndTabToTheParent)
{
    CLayout layout;
    CControl control(layout);
    layout.Told();
    ShowWindow(control, SW_HIDE);
    ShowWindow(control, SW_SHOW);
    EXPECT_EQ("51 5, 51 4, ", layout.Told());
    SetFocus(control);
    EXPECT_EQ("57 0, ", layout.Told());
    MSG key = {control, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(7, control.PreTranslateMessage(&key));
    EXPECT_EQ("58 0, ", layout.Told());
    key.wParam = VK_ESCAPE;
    EXPECT_EQ(0, control.PreTranslateMessage(&key));
}

TEST(ControlWindow, TakesTheScreenAndGoesBackToItsPlace)
{
    CLayout layout;
    CControl below(layout), control(layout), above(layout);
    SetWindowPos(control, above, 30, 40, 70, 80, 0);
    CEvents events;
    control.SetWindowEventCallback(&events);
    const auto style = [&] {
        return Text("%lx %lx",
                    static_cast<DWORD>(GetWindowLongA(control, GWL_STYLE)) & (WS_CHILD | WS_POPUP),
                    GetWindowLongA(control, GWL_EXSTYLE));
    };
    const std::function<void()> leave[] = {
        [&] { control.SetFullScreen(0); },
        [&] { PostMessageA(control, WM_KEYDOWN, VK_ESCAPE, 0); },
        [&] { SendMessageA(control, WM_CANCELMODE, 0, 0); },
        [&] { above.Destroy(), control.SetFullScreen(0); },
    };
    for (const auto &way : leave) {
        SetFocus(below);
        control.SetFullScreen(2);
        control.SetFullScreen(1);
        EXPECT_EQ(Text("0 0 %d %d", GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)),
                  Place(control, nullptr));
        EXPECT_EQ(GetDesktopWindow(), GetAncestor(control, GA_PARENT));
        EXPECT_EQ("80000000 88", style());
        EXPECT_EQ(control.GetHandle(), GetFocus());
        way();
        layout.Told();
        EXPECT_EQ(0, control.GetFullScreen());
        EXPECT_EQ("30 40 100 120", Place(control, layout));
        EXPECT_EQ(layout.GetHandle(), GetParent(control));
        EXPECT_EQ(above.GetHandle(), GetWindow(control, GW_HWNDPREV));
        EXPECT_EQ("40000000 0", style());
        EXPECT_EQ(below.GetHandle(), GetFocus());
        EXPECT_EQ("InFullScreen OutOfFullScreen ", std::exchange(events.m_events, ""));
    }
}
