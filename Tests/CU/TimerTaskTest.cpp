#include <gtest/gtest.h>

#include <memory>

#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/TimerTask.h"
#include "Support/FakeClock.h"
#include "Support/TemporaryDirectory.h"
#include "Support/TestTimer.h"

namespace {

class TimerTask : public testing::Test, public CCUDumpCallback
{
protected:
    TimerTask() { CUDumpRegister(this); }
    ~TimerTask() override { CUDumpUnRegister(this); }
    void OnDump(const CCUString &sText) override { m_trace += sText; }

    CTemporaryDirectory m_directory;
    std::string m_trace;
};

// Serves the thread's messages until the condition holds.
template <typename F>
void PumpUntil(F condition)
{
    MSG msg;
    while (!condition() && GetMessageA(&msg, nullptr, 0, 0) > 0)
        DispatchMessageA(&msg);
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
    char szTitle[32] = "";
    GetWindowTextA(hWnd, szTitle, sizeof szTitle);
    EXPECT_STREQ("CCUTimerTask", szTitle);
    const unsigned long uArmed = CUGetTime();
    clock.Jump(300);
    PumpUntil([&] { return clock.m_delays.size() > 1; });  // the window timer, in real time
    EXPECT_EQ((std::vector<UINT>{500, 201}), clock.m_delays);
    EXPECT_FALSE(KillTimer(hWnd, 1));  // it fires once
    clock.Run(1000);
    EXPECT_EQ(static_cast<long>(uArmed + 501), late.m_nNow);
    late.SetAlarm(20);
    EXPECT_EQ(20u, clock.m_delays.back());
    EXPECT_FALSE(KillTimer(hWnd, 1));
    EXPECT_EQ("", m_trace);
}

TEST_F(TimerTask, RealClockCallsOnTheArmingThreadOnly)
{
    const DWORD nThread = GetCurrentThreadId();
    CTestTimer timer([&] { EXPECT_EQ(nThread, GetCurrentThreadId()); });
    timer.SetAlarm(30);
    const unsigned long uStart = CUGetTime();
    Sleep(100);  // the timer thread has had its time, and only posted
    EXPECT_EQ(0, timer.m_nCalls);
    PumpUntil([&] { return timer.m_nCalls > 0; });
    EXPECT_GE(timer.m_nNow - static_cast<long>(uStart), 30);
}

TEST_F(TimerTask, TimerOfAnotherListIsReportedAndCountedDown)
{
    CTestTimer stranger, own;
    CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask();
    own.SetAlarm(1000);
    struct CArg
    {
        CTestTimer *timer;
        CCUTimerTask *task;
    } arg = {&stranger, pTask};
    // Armed on a thread whose list must not be touched from here: it ends before anything is due.
    const HANDLE hThread = CreateThread(
        nullptr, 0,
        [](void *p) WINAPI -> DWORD {
            CArg *pArg = static_cast<CArg *>(p);
            pArg->timer->SetAlarm(1000);
            pArg->task->KillAlarm(pArg->timer);
            pArg->task->KillAlarm(pArg->timer);  // no longer armed: nothing
            return 0;
        },
        &arg, 0, nullptr);
    WaitForSingleObject(hThread, INFINITE);
    CloseHandle(hThread);
    EXPECT_EQ(0u, pTask->GetListLength());  // own is in the list all the same
    EXPECT_EQ("TimerTask::KillAlarm - failed to find timer!\n", m_trace);
    EXPECT_NE(std::string::npos,
              m_directory.Contents("ZELTrace-*").find("Assert:0  File:TimerTask  Line:"));
    own.KillAlarm();
    EXPECT_EQ(0xFFFFFFFF, pTask->GetListLength());
}

TEST_F(TimerTask, SlowAndCrowdedPassesAreTracedOnRequest)
{
    CFakeClock clock;
    CTestTimer slow, slower;
    slow.SetAlarm(0);
    SendMessageA(TimerTaskWindow(), WM_TIMER, 1, 0);
    clock.Run(10);
    auto lines = [&](long nDebug, DWORD nTook) {
        m_trace.clear();
        CCUDebugSwitch::Find("\\Debug\\Timer", "TimerDebug")->Set(nDebug);
        slow.m_action = [&clock, nTook] { clock.Jump(nTook); };
        slow.SetAlarm(0);
        clock.Pump();
        return m_trace;
    };
    EXPECT_EQ("", lines(0, 5000));
    EXPECT_EQ("", lines(1, 1000));
    const int nBefore = static_cast<int>(CUGetTime());
    std::string trace = lines(1, 1001);
    char szExpected[200];
    sprintf(szExpected, " TimeOut took 1001 (called at %d, finished at %d\n)\nFor object %x\n",
            nBefore, nBefore + 1001, static_cast<unsigned>(reinterpret_cast<ULONG_PTR>(&slow)));
    ASSERT_GT(trace.size(), strlen(szExpected));
    EXPECT_EQ(szExpected, trace.substr(trace.size() - strlen(szExpected)));  // behind the date
    CCUDebugSwitch::Find(nullptr, "TimeOutThreshold")->Set(20);
    EXPECT_EQ("", lines(1, 20));
    EXPECT_NE("", lines(1, 21));
    CCUDebugSwitch::Find(nullptr, "TimeOutThreshold")->Set(0);

    for (const long nLimit : {0L, 3L}) {
        const size_t nExpected = nLimit ? 3 : 200;
        CCUDebugSwitch::Find(nullptr, "TimerCountThreshold")->Set(nLimit);
        std::vector<CTestTimer> timers(nExpected + 2);
        for (CTestTimer &timer : timers)
            timer.SetAlarm(0);
        m_trace.clear();
        clock.Pump();
        size_t nTraced = 0;
        for (size_t at = 0; (at = m_trace.find("TimeOut took 0 ", at)) != std::string::npos; ++at)
            ++nTraced;
        EXPECT_EQ(2u, nTraced) << nLimit;
    }

    slower.m_action = [&clock] { clock.Jump(6000); };
    slower.SetAlarm(0);
    clock.Pump();
    for (const bool bFirst : {true, false}) {
        m_trace.clear();
        EXPECT_EQ(1, CURunProcessInfoHandlers("timertask"));
        sprintf(szExpected, "#timers:%d  max:%d  vtbl:%08x\n", bFirst ? 6 + 202 + 5 + 1 : 0,
                bFirst ? 6000 : 0, bFirst ? *reinterpret_cast<unsigned *>(&slower) : 0);
        EXPECT_EQ(szExpected, m_trace);
    }
}

TEST_F(TimerTask, OutlivesFailingCallsAndForeignHands)
{
    CFakeClock clock;
    CTestTimer timer;
    clock.m_bFailing = true;
    timer.SetAlarm(100);
    EXPECT_EQ("CUTimerTask: >>>> Failed to set timer (100) <<<<\n", m_trace);
    EXPECT_EQ(0, CCUTimerTask::GetThreadTimerTask()->GetPendingCount());
    clock.m_bFailing = false;
    timer.SetAlarm(100);
    // It has fired but its message has not been served: the message goes.
    clock.Jump(100);
    clock.Fire();
    timer.SetAlarm(200);
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
    EXPECT_TRUE(CUIsYourMessage(uMock));
    timer.SetAlarm(1000);
    clock.Jump(1000);
    SendMessageA(TimerTaskWindow(), uMock, 0, 0);
    EXPECT_EQ(2, timer.m_nCalls);
    EXPECT_NE(std::string::npos,
              m_directory.Contents("ZELTrace-*").find("TimerTask->m_bMockTimerSet"));
    // Somebody destroys the window while its message is on the way: the next arming makes another.
    timer.SetAlarm(0);
    DestroyWindow(TimerTaskWindow());
    clock.Run(1000);
    timer.SetAlarm(0);
    clock.Run(1000);
    EXPECT_EQ(3, timer.m_nCalls);
}

struct CTimerThread
{
    CTestTimer m_soon, m_later, m_never;
    HWND m_hWnd = nullptr;

