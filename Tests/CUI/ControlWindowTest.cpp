#include "Support/TestControl.h"

namespace {

struct CEvents : CCUIWindowEventCallback
{
    void OnWindowEvent(CCUString sEvent) override
    {
        m_events += std::string(sEvent) + " ";
        m_onEvent();
    }
    std::string m_events;
    std::function<void()> m_onEvent = [] {};
};

}  // namespace

TEST(ControlWindow, TellsTheParentWhatOfItsLayoutChanged)
{
    CTestWindow layout;
    CTestControl control(layout);
    layout.m_on[CUI_WM_LAYOUT] = [&] {
        const bool bIts = reinterpret_cast<HWND>(layout.m_wParam) == control.GetHandle();
        return layout.m_told += Text(bIts ? "its %ld " : "%ld ", layout.m_lParam), 0;
    };
    // Flags that move the siblings too, whether they come or go, lay out all.
    for (const unsigned long nFlags : {4UL, 5UL, 5UL, 0x100UL, 4UL, 0x1000UL, 0x80000000UL})
        control.SetLayoutFlags(nFlags);
    EXPECT_EQ("its 6 3 3 its 6 3 ", layout.Told());
    control.SetFixedSize(21);
    control.SetFixedSize(21);
    control.SetColorChanging(1);
    control.SetFixedSize(22);
    control.SetLayoutFlags(7);
    EXPECT_EQ("its 6 ", layout.Told());
}

TEST(ControlWindow, RepaintsItselfAndWhatIsAroundItInANewColour)
{
    CTestPopup parent;
    CTestControl control(parent);
    MoveWindow(control, 10, 20, 50, 30, FALSE);
    RECT around = {};
    int nPaints = 0;
    parent.m_on[WM_PAINT] = [&] { return GetUpdateRect(parent, &around, 0), parent.Default(); };
    control.m_on[WM_PAINT] = [&] { return ++nPaints, control.Default(); };
    PumpWaiting();
    nPaints = 0;
    control.SetWindowColor(0x3FFFFFF);  // as it was
    EXPECT_EQ(0, nPaints);
    control.SetWindowColor(0x0000FF);
    const RECT expected = {8, 18, 62, 52};
    EXPECT_TRUE(EqualRect(&expected, &around));
    EXPECT_LT(0, nPaints);
}

TEST(ControlWindow, TakesTheScreenAndGoesBackToItsPlace)
{
    CTestPopup layout;
    SetForegroundWindow(layout);
    CTestControl below(layout), above(layout);
    auto control = std::make_unique<CTestControl>(layout);
    const HWND hWnd = *control;
    SetWindowPos(hWnd, above, 30, 40, 70, 80, 0);
    CEvents events;
    control->SetWindowEventCallback(&events);
    const auto place = [&] {
        return PlaceOf(hWnd) + Text(", style %lx %lx",
                                    GetWindowLongA(hWnd, GWL_STYLE) & LONG(WS_CHILD | WS_POPUP),
                                    GetWindowLongA(hWnd, GWL_EXSTYLE));
    };
    const std::function<void()> leave[] = {
        [&] { control->SetFullScreen(0); },
        [&] { PostMessageA(hWnd, WM_KEYDOWN, VK_ESCAPE, 0); },
        [&] { SendMessageA(hWnd, WM_CANCELMODE, 0, 0); },
        [&] { above.Destroy(), control->SetFullScreen(0); },
    };
    for (const auto &way : leave) {
        SetFocus(below);
        control->SetFullScreen(2);
        control->SetFullScreen(1);
        EXPECT_EQ(Text("0,0,%d,%d, style 80000000 88", GetSystemMetrics(SM_CXSCREEN),
                       GetSystemMetrics(SM_CYSCREEN)),
                  place());
        EXPECT_EQ(GetDesktopWindow(), GetAncestor(hWnd, GA_PARENT));
        EXPECT_EQ(hWnd, GetFocus());
        way();
        PumpWaiting();
        EXPECT_EQ(0, control->GetFullScreen());
        EXPECT_EQ("30,40,100,120, style 40000000 0", place());
        EXPECT_EQ(layout.GetHandle(), GetParent(hWnd));
        EXPECT_EQ(above.GetHandle(), GetWindow(hWnd, GW_HWNDPREV));
        EXPECT_EQ(below.GetHandle(), GetFocus());
        EXPECT_EQ("InFullScreen OutOfFullScreen ", std::exchange(events.m_events, ""));
    }
    // The key that ends it is nobody's, even where that deletes the control.
    control->SetFullScreen(1);
    events.m_onEvent = [&] { control.reset(); };
    MSG key = {hWnd, WM_KEYDOWN, VK_ESCAPE, 0, 0, {}};
    EXPECT_EQ(1, control->PreTranslateMessage(&key));
    EXPECT_FALSE(IsWindow(hWnd));
    below.SetFullScreen(1);
    below.Destroy();
    EXPECT_EQ(0, below.GetFullScreen()) << "as an object's next window begins";
}
