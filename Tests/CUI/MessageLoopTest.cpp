// The loops: who sees a message first, when idle passes run, what a loop leaves for others.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/CommandHandler.h"
#include "Support/Fuzz.h"
#include "Support/ImportHook.h"
#include "Support/MultimediaHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"

namespace {

class CIdle : public CCUIIdleCallback
{
public:
    CIdle() { CCUIWindow::SetIdleCallback(this); }
    ~CIdle() { CCUIWindow::SetIdleCallback(nullptr); }
    void OnIdle() override
    {
        ++m_nPasses;
        m_onIdle();
    }
    int m_nPasses = 0;
    std::function<void()> m_onIdle = [] {};
};

// Writes down what passes its pre-translation.
class CWitness : public CTestWindow
{
public:
    CWitness(std::string &record, char name, HWND hParent = nullptr)
        : CTestWindow(hParent, hParent ? WS_CHILD : WS_POPUP), m_record(record), m_name(name)
    {
    }
    int PreTranslateMessage(MSG *) override
    {
        m_record += m_name;
        return m_bTakes;
    }
    bool m_bTakes = false;

private:
    std::string &m_record;
    char m_name;
};

int g_nCursorMoves;
BOOL WINAPI MoveCursor(int, int)
{
    return ++g_nCursorMoves;
}

// Runs a function when a loop is about to wait for a message.
std::function<void()> g_onWait;
BOOL(WINAPI *g_getMessage)(MSG *, HWND, UINT, UINT);
BOOL WINAPI GetMessage1(MSG *pMsg, HWND hWnd, UINT nMin, UINT nMax)
{
    if (!PeekMessageA(pMsg, hWnd, nMin, nMax, PM_NOREMOVE))
        g_onWait();
    return g_getMessage(pMsg, hWnd, nMin, nMax);
}

DWORD g_nNow = 1000;
DWORD WINAPI Now()
{
    return g_nNow;
}

}  // namespace

TEST(MessageLoop, OffersMessagesToParentsAndOwnersFirst)
{
    std::string record;
    CWitness owner(record, 'o'), frame(record, 'f'), child(record, 'c', frame);
    CWitness grandchild(record, 'g', child);
    const auto offer = [&](UINT message, LPARAM lParam) {
        record.clear();
        MSG msg = {grandchild, message, 'x', lParam, 0, {0, 0}};
        const int bTaken = CCUIWindow::PerformPreTranslation(&msg);
        return record + (bTaken ? "!" : "");
    };
    EXPECT_EQ("gcf", offer(WM_CHAR, 1));

    // A parent that is no framework window is stepped over to the owner that was named.
    SetParent(grandchild, CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 9, 9, frame, nullptr,
                                          nullptr, nullptr));
    grandchild.SetOwner(owner);
    EXPECT_EQ("go", offer(WM_CHAR, 1));
    owner.m_bTakes = true;
    EXPECT_EQ("go!", offer(WM_CHAR, 1));
    // Owners in a circle end the walk, not the program.
    owner.m_bTakes = false;
    owner.SetOwner(grandchild);
    EXPECT_EQ("gogo", offer(WM_CHAR, 1).substr(0, 4));

    // Keys that go down or up have the cursor looked at anew.
    owner.SetOwner(nullptr);
    const CImportHook hook("SetCursorPos", MoveCursor);
    for (const auto &[message, lParam] : {std::pair<UINT, LPARAM>{WM_KEYDOWN, 1},
                                          {WM_KEYDOWN, 1 << 30 | 1},
                                          {WM_KEYUP, 1 << 30 | 1},
                                          {WM_CHAR, 1}})
        offer(message, lParam);
    EXPECT_EQ(2, g_nCursorMoves);
}

