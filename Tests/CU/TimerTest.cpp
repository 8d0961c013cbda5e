#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "CU/TimerTask.h"
#include "Support/FakeClock.h"
#include "Support/TestTimer.h"

namespace {

// Alarms on a clock that the test moves, after the first half second of the hidden window.
class Timer : public testing::Test
{
protected:
    Timer()
    {
        CTestTimer timer;
        timer.SetAlarm(0);
        SendMessageA(TimerTaskWindow(), WM_TIMER, 1, 0);
        m_clock.Run(100);
        m_clock.m_delays.clear();
        m_uStart = CUGetTime();
    }
    // A timer that notes when it is called, as "name@milliseconds ".
    std::unique_ptr<CTestTimer> Make(char name)
    {
        return std::make_unique<CTestTimer>(
            [this, name] { m_log += name + ("@" + std::to_string(CUGetTime() - m_uStart)) + " "; });
    }

    CFakeClock m_clock;
    unsigned long m_uStart;
    std::string m_log;
    CCUTimerTask *const m_pTask = CCUTimerTask::GetThreadTimerTask();
    std::unique_ptr<CTestTimer> a = Make('a'), b = Make('b'), c = Make('c'), d = Make('d');
};

TEST_F(Timer, ServesEachOnceByAlarmAndEqualOnesInTheOrderOfArming)
{
    a->SetAlarm(300);
    b->SetAlarm(100);
    c->SetAlarm(50);
    d->SetAlarm(100);
    b->SetAlarm(100);  // armed again: behind d now
    a->SetAlarm(200);  // the old alarm is never called
    c->KillAlarm();
    EXPECT_EQ(3u, m_pTask->GetListLength());
    m_clock.Run(1000);
    EXPECT_EQ("d@100 b@100 a@200 ", m_log);
    EXPECT_EQ(0u, m_pTask->GetListLength());
    EXPECT_EQ(0, m_pTask->GetPendingCount());
    EXPECT_FALSE(m_clock.IsPending());

    // What is due already needs no timer, only a turn of the message loop.
    m_log.clear();
    m_clock.m_delays.clear();
    a->SetAlarm(0);
    b->SetAlarm(-5);
    EXPECT_EQ(1, m_pTask->GetPendingCount());
    EXPECT_EQ("", m_log);
    EXPECT_EQ(1, m_clock.Pump());
    EXPECT_EQ("b@1000 a@1000 ", m_log);
    EXPECT_TRUE(m_clock.m_delays.empty());
}

TEST_F(Timer, ArmsIfEarlierOnlyForAnEarlierMoment)
{
    for (CTestTimer *pTimer : {a.get(), b.get(), c.get()})
        pTimer->SetAlarm(100);
    m_clock.Run(40);
    a->SetAlarmIfEarlier(60);  // the same moment: keeps its place before b
    b->SetAlarmIfEarlier(61);
    c->SetAlarmIfEarlier(59);
    d->SetAlarmIfEarlier(70);  // not armed: armed
    m_clock.Run(200);
    EXPECT_EQ("c@99 a@100 b@100 d@110 ", m_log);
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
        m_clock.Run(50);  // a loop of its own serves alarms that are armed there
    };
    d->SetAlarm(0);
    m_clock.Run(100);
    EXPECT_EQ("a@11 a@35 ", m_log);
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
    EXPECT_EQ(std::vector<UINT>{10}, m_clock.m_delays);
}

TEST_F(Timer, WaitsAMinuteAtMostAtATime)
{
    a->SetAlarm(600000);
    m_clock.Run(700000);
    EXPECT_EQ("a@600000 ", m_log);
    EXPECT_EQ(std::vector<UINT>(10, 60000), m_clock.m_delays);
}

TEST_F(Timer, ClockMayWrap)
{
    m_clock.Jump(0UL - 500 - CUGetTime());
    m_uStart = CUGetTime();
    ASSERT_EQ(0UL - 500, m_uStart);
    c->SetAlarm(700);
    a->SetAlarm(499);
    b->SetAlarm(500);  // at 0, which would mean not armed
    d->SetAlarm(0x7FFFFFFF);
    c->SetAlarmIfEarlier(800);
    m_clock.Run(1000);
    EXPECT_EQ("a@499 b@501 c@700 ", m_log);
    EXPECT_EQ(1u, m_pTask->GetListLength());
}

TEST_F(Timer, AfterShutdownNothingIsArmedOrKilledAndNoDeadObjectIsServed)
{
    // Memory that nobody may touch once the object is destroyed.
    void *memory = VirtualAlloc(nullptr, sizeof(CTestTimer), MEM_COMMIT, PAGE_READWRITE);
    CTestTimer *pDead = new (memory) CTestTimer;
    for (CTestTimer *pTimer : {a.get(), pDead, b.get()})
        pTimer->SetAlarm(0);
    CUShutdown();
    EXPECT_TRUE(CUIsShutdown());
    b->KillAlarm();
    c->SetAlarm(0);
    SetLastError(4711);
    pDead->~CTestTimer();
    EXPECT_EQ(4711u, GetLastError());
    VirtualFree(memory, 0, MEM_RELEASE);
    m_clock.Run(1000);
    EXPECT_EQ("a@0 b@0 ", m_log);
}

}  // namespace
