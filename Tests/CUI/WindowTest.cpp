// Objects and their windows: binding, letting go, dying at odd moments.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "CUI/Menu.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

// Runs a function for every message of one number.
class CScripted : public CCUIWindow
{
public:
    UINT m_message = 0;
    std::function<void()> m_script;
    int m_nSeen = 0;

protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == m_message) {
            ++m_nSeen;
            if (m_script) {
                const auto script = m_script;
                script();
                return 0;
            }
        }
        return CCUIWindow::WindowProc(message, wParam, lParam);
    }
};

class CHook : public CCUIWindowHook
{
public:
    explicit CHook(std::function<int(UINT, long &)> function) : m_function(std::move(function)) {}
    int OnHookMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        return m_function(message, result);
    }

private:
    std::function<int(UINT, long &)> m_function;
};

const char *PropertyName()
{
    static char s_szName[64];
    sprintf(s_szName, "kvxCCUIWindow-%lu", GetCurrentProcessId());
    return s_szName;
}

WNDPROC ProcedureOf(HWND hWnd)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongA(hWnd, GWL_WNDPROC));
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

constexpr UINT s_nMessage = WM_APP + 1;

}  // namespace

TEST(Window, BindsAnExistingWindowAndLetsGoOfIt)
{
    const HWND hEdit = MakeEdit();
    const WNDPROC pEditProc = ProcedureOf(hEdit);
    CScripted window;
    window.m_message = s_nMessage;
    window.Attach(hEdit);
    EXPECT_EQ(&window, CCUIWindow::FromHandle(hEdit));
    EXPECT_EQ(static_cast<HANDLE>(&window), GetPropA(hEdit, PropertyName()));
    EXPECT_EQ("text", WindowText(hEdit));  // default processing is the edit control's
    SendMessageA(hEdit, s_nMessage, 0, 0);
    EXPECT_EQ(1, window.m_nSeen);

    EXPECT_EQ(hEdit, window.Detach());
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hEdit));
    EXPECT_EQ(nullptr, GetPropA(hEdit, PropertyName()));
    EXPECT_EQ(pEditProc, ProcedureOf(hEdit));
    SendMessageA(hEdit, s_nMessage, 0, 0);
    EXPECT_EQ(1, window.m_nSeen);
    EXPECT_EQ("text", WindowText(hEdit));
    EXPECT_EQ(nullptr, window.Detach());
    DestroyWindow(hEdit);

    // What is no window, or not ours, cannot be bound and is left alone.
    window.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(GetDesktopWindow()));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(nullptr));
}

TEST(Window, ReportsABindingTooMany)
{
    const CReports reports;
    const HWND hFirst = MakeEdit();
    const HWND hSecond = MakeEdit();
    CScripted window, other;
    window.Attach(hFirst);
    window.Attach(hSecond);
    EXPECT_EQ(1, reports.Count("!m_pOldProc", "Window"));
    EXPECT_EQ(1, reports.Count("!m_hWnd", "Window"));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hFirst));
    EXPECT_EQ(hSecond, window.GetHandle());
    // A window has one object: the second takes it from the first.
    other.Attach(hSecond);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_EQ(&other, CCUIWindow::FromHandle(hSecond));
    EXPECT_EQ("text", WindowText(hSecond));
    other.Detach();
    EXPECT_EQ("text", WindowText(hSecond));

    other.Hook();
    window.Hook();
    window.UnHook();
    window.UnHook();
    EXPECT_EQ(1, reports.Count("!s_pHookWin", "Window"));
    EXPECT_EQ(1, reports.Count("!s_hNextHook", "Window"));
    EXPECT_EQ(1, reports.Count("s_pHookWin", "Window"));
    EXPECT_EQ(1, reports.Count("s_hNextHook", "Window"));
    window.DefProc(WM_NULL, 0, 0);
    EXPECT_EQ(1, reports.Count("Exist()", "Window"));
    DestroyWindow(hFirst);
    DestroyWindow(hSecond);
}

// Whoever subclassed after us keeps calling our procedure; what it passes on must go where it went
// before, and no procedure may come back to life.
TEST(Window, LeavesALaterSubclassInPlaceWhenItLetsGo)
{
    const HWND hEdit = MakeEdit();
    const WNDPROC pEditProc = ProcedureOf(hEdit);
    CScripted window;
    window.m_message = s_nMessage;
    window.Attach(hEdit);
    g_pForeignOld = reinterpret_cast<WNDPROC>(
        SetWindowLongA(hEdit, GWL_WNDPROC, reinterpret_cast<LONG>(ForeignProc)));
    window.Detach();
    g_nForeign = 0;
    EXPECT_EQ("text", WindowText(hEdit));
    EXPECT_GT(g_nForeign, 0);
    SendMessageA(hEdit, s_nMessage, 0, 0);
    EXPECT_EQ(0, window.m_nSeen);

    // Bound again below the other, it is called once a message.
    window.Attach(hEdit);
    SendMessageA(hEdit, s_nMessage, 0, 0);
    EXPECT_EQ(1, window.m_nSeen);
    EXPECT_EQ("text", WindowText(hEdit));
    window.Detach();

    // The other goes too; its going puts our procedure back, which still forwards.
    SetWindowLongA(hEdit, GWL_WNDPROC, reinterpret_cast<LONG>(g_pForeignOld));
    EXPECT_EQ("text", WindowText(hEdit));
    window.Attach(hEdit);
    window.Detach();
    EXPECT_EQ(pEditProc, ProcedureOf(hEdit));
    DestroyWindow(hEdit);
}