TEST(MessageLoop, RunsOneIdlePassABurstOfActivity)
{
    class CCommand : public CCUICommandHandler
    {
    public:
        CCommand() : CCUICommandHandler(2000, 1) {}
        void HandleUpdate(unsigned int) override { ++m_nUpdates; }
        int m_nUpdates = 0;
    };
    CCommand command;
    CIdle idle;
    CTestWindow window;
    const UINT nOurs = CURegisterMessageId("test message of ours");
    const std::pair<UINT, int> bursts[] = {
        {WM_MOUSEMOVE, 0}, {WM_NCMOUSEMOVE, 0}, {WM_TIMER, 0},    {WM_PAINT, 0}, {0x0118, 0},
        {0x03B9, 0},       {0x03C0, 0},         {0x03C3, 0},      {0x03D2, 0},   {nOurs, 0},
        {WM_USER, 0},      {0xFFFF, 0},         {WM_NULL, 1},     {WM_CHAR, 1},  {WM_LBUTTONUP, 1},
        {0x0117, 1},       {0x0119, 1},         {WM_USER - 1, 1},
    };
    const CImportHook hook("GetMessageA", GetMessage1);
    g_getMessage = hook.Original<decltype(GetMessage1)>();
    int nExpected = 1;  // before the first message
    const auto *next = std::begin(bursts);
    g_onWait = [&] {
        EXPECT_EQ(nExpected, idle.m_nPasses) << (next == bursts ? 0 : next[-1].first);
        if (next == std::end(bursts)) {
            PostQuitMessage(33);
            return;
        }
        for (int i = 0; i < 3; ++i)
            PostMessageA(window, next->first, 0, 0);
        nExpected += next++->second;
    };
    EXPECT_EQ(33, CCUIWindow::RunLoop());
    EXPECT_EQ(std::end(bursts), next);
    EXPECT_EQ(idle.m_nPasses, command.m_nUpdates);
    EXPECT_LE(static_cast<long>(CCUIWindow::GetLoopStartTime() - CCUIWindow::GetLastIdleTime()), 0);
    CCUIWindow::SetIdleTime(-5);
    EXPECT_EQ(-5, CCUIWindow::GetIdleTime());
}

TEST(MessageLoop, TracesWhatTakesMoreThanASecond)
{
    const CMultimediaHook clock(g_multimedia.getTime, Now);
    CCUDebugSwitch *pSwitch = CCUDebugSwitch::Find("\\Debug\\Window", "MessageDebug");
    ASSERT_TRUE(pSwitch);
    CDumped trace;
    CTestWindow window;
    const auto pump = [&](long nLevel, DWORD nTakes) {
        window.m_on[WM_APP] = [=] { return g_nNow += nTakes, 0; };
        pSwitch->Set(nLevel);
        PostMessageA(window, WM_APP, 0x12, 0x34);
        trace.m_text.clear();
        PumpWaiting();
        return trace.m_text;
    };
    const auto contains = [](const std::string &text, const char *part) {
        return text.find(part) != std::string::npos;
    };
    CUGetTime();
    EXPECT_EQ("", pump(1, 1000));
    EXPECT_EQ("", pump(0, 1001));
    const std::string text = pump(1, 1001);
    EXPECT_TRUE(contains(text, "\nPumpMessage took 1001 (called at ")) << text;
    EXPECT_TRUE(contains(text, "\n)\nDispatched hwnd: ")) << text;
    EXPECT_TRUE(contains(text, " msg: 8000 wparam: 12 lparam: 34 time: ")) << text;
    CIdle idle;
    idle.m_onIdle = [] {
        g_nNow += 1001;
        PostQuitMessage(0);
    };
    trace.m_text.clear();
    CCUIWindow::RunLoop();
    EXPECT_TRUE(contains(trace.m_text, "\nOnIdleUpdate() took 1001 (called at "));
    EXPECT_FALSE(contains(trace.m_text, "\nIdleUpdate() took"));
}

