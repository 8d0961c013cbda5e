// Objects and their windows: binding, letting go, dying at odd moments, coming and going unheard.
#include <setjmp.h>

#include <deque>
#include <random>

#include "../../CUI/Src/Window/WindowMap.h"
#include "CUI/Menu.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"
#include "Support/Times.h"

namespace {

struct CMessageHook : CCUIWindowHook
{
    explicit CMessageHook(std::function<int(long &)> function) : m_function(std::move(function)) {}
    int OnHookMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        return message == WM_APP && m_function(result);
    }
    const std::function<int(long &)> m_function;
};

WNDPROC SetProcedure(HWND hWnd, WNDPROC pProc)
{
    return reinterpret_cast<WNDPROC>(
        SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(pProc)));
}

// Who subclasses a window after us.
WNDPROC g_pForeignOld;
LRESULT CALLBACK ForeignProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CallWindowProcA(g_pForeignOld, hWnd, message, wParam, lParam);
}

// A window's procedure before ours, which notes what gets default processing.
std::string g_defaults;
LRESULT CALLBACK NotingProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message > WM_APP)
        g_defaults += Text("%u ", message - WM_APP);
    return DefWindowProcA(hWnd, message, wParam, lParam);
}

}  // namespace

TEST(Window, BindsAnExistingWindowAndLetsGoOfIt)
{
    CReports reports;
    const HWND hEdit = MakePlain("EDIT");
    const LONG editProc = GetWindowLongA(hEdit, GWL_WNDPROC);
    CScripted<> window, other;
    window.m_on[WM_APP] = [] { return 5; };
    window.Attach(hEdit);
    EXPECT_EQ(&window, CCUIWindow::FromHandle(hEdit));
    EXPECT_EQ("text", TextOf(hEdit));  // default processing is the edit control's
    EXPECT_EQ(5, SendMessageA(hEdit, WM_APP, 0, 0));
    // A window has one object, and an object one window: the later binding counts.
    other.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());
    EXPECT_EQ(&other, CCUIWindow::FromHandle(hEdit));
    EXPECT_EQ("m_hWnd == 0", reports.Of("Window", [&] { EXPECT_FALSE(CreateTestWindow(other)); }));
    EXPECT_EQ(&other, CCUIWindow::FromHandle(hEdit));
    EXPECT_NE(nullptr, other.Detach());
    EXPECT_EQ(nullptr, other.Detach());
    EXPECT_EQ(editProc, GetWindowLongA(hEdit, GWL_WNDPROC));
    DestroyWindow(hEdit);
    window.Attach(hEdit);
    EXPECT_EQ(nullptr, window.GetHandle());  // it is no window any more
    window.Attach(GetDesktopWindow());
    EXPECT_EQ(nullptr, window.GetHandle());  // another process's
}

// Whoever subclassed after us keeps calling our procedure; what it passes on must go where it went
// before, and no procedure may come back to life.
TEST(Window, LeavesALaterSubclassInPlaceWhenItLetsGo)
{
    const HWND hEdit = MakePlain("EDIT");
    const auto editProc = reinterpret_cast<WNDPROC>(GetWindowLongA(hEdit, GWL_WNDPROC));
    CScripted<> window;
    int nSeen = 0;
    window.m_on[WM_APP] = [&] { return ++nSeen; };
    window.Attach(hEdit);
    const WNDPROC pOurProc = g_pForeignOld = SetProcedure(hEdit, ForeignProc);
    // The other stays, goes and puts our procedure back, or takes it along.
    for (const WNDPROC pProc : {static_cast<WNDPROC>(ForeignProc), pOurProc, editProc}) {
        window.Detach();
        EXPECT_EQ("text", TextOf(hEdit));
        EXPECT_EQ(0, SendMessageA(hEdit, WM_APP, 0, 0));
        SetProcedure(hEdit, pProc);
        window.Attach(hEdit);
        nSeen = 0;
        EXPECT_EQ(1, SendMessageA(hEdit, WM_APP, 0, 0));  // seen once
        EXPECT_EQ("text", TextOf(hEdit));
        SetProcedure(hEdit, ForeignProc);
    }
}

