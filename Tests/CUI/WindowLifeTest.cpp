// How windows get their objects, on many threads and with calls that fail, and how they go unheard.
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <set>

#include "../../CUI/Src/Window/WindowMap.h"
#include "CUI/Dialog.h"
#include "Support/FailingCall.h"
#include "Support/Fuzz.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"

namespace {

using Texts = std::vector<std::string>;

HWND MakePlain(HWND hParent = nullptr, DWORD style = WS_POPUP)
{
    return CreateWindowExA(0, "STATIC", "", style, 0, 0, 9, 9, hParent, nullptr, nullptr, nullptr);
}

// From here on the window keeps its end to itself.
void Deafen(HWND hWnd)
{
    SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(DefWindowProcA));
}

// How often the framework asks the system for a property.
int s_nAsked;
HANDLE(WINAPI *s_getProp)(HWND, LPCSTR);
HANDLE WINAPI CountGetProp(HWND hWnd, LPCSTR name)
{
    ++s_nAsked;
    return s_getProp(hWnd, name);
}

// Does something, once, before it answers.
std::function<void()> s_onGetProp;
HANDLE WINAPI ActingGetProp(HWND hWnd, LPCSTR name)
{
    if (const auto act = std::exchange(s_onGetProp, nullptr))
        act();
    return s_getProp(hWnd, name);
}

// Asks all who hear of a destruction, and does not let it happen.
LRESULT CALLBACK Veto(int nCode, WPARAM wParam, LPARAM lParam)
{
    CallNextHookEx(nullptr, nCode, wParam, lParam);
    return nCode == HCBT_DESTROYWND;
}

// Makes one more window whenever one is made, as some programs' hooks do.
HWND s_hSecond;
LRESULT CALLBACK MakeSecond(int nCode, WPARAM wParam, LPARAM lParam)
{
    static bool s_bInside;
    if (nCode == HCBT_CREATEWND && !s_bInside) {
        s_bInside = true;
        s_hSecond = MakePlain();
        s_bInside = false;
    }
    return CallNextHookEx(nullptr, nCode, wParam, lParam);
}

class CThreadHook
{
public:
    explicit CThreadHook(HOOKPROC pProc)
        : m_hHook(SetWindowsHookExA(WH_CBT, pProc, nullptr, GetCurrentThreadId()))
    {
    }
    ~CThreadHook() { UnhookWindowsHookEx(m_hHook); }

private:
    const HHOOK m_hHook;
};

// The hooks of the program.
volatile LONG s_nHooks;
HHOOK(WINAPI *s_setHook)(int, HOOKPROC, HINSTANCE, DWORD);
BOOL(WINAPI *s_unhook)(HHOOK);
HHOOK WINAPI CountSet(int nId, HOOKPROC pProc, HINSTANCE hInstance, DWORD nThread)
{
    const HHOOK hHook = s_setHook(nId, pProc, hInstance, nThread);
    if (hHook)
        InterlockedIncrement(&s_nHooks);
    return hHook;
}
BOOL WINAPI CountUnhook(HHOOK hHook)
{
    const BOOL bDone = s_unhook(hHook);
    if (bDone)
        InterlockedDecrement(&s_nHooks);
    return bDone;
}

// Creates its window already when it is asked how to.
class CHasty : public CTestWindow
{
public:
    CHasty() { Destroy(); }
    std::function<void()> m_onPreCreate;
    int PreCreate(CREATESTRUCTA *pCreate) override
    {
        if (const auto act = std::exchange(m_onPreCreate, nullptr))
            act();
        return CTestWindow::PreCreate(pCreate);
    }
};

}  // namespace

TEST(WindowLife, BeginsOnManyThreadsAtOnce)
{
    CReports reports;
    CDumped trace;
    const CImportHook set("SetWindowsHookExA", CountSet),
        unhook("UnhookWindowsHookEx", CountUnhook);
    s_setHook = set.Original<HHOOK WINAPI(int, HOOKPROC, HINSTANCE, DWORD)>();
    s_unhook = unhook.Original<BOOL WINAPI(HHOOK)>();
    volatile LONG nFailed = 0;
    const int nEach = FuzzInputs(60);
    CThreads::Run(8, [&](int) {
        for (int i = 0; i < nEach; ++i) {
            CTestWindow window;
            if (!window || CCUIWindow::FromHandle(window) != &window)
                InterlockedIncrement(&nFailed);
        }
    });
    EXPECT_EQ(0, nFailed);
    EXPECT_EQ(0, s_nHooks);
    EXPECT_EQ("", trace.m_text);
    EXPECT_EQ(Texts(), reports.Asserts());
}

