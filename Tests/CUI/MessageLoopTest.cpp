// The loops: who sees a message first, when idle passes run, what a loop leaves for others.
#include <algorithm>

#include "CU/CU.h"
#include "CUI/CommandHandler.h"
#include "Support/ImportHook.h"
#include "Support/TestWindow.h"

namespace {

struct CIdle : CCUIIdleCallback
{
    explicit CIdle(std::function<void()> onIdle) : m_onIdle(std::move(onIdle)) {}
    void OnIdle() override { m_onIdle(); }
    const std::function<void()> m_onIdle;
};

// Writes down what passes its pre-translation.
std::string s_record;
struct CWitness : CTestWindow
{
    CWitness(const char *name, HWND hParent)
        : CTestWindow(hParent, hParent ? WS_CHILD : WS_POPUP), m_name(name)
    {
    }
    int PreTranslateMessage(MSG *) override { return s_record += m_name, m_bTakes; }
    const char *const m_name;
    bool m_bTakes = false;
};

}  // namespace

TEST(MessageLoop, OffersMessagesToParentsAndOwnersFirst)
{
    CWitness owner("o", nullptr), frame("f", nullptr), child("c", frame), grandchild("g", child);
    const auto offer = [&](UINT message, LPARAM lParam) {
        s_record.clear();
        MSG msg = {grandchild, message, 'x', lParam, 0, {0, 0}};
        const int bTaken = CCUIWindow::PerformPreTranslation(&msg);
        return s_record + (bTaken ? "!" : "");
    };
    EXPECT_EQ("gcf", offer(WM_CHAR, 1));
    // A parent that is no framework window is stepped over to the owner that was named.
    SetParent(grandchild, MakePlain("STATIC", frame));
    grandchild.SetOwner(owner);
    owner.m_bTakes = true;
    EXPECT_EQ("go!", offer(WM_CHAR, 1));
    owner.m_bTakes = false;
    // Keys that go down or up have the cursor looked at anew.
    int nMoves = 0;
    const CFakeCall<BOOL(int, int)> move("SetCursorPos", [&](int, int) { return ++nMoves; });
    offer(WM_KEYDOWN, 1 << 30);
    offer(WM_CHAR, 1);
    EXPECT_EQ(0, nMoves);
    offer(WM_KEYDOWN, 1);
    offer(WM_KEYUP, 1 << 30);
    EXPECT_EQ(2, nMoves);
}

TEST(MessageLoop, RunsOneIdlePassABurstOfActivity)
{
    struct CCommand : CCUICommandHandler
    {
        CCommand() : CCUICommandHandler(2000, 1) {}
        void HandleUpdate(unsigned) override { ++m_nUpdates; }
        int m_nUpdates = 0;
    } command;
    CTestWindow window;
    const UINT nOurs = CURegisterMessageId("test message of ours");
    const UINT active[] = {0x0117, 0x0119, WM_NULL, WM_USER - 1};
    const UINT quiet[] = {0x0118, WM_MOUSEMOVE, WM_NCMOUSEMOVE, WM_TIMER, WM_PAINT, nOurs,
                          0x03B9, 0x03C0,       0x03C3,         0x03D2,   WM_USER,  0xFFFF};
    const auto post = [&](UINT message) { PostMessageA(window, message, 0, 0); };
    int nPasses = 0;
    CIdle idle([&] {
        if (nPasses < 4) {
            post(active[nPasses]);
            post(active[nPasses++]);
            return;
        }
        // The timer comes when the loop has waited, without another pass.
        std::for_each(std::begin(quiet), std::end(quiet), post);
        SetTimer(window, 1, 50, nullptr);
    });
    window.m_on[WM_TIMER] = [&] {
        if (window.m_wParam == 1)
            PostQuitMessage(33);
        return 0;
    };
    CCUIWindow::SetIdleCallback(&idle);
    EXPECT_EQ(33, CCUIWindow::RunLoop());
    CCUIWindow::SetIdleCallback(nullptr);
    EXPECT_EQ(5, command.m_nUpdates);
}

TEST(MessageLoop, ServesWhatAnIdleLoopMayServe)
{
    CTestWindow window;
    int nServed = 0;
    window.m_on[WM_APP] = [&] { return ++nServed; };
    PostMessageA(window, WM_APP, 0, 0);
    PostMessageA(window, WM_APP, 0, 0);
    CCUIWindow::IdleLoop(0, 0);
    EXPECT_EQ(1, nServed);  // no time: one message
    CCUIWindow::IdleLoop(100000, 0);
    EXPECT_EQ(2, nServed);  // nothing more is there: no waiting
    // Restricted: the rest stays in the queue.
    const std::tuple<HWND, UINT, int> posted[] = {{window, 0x03C0, 0},
                                                  {CUGetWindow(), WM_USER + 2, 0},
                                                  {CUGetWindow(), WM_USER + 3, 1},
                                                  {window, WM_APP, 1}};
    for (const auto &[hWnd, message, bStays] : posted)
        PostMessageA(hWnd, message, 0, 0);
    CCUIWindow::IdleLoop(100000, 1);
    MSG msg;
    for (const auto &[hWnd, message, bStays] : posted)
        EXPECT_EQ(bStays, PeekMessageA(&msg, hWnd, message, message, PM_REMOVE)) << message;
    // The end of the program is not swallowed.
    PostQuitMessage(4);
    CCUIWindow::IdleLoop(-60000, 0);
    EXPECT_TRUE(PeekMessageA(&msg, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST(MessageLoop, AbortsOwnedDialogsTheDeepestFirst)
{
    std::string order;
    CTestWindow frame, first(frame, WS_POPUP), second(first, WS_POPUP);
    for (CTestWindow *pWindow : {&first, &second}) {
        MakePlain("BUTTON", *pWindow, IDNO);
        MakePlain("BUTTON", *pWindow, IDCANCEL);
        pWindow->m_on[WM_COMMAND] = [=, &order, &first] {
            order += Text("%s%u ", pWindow == &first ? "first" : "second", pWindow->m_wParam);
            return pWindow->m_wParam == IDNO && pWindow->Destroy();
        };
    }
    CCUIWindow::AbortDialog(frame);
    EXPECT_EQ("second2 second7 first2 first7 ", order);
}
