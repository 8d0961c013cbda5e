// Objects and their windows: binding, letting go, dying at odd moments.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "../../CUI/Src/Window/WindowMap.h"
#include "CU/ThreadExit.h"
#include "CUI/Menu.h"
#include "CUI/WindowClass.h"
#include "Support/Fuzz.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"

namespace {

using Texts = std::vector<std::string>;

class CHook : public CCUIWindowHook
{
public:
    explicit CHook(std::function<int(long &)> function, UINT message = WM_APP)
        : m_message(message), m_function(std::move(function))
    {
    }
    int OnHookMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        return message == m_message && m_function(result);
    }

private:
    const UINT m_message;
    std::function<int(long &)> m_function;
};

// Goes with its thread, when that has no bindings any more.
class CLast : public CCUThreadExitHandler
{
public:
    CLast() { CreateTestWindow((CURegisterThreadExitHandler(this), m_window)); }
    void OnThreadExit(bool) override { delete this; }

private:
    CScripted<> m_window;
};

WNDPROC SetProcedure(HWND hWnd, WNDPROC pProc)
{
    return reinterpret_cast<WNDPROC>(
        SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(pProc)));
}

// Who subclasses a window after us.
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

std::string PropertyName()
{
    return Text("kvxCCUIWindow-%lu", GetCurrentProcessId());
}

// Whether the window is the object's by all that says so.
bool IsBound(HWND hWnd, CCUIWindow *pWindow)
{
    return CCUIWindow::FromHandle(hWnd) == pWindow &&
           GetPropA(hWnd, PropertyName().c_str()) == pWindow;
}

// The lowest handle of the system that is free.
HANDLE NextHandle()
{
    const HANDLE hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(hEvent);
    return hEvent;
}

}  // namespace

TEST(Window, BindsAnExistingWindowAndLetsGoOfIt)
{
    CReports reports;
    const HWND hEdit = MakeEdit(), hSecond = MakeEdit();
    const LONG editProc = GetWindowLongA(hEdit, GWL_WNDPROC);
    CScripted<> window, other;
    window.m_on[WM_APP] = [] { return 5; };
    window.Attach(hEdit);
    EXPECT_TRUE(IsBound(hEdit, &window));
    EXPECT_EQ("text", WindowText(hEdit));  // default processing is the edit control's
    EXPECT_EQ(5, SendMessageA(hEdit, WM_APP, 0, 0));

    // A window has one object, and an object one window: the later binding counts.
    other.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_TRUE(IsBound(hEdit, &other));
    EXPECT_EQ(Texts(), reports.Asserts());
    other.Attach(hSecond);
    EXPECT_EQ((Texts{"Window: !m_pOldProc", "Window: !m_hWnd"}), reports.Asserts());
    EXPECT_EQ(hSecond, other.Detach());
    EXPECT_EQ(nullptr, other.Detach());
    for (const HWND hWnd : {hEdit, hSecond}) {
        EXPECT_TRUE(IsBound(hWnd, nullptr));
        EXPECT_EQ(editProc, GetWindowLongA(hWnd, GWL_WNDPROC));
        EXPECT_EQ("text", WindowText(hWnd));
        DestroyWindow(hWnd);
    }

    // What is no window, or not ours, cannot be bound and is left alone.
    window.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(GetDesktopWindow()));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(nullptr));
    window.DefProc(WM_NULL, 0, 0);
    other.Hook();
    window.Hook();
    window.UnHook();
    window.UnHook();
    EXPECT_EQ((Texts{"Window: Exist()", "Window: !s_pHookWin", "Window: !s_hNextHook",
                     "Window: s_pHookWin", "Window: s_hNextHook"}),
              reports.Asserts());
}

