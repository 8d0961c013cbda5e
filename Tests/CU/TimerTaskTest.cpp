#include <gtest/gtest.h>

#include <string>

#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/TimerTask.h"
#include "Support/FailingCall.h"
#include "Support/Reports.h"
#include "Support/TestTimer.h"
#include "Support/Threads.h"

namespace {

using Texts = std::vector<std::string>;

class TimerTask : public testing::Test
{
protected:
    CReports m_reports;
    CDumped m_dumped;
    std::string &m_trace = m_dumped.m_text;
};

// Serves the thread's messages until the condition holds; gives up after half a minute.
template <typename F>
void PumpUntil(F condition)
{
    const DWORD nStart = GetTickCount();
    while (!condition() && GetTickCount() - nStart < 30000) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 1000, QS_ALLINPUT);
        CFakeClock::Pump();
    }
    EXPECT_TRUE(condition());
}

TEST_F(TimerTask, FirstHalfSecondAsksForNoTimerBehindTheStartTick)
{
    CFakeClock clock;
    CTestTimer late, soon;
    late.SetAlarm(501);
    EXPECT_TRUE(clock.m_delays.empty());
    soon.SetAlarm(500);
    EXPECT_EQ(std::vector<UINT>{500}, clock.m_delays);
    soon.KillAlarm();
    const HWND hWnd = TimerTaskWindow();
    const unsigned long uArmed = CUGetTime();
    clock.Jump(300);
    PumpUntil([&] { return clock.m_delays.size() > 1; });  // the window timer, in real time
    EXPECT_EQ((std::vector<UINT>{500, 201}), clock.m_delays);
    EXPECT_FALSE(KillTimer(hWnd, 1));  // it fires once
    clock.Run(1000);
    EXPECT_EQ(static_cast<long>(uArmed + 501), late.m_nNow);
}

TEST_F(TimerTask, TimerOfAnotherListIsReportedAndCountedDown)
{
    CTestTimer stranger, own;
    CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask();
    own.SetAlarm(1000);
    // Armed on a thread that ends before its list is used again.
    CThreads::Run(1, [&](int) {
        stranger.SetAlarm(1000);
        pTask->KillAlarm(&stranger);
        pTask->KillAlarm(&stranger);  // not armed any more: nothing
    });
    EXPECT_EQ(0u, pTask->GetListLength());  // own is in the list all the same
    EXPECT_EQ("TimerTask::KillAlarm - failed to find timer!\n", m_trace);
    EXPECT_EQ(Texts{"TimerTask: 0"}, m_reports.Asserts());
    own.KillAlarm();
    EXPECT_EQ(0xFFFFFFFF, pTask->GetListLength());
}

TEST_F(TimerTask, SlowAndCrowdedPassesAreTracedOnRequest)
{
    CFakeClock clock;
    CTestTimer slow, slower;
    PassStartTick(clock);
    char szExpected[200];
    auto trace = [&](CTestTimer &timer, long nDebug, DWORD nTook) {
        m_trace.clear();
        CCUDebugSwitch::Find("\\Debug\\Timer", "TimerDebug")->Set(nDebug);
        timer.m_action = [&clock, nTook] { clock.Jump(nTook); };
        timer.SetAlarm(0);
        clock.Pump();
        return m_trace;
    };
    EXPECT_EQ("", trace(slow, 0, 5000));
    EXPECT_EQ("", trace(slow, 1, 1000));
    const int nBefore = static_cast<int>(CUGetTime());
    sprintf(szExpected, " TimeOut took 1001 (called at %d, finished at %d\n)\nFor object %x\n",
            nBefore, nBefore + 1001, reinterpret_cast<unsigned>(&slow));
    const std::string text = trace(slow, 1, 1001);  // behind the date
    ASSERT_GT(text.size(), strlen(szExpected));
    EXPECT_EQ(szExpected, text.substr(text.size() - strlen(szExpected)));
    CCUDebugSwitch::Find(nullptr, "TimeOutThreshold")->Set(20);
    EXPECT_TRUE(trace(slow, 1, 20) == "" && trace(slow, 1, 21) != "");
    for (const size_t nMany : {200u, 201u}) {
        std::vector<CTestTimer> timers(nMany);
        for (CTestTimer &timer : timers)
            timer.SetAlarm(0);
        m_trace.clear();
        clock.Pump();
        sprintf(szExpected, "For object %x\n", reinterpret_cast<unsigned>(&timers.back()));
        EXPECT_EQ(nMany > 200, m_trace.find(szExpected) != std::string::npos);
        EXPECT_EQ(nMany > 200, m_trace != "");
    }
    trace(slower, 0, 6000);
    trace(slow, 0, 5999);
    for (const bool bFirst : {true, false}) {
        m_trace.clear();
        EXPECT_EQ(1, CURunProcessInfoHandlers("timertask"));
        sprintf(szExpected, "#timers:%d  max:%d  vtbl:%08x\n", bFirst ? 5 + 401 + 3 : 0,
                bFirst ? 6000 : 0, bFirst ? *reinterpret_cast<unsigned *>(&slower) : 0);
        EXPECT_EQ(szExpected, m_trace);
    }
}