    static DWORD WINAPI Run(void *p)
    {
        CTimerThread *pThread = static_cast<CTimerThread *>(p);
        pThread->m_never.SetAlarm(3600000);
        pThread->m_later.SetAlarm(20);
        pThread->m_soon.SetAlarm(0);
        pThread->m_hWnd = TimerTaskWindow();
        PumpUntil([&] { return pThread->m_soon.m_nCalls && pThread->m_later.m_nCalls; });
        pThread->m_soon.SetAlarm(1000);
        pThread->m_later.SetAlarm(0);
        ExitThread(0);
    }
};

FARPROC WINAPI OldSystem(HMODULE, const char *)
{
    return nullptr;
}

// Many threads serve their timers side by side and end with timers armed, which are then free:
// for other threads to arm, or to be destroyed. On systems with and without fiber-local storage.
void RunTimerThreads(int nThreads, int nRounds)
{
    for (int nRound = 0; nRound < nRounds; ++nRound) {
        std::vector<CTimerThread> threads(static_cast<size_t>(nThreads));
        std::vector<HANDLE> handles;
        for (CTimerThread &thread : threads)
            handles.push_back(CreateThread(nullptr, 0, CTimerThread::Run, &thread, 0, nullptr));
        for (HANDLE hThread : handles) {
            WaitForSingleObject(hThread, INFINITE);
            CloseHandle(hThread);
        }
        for (CTimerThread &thread : threads) {
            EXPECT_NE(nullptr, thread.m_hWnd);
            EXPECT_FALSE(IsWindow(thread.m_hWnd));
            EXPECT_EQ(1, thread.m_soon.m_nCalls);
            EXPECT_EQ(1, thread.m_later.m_nCalls);
            EXPECT_EQ(0, thread.m_never.m_nCalls);
            // Disarmed: this thread's list would not know them.
            thread.m_never.KillAlarm();
            thread.m_soon.SetAlarm(10000);
        }
        EXPECT_EQ(threads.size(), CCUTimerTask::GetThreadTimerTask()->GetListLength());
    }
    EXPECT_EQ(0u, CCUTimerTask::GetThreadTimerTask()->GetListLength());
}

TEST_F(TimerTask, ThreadsEndWithTimersArmed)
{
    RunTimerThreads(8, 4);
    EXPECT_EQ("", m_trace);
}

TEST_F(TimerTask, ThreadsEndOnOldSystems)
{
    const CImportHook hook("GetProcAddress", OldSystem);
    RunTimerThreads(8, 1);
}

TEST_F(TimerTask, ThreadEndMayLeaveTheTimerRunning)
{
    CFakeClock clock;
    CTestTimer timer;
    timer.SetAlarm(100);
    const HWND hWnd = TimerTaskWindow();
    CCUTimerTask::GetThreadTimerTask()->OnThreadExit(false);
    char szExpected[100];
    sprintf(szExpected, "Not killing timer for thread %lx\n", GetCurrentThreadId());
    EXPECT_EQ(szExpected, m_trace);
    EXPECT_FALSE(IsWindow(hWnd));
    clock.Run(1000);
    EXPECT_EQ(0, timer.m_nCalls);
    timer.SetAlarm(100);
    CCUTimerTask::GetThreadTimerTask()->OnThreadExit(true);
    EXPECT_EQ(0u, clock.Pending());
}

}  // namespace
