// Objects and their windows: binding, letting go, dying at odd moments.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>

#include "../../CUI/Src/WindowMap.h"
#include "CUI/Menu.h"
#include "CUI/WindowClass.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"

namespace {

// Runs a function in the place of every message of one number.
class CScripted : public CCUIWindow
{
public:
    UINT m_message = 0;
    std::function<long()> m_script;
    int m_nSeen = 0;
    UINT m_first = 0;

protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        m_first = m_first ? m_first : message;
        if (message != m_message)
            return CCUIWindow::WindowProc(message, wParam, lParam);
        ++m_nSeen;
        const auto script = m_script;
        return script ? script() : CCUIWindow::WindowProc(message, wParam, lParam);
    }
};

class CHook : public CCUIWindowHook
{
public:
    explicit CHook(std::function<int(long &)> function) : m_function(std::move(function)) {}
    int OnHookMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        return message == WM_APP && m_function(result);
    }

private:
    std::function<int(long &)> m_function;
};

WNDPROC SetProcedure(HWND hWnd, WNDPROC pProc)
{
    return reinterpret_cast<WNDPROC>(
        SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(pProc)));
}

int g_nForeign;
WNDPROC g_pForeignOld;
LRESULT CALLBACK ForeignProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    ++g_nForeign;
    return CallWindowProcA(g_pForeignOld, hWnd, message, wParam, lParam);
}

HWND MakeEdit()
{
    return CreateWindowExA(0, "EDIT", "text", WS_POPUP, 0, 0, 50, 20, nullptr, nullptr, nullptr,
                           nullptr);
}

std::string WindowText(HWND hWnd)
{
    char szText[64] = "";
    SendMessageA(hWnd, WM_GETTEXT, sizeof szText, reinterpret_cast<LPARAM>(szText));
    return szText;
}

// Whether the window is the object's by all that says so.
bool IsBound(HWND hWnd, CCUIWindow *pWindow)
{
    const std::string name = Text("kvxCCUIWindow-%lu", GetCurrentProcessId());
    return CCUIWindow::FromHandle(hWnd) == pWindow && GetPropA(hWnd, name.c_str()) == pWindow;
}

}  // namespace

TEST(Window, BindsAnExistingWindowAndLetsGoOfIt)
{
    const CReports reports;
    const HWND hEdit = MakeEdit();
    const LONG editProc = GetWindowLongA(hEdit, GWL_WNDPROC);
    CScripted window, other;
    window.m_message = WM_APP;
    window.Attach(hEdit);
    EXPECT_TRUE(IsBound(hEdit, &window));
    EXPECT_EQ("text", WindowText(hEdit));  // default processing is the edit control's
    SendMessageA(hEdit, WM_APP, 0, 0);
    EXPECT_EQ(1, window.m_nSeen);
    EXPECT_EQ(0, reports.Total());

    // A window has one object, and an object one window: the later binding counts.
    other.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_TRUE(IsBound(hEdit, &other));
    const HWND hSecond = MakeEdit();
    other.Attach(hSecond);
    EXPECT_EQ(1, reports.Count("!m_pOldProc", "Window"));
    EXPECT_EQ(1, reports.Count("!m_hWnd", "Window"));
    EXPECT_TRUE(IsBound(hEdit, nullptr));
    EXPECT_TRUE(IsBound(hSecond, &other));

    EXPECT_EQ(hSecond, other.Detach());
    EXPECT_EQ(nullptr, other.Detach());
    for (const HWND hWnd : {hEdit, hSecond}) {
        EXPECT_TRUE(IsBound(hWnd, nullptr));
        EXPECT_EQ(editProc, GetWindowLongA(hWnd, GWL_WNDPROC));
        SendMessageA(hWnd, WM_APP, 0, 0);
        EXPECT_EQ("text", WindowText(hWnd));
        DestroyWindow(hWnd);
    }
    EXPECT_EQ(1, window.m_nSeen);

    // What is no window, or not ours, cannot be bound and is left alone.
    window.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(GetDesktopWindow()));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(nullptr));

    window.DefProc(WM_NULL, 0, 0);
    EXPECT_EQ(1, reports.Count("Exist()", "Window"));
    other.Hook();
    window.Hook();
    window.UnHook();
    window.UnHook();
    for (const char *expression : {"!s_pHookWin", "!s_hNextHook", "s_pHookWin", "s_hNextHook"})
        EXPECT_EQ(1, reports.Count(expression, "Window")) << expression;
}