TEST(Window, GoesWithADyingObjectAndComesAgain)
{
    for (const UINT message : std::initializer_list<UINT>{WM_NULL, WM_NCCREATE, WM_CREATE, WM_CLOSE,
                                                          WM_DESTROY, WM_NCDESTROY})
    {
        auto *window = new CScripted<>;
        window->m_on[message] = [=] { return delete window, 1; };
        if (CreateTestWindow(*window))
            SendMessageA(*window, message ? WM_CLOSE : WM_NULL, 0, 0);
        EXPECT_EQ(0, WindowCount()) << message;
    }
    CScripted<> window;
    for (int i = 0; i < 2; ++i) {  // an object may have window after window
        ASSERT_TRUE(CreateTestWindow(window));
        window.m_on[WM_NCDESTROY] = [] { return ADD_FAILURE(), 0; };  // it has let go
        EXPECT_EQ(1, window.Destroy());
        EXPECT_EQ(0, window.Destroy());
        window.m_on.clear();
    }
}

TEST(Window, IsWatchedInWhateverOrderTheWatchesGo)
{
    // As when another thread calls the object while its own is in a handler.
    struct CWatched : CCUIWindow
    {
        static bool IsHeardOf()
        {
            auto window = std::make_unique<CWatched>();
            auto first = std::make_unique<CWatch>(window.get());
            const CWatch second(window.get());
            first.reset();
            window.reset();
            return second.IsGone();
        }
    };
    EXPECT_TRUE(CWatched::IsHeardOf());
}

TEST(Window, GivesDefaultProcessingTheMessageAtHandAfterANestedOne)
{
    CTestWindow window;
    window.m_on[WM_GETTEXT] = [&] {
        SendMessageA(window, WM_GETTEXTLENGTH, 0, 0);
        return window.Default();
    };
    EXPECT_EQ("test", TextOf(window));
}

TEST(Window, AsksMessageHooksInOrderWhileTheyComeAndGo)
{
    auto *window = new CTestWindow;
    const HWND hWnd = *window;
    std::string order;
    window->m_on[WM_APP] = [&] { return order += "w", 0; };
    CMessageHook last([&](long &) { return order += "c", 0; });
    CMessageHook second([&](long &) { return order += "b", 0; });
    CMessageHook first([&](long &) {
        window->RemoveMessageHook(&second);
        window->RemoveMessageHook(&first);
        return order += "a", 0;
    });
    CMessageHook taker([&](long &result) { return result = 42, 1; });
    CMessageHook killer([&](long &) { return delete window, 0; });
    for (CMessageHook *pHook : {&first, &second, &last})
        window->InsertMessageHook(pHook);
    SendMessageA(hWnd, WM_APP, 0, 0);
    EXPECT_EQ("acw", order);
    window->InsertMessageHook(&taker);
    EXPECT_EQ(42, SendMessageA(hWnd, WM_APP, 0, 0));
    window->RemoveMessageHook(&taker);
    window->InsertMessageHook(&killer);
    window->InsertMessageHook(&second);
    SendMessageA(hWnd, WM_APP, 0, 0);
    EXPECT_EQ("acwcc", order);
}

TEST(Window, BindsTheWindowBeforeItsFirstMessageAndOnlyThat)
{
    CScripted<> window, inner, failing;
    int nEarly = 0;
    for (const UINT message : std::initializer_list<UINT>{WM_GETMINMAXINFO, WM_NCCREATE})
        window.m_on[message] = [&] { return ++nEarly; };
    window.m_on[WM_CREATE] = [&] { return CreateTestWindow(inner, window, WS_CHILD) ? 0 : -1; };
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_EQ(2, nEarly);
    EXPECT_EQ(window.GetHandle(), GetParent(inner));
    const int nWindows = WindowCount();
    EXPECT_FALSE(CreateTestWindow(failing, nullptr, 0, "no such class"));
    failing.m_on[WM_CREATE] = [] { return -1; };
    EXPECT_FALSE(CreateTestWindow(failing));
    EXPECT_EQ(nullptr, failing.GetHandle());
    EXPECT_EQ(nWindows, WindowCount());
    // The hook is not armed any more: the next window is nobody's.
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(MakePlain()));
}