TEST_F(TimerTask, OutlivesFailingCallsAndForeignHands)
{
    CFakeClock clock;
    CTestTimer timer;
    {
        // For the task, then for its notice of the thread's end.
        const CFailingCall<BOOL(DWORD, void *)> noStorage("TlsSetValue");
        int nMade = 0;
        CFailPlan::RunAll([&] {
            timer.SetAlarm(100);
            nMade += TimerTaskWindow() != nullptr;
        });
        EXPECT_EQ(1, nMade);
    }
    CFailPlan::Start(CFailPlan::ALL);
    PassStartTick(clock);
    clock.m_bFailing = true;
    timer.SetAlarm(100);
    EXPECT_EQ("CUTimerTask: >>>> Failed to set timer (100) <<<<\n", m_trace);
    EXPECT_EQ(0, CCUTimerTask::GetThreadTimerTask()->GetPendingCount());
    clock.m_bFailing = false;
    timer.SetAlarm(100);
    // It has fired but its message has not been served: the message goes. What another thread has
    // sent comes in between and asks for the notification first.
    clock.Jump(100);
    clock.Fire();
    CThreads::Run(1, [](int) { SendNotifyMessageA(TimerTaskWindow(), WM_TIMER, 1, 0); });
    clock.m_delays.clear();
    timer.SetAlarm(200);
    EXPECT_EQ(std::vector<UINT>{200}, clock.m_delays);
    EXPECT_EQ(0, clock.Pump());
    EXPECT_EQ(1, CCUTimerTask::GetThreadTimerTask()->GetPendingCount());
    // The message is somewhere else; that of the message loop stays what it is.
    MSG msg;
    clock.Jump(200);
    clock.Fire();
    EXPECT_TRUE(PeekMessageA(&msg, TimerTaskWindow(), 0xC000, 0xFFFF, PM_REMOVE));
    PostQuitMessage(77);
    m_trace.clear();
    timer.SetAlarm(150);
    EXPECT_EQ(">>> CCUTimerTask::ResetTimer Failed to remove pending timer message.\n", m_trace);
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(static_cast<UINT>(WM_QUIT), msg.message);
    EXPECT_EQ(77u, msg.wParam);
    clock.Run(1000);
    EXPECT_EQ(1, timer.m_nCalls);
    // A mock message that nobody waits for is reported, and serves.
    const UINT uMock = RegisterWindowMessageA("TimerTaskMock");
    timer.SetAlarm(1000);
    clock.Jump(1000);
    SendMessageA(TimerTaskWindow(), uMock, 0, 0);
    EXPECT_EQ(2, timer.m_nCalls);
    EXPECT_EQ(Texts{"TimerTask: TimerTask->m_bMockTimerSet"}, m_reports.Asserts());
    // Somebody destroys the window while its message is on the way: the next arming makes another,
    // for which there is no window timer to wait for.
    timer.SetAlarm(0);
    DestroyWindow(TimerTaskWindow());
    clock.Run(1000);
    {
        const CFailingCall<UINT_PTR(HWND, UINT_PTR, UINT, TIMERPROC)> noTimer("SetTimer");
        timer.SetAlarm(600);
    }
    clock.Run(1000);
    EXPECT_EQ(3, timer.m_nCalls);
    // A queue without room for the message: the next arming tries again.
    {
        const CFailingCall<BOOL(HWND, UINT, WPARAM, LPARAM)> fullQueue("PostMessageA");
        timer.SetAlarm(0);
    }
    timer.SetAlarm(0);
    clock.Run(1000);
    EXPECT_EQ(4, timer.m_nCalls);
    // What another thread has sent runs a loop, and that asks for a notification that has come too
    // when the message for which it has been let in is looked for.
    const auto runLoop = [](unsigned int, WPARAM wParam, LPARAM) {
        CFakeClock &outer = *reinterpret_cast<CFakeClock *>(wParam);
        outer.Run(0);
        outer.Jump(100);
        outer.Fire();
    };
    CUSetMessageHandler(WM_USER, runLoop);
    const HWND hWnd = CUGetWindow();
    CTestTimer head;
    timer.SetAlarm(100);
    clock.Jump(90);
    clock.Fire();
    CThreads::Run(
        1, [&](int) { SendNotifyMessageA(hWnd, WM_USER, reinterpret_cast<WPARAM>(&clock), 0); });
    head.SetAlarm(0);
    clock.Run(1000);
    EXPECT_EQ(5, timer.m_nCalls);
}