// Whoever subclassed after us keeps calling our procedure; what it passes on must go where it went
// before, and no procedure may come back to life.
TEST(Window, LeavesALaterSubclassInPlaceWhenItLetsGo)
{
    const HWND hEdit = MakeEdit();
    const LONG editProc = GetWindowLongA(hEdit, GWL_WNDPROC);
    CScripted window;
    window.m_message = WM_APP;
    window.Attach(hEdit);
    g_pForeignOld = SetProcedure(hEdit, ForeignProc);
    window.Detach();
    EXPECT_EQ("text", WindowText(hEdit));
    EXPECT_GT(g_nForeign, 0);
    SendMessageA(hEdit, WM_APP, 0, 0);
    EXPECT_EQ(0, window.m_nSeen);

    // Bound again below the other, it is called once a message.
    window.Attach(hEdit);
    SendMessageA(hEdit, WM_APP, 0, 0);
    EXPECT_EQ(1, window.m_nSeen);
    EXPECT_EQ("text", WindowText(hEdit));
    window.Detach();

    // The other goes too; its going puts our procedure back, which still forwards.
    SetProcedure(hEdit, g_pForeignOld);
    EXPECT_EQ("text", WindowText(hEdit));
    window.Attach(hEdit);
    window.Detach();
    EXPECT_EQ(editProc, GetWindowLongA(hEdit, GWL_WNDPROC));
    DestroyWindow(hEdit);
}

TEST(Window, DestroysTheWindowOfADyingObjectAndSaysSo)
{
    const int nWindows = WindowCount();
    CDumped trace;
    HWND hWnd = nullptr;
    {
        CScripted window;
        for (int i = 0; i < 3; ++i) {  // an object may have window after window
            ASSERT_TRUE(CreateTestWindow(window));
            EXPECT_EQ(1, window.Destroy());
            EXPECT_EQ(nullptr, window.GetHandle());
            EXPECT_EQ(0, window.Destroy());
        }
        ASSERT_TRUE(CreateTestWindow(window));
        hWnd = window;
        EXPECT_EQ("", trace.m_text);
    }
    EXPECT_FALSE(IsWindow(hWnd));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
    EXPECT_EQ("Destroying Window in ~CCUIWindow.\n", trace.m_text);
    trace.m_text.clear();
    {
        // A handler that does not call its base.
        CScripted window;
        ASSERT_TRUE(CreateTestWindow(window));
        window.m_message = WM_DESTROY;
        window.m_script = [] { return 0; };
        window.Destroy();
        EXPECT_EQ(nullptr, window.GetHandle());
    }
    EXPECT_EQ("Detach not called in OnDestroy().\n", trace.m_text);
    EXPECT_EQ(nWindows, WindowCount());
}

TEST(Window, StandsItsObjectsDeathInAnyHandler)
{
    for (const int message : {WM_CLOSE, WM_COMMAND, WM_DESTROY, WM_NCDESTROY, WM_APP}) {
        auto *window = new CScripted;
        ASSERT_TRUE(CreateTestWindow(*window));
        const HWND hWnd = *window;
        const auto die = [window] {
            delete window;
            return 0L;
        };
        window->m_message = static_cast<UINT>(message);
        window->m_script = die;
        if (message == WM_APP) {
            // Two messages deep: both are told.
            window->m_script = [=] {
                window->m_message = WM_CLOSE;
                window->m_script = die;
                return static_cast<long>(SendMessageA(hWnd, WM_CLOSE, 0, 0));
            };
        }
        if (message == WM_DESTROY || message == WM_NCDESTROY)
            DestroyWindow(hWnd);
        else
            SendMessageA(hWnd, window->m_message, 0, 0);
        EXPECT_FALSE(IsWindow(hWnd)) << message;
        EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
    }
}

TEST(Window, GivesDefaultProcessingTheMessageAtHandAfterANestedOne)
{
    CScripted window;
    ASSERT_TRUE(CreateTestWindow(window));
    window.m_message = WM_GETTEXT;
    window.m_script = [&] {
        SendMessageA(window, WM_GETTEXTLENGTH, 0, 0);
        return window.Default();
    };
    EXPECT_EQ("test", WindowText(window));
    EXPECT_EQ(0, window.Default());  // no message at hand
}

