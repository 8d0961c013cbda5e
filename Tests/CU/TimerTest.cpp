#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "CU/TimerTask.h"
#include "Support/ChildProcess.h"
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
    CFakeClock m_clock;
    unsigned long m_uStart;
    std::string m_log;
    CCUTimerTask *const m_pTask = CCUTimerTask::GetThreadTimerTask();
    std::unique_ptr<CTestTimer> a = Make('a'), b = Make('b'), c = Make('c'), d = Make('d');
};

}  // namespace

// Against a list that is kept in order, while the clock wraps.
TEST_F(Timer, ServesEachOnceByAlarmAndEqualOnesInTheOrderOfArming)
{
    std::mt19937 random(3);
    m_clock.Jump(0UL - 5000 - CUGetTime());
    m_uStart = CUGetTime();
    std::multimap<long, CTestTimer *> armed;  // by when they are due; equal ones as inserted
    CTestTimer *const timers[] = {a.get(), b.get(), c.get(), d.get()};
    std::string expected;
    long nNow = 0;
    for (int i = 0; i < 3000; ++i) {
        CTestTimer *const pTimer = timers[random() % 4];
        const auto nAct = random() % 4;
        const long nDelay = static_cast<long>(random() % (random() % 16 ? 60 : 200000)) - 10;
        auto found = armed.begin();
        while (found != armed.end() && found->second != pTimer)
            ++found;
        const bool bArmed = found != armed.end();
        const bool bKept = nAct == 1 && bArmed && found->first - nNow <= nDelay;
        if (nAct < 3 && bArmed && !bKept)
            armed.erase(found);
        if (nAct == 0) {
            pTimer->KillAlarm();
        } else if (nAct < 3) {
            nAct == 1 ? pTimer->SetAlarmIfEarlier(nDelay) : pTimer->SetAlarm(nDelay);
            if (!bKept)  // at 0 it would mean "not armed"
                armed.emplace(nNow + nDelay + (nNow + nDelay == 5000), pTimer);
        } else {
            m_clock.Run(static_cast<DWORD>(nDelay + 10));
            const long nEnd = nNow + nDelay + 10;
            for (; !armed.empty() && armed.begin()->first <= nEnd; armed.erase(armed.begin())) {
                nNow = std::max(nNow, armed.begin()->first);
                const auto nTimer = std::find(timers, timers + 4, armed.begin()->second) - timers;
                expected += "abcd"[nTimer] + ("@" + std::to_string(nNow)) + " ";
            }
            nNow = nEnd;
            ASSERT_EQ(expected, m_log) << i;
            ASSERT_EQ(m_clock.IsPending(), m_pTask->GetPendingCount() == 1) << i;
        }
        ASSERT_EQ(armed.size(), m_pTask->GetListLength()) << i;
    }
    EXPECT_EQ(60000u, *std::max_element(m_clock.m_delays.begin(), m_clock.m_delays.end()));
    EXPECT_EQ(0, m_reports.Total());
}

TEST_F(Timer, TimeOutMayArmKillDeleteAndRunALoop)
{
    CTestTimer killer([&] {
        b.reset();       // due in this very pass
        a->SetAlarm(0);  // in a following one
    });
    c->m_action = [&] { c.reset(); };
    for (CTestTimer *pTimer : {c.get(), &killer, b.get()})
        pTimer->SetAlarm(10);
    m_clock.Run(10);
    EXPECT_EQ("", m_log);
    m_clock.Run(5);
    EXPECT_EQ("a@11 ", m_log);
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
        pTimer->SetAlarm(0);
    }
    EXPECT_EQ(1, m_clock.Pump(1));
    EXPECT_EQ(static_cast<long>(m_uStart), b->m_nNow);  // when the pass began
    EXPECT_EQ(0, c->m_nCalls);
    EXPECT_EQ(1, m_clock.Pump());  // the next pass, without waiting
    EXPECT_EQ(1, c->m_nCalls);
}

// For good, and so in a process of its own.
CHILD_PROCESS(Shutdown)
{
    CFakeClock clock;
    PassStartTick(clock);
    CTestTimer armed, killed, late;
    auto pDead = std::make_unique<CTestTimer>([] { exit(2); });
    for (CTestTimer *pTimer : {&armed, &killed, pDead.get()})
        pTimer->SetAlarm(0);
    CUShutdown();
    killed.KillAlarm();
    late.SetAlarm(0);
    pDead.reset();
    clock.Run(1000);
    exit(armed.m_nCalls == 1 && killed.m_nCalls == 1 && late.m_nCalls == 0 ? 0 : 1);
}

TEST_F(Timer, AfterShutdownNothingIsArmedOrKilledAndNoDeadObjectIsServed)
{
    EXPECT_EQ(0u, CChildProcess("Shutdown").ExitCode());
}

TEST_F(Timer, OutlivesLostMessages)
{
    // It has fired but its message has not been served: the message goes.
    a->SetAlarm(100);
    m_clock.Jump(100);
    m_clock.Fire();
    a->SetAlarm(200);
    EXPECT_EQ(0, m_clock.Pump());
    // No timer is to be had, or the window is destroyed: the next arming tries again.
    for (const bool bFailing : {true, false}) {
        m_clock.m_bFailing = bFailing;
        a->SetAlarm(100);
        m_clock.m_bFailing = false;
        if (!bFailing)
            DestroyWindow(TimerTaskWindow());
        a->SetAlarm(10);
        m_clock.Run(1000);
    }
    EXPECT_EQ("a@110 a@1110 ", m_log);
}

// Threads serve their timers side by side and end with timers armed, which are then free for
// others.
static void ServeOnThreads()
{
    std::vector<CTestTimer> timers(16);
    const HWND hBefore = TimerTaskWindow();
    CThreads::Run(8, [&](int nThread) {
        CTestTimer &timer = timers[static_cast<size_t>(nThread)];
        timers[static_cast<size_t>(nThread) + 8].SetAlarm(3600000);
        timer.SetAlarm(20);
        while (timer.m_nCalls == 0)
            Sleep(1), CFakeClock::Pump();
        timer.SetAlarm(0);
    });
    EXPECT_EQ(hBefore, TimerTaskWindow());
    for (CTestTimer &timer : timers)
        timer.SetAlarm(10000);
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