// Each thread's object waits for its own window, and one thread at a time registers a class.
TEST(Window, ThreadsCreateTheirsAtOnce)
{
    const CReports reports;
    static volatile LONG s_nThreads, s_nRegistering;
    const CFakeCall<ATOM(const WNDCLASSA *)> registering(
        "RegisterClassA", [&](const WNDCLASSA *pClass) {
            EXPECT_EQ(1, InterlockedIncrement(&s_nRegistering));
            Sleep(1);  // the others come as far
            const ATOM atom = registering.Original(pClass);
            InterlockedDecrement(&s_nRegistering);
            return atom;
        });
    CScripted<> waiting;
    waiting.Hook();
    const int nTimes = Times(40);
    CThreads::Run(8, [&](int) {
        for (InterlockedIncrement(&s_nThreads); s_nThreads < 8;)
            Sleep(0);
        for (int i = 0; i < nTimes; ++i) {
            CScripted<> window;
            ASSERT_TRUE(CreateTestWindow(window));
        }
    });
    EXPECT_EQ(&waiting, CCUIWindow::FromHandle(MakePlain()));
    EXPECT_EQ(0, reports.Total());
}

// A later subclass may keep a window's end to itself.
TEST(Window, EndsForAllThoughNobodyHearsOfIt)
{
    std::deque<CTestWindow> others;
    for (const size_t nOthers : {0U, 40U}) {
        others.resize(nOthers);  // with many windows, those inside one are found another way
        CTestWindow top, child(top, WS_CHILD), owned(top, WS_POPUP);
        const HWND windows[] = {top, child, owned};
        for (const HWND hWnd : windows)
            SetProcedure(hWnd, DefWindowProcA);
        DestroyWindow(top);
        for (const HWND hWnd : windows)
            EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
        EXPECT_TRUE(CreateTestWindow(child));  // it may go on with another window
    }
}

// Handles that are made up, so many that real windows would take minutes, beside one that stays.
TEST(WindowMap, FindsWhatIsThereHoweverWindowsComeAndGo)
{
    std::map<HWND, CCUIWindow *> bound;
    bool bDoubted = false;
    const CTestWindow stays;  // and the hook that watches the thread
    std::mt19937 random(5);
    for (int i = 0; i < 60000; ++i) {
        const unsigned nRange = i / 20000 == 1 ? 4000 : 50;
        const auto hWnd = reinterpret_cast<HWND>(0x100000 + random() % nRange * 2);
        const auto hOther = reinterpret_cast<HWND>(0x100000 + random() % nRange * 2);
        bound[hWnd] =
            reinterpret_cast<CCUIWindow *>(random() % 2 * (static_cast<unsigned>(i) * 2 + 2));
        if (bound[hWnd])
            CUIWindowMapSet(hWnd, {bound[hWnd], DefWindowProcA});
        else
            CUIWindowMapRemove(hWnd);
        ASSERT_EQ(bound[hOther], CUIWindowMapFind(hOther, bDoubted)) << i;
    }
}

TEST(Window, ShowsItsContextMenuWhereItIsAskedFor)
{
    CTestWindow window;
    CCUIMenu menu;
    AppendMenuA(menu.GetHandle(), MF_STRING, 77, "Entry");
    window.SetContextMenu(&menu);
    POINT corner = {0, 0};
    ClientToScreen(window, &corner);
    RECT at = {};
    window.m_on[WM_ENTERIDLE] = [&] {
        return GetWindowRect(FindWindowA("#32768", nullptr), &at) && EndMenu();
    };
    SendMessageA(window, WM_CONTEXTMENU, 0, MAKELONG(70, 60));
    EXPECT_EQ("70 60", Text("%ld %ld", at.left, at.top));
    SendMessageA(window, WM_CONTEXTMENU, 0, MAKELONG(-1, -1));
    EXPECT_EQ(Text("%ld %ld", corner.x, corner.y), Text("%ld %ld", at.left, at.top));
}