// Whoever subclassed after us keeps calling our procedure; what it passes on must go where it went
// before, and no procedure may come back to life.
TEST(Window, LeavesALaterSubclassInPlaceWhenItLetsGo)
{
    const HWND hEdit = MakeEdit();
    const LONG editProc = GetWindowLongA(hEdit, GWL_WNDPROC);
    CScripted<> window;
    int nSeen = 0;
    window.m_on[WM_APP] = [&] { return ++nSeen; };
    window.Attach(hEdit);
    g_pForeignOld = SetProcedure(hEdit, ForeignProc);
    window.Detach();
    EXPECT_EQ("text", WindowText(hEdit));
    EXPECT_GT(g_nForeign, 0);
    EXPECT_EQ(0, SendMessageA(hEdit, WM_APP, 0, 0));

    // Bound again below the other, it is called once a message.
    window.Attach(hEdit);
    EXPECT_EQ(1, SendMessageA(hEdit, WM_APP, 0, 0));
    EXPECT_EQ("text", WindowText(hEdit));
    window.Detach();

    // The other goes too; its going puts our procedure back, which still forwards.
    SetProcedure(hEdit, g_pForeignOld);
    EXPECT_EQ("text", WindowText(hEdit));
    window.Attach(hEdit);
    window.Detach();
    EXPECT_EQ(editProc, GetWindowLongA(hEdit, GWL_WNDPROC));

    // Or it takes ours along, by putting back what was there before all.
    window.Attach(hEdit);
    g_pForeignOld = SetProcedure(hEdit, ForeignProc);
    window.Detach();
    SetWindowLongA(hEdit, GWL_WNDPROC, editProc);
    nSeen = 0;
    window.Attach(hEdit);
    EXPECT_EQ(1, SendMessageA(hEdit, WM_APP, 0, 0));
    EXPECT_EQ("text", WindowText(hEdit));
    window.Detach();
    DestroyWindow(hEdit);
}

// What is known of a window whose end nobody told, when its handle comes back for another.
TEST(Window, IsNotTakenInByAHandleThatComesBack)
{
    const auto pDead = reinterpret_cast<WNDPROC>(1);
    const HWND hEdit = MakeEdit();
    CScripted<> window;
    window.m_on[WM_APP] = [] { return 5; };
    CUIWindowMapSet(hEdit, {nullptr, pDead});
    window.Attach(hEdit);
    EXPECT_EQ(5, SendMessageA(hEdit, WM_APP, 0, 0));
    EXPECT_EQ("text", WindowText(hEdit));
    window.Detach();
    // The other window has neither our property nor our procedure.
    const WNDPROC pEditProc = reinterpret_cast<WNDPROC>(GetWindowLongA(hEdit, GWL_WNDPROC));
    window.Attach(hEdit);
    SetPropA(hEdit, PropertyName().c_str(), nullptr);
    SetProcedure(hEdit, pEditProc);
    EXPECT_EQ(hEdit, window.Detach());
    EXPECT_TRUE(IsBound(hEdit, nullptr));
    window.Attach(hEdit);
    EXPECT_EQ(5, SendMessageA(hEdit, WM_APP, 0, 0));
    window.Detach();
    {
        CScripted<> dying;
        dying.Attach(hEdit);
        SetPropA(hEdit, PropertyName().c_str(), nullptr);
    }
    EXPECT_TRUE(IsWindow(hEdit));
    DestroyWindow(hEdit);
}

TEST(Window, DestroysTheWindowOfADyingObjectAndSaysSo)
{
    const int nWindows = WindowCount();
    CDumped trace;
    {
        CScripted<> window;
        for (int i = 0; i < 3; ++i) {  // an object may have window after window
            ASSERT_TRUE(CreateTestWindow(window));
            EXPECT_EQ(1, window.Destroy());
            EXPECT_EQ(nullptr, window.GetHandle());
            EXPECT_EQ(0, window.Destroy());
        }
        CreateTestWindow(window);
        EXPECT_EQ("", trace.m_text);
    }
    CThreads::Run(1, [](int) { new CLast; });
    const std::string once = "Destroying Window in ~CCUIWindow.\n";
    EXPECT_EQ(once + once, trace.m_text);
    trace.m_text.clear();
    {
        CHook taker([](long &) { return 1; }, WM_NCDESTROY);
        CTestWindow window;
        window.InsertMessageHook(&taker);
        window.m_on[WM_DESTROY] = [] { return 0; };  // does not call its base
        window.Destroy();
        EXPECT_EQ(nullptr, window.GetHandle());
    }
    EXPECT_EQ("Detach not called in OnDestroy().\n", trace.m_text);
    EXPECT_EQ(nWindows, WindowCount());
}

