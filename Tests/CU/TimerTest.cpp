#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

#include "CU/DebugSwitch.h"
#include "CU/TimerTask.h"
#include "Support/FailingCall.h"
#include "Support/Reports.h"
#include "Support/TestTimer.h"
#include "Support/Threads.h"

namespace {

// Alarms on a clock that the test moves, after the first half second of the hidden window.
class Timer : public testing::Test
{
protected:
    Timer()
    {
        PassStartTick(m_clock);
        m_uStart = CUGetTime();
    }
    // A timer that notes when it is called, as "name@milliseconds ".
    std::unique_ptr<CTestTimer> Make(char name)
    {
        return std::make_unique<CTestTimer>(
            [this, name] { m_log += name + ("@" + std::to_string(CUGetTime() - m_uStart)) + " "; });
    }

    CReports m_reports;
    CDumped m_dumped;
    CFakeClock m_clock;
    unsigned long m_uStart;
    std::string m_log;
    CCUTimerTask *const m_pTask = CCUTimerTask::GetThreadTimerTask();
    std::unique_ptr<CTestTimer> a = Make('a'), b = Make('b'), c = Make('c'), d = Make('d');
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

}  // namespace

// Against a list that is kept in order, while the clock wraps.
TEST_F(Timer, ServesEachOnceByAlarmAndEqualOnesInTheOrderOfArming)
{
    std::mt19937 random(3);
    m_clock.Jump(0UL - 5000 - CUGetTime());
    m_uStart = CUGetTime();
    std::vector<std::pair<long, int>> armed;  // when due, and which
    CTestTimer *const timers[] = {a.get(), b.get(), c.get(), d.get()};
    std::string expected;
    long nNow = 0;
    for (int i = 0; i < 3000; ++i) {
        const int nTimer = static_cast<int>(random() % 4), nAct = static_cast<int>(random() % 4);
        const long nDelay = static_cast<long>(random() % (random() % 16 ? 60 : 200000)) - 10;
        const auto found = std::find_if(armed.begin(), armed.end(),
                                        [&](const auto &one) { return one.second == nTimer; });
        const bool bKept = nAct == 1 && found != armed.end() && found->first - nNow <= nDelay;
        if (nAct == 0)
            timers[nTimer]->KillAlarm();
        else if (nAct == 1)
            timers[nTimer]->SetAlarmIfEarlier(nDelay);
        else if (nAct == 2)
            timers[nTimer]->SetAlarm(nDelay);
        if (nAct < 3 && !bKept && found != armed.end())
            armed.erase(found);
        if ((nAct == 1 && !bKept) || nAct == 2) {
            // At 0 it would mean "not armed".
            const long nDue = nNow + nDelay + (nNow + nDelay == 5000);
            const auto later = [](long nTime, const auto &one) { return nTime < one.first; };
            armed.insert(std::upper_bound(armed.begin(), armed.end(), nDue, later), {nDue, nTimer});
        }
        if (nAct == 3) {
            m_clock.Run(static_cast<DWORD>(nDelay + 10));
            const long nEnd = nNow + nDelay + 10;
            for (; !armed.empty() && armed[0].first <= nEnd; armed.erase(armed.begin())) {
                nNow = std::max(nNow, armed[0].first);
                expected += "abcd"[armed[0].second] + ("@" + std::to_string(nNow)) + " ";
            }
            nNow = nEnd;
            ASSERT_EQ(expected, m_log) << i;
            ASSERT_EQ(m_clock.IsPending(), m_pTask->GetPendingCount() == 1) << i;
        }
        ASSERT_EQ(armed.size(), m_pTask->GetListLength()) << i;
    }
    EXPECT_EQ(60000u, *std::max_element(m_clock.m_delays.begin(), m_clock.m_delays.end()));
    EXPECT_EQ("", m_dumped.m_text);
}

TEST_F(Timer, TimeOutMayArmKillDeleteAndRunALoop)
{
    CTestTimer killer([&] {
        b.reset();       // due in this very pass
        a->SetAlarm(0);  // in a following one
    });
    c->m_action = [&] { c.reset(); };
    CTestTimer again([&] { again.SetAlarm(again.m_nCalls < 3 ? 0 : 500); });
    for (CTestTimer *pTimer : {c.get(), &killer, b.get(), &again})
        pTimer->SetAlarm(10);
    m_clock.Jump(10);
    m_clock.Fire();
    EXPECT_EQ(1, m_clock.Pump(1));
    EXPECT_EQ(nullptr, c);
    EXPECT_EQ("", m_log);
    EXPECT_EQ(1, again.m_nCalls);
    m_clock.Run(5);
    EXPECT_EQ("a@11 ", m_log);
    EXPECT_EQ(3, again.m_nCalls);
    d->m_action = [&] {
        a->SetAlarm(20);
        m_clock.Run(50);       // a loop of its own serves alarms that are armed there
        d->SetAlarm(MAXLONG);  // not past, seen from the start of the pass
    };
    d->SetAlarm(0);
    m_clock.Run(100);
    EXPECT_EQ("a@11 a@35 ", m_log);
    EXPECT_EQ(1, d->m_nCalls);
}

TEST_F(Timer, PassStopsAfterATenthOfASecond)
{
    for (CTestTimer *pTimer : {a.get(), b.get(), c.get()}) {
        pTimer->m_action = [this] { m_clock.Jump(50); };
        pTimer->SetAlarm(10);
    }
    m_clock.Jump(10);
    m_clock.Fire();
    EXPECT_EQ(1, m_clock.Pump(1));
    EXPECT_EQ(static_cast<long>(m_uStart + 10), b->m_nNow);  // when the pass began
    EXPECT_EQ(0, c->m_nCalls);
    EXPECT_EQ(1, m_clock.Pump());  // the next pass, without waiting
    EXPECT_EQ(1, c->m_nCalls);
}

TEST_F(Timer, AfterShutdownNothingIsArmedOrKilledAndNoDeadObjectIsServed)
{
    for (CTestTimer *pTimer : {a.get(), b.get(), d.get()})
        pTimer->SetAlarm(0);
    CUShutdown();
    b->KillAlarm();
    c->SetAlarm(0);
    SetLastError(4711);
    d.reset();
    EXPECT_EQ(4711u, GetLastError());
    m_clock.Run(1000);
    EXPECT_EQ("a@0 b@0 ", m_log);
}

TEST_F(Timer, SlowAndCrowdedPassesAreTracedOnRequest)
{
    const auto serve = [&](int nTimers, DWORD nTook) {
        std::vector<CTestTimer> timers(static_cast<size_t>(nTimers));
        timers.back().m_action = [&] { m_clock.Jump(nTook); };
        for (CTestTimer &timer : timers)
            timer.SetAlarm(0);
        m_dumped.m_text.clear();
        m_clock.Pump();
        char szObject[40];
        sprintf(szObject, "For object %x\n", reinterpret_cast<unsigned>(&timers.back()));
        EXPECT_EQ(m_dumped.m_text.empty(), m_dumped.m_text.find(szObject) == std::string::npos);
        return !m_dumped.m_text.empty();
    };
    EXPECT_FALSE(serve(1, 5000));
    CCUDebugSwitch::Find("\\Debug\\Timer", "TimerDebug")->Set(1);
    EXPECT_FALSE(serve(200, 1000));
    EXPECT_TRUE(serve(201, 0));
    const int nBefore = static_cast<int>(CUGetTime());
    EXPECT_TRUE(serve(1, 1001));
    char szExpected[200];
    sprintf(szExpected, " TimeOut took 1001 (called at %d, finished at %d\n)\n", nBefore,
            nBefore + 1001);
    EXPECT_NE(std::string::npos, m_dumped.m_text.find(szExpected));
    CCUDebugSwitch::Find(nullptr, "TimeOutThreshold")->Set(20);
    EXPECT_TRUE(serve(1, 21));
    for (const bool bFirst : {true, false}) {
        m_dumped.m_text.clear();
        EXPECT_EQ(1, CURunProcessInfoHandlers("timertask"));
        sprintf(szExpected, "#timers:%d  max:%d  vtbl:%08x\n", bFirst ? 405 : 0, bFirst ? 5000 : 0,
                bFirst ? *reinterpret_cast<unsigned *>(a.get()) : 0);
        EXPECT_EQ(szExpected, m_dumped.m_text);
    }
}

TEST_F(Timer, OutlivesLostMessagesAndForeignHands)
{
    // No timer is to be had, or no room in the queue: the next arming tries again.
    m_clock.m_bFailing = true;
    a->SetAlarm(100);
    EXPECT_EQ("CUTimerTask: >>>> Failed to set timer (100) <<<<\n", m_dumped.m_text);
    EXPECT_EQ(0, m_pTask->GetPendingCount());
    m_clock.m_bFailing = false;
    {
        const CFailingCall<BOOL(HWND, UINT, WPARAM, LPARAM)> fullQueue("PostMessageA");
        CFailPlan::Start(CFailPlan::ALL);
        a->SetAlarm(0);
    }
    a->SetAlarm(100);
    // It has fired but its message has not been served: the message goes.
    m_clock.Jump(100);
    m_clock.Fire();
    a->SetAlarm(200);
    EXPECT_EQ(0, m_clock.Pump());
    EXPECT_EQ(1, m_pTask->GetPendingCount());
    // The message is somewhere else; that of the message loop stays what it is.
    MSG msg;
    m_clock.Jump(200);
    m_clock.Fire();
    EXPECT_TRUE(PeekMessageA(&msg, TimerTaskWindow(), 0xC000, 0xFFFF, PM_REMOVE));
    PostQuitMessage(77);
    m_dumped.m_text.clear();
    a->SetAlarm(150);
    EXPECT_EQ(">>> CCUTimerTask::ResetTimer Failed to remove pending timer message.\n",
              m_dumped.m_text);
    ASSERT_TRUE(PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(77u, msg.wParam);
    // A mock message that nobody waits for is reported, and serves.
    m_clock.Jump(150);
    SendMessageA(TimerTaskWindow(), RegisterWindowMessageA("TimerTaskMock"), 0, 0);
    EXPECT_EQ(1, a->m_nCalls);
    // Somebody destroys the window while its message is on the way: the next arming makes another.
    a->SetAlarm(0);
    DestroyWindow(TimerTaskWindow());
    a->SetAlarm(10);
    m_clock.Run(1000);
    EXPECT_EQ(2, a->m_nCalls);
    // Armed on a thread that ends before its list is used again; reported and counted down.
    b->SetAlarm(1000);
    CThreads::Run(1, [&](int) {
        c->SetAlarm(1000);
        m_pTask->KillAlarm(c.get());
    });
    EXPECT_EQ(0u, m_pTask->GetListLength());  // b is in the list all the same
    EXPECT_EQ((std::vector<std::string>{"TimerTask: TimerTask->m_bMockTimerSet", "TimerTask: 0"}),
              m_reports.Asserts());
}

TEST(TimerTask, FirstHalfSecondAsksForNoTimerBehindTheStartTick)
{
    CFakeClock clock;
    CTestTimer late, soon;
    late.SetAlarm(501);
    EXPECT_TRUE(clock.m_delays.empty());
    soon.SetAlarm(500);
    soon.KillAlarm();
    const HWND hWnd = TimerTaskWindow();
    clock.Jump(300);
    PumpUntil([&] { return clock.m_delays.size() > 1; });  // the window timer, in real time
    EXPECT_EQ((std::vector<UINT>{500, 201}), clock.m_delays);
    EXPECT_FALSE(KillTimer(hWnd, 1));  // it fires once
    // A thread that ends kills its timer or lets it run out.
    CCUTimerTask::GetThreadTimerTask()->OnThreadExit(false);
    EXPECT_TRUE(clock.IsPending());
    EXPECT_EQ(nullptr, TimerTaskWindow());
    clock.Run(1000);
    EXPECT_EQ(0, late.m_nCalls);
    PassStartTick(clock);
    late.SetAlarm(100);
    CCUTimerTask::GetThreadTimerTask()->OnThreadExit(true);
    EXPECT_FALSE(clock.IsPending());
}

// Many threads serve their timers side by side and end with timers armed, which are then free for
// other threads.
static void ServeOnThreads()
{
    std::vector<CTestTimer> timers(16);
    CThreads::Run(8, [&](int nThread) {
        CTestTimer *pTimer = &timers[static_cast<size_t>(nThread) * 2];
        pTimer[1].SetAlarm(3600000);
        for (int i = 0; i < 2; ++i) {
            pTimer->SetAlarm(i * 20);
            PumpUntil([&] { return pTimer->m_nCalls > i; });
        }
        pTimer->SetAlarm(0);
    });
    EXPECT_EQ(nullptr, TimerTaskWindow());
    for (size_t i = 0; i < timers.size(); ++i) {
        EXPECT_EQ(i % 2 ? 0 : 2, timers[i].m_nCalls);
        timers[i].SetAlarm(10000);
    }
    EXPECT_EQ(timers.size(), CCUTimerTask::GetThreadTimerTask()->GetListLength());
}

TEST(TimerTask, ThreadsEndWithTimersArmed)
{
    ServeOnThreads();
}

// Without fiber-local storage.
TEST(TimerTask, ThreadsEndOnOldSystems)
{
    MultimediaTime();  // which every system has
    const CFailingCall<FARPROC(HMODULE, const char *)> oldSystem("GetProcAddress");
    CFailPlan::Start(CFailPlan::ALL);
    ServeOnThreads();
}