TEST(WindowLife, WaitsForAWindowOnOneThreadOnly)
{
    CReports reports;
    auto waiting = std::make_unique<CScripted<>>();
    CScripted<> other;
    waiting->Hook();
    CThreads::Run(1, [&](int) { EXPECT_TRUE(CreateTestWindow(other)); });
    const HWND hFirst = MakePlain();
    EXPECT_EQ(waiting.get(), CCUIWindow::FromHandle(hFirst));
    DestroyWindow(hFirst);
    // It may go on another thread.
    waiting->Hook();
    CThreads::Run(1, [&](int) { waiting.reset(); });
    const HWND hSecond = MakePlain();
    EXPECT_TRUE(hSecond);
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hSecond));
    DestroyWindow(hSecond);
    const CTestWindow after;
    // Or its thread may go, whose number comes back: in Wine 8 behind some hundred others.
    std::set<DWORD> numbers;
    std::deque<CScripted<>> late;
    while (numbers.size() == late.size() && late.size() < 2000) {
        late.emplace_back();
        CThreads::Run(1, [&](int) {
            numbers.insert(GetCurrentThreadId());
            late.back().Hook();
        });
    }
    EXPECT_EQ(Texts(), reports.Asserts());
}

TEST(WindowLife, IsGivenTheFirstWindowThoughOthersCome)
{
    CReports reports;
    const CThreadHook second(MakeSecond);
    CScripted<> window;
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_NE(s_hSecond, window.GetHandle());
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(s_hSecond));
    EXPECT_EQ(Texts(), reports.Asserts());
    DestroyWindow(s_hSecond);
}

TEST(WindowLife, RefusesASecondWindow)
{
    CReports reports;
    const CTestWindow stays;
    const int nWindows = WindowCount();
    const Texts once = {"Window: m_hWnd == 0"};
    CHasty window;
    ASSERT_TRUE(CreateTestWindow(window));
    const HWND hFirst = window;
    EXPECT_FALSE(CreateTestWindow(window));
    EXPECT_EQ(once, reports.Asserts());
    EXPECT_EQ(&window, CCUIWindow::FromHandle(hFirst));
    for (const UINT message : std::initializer_list<UINT>{WM_NCCREATE, WM_CREATE}) {
        window.Destroy();
        window.m_on[message] = [&] { return CreateTestWindow(window) + (message == WM_NCCREATE); };
        EXPECT_TRUE(CreateTestWindow(window));
        EXPECT_EQ(once, reports.Asserts());
        window.m_on.clear();
    }
    window.Destroy();
    window.m_onPreCreate = [&] { EXPECT_TRUE(CreateTestWindow(window)); };
    EXPECT_FALSE(CreateTestWindow(window));
    EXPECT_EQ(once, reports.Asserts());
    EXPECT_TRUE(window.Exist());
    EXPECT_EQ(nWindows + 1, WindowCount());
    auto *dying = new CHasty;
    dying->m_onPreCreate = [=] { delete dying; };
    EXPECT_FALSE(CreateTestWindow(*dying));
    // Nor may a dialog that a handler of its owner began already.
    CTestWindow frame, popup(frame, WS_POPUP), child(popup, WS_CHILD);
    CCUIDialog dialog(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(500));
    frame.m_on[WM_ENABLE] = [&] {
        return frame.m_wParam ? 0 : reinterpret_cast<long>(dialog.DoModeless(nullptr));
    };
    EXPECT_EQ(IDCANCEL, dialog.DoModal(&child));
    EXPECT_EQ(Texts{"Dialog: m_hWnd == 0"}, reports.Asserts());
    EXPECT_EQ(&dialog, CCUIWindow::FromHandle(dialog));
    EXPECT_TRUE(IsWindowEnabled(frame));
}

TEST(WindowLife, LeavesNothingWhicheverCallFails)
{
    CReports reports;
    const int nWindows = WindowCount();
    {
        const CFailingCall<HHOOK(int, HOOKPROC, HINSTANCE, DWORD)> set("SetWindowsHookExA");
        const CFailingCall<BOOL(HWND, LPCSTR, HANDLE)> prop("SetPropA");
        const CFailingCall<HWND(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int, int, HWND, HMENU,
                                HINSTANCE, LPVOID)>
            create("CreateWindowExA");
        EXPECT_LT(3, CFailPlan::RunAll([] {
                      CTestWindow window;
                      const HWND hWnd = window;
                      EXPECT_EQ(hWnd ? &window : nullptr, CCUIWindow::FromHandle(hWnd));
                      window.Destroy();
                      EXPECT_FALSE(IsWindow(hWnd));
                  }));
    }
    // By Hook and UnHook. Nobody misses the other hook, which hears of windows that go unheard.
    EXPECT_EQ(Texts(2, "Window: s_hNextHook"), reports.Asserts());
    EXPECT_EQ(nWindows, WindowCount());
    const HWND hNext = MakePlain();
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hNext));
    DestroyWindow(hNext);
}