TEST(Window, AsksMessageHooksInOrderWhileTheyComeAndGo)
{
    auto *window = new CScripted;
    ASSERT_TRUE(CreateTestWindow(*window));
    const HWND hWnd = *window;
    window->m_message = WM_APP;
    std::string order;
    CHook last([&](long &) { return order += "c", 0; });
    CHook second([&](long &) { return order += "b", 0; });
    CHook first([&](long &) {
        order += "a";
        window->RemoveMessageHook(&second);
        window->RemoveMessageHook(&first);
        return 0;
    });
    for (CHook *pHook : {&first, &second, &last})
        window->InsertMessageHook(pHook);
    SendMessageA(hWnd, WM_APP, 0, 0);
    EXPECT_EQ("ac", order);
    EXPECT_EQ(1, window->m_nSeen);
    CHook taker([&](long &result) { return result = 42, 1; });
    window->InsertMessageHook(&taker);
    EXPECT_EQ(42, SendMessageA(hWnd, WM_APP, 0, 0));
    EXPECT_EQ(1, window->m_nSeen);
    window->RemoveMessageHook(&taker);
    CHook killer([&](long &) {
        delete window;
        return 0;
    });
    window->InsertMessageHook(&killer);
    window->InsertMessageHook(&second);
    SendMessageA(hWnd, WM_APP, 0, 0);
    EXPECT_EQ("accc", order);
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(Window, LeavesNothingBehindAFailedCreation)
{
    const CReports reports;
    const int nWindows = WindowCount();
    CScripted window;
    for (const int message : {WM_NCCREATE, WM_CREATE}) {
        window.m_message = static_cast<UINT>(message);
        window.m_script = [=] { return message == WM_CREATE ? -1 : 0; };
        EXPECT_FALSE(CreateTestWindow(window));
        EXPECT_EQ(nullptr, window.GetHandle());
    }
    window.m_message = 0;
    EXPECT_FALSE(CreateTestWindow(window, nullptr, 0, "no such class"));
    EXPECT_EQ(nWindows, WindowCount());
    // The hook is not armed any more: the next window is nobody's.
    const HWND hEdit = MakeEdit();
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hEdit));
    DestroyWindow(hEdit);
    const RECT anywhere = {CW_USEDEFAULT, 0, 100, 100};
    EXPECT_EQ(1, window.Create(nullptr, "", WS_OVERLAPPEDWINDOW, anywhere, nullptr, 0));
    EXPECT_EQ(0, reports.Total());
}

TEST(Window, BindsTheWindowBeforeItsFirstMessageAndOnlyThat)
{
    CScripted window;
    CCUIWindow inner;
    window.m_message = WM_CREATE;
    window.m_script = [&] { return CreateTestWindow(inner, window, WS_CHILD) ? 0 : -1; };
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_TRUE(window.m_first == WM_NCCREATE || window.m_first == WM_GETMINMAXINFO)
        << window.m_first;
    EXPECT_EQ(window.GetHandle(), GetParent(inner));
    char szClass[32] = "";
    GetClassNameA(window, szClass, sizeof szClass);
    EXPECT_STREQ("pzl-Window", szClass);
    EXPECT_EQ(CUI_CLASS_WINDOW, g_nRegisteredClasses);
}

namespace {

CScripted *g_pThreadWindow;

}  // namespace

// The system takes a thread's windows away without a word to them.
TEST(Window, ForgetsTheWindowsOfAThreadThatEnds)
{
    CScripted window;
    g_pThreadWindow = &window;
    CThreads::Run(1, [](int) { CreateTestWindow(*g_pThreadWindow); });
    ASSERT_TRUE(window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(window));
}

// Handles that are made up, so many that real windows would take minutes, beside one that stays.
TEST(WindowMap, FindsWhatIsThereHoweverWindowsComeAndGo)
{
    const auto nHandles = {50u, 4000u, 100u};
    const auto pProc = reinterpret_cast<WNDPROC>(1);
    std::map<HWND, CCUIWindow *> bound;
    std::mt19937 random(5);
    for (const unsigned nRange : nHandles) {
        for (int i = 0; i < 50000; ++i) {
            const auto hWnd = reinterpret_cast<HWND>(0x100000 + random() % nRange * 2);
            const auto pWindow = reinterpret_cast<CCUIWindow *>(random() | 1);
            if (random() % 2) {
                CUIWindowMapSet(hWnd, {pWindow, pProc});
                bound[hWnd] = pWindow;
            } else {
                CUIWindowMapRemove(hWnd);
                bound.erase(hWnd);
            }
            const auto hOther = reinterpret_cast<HWND>(0x100000 + random() % nRange * 2);
            const auto found = bound.find(hOther);
            ASSERT_EQ(found == bound.end() ? nullptr : found->second, CUIWindowMapFind(hOther));
        }
    }
    // Each handle once: no run may grow for ever.
    for (UINT_PTR nHandle = 1; nHandle < 100000; nHandle += 2) {
        CUIWindowMapSet(reinterpret_cast<HWND>(nHandle), {nullptr, pProc});
        CUIWindowMapRemove(reinterpret_cast<HWND>(nHandle));
    }
    EXPECT_EQ(nullptr, CUIWindowMapFind(reinterpret_cast<HWND>(3)));
}