TEST(Window, StandsItsObjectsDeathInAnyHandler)
{
    for (const UINT message :
         std::initializer_list<UINT>{WM_CLOSE, WM_COMMAND, WM_DESTROY, WM_NCDESTROY, WM_APP})
    {
        auto *window = new CScripted<>;
        ASSERT_TRUE(CreateTestWindow(*window));
        const HWND hWnd = *window;
        const auto die = [window] {
            delete window;
            return 0L;
        };
        window->m_on[message] = die;
        if (message == WM_APP) {
            // Two messages deep: both are told.
            window->m_on[WM_APP] = [=] {
                window->m_on[WM_CLOSE] = die;
                return static_cast<long>(SendMessageA(hWnd, WM_CLOSE, 0, 0));
            };
        }
        if (message == WM_DESTROY || message == WM_NCDESTROY)
            DestroyWindow(hWnd);
        else
            SendMessageA(hWnd, message, 0, 0);
        EXPECT_FALSE(IsWindow(hWnd)) << message;
        EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
    }
}

TEST(Window, GivesDefaultProcessingTheMessageAtHandAfterANestedOne)
{
    CTestWindow window;
    window.m_on[WM_GETTEXT] = [&] {
        SendMessageA(window, WM_GETTEXTLENGTH, 0, 0);
        return window.Default();
    };
    EXPECT_EQ("test", WindowText(window));
    EXPECT_EQ(0, window.Default());  // no message at hand
}

TEST(Window, AsksMessageHooksInOrderWhileTheyComeAndGo)
{
    auto *window = new CTestWindow;
    const HWND hWnd = *window;
    std::string order;
    window->m_on[WM_APP] = [&] { return order += "w", 0; };
    const auto send = [&] {
        order.clear();
        const LRESULT result = SendMessageA(hWnd, WM_APP, 0, 0);
        return order + std::to_string(result);
    };
    CHook last([&](long &) { return order += "c", 0; });
    CHook second([&](long &) { return order += "b", 0; });
    CHook first([&](long &) {
        order += "a";
        window->RemoveMessageHook(&second);
        window->RemoveMessageHook(&first);
        return 0;
    });
    CHook taker([&](long &result) { return result = 42, 1; });
    CHook detacher([&](long &) { return window->Detach(), 0; });
    CHook killer([&](long &) { return delete window, 0; });
    for (CHook *pHook : {&first, &second, &last})
        window->InsertMessageHook(pHook);
    EXPECT_EQ("acw0", send());
    window->InsertMessageHook(&taker);
    EXPECT_EQ("c42", send());
    window->RemoveMessageHook(&taker);
    window->InsertMessageHook(&detacher);
    EXPECT_EQ("c0", send());  // the window is nobody's any more
    window->RemoveMessageHook(&detacher);
    window->Attach(hWnd);
    window->InsertMessageHook(&killer);
    window->InsertMessageHook(&second);
    EXPECT_EQ("c0", send());
    EXPECT_FALSE(IsWindow(hWnd));
}

TEST(Window, LeavesNothingBehindAFailedCreation)
{
    CReports reports;
    const int nWindows = WindowCount();
    for (const UINT message : std::initializer_list<UINT>{WM_NCCREATE, WM_CREATE}) {
        CScripted<> window;
        window.m_on[message] = [=] { return message == WM_CREATE ? -1 : 0; };
        EXPECT_FALSE(CreateTestWindow(window));
        EXPECT_EQ(nullptr, window.GetHandle());
        auto *dying = new CScripted<>;
        dying->m_on[message] = [=] { return delete dying, 1; };
        EXPECT_FALSE(CreateTestWindow(*dying));
    }
    CScripted<> window;
    EXPECT_FALSE(CreateTestWindow(window, nullptr, 0, "no such class"));
    EXPECT_EQ(nWindows, WindowCount());
    // The hook is not armed any more: the next window is nobody's.
    const HWND hEdit = MakeEdit();
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hEdit));
    DestroyWindow(hEdit);
    const RECT anywhere = {CW_USEDEFAULT, 0, 100, 100};
    EXPECT_EQ(1, window.Create(nullptr, "", WS_OVERLAPPEDWINDOW, anywhere, nullptr, 0));
    EXPECT_EQ(Texts(), reports.Asserts());
}

