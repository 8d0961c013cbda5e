#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "CUI/ControlWindow.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

using Texts = std::vector<std::string>;

std::string Sides(const RECT &rect)
{
    return Text("%ld %ld %ld %ld", rect.left, rect.top, rect.right, rect.bottom);
}

std::string Place(HWND hWnd, HWND hParent)
{
    RECT rect;
    GetWindowRect(hWnd, &rect);
    MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT *>(&rect), 2);
    return Sides(rect);
}

// Writes down where it paints.
template <typename Base>
class CPainted : public CScripted<Base>
{
public:
    CPainted(HWND hParent, DWORD style, const RECT &rect)
    {
        this->Create(nullptr, "", style | WS_VISIBLE, rect, hParent, 1);
    }
    void OnPaint(HDC) override
    {
        RECT rect = {};
        GetUpdateRect(this->m_hWnd, &rect, FALSE);
        m_painted = Sides(rect);
        Base::OnPaint(nullptr);
    }
    std::string m_painted;
};

// A layout window that writes down what its children tell it.
class CLayout : public CPainted<CCUIWindow>
{
public:
    CLayout() : CPainted(nullptr, WS_POPUP, {100, 100, 500, 400})
    {
        for (const UINT message : {CUI_WM_LAYOUT, CUI_WM_CHILDFOCUS, CUI_WM_TABKEY})
            m_on[message] = [=] { return OnTold(message); };
        SetForegroundWindow(m_hWnd);
        UpdateWindow(m_hWnd);
    }
    // What has been told since the last call, after what was posted.
    Texts Told()
    {
        PumpWaiting();
        return std::exchange(m_told, {});
    }

private:
    long OnTold(UINT message)
    {
        const auto hWnd = reinterpret_cast<HWND>(m_wParam);
        const char *pszWho = !hWnd ? "all" : GetParent(hWnd) == m_hWnd ? "a child" : "nobody";
        m_told.push_back(Text("%d %ld of %s", message - WM_USER, m_lParam, pszWho));
        return 7;
    }
    Texts m_told;
};

class CControl : public CPainted<CCUIControlWindow>
{
public:
    explicit CControl(HWND hParent)
        : CPainted(hParent, WS_CHILD | WS_CLIPSIBLINGS, {10, 20, 60, 50})
    {
    }
    const PropData *Published() const
    {
        return static_cast<const PropData *>(GetPropA(m_hWnd, "pzl-ControlWindow"));
    }
};

class CEvents : public CCUIWindowEventCallback
{
public:
    void OnWindowEvent(CCUString sEvent) override
    {
        m_events += std::string(sEvent) + " ";
        m_onEvent();
    }
    std::string m_events;
    std::function<void()> m_onEvent = [] {};
};

BOOL WINAPI FailToSetProp(HWND, LPCSTR, HANDLE)
{
    return FALSE;
}

}  // namespace

TEST(ControlWindow, PublishesItsLayoutDataWhileItHasAWindow)
{
    CReports reports;
    CLayout layout;
    auto control = std::make_unique<CControl>(layout);
    const CCUIControlWindow::PropData *published = control->Published();
    ASSERT_NE(nullptr, published);
    EXPECT_TRUE(published->nFixedSize == 20 && published->crWindow == 0x3FFFFFF);
    EXPECT_TRUE(published->nLayoutFlags == 4 && !published->bColorChanging);
    // A window that outlives its object leads nowhere.
    HWND hWnd = control->Detach();
    EXPECT_EQ(published, GetPropA(hWnd, g_sControlWindowProp));
    control.reset();
    EXPECT_EQ(nullptr, GetPropA(hWnd, g_sControlWindowProp));
    control = std::make_unique<CControl>(layout);
    EXPECT_EQ(Texts(), reports.Asserts());
    const CImportHook hook("SetPropA", FailToSetProp);
    control->Destroy();
    EXPECT_EQ(Texts{"ControlWindow: SetProp(*this, g_sControlWindowProp, (HANDLE)0)"},
              reports.Asserts());
}

TEST(ControlWindow, TellsTheParentOfChangesOnceAndRepaintsInANewColor)
{
    CLayout layout;
    CControl control(layout);
    layout.Told();
    const std::string all = "51 3 of all", changed = "51 6 of a child";
    const struct
    {
        unsigned long nFlags;
        int nSize, bChanging;
        Texts told;
    } steps[] = {
        {4, 20, 0, {}},
        {4, 21, 0, {changed}},
        {4, 21, 0, {}},
        {5, 21, 0, {changed}},
        {0x100, 21, 0, {all}},
        {4, 21, 0, {all}},
        {0x1000, 21, 0, {changed}},
        {0x80000000, 21, 0, {all}},
        {7, 23, 1, {}},
    };
    for (const auto &step : steps) {
        InvalidateRect(layout, nullptr, FALSE);
        control.SetColorChanging(step.bChanging);
        control.SetLayoutFlags(step.nFlags);
        EXPECT_EQ(step.told != Texts{all}, GetUpdateRect(layout, nullptr, FALSE));
        control.SetFixedSize(step.nSize);
        EXPECT_EQ(step.told, layout.Told()) << step.nFlags;
        EXPECT_EQ(step.nFlags, control.Published()->nLayoutFlags);
        EXPECT_EQ(step.nSize, control.Published()->nFixedSize);
    }
    // A new colour repaints the window and what is around it.
    control.SetColorChanging(1);
    control.SetWindowColor(0x3FFFFFF);
    EXPECT_EQ(1, control.GetColorChanging());
    control.SetWindowColor(0x0000FF);
    EXPECT_EQ(0, control.GetColorChanging());
    EXPECT_EQ("8 18 62 52", layout.m_painted);
    EXPECT_EQ("0 0 50 30", control.m_painted);
}