TEST(WindowLife, EndsForAllThoughNobodyHearsOfIt)
{
    CReports reports;
    CDumped trace;
    const CTestWindow stays;
    std::deque<CTestWindow> others;
    for (const size_t nOthers : {0U, 40U}) {
        others.resize(nOthers);  // with many windows, those inside one are found another way
        CTestWindow top, child(top, WS_CHILD), grandchild(child, WS_CHILD), owned(top, WS_POPUP);
        const HWND windows[] = {top, child, grandchild, owned};
        for (const HWND hWnd : windows)
            Deafen(hWnd);
        DestroyWindow(top);
        SetLastError(4711);
        for (const HWND hWnd : windows)
            EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
        EXPECT_EQ(4711u, GetLastError());
        EXPECT_FALSE(top.Exist() || top.Destroy());
        // It may go on with another window.
        EXPECT_TRUE(CreateTestWindow(child));
        EXPECT_EQ(Texts(), reports.Asserts());
    }
    std::string expected;
    for (int i = 0; i < 6; ++i)
        expected += "Detach not called in OnDestroy().\n";
    EXPECT_EQ(expected, trace.m_text);

    // No slot is left, not even where the object has gone before, and nobody asks.
    CUIWindowBinding binding;
    const HWND hPlain = MakePlain(), hOther = MakePlain();
    for (const bool bDetach : {false, true}) {
        CScripted<> window;
        const HWND hWnd = bDetach ? hOther : hPlain;
        window.Attach(hWnd);
        Deafen(hWnd);
        if (bDetach)
            window.Detach();
        DestroyWindow(hWnd);
        DestroyWindow(MakePlain());
        EXPECT_FALSE(CUIWindowMapGet(hWnd, binding)) << bDetach;
    }

    // Windows that live cost no call.
    const CImportHook count("GetPropA", CountGetProp);
    s_getProp = count.Original<HANDLE WINAPI(HWND, LPCSTR)>();
    EXPECT_EQ(&stays, CCUIWindow::FromHandle(stays));
    EXPECT_EQ(0, s_nAsked);
}

// What an object believes of a window whose handle has come back for another, of which Windows has
// 65,536: here the same window, with neither our property nor our procedure.
TEST(WindowLife, LeavesAnotherWindowOfTheSameHandleAlone)
{
    CReports reports;
    const HWND hWnd = MakePlain();
    const LONG pPlainProc = GetWindowLongA(hWnd, GWL_WNDPROC);
    const std::string property = Text("kvxCCUIWindow-%lu", GetCurrentProcessId());
    {
        CScripted<> lost, next;
        lost.Attach(hWnd);
        {
            const CThreadHook veto(Veto);
            EXPECT_FALSE(DestroyWindow(hWnd));
        }
        EXPECT_EQ(&lost, CCUIWindow::FromHandle(hWnd));
        SetWindowLongA(hWnd, GWL_WNDPROC, pPlainProc);
        SetPropA(hWnd, property.c_str(), nullptr);
        EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
        EXPECT_FALSE(lost.Exist() || lost.Destroy());
        next.m_on[WM_APP] = [] { return 5; };
        next.Attach(hWnd);
        EXPECT_EQ(&next, CCUIWindow::FromHandle(hWnd));
        EXPECT_EQ(0, lost.DefProc(WM_APP, 0, 0));
        EXPECT_EQ(nullptr, lost.GetHandle());
        EXPECT_EQ(5, SendMessageA(hWnd, WM_APP, 0, 0));
        next.Detach();
    }
    EXPECT_TRUE(IsWindow(hWnd));
    EXPECT_EQ(Texts{"Window: Exist()"}, reports.Asserts());
    DestroyWindow(hWnd);
}

// The window's thread lets go of it while another asks the system about it: our procedure goes on
// handing messages to the one before it.
TEST(WindowLife, KeepsItsProcedureWhileAnotherThreadAsks)
{
    const HWND hWnd =
        CreateWindowA("EDIT", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    CScripted<> window;
    window.Attach(hWnd);
    {
        const CThreadHook veto(Veto);
        EXPECT_FALSE(DestroyWindow(hWnd));
    }
    static WNDPROC s_pBelow;
    s_pBelow = reinterpret_cast<WNDPROC>(SetWindowLongA(
        hWnd, GWL_WNDPROC,
        reinterpret_cast<LONG>(+[](HWND h, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            return CallWindowProcA(s_pBelow, h, message, wParam, lParam);
        })));
    const CImportHook acting("GetPropA", ActingGetProp);
    s_getProp = acting.Original<HANDLE WINAPI(HWND, LPCSTR)>();
    s_onGetProp = [&] { window.Detach(); };
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hWnd));
    EXPECT_NE(0, SendMessageA(hWnd, EM_GETLIMITTEXT, 0, 0));
    DestroyWindow(hWnd);
}

TEST(WindowLife, EndsTheRunOfADialogThatEndsUnheard)
{
    CTestWindow owner;
    CScripted<CCUIDialog> dialog(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(500));
    dialog.m_on[WM_APP] = [&] {
        const HWND hWnd = dialog;
        Deafen(hWnd);
        return DestroyWindow(hWnd);
    };
    owner.m_on[WM_ENTERIDLE] = [&] { return PostMessageA(dialog, WM_APP, 0, 0); };
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(IDCANCEL, dialog.DoModal(&owner));
        EXPECT_FALSE(dialog.IsActive());
        EXPECT_TRUE(IsWindowEnabled(owner));
    }
}