TEST(Window, NamesOwnersAndTopLevelsForDialogs)
{
    CCUIWindow frame, popup;
    CScripted child, sister;
    ASSERT_TRUE(CreateTestWindow(frame));
    ASSERT_TRUE(CreateTestWindow(popup, frame, WS_POPUP));
    ASSERT_TRUE(CreateTestWindow(child, popup, WS_CHILD));
    EXPECT_EQ(frame.GetHandle(), child.GetTopLevelWindow());
    EXPECT_EQ(popup.GetHandle(), child.GetSafeOwner(nullptr));
    EXPECT_TRUE(IsWindowEnabled(frame));
    HWND hDisabled = nullptr;
    EXPECT_EQ(popup.GetHandle(), child.GetSafeOwner(&hDisabled));
    EXPECT_EQ(frame.GetHandle(), hDisabled);
    EXPECT_FALSE(IsWindowEnabled(frame));
    EXPECT_EQ(popup.GetHandle(), child.GetSafeOwner(&hDisabled));  // disabled already: not ours
    EXPECT_EQ(nullptr, hDisabled);

    // All get what is sent to all, though one dies of it.
    ASSERT_TRUE(CreateTestWindow(sister, popup, WS_CHILD));
    child.m_message = sister.m_message = WM_APP;
    child.m_script = [&] { return child.Destroy(); };
    sister.m_script = [&] { return 0; };
    int nSent = 0;
    EXPECT_EQ(1, CCUIWindow::SendMessageToDescendants(popup, WM_APP, 0, 0, &nSent));
    EXPECT_EQ(2, nSent);
    EXPECT_TRUE(child.m_nSeen == 1 && sister.m_nSeen == 1);
    EXPECT_EQ(0, CCUIWindow::SendMessageToDescendants(nullptr, WM_APP, 0, 0, nullptr));

    ACCEL accelerator = {FVIRTKEY, VK_F5, 1234};
    EXPECT_EQ(1, frame.SetAccelerators(&accelerator, 1));
    MSG key = {frame, WM_KEYDOWN, VK_F5, 1, 0, {0, 0}};
    EnableWindow(frame, TRUE);
    EXPECT_NE(0, frame.PreTranslateMessage(&key));
    EXPECT_EQ(1, frame.SetAccelerators(nullptr, 0));
    EXPECT_EQ(0, frame.PreTranslateMessage(&key));
}

TEST(Window, ShowsItsContextMenuWhereItIsAskedFor)
{
    CScripted window;
    ASSERT_TRUE(CreateTestWindow(window));
    CCUIMenu menu, missing(GetModuleHandleA(nullptr), "none", 0);
    EXPECT_EQ(nullptr, missing.GetHandle());
    AppendMenuA(menu.GetHandle(), MF_STRING, 77, "Entry");
    window.SetContextMenu(&menu);
    RECT at = {};
    window.m_message = WM_ENTERIDLE;
    window.m_script = [&] {
        GetWindowRect(FindWindowA("#32768", nullptr), &at);
        return EndMenu();
    };
    SendMessageA(window, WM_CONTEXTMENU, 0, MAKELONG(70, 60));
    EXPECT_TRUE(at.left == 70 && at.top == 60) << at.left << " " << at.top;
    POINT corner = {0, 0};
    ClientToScreen(window, &corner);
    SendMessageA(window, WM_CONTEXTMENU, 0, MAKELONG(-1, -1));
    EXPECT_TRUE(at.left == corner.x && at.top == corner.y) << at.left << " " << at.top;
    EXPECT_EQ(2, window.m_nSeen);
    EXPECT_EQ(0, window.DisplayPopupMenu(nullptr, 0, corner, nullptr));
}