TEST(ControlWindow, PassesShowFocusAndTabToTheParent)
{
    CLayout layout;
    CControl control(layout);
    layout.Told();
    ShowWindow(control, SW_HIDE);
    ShowWindow(control, SW_SHOW);
    EXPECT_EQ((Texts{"51 5 of a child", "51 4 of a child"}), layout.Told());
    SetFocus(control);
    EXPECT_EQ(Texts{"57 0 of a child"}, layout.Told());
    MSG key = {control, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(7, control.PreTranslateMessage(&key));
    EXPECT_EQ(Texts{"58 0 of a child"}, layout.Told());
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
    const auto styles = [&](LONG nStyleOff, LONG nStyleOn, LONG nExStyleOn) {
        return Text("%lx %lx", (GetWindowLongA(control, GWL_STYLE) & ~nStyleOff) | nStyleOn,
                    GetWindowLongA(control, GWL_EXSTYLE) | nExStyleOn);
    };
    const std::string asChild = styles(0, 0, 0);
    const std::string asScreen =
        styles(WS_CHILD, static_cast<LONG>(WS_POPUP), WS_EX_TOOLWINDOW | WS_EX_TOPMOST);
    const std::function<void()> leave[] = {
        [&] { control.SetFullScreen(0); },
        [&] { PostMessageA(control, WM_KEYDOWN, VK_ESCAPE, 0); },
        [&] { SendMessageA(control, WM_CANCELMODE, 0, 0); },
        // The window above has gone meanwhile.
        [&] { above.Destroy(), control.SetFullScreen(0); },
    };
    for (const auto &way : leave) {
        SetFocus(below);
        control.SetFullScreen(2);
        control.SetFullScreen(1);
        EXPECT_EQ(1, control.Published()->bFullScreen);
        const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
        EXPECT_EQ(Sides(screen), Place(control, nullptr));
        EXPECT_EQ(GetDesktopWindow(), GetAncestor(control, GA_PARENT));
        EXPECT_EQ(asScreen, styles(0, 0, 0));
        EXPECT_EQ(control.GetHandle(), GetFocus());
        way();
        layout.Told();
        EXPECT_EQ(0, control.GetFullScreen());
        EXPECT_EQ("30 40 100 120", Place(control, layout));
        EXPECT_EQ(layout.GetHandle(), GetParent(control));
        EXPECT_EQ(above.GetHandle(), GetWindow(control, GW_HWNDPREV));
        EXPECT_EQ(asChild, styles(0, 0, 0));
        EXPECT_EQ(below.GetHandle(), GetFocus());
        EXPECT_EQ("InFullScreen OutOfFullScreen ", std::exchange(events.m_events, {}));
    }
}

TEST(ControlWindow, StaysOnTheDesktopWhenItsParentHasGoneMeanwhile)
{
    auto layout = std::make_unique<CLayout>();
    CControl control(*layout);
    control.SetFullScreen(1);
    layout.reset();
    control.SetFullScreen(0);
    EXPECT_EQ(GetDesktopWindow(), GetAncestor(control, GA_PARENT));
    EXPECT_EQ("10 20 60 50", Place(control, nullptr));
    EXPECT_TRUE(IsWindowVisible(control));
}

TEST(ControlWindow, SurvivesWhatTheEventCallbackDoes)
{
    CLayout layout;
    CEvents events;
    std::unique_ptr<CControl> control;
    const auto enter = [&](std::function<void()> onEvent) {
        control = std::make_unique<CControl>(layout);
        control->SetWindowEventCallback(&events);
        events.m_onEvent = std::move(onEvent);
        control->SetFullScreen(1);
    };
    enter([&] { control->SetFullScreen(0); });
    EXPECT_EQ("10 20 60 50", Place(*control, layout));
    EXPECT_EQ("InFullScreen OutOfFullScreen ", events.m_events);
    enter([&] { control->Destroy(); });
    EXPECT_EQ(0, control->GetFullScreen());
    enter([&] { control.reset(); });
    EXPECT_EQ(nullptr, control);
}