TEST(Window, DestroysTheWindowOfADyingObjectAndForgetsIt)
{
    const int nWindows = WindowCount();
    HWND hWnd = nullptr;
    {
        CScripted window;
        ASSERT_TRUE(CreateTestWindow(window));
        hWnd = window;
    }
    EXPECT_FALSE(IsWindow(hWnd));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
    EXPECT_EQ(nWindows, WindowCount());

    // An object may have window after window.
    CScripted window;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(CreateTestWindow(window));
        EXPECT_EQ(1, window.Destroy());
        EXPECT_EQ(nullptr, window.GetHandle());
        EXPECT_EQ(0, window.Destroy());
    }
}

TEST(Window, StandsItsObjectsDeathInAnyHandler)
{
    for (const UINT message :
         {UINT(WM_CLOSE), UINT(WM_COMMAND), UINT(WM_DESTROY), UINT(WM_NCDESTROY), s_nMessage})
    {
        auto *window = new CScripted;
        ASSERT_TRUE(CreateTestWindow(*window));
        const HWND hWnd = *window;
        window->m_message = message;
        window->m_script = [window] { delete window; };
        if (message == WM_DESTROY || message == WM_NCDESTROY)
            DestroyWindow(hWnd);
        else
            SendMessageA(hWnd, message, 0, 0);
        EXPECT_FALSE(IsWindow(hWnd)) << message;
        EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
    }
    // Two messages deep: both are told.
    auto *window = new CScripted;
    ASSERT_TRUE(CreateTestWindow(*window));
    const HWND hWnd = *window;
    window->m_message = s_nMessage;
    window->m_script = [window, hWnd] {
        window->m_message = WM_CLOSE;
        window->m_script = [window] { delete window; };
        SendMessageA(hWnd, WM_CLOSE, 0, 0);
    };
    SendMessageA(hWnd, s_nMessage, 0, 0);
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(Window, GivesDefaultProcessingTheMessageAtHandAfterANestedOne)
{
    class CNesting : public CCUIWindow
    {
    protected:
        int OnEraseBkgnd(HDC) override { return 1; }
        long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            if (message != WM_GETTEXT)
                return CCUIWindow::OnMessage(message, wParam, lParam);
            SendMessageA(m_hWnd, WM_GETTEXTLENGTH, 0, 0);
            return Default();
        }
    };
    CNesting window;
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_EQ("test", WindowText(window));
    EXPECT_EQ(0, window.Default());  // no message at hand
}

TEST(Window, AsksMessageHooksInOrderWhileTheyComeAndGo)
{
    CScripted window;
    ASSERT_TRUE(CreateTestWindow(window));
    window.m_message = s_nMessage;
    std::string order;
    CHook last([&](UINT message, long &) {
        order += message == s_nMessage ? "c" : "";
        return 0;
    });
    CHook second([&](UINT, long &) {
        ADD_FAILURE() << "removed before its turn";
        return 0;
    });
    CHook first([&](UINT message, long &) {
        if (message != s_nMessage)
            return 0;
        order += "a";
        window.RemoveMessageHook(&second);
        window.RemoveMessageHook(&first);
        return 0;
    });
    window.InsertMessageHook(&first);
    window.InsertMessageHook(&second);
    window.InsertMessageHook(&last);
    SendMessageA(window, s_nMessage, 0, 0);
    EXPECT_EQ("ac", order);
    EXPECT_EQ(1, window.m_nSeen);
    CHook taker([&](UINT message, long &result) {
        result = 42;
        return message == s_nMessage;
    });
    window.InsertMessageHook(&taker);
    EXPECT_EQ(42, SendMessageA(window, s_nMessage, 0, 0));
    EXPECT_EQ(1, window.m_nSeen);

    auto *dying = new CScripted;
    ASSERT_TRUE(CreateTestWindow(*dying));
    const HWND hWnd = *dying;
    CHook killer([&](UINT message, long &) {
        if (message == s_nMessage)
            delete dying;
        return 0;
    });
    dying->InsertMessageHook(&killer);
    dying->InsertMessageHook(&last);
    order.clear();
    SendMessageA(hWnd, s_nMessage, 0, 0);
    EXPECT_EQ("", order);
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(Window, LeavesNothingBehindAFailedCreation)
{
    const CReports reports;
    class CRefusing : public CScripted
    {
    public:
        UINT m_refuse = 0;

    protected:
        long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            if (message == m_refuse)
                return message == WM_CREATE ? -1 : 0;
            return CScripted::WindowProc(message, wParam, lParam);
        }
    };
    const int nWindows = WindowCount();
    CRefusing window;
    for (const UINT message : {WM_NCCREATE, WM_CREATE}) {
        window.m_refuse = message;
        EXPECT_FALSE(CreateTestWindow(window));
        EXPECT_EQ(nullptr, window.GetHandle());
    }
    window.m_refuse = 0;
    EXPECT_FALSE(CreateTestWindow(window, nullptr, 0, "no such class"));
    EXPECT_EQ(nWindows, WindowCount());
    // The hook is not armed any more: the next window is nobody's.
    const HWND hEdit = MakeEdit();
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hEdit));
    DestroyWindow(hEdit);
    EXPECT_TRUE(CreateTestWindow(window));
    EXPECT_EQ(0, reports.Total());
}