TEST(MessageLoop, ServesWhatAnIdleLoopMayServe)
{
    CCUIWindow::IdleLoop(0, 1);
    EXPECT_EQ(nullptr, CUFindWindow());  // made by who needs it
    CTestWindow window;
    int nServed = 0;
    window.m_on[WM_APP] = [&] { return ++nServed; };
    const auto post = [&](UINT message) { PostMessageA(window, message, 0, 0); };
    post(WM_APP);
    post(WM_APP);
    CCUIWindow::IdleLoop(0, 0);
    EXPECT_EQ(1, nServed);  // no time: one message
    CCUIWindow::IdleLoop(100000, 0);
    EXPECT_EQ(2, nServed);  // nothing more is there: no waiting

    // Restricted: the rest stays in the queue.
    post(WM_APP);
    post(0x03C0);
    PostMessageA(CUGetWindow(), WM_USER + 2, 0, 0);
    PostMessageA(CUGetWindow(), WM_USER + 3, 0, 0);
    CCUIWindow::IdleLoop(100000, 1);
    EXPECT_EQ(2, nServed);
    MSG msg;
    for (const auto &[message, bLeft] :
         {std::pair<UINT, BOOL>{0x03C0, FALSE}, {WM_USER + 2, FALSE}, {WM_USER + 3, TRUE}})
        EXPECT_EQ(bLeft, PeekMessageA(&msg, nullptr, message, message, PM_REMOVE)) << message;

    // Waiting: a message that comes later is served too.
    SetTimer(window, 1, 10, nullptr);
    int nTimers = 0;
    window.m_on[WM_TIMER] = [&] { return ++nTimers; };
    const unsigned long nFrom = CUGetTime();
    CCUIWindow::IdleLoop(-60, 0);
    EXPECT_GE(CUGetTime() - nFrom, 60u);
    EXPECT_EQ(3, nServed);
    EXPECT_LT(0, nTimers);
    KillTimer(window, 1);

    // The end of the program is not swallowed.
    for (const int bRestricted : {0, 1}) {
        PostQuitMessage(4);
        CCUIWindow::IdleLoop(-60000, bRestricted);
        ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(UINT(WM_QUIT), msg.message);
    }
}

TEST(MessageLoop, AbortsOwnedDialogsTheDeepestFirst)
{
    std::string order;
    CTestWindow frame, first(frame, WS_POPUP), second(first, WS_POPUP), next(frame, WS_POPUP);
    CTestWindow stays(frame, WS_POPUP);
    const auto addButton = [&](CTestWindow &window, const char *name, INT_PTR nID) {
        CreateWindowExA(0, "BUTTON", "", WS_CHILD, 0, 0, 9, 9, window, reinterpret_cast<HMENU>(nID),
                        nullptr, nullptr);
        window.m_on[WM_COMMAND] = [=, &window, &order, &stays, &next] {
            EXPECT_EQ(GetDlgItem(window, LOWORD(window.m_wParam)),
                      reinterpret_cast<HWND>(window.m_lParam));
            order += Text("%s%u ", name, window.m_wParam);
            return (&window == &stays ? next : window).Destroy();
        };
    };
    addButton(first, "first", IDNO);
    addButton(first, "first", IDCANCEL);
    addButton(second, "second", IDNO);
    addButton(stays, "stays", IDNO);
    addButton(stays, "stays", IDCANCEL);
    ASSERT_EQ(next.GetHandle(), GetWindow(stays, GW_HWNDNEXT));
    CCUIWindow::AbortDialog(frame);
    EXPECT_FALSE(first.Exist() || second.Exist() || next.Exist());
    // One that stays open is asked once, though it takes along the one that comes next.
    EXPECT_EQ("stays2 stays7 second7 first2 ", order);
    CCUIWindow::AbortDialog(nullptr);
}

TEST(MessageLoop, StandsAFloodOfPostedMessages)
{
    const int nThreads = 10, nPosts = std::min(FuzzInputs(20000), 1000000) / nThreads;
    std::atomic<HWND> hFlooded(nullptr);
    const auto flood = [&] {
        while (!hFlooded)
            Sleep(0);
        for (int i = 0; i < nPosts; ++i) {
            while (!PostMessageA(hFlooded, WM_APP, 0, 0))
                Sleep(0);  // the queue is full
        }
    };
    const auto serve = [&] {
        CTestWindow window;
        int nServed = 0;
        window.m_on[WM_APP] = [&] {
            if (++nServed == nThreads * nPosts)
                PostQuitMessage(0);
            return 0;
        };
        hFlooded = window.GetHandle();
        EXPECT_EQ(0, CCUIWindow::RunLoop());
        EXPECT_EQ(nThreads * nPosts, nServed);
        EXPECT_EQ(&window, CCUIWindow::FromHandle(hFlooded));
    };
    CThreads::Run(1 + nThreads, [&](int nThread) { nThread ? flood() : serve(); });
}