TEST(Window, BindsTheWindowBeforeItsFirstMessageAndOnlyThat)
{
    CScripted<> window, inner;
    int nEarly = 0;
    for (const UINT message : std::initializer_list<UINT>{WM_GETMINMAXINFO, WM_NCCREATE})
        window.m_on[message] = [&] { return ++nEarly; };
    window.m_on[WM_CREATE] = [&] { return CreateTestWindow(inner, window, WS_CHILD) ? 0 : -1; };
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_EQ(2, nEarly);
    EXPECT_EQ(window.GetHandle(), GetParent(inner));
    char szClass[32] = "";
    GetClassNameA(window, szClass, sizeof szClass);
    EXPECT_STREQ("pzl-Window", szClass);
    EXPECT_EQ(CUI_CLASS_WINDOW, g_nRegisteredClasses);
}

// The system takes a thread's windows away without a word to them.
TEST(Window, ForgetsTheWindowsOfAThreadThatEnds)
{
    CScripted<> window;
    CThreads::Run(1, [&](int) { CreateTestWindow(window); });
    ASSERT_TRUE(window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(window));
}

TEST(Window, LeavesNothingBehindHoweverManyComeAndGo)
{
    const CHeapWatch heap;
    const auto makeWindows = [](int nWindows) {
        for (int i = 0; i < nWindows; i += 2) {
            CTestWindow window;
            const CTestWindow child(window, WS_CHILD);
        }
    };
    makeWindows(100);
    const int nBlocks = CHeapWatch::Live(), nGdi = GdiCount();
    const HANDLE hNext = NextHandle();
    makeWindows(std::min(FuzzInputs(300), 10000));
    EXPECT_EQ(nBlocks, CHeapWatch::Live());
    EXPECT_EQ(hNext, NextHandle());
    EXPECT_NEAR(nGdi, GdiCount(), 1);
}

// Handles that are made up, so many that real windows would take minutes, beside one that stays.
TEST(WindowMap, FindsWhatIsThereHoweverWindowsComeAndGo)
{
    const auto pProc = reinterpret_cast<WNDPROC>(1);
    std::map<HWND, CCUIWindow *> bound;
    bool bDoubted = false;
    const CTestWindow stays;  // and the hook that watches the thread
    std::mt19937 random(5);
    for (const unsigned nRange : {50u, 4000u, 100u}) {
        const auto anyHandle = [&] {
            return reinterpret_cast<HWND>(0x100000 + random() % nRange * 2);
        };
        for (int i = 0; i < 50000; ++i) {
            const HWND hWnd = anyHandle();
            if (random() % 2) {
                bound[hWnd] = reinterpret_cast<CCUIWindow *>((random() & ~1u) | 2);
                CUIWindowMapSet(hWnd, {bound[hWnd], pProc});
            } else {
                CUIWindowMapRemove(hWnd);
                bound.erase(hWnd);
            }
            const HWND hOther = anyHandle();
            ASSERT_EQ(bound.count(hOther) ? bound[hOther] : nullptr,
                      CUIWindowMapFind(hOther, bDoubted));
        }
    }
    // Each handle once: no run may grow for ever.
    for (UINT_PTR nHandle = 1; nHandle < 100000; nHandle += 2) {
        CUIWindowMapSet(reinterpret_cast<HWND>(nHandle), {nullptr, pProc});
        CUIWindowMapRemove(reinterpret_cast<HWND>(nHandle));
    }
    EXPECT_EQ(nullptr, CUIWindowMapFind(reinterpret_cast<HWND>(3), bDoubted));
}