TEST(Window, BindsTheWindowBeforeItsFirstMessageAndOnlyThat)
{
    class CFirst : public CCUIWindow
    {
    public:
        UINT m_first = 0;
        CCUIWindow m_inner;

    protected:
        long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
        {
            if (!m_first)
                m_first = message;
            return CCUIWindow::WindowProc(message, wParam, lParam);
        }
        int OnCreate(CREATESTRUCTA *pCreate) override
        {
            EXPECT_TRUE(CreateTestWindow(m_inner, m_hWnd, WS_CHILD));
            return CCUIWindow::OnCreate(pCreate);
        }
    };
    CFirst window;
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_TRUE(window.m_first == WM_NCCREATE || window.m_first == WM_GETMINMAXINFO)
        << window.m_first;
    EXPECT_EQ(window.GetHandle(), GetParent(window.m_inner));
}

namespace {

DWORD WINAPI ThreadWithWindow(LPVOID param)
{
    CreateTestWindow(*static_cast<CCUIWindow *>(param));
    return 0;
}

}  // namespace

// The system takes a thread's windows away without a word to them.
TEST(Window, ForgetsTheWindowsOfAThreadThatEnds)
{
    CScripted window;
    const HANDLE hThread = CreateThread(nullptr, 0, ThreadWithWindow, &window, 0, nullptr);
    WaitForSingleObject(hThread, INFINITE);
    CloseHandle(hThread);
    const HWND hWnd = window;
    ASSERT_TRUE(hWnd);
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
}

TEST(Window, FindsTheRightObjectAmongThousandsAndAfterThem)
{
    std::vector<CCUIWindow> windows(1000);
    for (int nRound = 0; nRound < 2; ++nRound) {
        for (size_t i = 0; i < windows.size(); ++i)
            ASSERT_TRUE(CreateTestWindow(windows[i], nullptr, WS_POPUP, "STATIC"));
        for (CCUIWindow &window : windows)
            ASSERT_EQ(&window, CCUIWindow::FromHandle(window));
        std::vector<HWND> handles;
        for (size_t i = 0; i < windows.size(); i += 2) {
            handles.push_back(windows[i]);
            windows[i].Destroy();
        }
        for (const HWND hWnd : handles)
            ASSERT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
        for (size_t i = 1; i < windows.size(); i += 2) {
            ASSERT_EQ(&windows[i], CCUIWindow::FromHandle(windows[i]));
            windows[i].Destroy();
        }
    }
}

TEST(Window, NamesOwnersAndTopLevelsForDialogs)
{
    CCUIWindow frame, popup, child;
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

    int nSent = 0;
    EXPECT_EQ(1, CCUIWindow::SendMessageToDescendants(popup, WM_NULL, 0, 0, &nSent));
    EXPECT_EQ(1, nSent);
    EXPECT_EQ(0, CCUIWindow::SendMessageToDescendants(nullptr, WM_NULL, 0, 0, nullptr));

    ACCEL accelerator = {FVIRTKEY, VK_F5, 1234};
    EXPECT_EQ(1, frame.SetAccelerators(&accelerator, 1));
    MSG key = {frame, WM_KEYDOWN, VK_F5, 1, 0, {0, 0}};
    EnableWindow(frame, TRUE);
    EXPECT_NE(0, frame.PreTranslateMessage(&key));
    EXPECT_EQ(1, frame.SetAccelerators(nullptr, 0));
    EXPECT_EQ(0, frame.PreTranslateMessage(&key));
}