TEST(Window, IsMovedShownAndNamedWithoutItsHandle)
{
    CTestWindow window;
    CCUIWindow child, none;
    CreateTestWindow(child, window, WS_CHILD);
    window.Move({20, 30, 220, 180});
    window.Show();
    child.Move({-5, 7, 60, 50});
    const RECT place = window.GetPlace(), in = child.GetPlace(), client = child.GetClientArea();
    EXPECT_EQ(
        "20 30 220 180 -5 7 60 50 65 43",
        Text("%ld %ld %ld %ld %ld %ld %ld %ld %ld %ld", place.left, place.top, place.right,
             place.bottom, in.left, in.top, in.right, in.bottom, client.right, client.bottom));
    EXPECT_TRUE(window.IsShown() && !child.IsShown() && child.IsEnabled());
    child.Show();
    child.Focus();
    UpdateWindow(child);
    EXPECT_TRUE(child.HasFocus() && !window.HasFocus() && !GetUpdateRect(child, nullptr, FALSE));
    child.Invalidate();
    child.Enable(false);
    child.SetText("a caption");
    EXPECT_TRUE(GetUpdateRect(child, nullptr, FALSE) && !child.IsEnabled());
    EXPECT_STREQ("a caption", child.GetText());
    none.Focus(), none.Show(), none.Invalidate(), none.SetText("x");
    EXPECT_FALSE(none.IsShown() || none.HasFocus() || none.GetPlace().right);
    EXPECT_STREQ("", none.GetText());
}

// Without the system's own calls in between, which do not stand a change of stacks.
static void CallDirectly(HWND hWnd, UINT message)
{
    const auto proc = reinterpret_cast<WNDPROC>(GetWindowLongA(hWnd, GWL_WNDPROC));
    CallWindowProcA(proc, hWnd, message, 0, 0);
}

static void *g_fibers[2];
static void WINAPI OtherFiber(void *hWnd)
{
    CallDirectly(static_cast<HWND>(hWnd), WM_APP + 4);
    SwitchToFiber(g_fibers[0]);
}

// Handlers that never return, and some that return in another order.
TEST(Window, KnowsItsMessageWhateverBecomesOfOthers)
{
    const HWND hWnd = MakePlain("STATIC");
    SetProcedure(hWnd, NotingProc);
    CScripted<> window;
    window.Attach(hWnd);
    static jmp_buf s_jump;
    window.m_on[WM_APP + 1] = [&] {
        if (setjmp(s_jump) == 0)
            CallDirectly(window, WM_APP + 2);
        return window.Default();
    };
    window.m_on[WM_APP + 2] = []() -> long { longjmp(s_jump, 1); };
    CallDirectly(window, WM_APP + 1);
    window.Default();
    EXPECT_EQ("1 ", std::exchange(g_defaults, ""));

    g_fibers[0] = ConvertThreadToFiber(nullptr);
    g_fibers[1] = CreateFiber(0, OtherFiber, hWnd);
    window.m_on[WM_APP + 3] = [&] { return SwitchToFiber(g_fibers[1]), window.Default(); };
    window.m_on[WM_APP + 4] = [&] { return SwitchToFiber(g_fibers[0]), window.Default(); };
    CallDirectly(hWnd, WM_APP + 3);
    SwitchToFiber(g_fibers[1]);
    EXPECT_EQ("3 4 ", std::exchange(g_defaults, ""));
    DeleteFiber(g_fibers[1]);
    // A handler that goes with its stack: from then on nothing is read nor written there.
    g_fibers[1] = CreateFiber(0, OtherFiber, hWnd);
    SwitchToFiber(g_fibers[1]);
    DeleteFiber(g_fibers[1]);
    window.Default();
    DestroyWindow(window);
    EXPECT_EQ("", g_defaults);
}