TEST(Window, NamesOwnersAndTopLevelsForDialogs)
{
    CTestWindow frame, popup(frame, WS_POPUP), child(popup, WS_CHILD);
    EXPECT_EQ(frame.GetHandle(), child.GetTopLevelWindow());
    EXPECT_EQ(popup.GetHandle(), child.GetSafeOwner(nullptr));
    EXPECT_TRUE(IsWindowEnabled(frame));
    HWND hDisabled = nullptr;
    EXPECT_EQ(popup.GetHandle(), child.GetSafeOwner(&hDisabled));
    EXPECT_EQ(frame.GetHandle(), hDisabled);
    EXPECT_FALSE(IsWindowEnabled(frame));
    EXPECT_EQ(popup.GetHandle(), child.GetSafeOwner(&hDisabled));  // disabled already: not ours
    EXPECT_EQ(nullptr, hDisabled);
    // The desktop is nobody's to disable or to own by.
    CTestWindow lone(GetDesktopWindow(), WS_CHILD);
    EXPECT_EQ(lone.GetHandle(), lone.GetSafeOwner(&hDisabled));
    EXPECT_EQ(lone.GetHandle(), lone.GetTopLevelWindow());
    EXPECT_EQ(nullptr, hDisabled);
}

TEST(Window, SendsToAllDescendantsAndTranslatesItsAccelerators)
{
    // One dies of it, two change places.
    CTestWindow frame, child(frame, WS_CHILD), sister(frame, WS_CHILD), last(frame, WS_CHILD);
    std::string seen;
    child.m_on[WM_APP] = [&] { return seen += "c", child.Destroy(); };
    for (CTestWindow *pWindow : {&sister, &last})
        pWindow->m_on[WM_APP] = [&, pWindow] { return seen += "s", BringWindowToTop(*pWindow); };
    int nSent = 0;
    EXPECT_EQ(1, CCUIWindow::SendMessageToDescendants(frame, WM_APP, 0, 0, &nSent));
    EXPECT_EQ(3, nSent);
    EXPECT_EQ("css", seen);
    EXPECT_EQ(0, CCUIWindow::SendMessageToDescendants(nullptr, WM_APP, 0, 0, nullptr));

    ACCEL accelerator = {FVIRTKEY, VK_F5, 1234};
    EXPECT_EQ(1, frame.SetAccelerators(&accelerator, 1));
    MSG key = {frame, WM_KEYDOWN, VK_F5, 1, 0, {0, 0}};
    EXPECT_NE(0, frame.PreTranslateMessage(&key));
    EXPECT_EQ(1, frame.SetAccelerators(nullptr, 0));
    EXPECT_EQ(0, frame.PreTranslateMessage(&key));
}

TEST(Window, ShowsItsContextMenuWhereItIsAskedFor)
{
    CTestWindow window;
    CCUIMenu menu, missing(GetModuleHandleA(nullptr), "none", 0);
    EXPECT_EQ(nullptr, missing.GetHandle());
    AppendMenuA(menu.GetHandle(), MF_STRING, 77, "Entry");
    window.SetContextMenu(&menu);
    POINT corner = {0, 0};
    ClientToScreen(window, &corner);
    for (const POINT &asked : {POINT{70, 60}, {-1, -1}}) {
        RECT at = {};
        window.m_on[WM_ENTERIDLE] = [&] {
            GetWindowRect(FindWindowA("#32768", nullptr), &at);
            return EndMenu();
        };
        SendMessageA(window, WM_CONTEXTMENU, 0, MAKELONG(asked.x, asked.y));
        const POINT &expected = asked.x < 0 ? corner : asked;
        EXPECT_TRUE(at.left == expected.x && at.top == expected.y) << at.left << " " << at.top;
    }
    EXPECT_EQ(0, window.DisplayPopupMenu(nullptr, 0, corner, nullptr));
}