// Many threads serve their timers side by side and end with timers armed, which are then free for
// other threads. Both with fiber-local storage and on systems that have none.
void ServeOnThreads(int nThreads)
{
    std::vector<CTestTimer> timers(static_cast<size_t>(nThreads) * 2);
    CThreads::Run(nThreads, [&](int nThread) {
        CTestTimer *pTimer = &timers[static_cast<size_t>(nThread) * 2];
        const DWORD nOwner = GetCurrentThreadId();
        pTimer->m_action = [nOwner] { EXPECT_EQ(nOwner, GetCurrentThreadId()); };
        pTimer[1].SetAlarm(3600000);
        pTimer->SetAlarm(0);
        PumpUntil([&] { return pTimer->m_nCalls > 0; });
        pTimer->SetAlarm(20);
        PumpUntil([&] { return pTimer->m_nCalls > 1; });
        pTimer->SetAlarm(0);
        ExitThread(0);
    });
    EXPECT_EQ(nullptr, TimerTaskWindow());
    for (size_t i = 0; i < timers.size(); ++i) {
        EXPECT_EQ(i % 2 ? 0 : 2, timers[i].m_nCalls);
        timers[i].KillAlarm();  // not armed: nothing to report
        timers[i].SetAlarm(10000);
    }
    EXPECT_EQ(timers.size(), CCUTimerTask::GetThreadTimerTask()->GetListLength());
}

TEST_F(TimerTask, ThreadsEndWithTimersArmed)
{
    ServeOnThreads(16);
    EXPECT_EQ("", m_trace);
}

TEST_F(TimerTask, ThreadsEndOnOldSystems)
{
    MultimediaTime();  // which every system has
    const CFailingCall<FARPROC(HMODULE, const char *)> oldSystem("GetProcAddress");
    const CFailingCall<UINT(const char *)> noMessages("RegisterWindowMessageA");
    CFailPlan::Start(CFailPlan::ALL);
    ServeOnThreads(8);
}

TEST_F(TimerTask, ThreadEndMayLeaveTheTimerRunning)
{
    for (const bool bKillTimer : {false, true}) {
        CFakeClock clock;
        CTestTimer timer;
        timer.SetAlarm(100);
        CCUTimerTask::GetThreadTimerTask()->OnThreadExit(bKillTimer);
        EXPECT_EQ(!bKillTimer, clock.IsPending());
        EXPECT_EQ(nullptr, TimerTaskWindow());
        clock.Run(1000);
        EXPECT_EQ(0, timer.m_nCalls);
    }
    char szExpected[100];
    sprintf(szExpected, "Not killing timer for thread %lx\n", GetCurrentThreadId());
    EXPECT_EQ(szExpected, m_trace);
}

}  // namespace
