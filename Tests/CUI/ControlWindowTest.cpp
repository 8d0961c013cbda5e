#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

#include "CUI/ControlWindow.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

using Texts = std::vector<std::string>;

// A layout window that writes down what its children tell it, and where it paints.
class CLayout : public CCUIWindow
{
public:
    CLayout()
    {
        const RECT rect = {100, 100, 500, 400};
        Create(nullptr, "layout", WS_POPUP | WS_VISIBLE, rect, nullptr, 0);
        SetForegroundWindow(m_hWnd);
        UpdateWindow(m_hWnd);
    }
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == CUI_WM_LAYOUT || message == CUI_WM_CHILDFOCUS || message == CUI_WM_TABKEY) {
            const auto hWnd = reinterpret_cast<HWND>(wParam);
            const char *pszWho = !hWnd ? "all" : GetParent(hWnd) == m_hWnd ? "a child" : "nobody";
            m_told.push_back(Text("%d %ld of %s", message - WM_USER, lParam, pszWho));
            return 7;
        }
        return CCUIWindow::OnMessage(message, wParam, lParam);
    }
    void OnPaint(HDC) override
    {
        GetUpdateRect(m_hWnd, &m_painted, FALSE);
        CCUIWindow::OnPaint(nullptr);
    }
    // What has been told since the last call, after what was posted.
    Texts Told()
    {
        PumpWaiting();
        return std::exchange(m_told, {});
    }

    Texts m_told;
    RECT m_painted = {};
};

class CControl : public CCUIControlWindow
{
public:
    explicit CControl(HWND hParent)
    {
        const RECT rect = {10, 20, 60, 50};
        Create(nullptr, "", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, rect, hParent, 1);
    }
    const PropData *Published() const
    {
        return static_cast<const PropData *>(GetPropA(m_hWnd, "pzl-ControlWindow"));
    }
    void OnPaint(HDC) override
    {
        GetUpdateRect(m_hWnd, &m_painted, FALSE);
        CCUIControlWindow::OnPaint(nullptr);
    }

    RECT m_painted = {};
};

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

class CEvents : public CCUIWindowEventCallback
{
public:
    void OnWindowEvent(CCUString sEvent) override
    {
        m_events.push_back(static_cast<const char *>(sEvent));
        if (m_onEvent)
            m_onEvent();
    }
    Texts m_events;
    std::function<void()> m_onEvent;
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
    char szClass[32] = "";
    GetClassNameA(*control, szClass, sizeof szClass);
    EXPECT_STREQ("pzl-ControlWindow", szClass);
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
        EXPECT_EQ(step.nFlags, control.GetLayoutFlags());
        EXPECT_EQ(step.nSize, control.GetFixedSize());
    }
    // A new colour repaints the window and what is around it.
    control.SetColorChanging(1);
    control.SetWindowColor(0x3FFFFFF);
    EXPECT_EQ(1, control.GetColorChanging());
    control.SetWindowColor(0x0000FF);
    EXPECT_EQ(0, control.GetColorChanging());
    EXPECT_EQ(0x0000FFu, control.GetWindowColor());
    EXPECT_EQ("8 18 62 52", Sides(layout.m_painted));
    EXPECT_EQ("0 0 50 30", Sides(control.m_painted));
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
    PostMessageA(control, WM_KEYDOWN, VK_TAB, 0);
    EXPECT_EQ(Texts{"58 0 of a child"}, layout.Told());
    MSG tab = {control, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(7, control.PreTranslateMessage(&tab));
    MSG escape = {control, WM_KEYDOWN, VK_ESCAPE, 0, 0, {}};
    EXPECT_EQ(0, control.PreTranslateMessage(&escape));
}

TEST(ControlWindow, TakesTheScreenAndGoesBackToItsPlace)
{
    CLayout layout;
    CControl below(layout), control(layout), above(layout);
    SetWindowPos(control, above, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    SetWindowPos(control, nullptr, 30, 40, 70, 80, SWP_NOZORDER);
    CEvents events;
    control.SetWindowEventCallback(&events);
    const LONG nStyle = GetWindowLongA(control, GWL_STYLE);
    const LONG nExStyle = GetWindowLongA(control, GWL_EXSTYLE);
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
        EXPECT_EQ((nStyle & 0x3FFFFFFF) | static_cast<LONG>(WS_POPUP),
                  GetWindowLongA(control, GWL_STYLE));
        EXPECT_EQ(nExStyle | WS_EX_TOOLWINDOW | WS_EX_TOPMOST,
                  GetWindowLongA(control, GWL_EXSTYLE));
        EXPECT_EQ(static_cast<HWND>(control), GetFocus());
        way();
        layout.Told();
        EXPECT_EQ(0, control.GetFullScreen());
        EXPECT_EQ("30 40 100 120", Place(control, layout));
        EXPECT_EQ(static_cast<HWND>(layout), GetParent(control));
        EXPECT_EQ(static_cast<HWND>(above), GetWindow(control, GW_HWNDPREV));
        EXPECT_EQ(nStyle, GetWindowLongA(control, GWL_STYLE));
        EXPECT_EQ(nExStyle, GetWindowLongA(control, GWL_EXSTYLE));
        EXPECT_EQ(static_cast<HWND>(below), GetFocus());
        EXPECT_EQ((Texts{"InFullScreen", "OutOfFullScreen"}), events.m_events);
        events.m_events.clear();
    }
}

TEST(ControlWindow, SurvivesWhatTheEventCallbackDoes)
{
    CLayout layout;
    auto control = std::make_unique<CControl>(layout);
    CEvents events;
    control->SetFullScreen(0);
    control->SetWindowEventCallback(&events);
    events.m_onEvent = [&] { control->SetFullScreen(0); };
    control->SetFullScreen(1);
    EXPECT_EQ("10 20 60 50", Place(*control, layout));
    EXPECT_EQ((Texts{"InFullScreen", "OutOfFullScreen"}), events.m_events);
    events.m_onEvent = [&] { control->Destroy(); };
    control->SetFullScreen(1);
    EXPECT_EQ(0, control->GetFullScreen());
    control = std::make_unique<CControl>(layout);
    control->SetWindowEventCallback(&events);
    events.m_onEvent = [&] { control.reset(); };
    control->SetFullScreen(1);
    EXPECT_EQ(nullptr, control);
}
