// The loops: who sees a message first, when idle passes run, what a loop leaves for others.
#include <gtest/gtest.h>

#include <functional>

#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/CommandHandler.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

class CIdleCounter : public CCUIIdleCallback
{
public:
    CIdleCounter() { CCUIWindow::SetIdleCallback(this); }
    ~CIdleCounter() { CCUIWindow::SetIdleCallback(nullptr); }
    void OnIdle() override
    {
        ++m_nPasses;
        if (m_onIdle)
            m_onIdle();
    }
    int m_nPasses = 0;
    std::function<void()> m_onIdle;
};

// Writes down what passes its pre-translation; takes what it is told to.
class CWitness : public CCUIWindow
{
public:
    CWitness(std::string &record, char name) : m_record(record), m_name(name) {}
    UINT m_takes = 0;
    std::function<void()> m_onMessage;

    int PreTranslateMessage(MSG *pMsg) override
    {
        if (pMsg->message == WM_CHAR)
            m_record += m_name;
        return pMsg->message == m_takes;
    }

protected:
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == WM_APP && m_onMessage)
            m_onMessage();
        return CCUIWindow::OnMessage(message, wParam, lParam);
    }

private:
    std::string &m_record;
    char m_name;
};

}  // namespace

TEST(MessageLoop, OffersMessagesToParentsAndOwnersFirst)
{
    std::string record;
    CWitness frame(record, 'f'), child(record, 'c'), owner(record, 'o'), grandchild(record, 'g');
    ASSERT_TRUE(CreateTestWindow(owner));
    ASSERT_TRUE(CreateTestWindow(frame));
    ASSERT_TRUE(CreateTestWindow(child, frame, WS_CHILD));
    ASSERT_TRUE(CreateTestWindow(grandchild, child, WS_CHILD));
    MSG msg = {grandchild, WM_CHAR, 'x', 1, 0, {0, 0}};
    EXPECT_EQ(0, CCUIWindow::PerformPreTranslation(&msg));
    EXPECT_EQ("gcf", record);

    // A parent that is no framework window is stepped over to the owner that was named.
    const HWND hPlain =
        CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 9, 9, frame, nullptr, nullptr, nullptr);
    SetParent(grandchild, hPlain);
    grandchild.SetOwner(owner);
    record.clear();
    EXPECT_EQ(0, CCUIWindow::PerformPreTranslation(&msg));
    EXPECT_EQ("go", record);

    owner.m_takes = WM_CHAR;
    EXPECT_EQ(1, CCUIWindow::PerformPreTranslation(&msg));
    // Owners in a circle end the walk, not the program.
    owner.m_takes = 0;
    owner.SetOwner(grandchild);
    EXPECT_EQ(0, CCUIWindow::PerformPreTranslation(&msg));
    msg.hwnd = nullptr;
    EXPECT_EQ(0, CCUIWindow::PerformPreTranslation(&msg));
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
    CIdleCounter idle;
    std::string record;
    CWitness window(record, 'w');
    ASSERT_TRUE(CreateTestWindow(window));
    const UINT nOurs = CURegisterMessageId("test message of ours");
    // What counts, what does not, then a message that counts and is the last one.
    const UINT quiet[] = {WM_MOUSEMOVE, WM_NCMOUSEMOVE, WM_TIMER, WM_PAINT, 0x0118,  0x03B9,
                          0x03C0,       0x03C3,         0x03D2,   nOurs,    WM_USER, 0xFFFF};
    int nStep = 0;
    idle.m_onIdle = [&] {
        ++nStep;
        if (nStep == 1) {
            for (const UINT message : quiet)
                PostMessageA(window, message, 0, 0);
            PostMessageA(window, WM_APP, 0, 0);  // goes on below, when all these are done
        } else if (nStep == 2) {
            for (int i = 0; i < 5; ++i)
                PostMessageA(window, WM_NULL, 0, 0);
        } else {
            PostQuitMessage(33);
        }
    };
    // The quiet ones have started no pass by now.
    window.m_onMessage = [&] {
        EXPECT_EQ(1, idle.m_nPasses);
        PostMessageA(window, WM_NULL, 0, 0);
    };
    EXPECT_EQ(33, CCUIWindow::RunLoop());
    EXPECT_EQ(3, idle.m_nPasses);
    EXPECT_EQ(3, command.m_nUpdates);
    EXPECT_LE(static_cast<long>(CCUIWindow::GetLoopStartTime() - CCUIWindow::GetLastIdleTime()), 0);
    CCUIWindow::SetIdleTime(-5);
    EXPECT_EQ(-5, CCUIWindow::GetIdleTime());
}

namespace {

DWORD g_nNow = 1000;
DWORD WINAPI Now()
{
    return g_nNow;
}

}  // namespace

TEST(MessageLoop, TracesWhatTakesMoreThanASecond)
{
    const CImportHook clock("timeGetTime", Now);
    CCUDebugSwitch *pSwitch = CCUDebugSwitch::Find("\\Debug\\Window", "MessageDebug");
    ASSERT_TRUE(pSwitch);
    CDumped trace;
    std::string record;
    CWitness window(record, 'w');
    ASSERT_TRUE(CreateTestWindow(window));
    DWORD nTakes = 0;
    window.m_onMessage = [&] { g_nNow += nTakes; };
    const auto Pump = [&](long nLevel, DWORD nTime) {
        pSwitch->Set(nLevel);
        nTakes = nTime;
        PostMessageA(window, WM_APP, 0x12, 0x34);
        trace.m_text.clear();
        PumpWaiting();
        return trace.m_text;
    };
    CUGetTime();
    EXPECT_EQ("", Pump(1, 1000));
    EXPECT_EQ("", Pump(0, 1001));
    const std::string text = Pump(1, 1001);
    EXPECT_NE(std::string::npos, text.find("\nPumpMessage took 1001 (called at ")) << text;
    EXPECT_NE(std::string::npos, text.find("\n)\nDispatched hwnd: ")) << text;
    EXPECT_NE(std::string::npos, text.find(" msg: 8000 wparam: 12 lparam: 34 time: ")) << text;
    CIdleCounter idle;
    idle.m_onIdle = [] {
        g_nNow += 1001;
        PostQuitMessage(0);
    };
    trace.m_text.clear();
    CCUIWindow::RunLoop();
    EXPECT_NE(std::string::npos, trace.m_text.find("\nOnIdleUpdate() took 1001 (called at "));
    EXPECT_EQ(std::string::npos, trace.m_text.find("\nIdleUpdate() took"));
}

TEST(MessageLoop, ServesWhatAnIdleLoopMayServe)
{
    std::string record;
    CWitness window(record, 'w');
    ASSERT_TRUE(CreateTestWindow(window));
    int nServed = 0;
    window.m_onMessage = [&] { ++nServed; };
    const auto Post = [&](UINT message) { PostMessageA(window, message, 0, 0); };
    Post(WM_APP);
    Post(WM_APP);
    CCUIWindow::IdleLoop(0, 0);
    EXPECT_EQ(1, nServed);  // no time: one message
    CCUIWindow::IdleLoop(100000, 0);
    EXPECT_EQ(2, nServed);  // nothing more is there: no waiting

    // Restricted: the rest stays in the queue.
    Post(WM_APP);
    Post(0x03C0);
    PostMessageA(CUGetWindow(), WM_USER + 2, 0, 0);
    PostMessageA(CUGetWindow(), WM_USER + 3, 0, 0);
    CCUIWindow::IdleLoop(100000, 1);
    EXPECT_EQ(2, nServed);
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, 0x03C0, 0x03C0, PM_REMOVE));
    EXPECT_FALSE(PeekMessageA(&msg, nullptr, WM_USER + 2, WM_USER + 2, PM_REMOVE));
    EXPECT_TRUE(PeekMessageA(&msg, nullptr, WM_USER + 3, WM_USER + 3, PM_REMOVE));

    // Waiting: a message that comes later is served too.
    window.m_onMessage = [&] { ++nServed; };
    SetTimer(window, 1, 10, nullptr);
    const unsigned long nFrom = CUGetTime();
    CCUIWindow::IdleLoop(-60, 0);
    EXPECT_GE(CUGetTime() - nFrom, 60u);
    EXPECT_EQ(3, nServed);
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
    class CClosing : public CCUIWindow
    {
    public:
        CClosing(std::string &record, char name) : m_record(record), m_name(name) {}

    protected:
        void OnCommand(UINT, UINT nID, HWND hControl) override
        {
            EXPECT_EQ(GetDlgItem(m_hWnd, static_cast<int>(nID)), hControl);
            m_record += m_name;
            m_record += nID == IDCANCEL ? "c" : "n";
            Destroy();
        }

    private:
        std::string &m_record;
        char m_name;
    };
    const auto AddButton = [](HWND hParent, int nID) {
        CreateWindowExA(0, "BUTTON", "", WS_CHILD, 0, 0, 9, 9, hParent,
                        reinterpret_cast<HMENU>(nID), nullptr, nullptr);
    };
    CCUIWindow frame;
    CClosing first(order, '1'), second(order, '2'), third(order, '3');
    ASSERT_TRUE(CreateTestWindow(frame));
    ASSERT_TRUE(CreateTestWindow(first, frame, WS_POPUP));
    ASSERT_TRUE(CreateTestWindow(second, first, WS_POPUP));
    ASSERT_TRUE(CreateTestWindow(third, frame, WS_POPUP));
    AddButton(first, IDCANCEL);
    AddButton(second, IDNO);
    AddButton(third, IDCANCEL);
    AddButton(third, IDNO);
    CCUIWindow::AbortDialog(frame);
    EXPECT_FALSE(first.Exist() || second.Exist() || third.Exist());
    EXPECT_TRUE(order == "2n1c3c" || order == "3c2n1c") << order;
    CCUIWindow::AbortDialog(nullptr);
}

namespace {

constexpr int s_nPosts = 2000;  // each
CCUIWindow *g_pFlooded;
DWORD WINAPI Flood(LPVOID)
{
    for (int i = 0; i < s_nPosts; ++i) {
        while (!PostMessageA(*g_pFlooded, WM_APP, 0, 0))
            Sleep(0);  // the queue is full
    }
    return 0;
}

}  // namespace

TEST(MessageLoop, StandsAFloodOfPostedMessages)
{
    std::string record;
    CWitness window(record, 'w');
    ASSERT_TRUE(CreateTestWindow(window));
    g_pFlooded = &window;
    constexpr int s_nThreads = 10;
    int nServed = 0;
    window.m_onMessage = [&] {
        if (++nServed == s_nThreads * s_nPosts)
            PostQuitMessage(0);
    };
    HANDLE threads[s_nThreads];
    for (HANDLE &hThread : threads)
        hThread = CreateThread(nullptr, 0, Flood, nullptr, 0, nullptr);
    EXPECT_EQ(0, CCUIWindow::RunLoop());
    WaitForMultipleObjects(s_nThreads, threads, TRUE, INFINITE);
    for (const HANDLE hThread : threads)
        CloseHandle(hThread);
    EXPECT_EQ(s_nThreads * s_nPosts, nServed);
    EXPECT_EQ(&window, CCUIWindow::FromHandle(window));
}
