#include <gtest/gtest.h>

#include <memory>

#include "CU/CU.h"
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
        const HWND hWnd = TimerTaskWindow();
        EXPECT_NE(nullptr, hWnd);
        SendMessageA(hWnd, WM_TIMER, 1, 0);
        timer.KillAlarm();
        m_clock.Run(100);
        m_clock.m_delays.clear();
        m_uStart = CUGetTime();
    }
    // What is still asked for comes.
    ~Timer() override { m_clock.Run(60000); }
    // Notes when it is called, as "name@milliseconds ".
    std::unique_ptr<CTestTimer> Make(char name)
    {
        return std::make_unique<CTestTimer>(
            [this, name] { m_log += name + ("@" + std::to_string(CUGetTime() - m_uStart)) + " "; });
    }

    CFakeClock m_clock;
    unsigned long m_uStart;
    std::string m_log;
};

TEST_F(Timer, ServesEachOnceByAlarmAndEqualOnesInTheOrderOfArming)
{
    const auto a = Make('a'), b = Make('b'), c = Make('c'), d = Make('d'), e = Make('e'),
               f = Make('f');
    a->SetAlarm(300);
    b->SetAlarm(100);
    c->SetAlarm(300);
    d->SetAlarm(100);
    e->SetAlarm(200);
    f->SetAlarm(50);
    b->SetAlarm(100);   // armed again: behind d now
    e->SetAlarm(1000);  // its old alarm is never called
    f->KillAlarm();
    EXPECT_EQ(5u, CCUTimerTask::GetThreadTimerTask()->GetListLength());
    m_clock.Run(250);
    c->KillAlarm();
    m_clock.Run(2000);
    EXPECT_EQ("d@100 b@100 a@300 e@1000 ", m_log);
    EXPECT_EQ(0u, CCUTimerTask::GetThreadTimerTask()->GetListLength());
    EXPECT_EQ(0, CCUTimerTask::GetThreadTimerTask()->GetPendingCount());
    EXPECT_EQ(0u, m_clock.Pending());
}

TEST_F(Timer, ArmsIfEarlierOnlyForAnEarlierMoment)
{
    const auto a = Make('a'), b = Make('b'), c = Make('c');
    for (CTestTimer *pTimer : {a.get(), b.get(), c.get()})
        pTimer->SetAlarm(100);
    m_clock.Run(40);
    a->SetAlarmIfEarlier(60);  // the same moment: keeps its place before b
    b->SetAlarmIfEarlier(61);
    c->SetAlarmIfEarlier(59);
    m_clock.Run(200);
    a->SetAlarmIfEarlier(7);  // not armed: armed
    m_clock.Run(200);
    EXPECT_EQ("c@99 a@100 b@100 a@247 ", m_log);
}

TEST_F(Timer, TimeOutMayArmKillAndDelete)
{
    const auto later = Make('l');
    std::unique_ptr<CTestTimer> self, next;
    CTestTimer killer([&] {
        next.reset();        // due in this very pass
        later->SetAlarm(0);  // in a following one
    });
    self = std::make_unique<CTestTimer>([&] { self.reset(); });
    next = Make('n');
    CTestTimer again([&] { again.SetAlarm(again.m_nCalls < 3 ? 0 : 500); });
    self->SetAlarm(10);
    killer.SetAlarm(10);
    next->SetAlarm(10);
    again.SetAlarm(10);
    m_clock.Jump(10);
    m_clock.Fire();
    EXPECT_EQ(1, m_clock.Pump(1));
    EXPECT_EQ(nullptr, self);
    EXPECT_EQ("", m_log);
    EXPECT_EQ(1, again.m_nCalls);
    m_clock.Run(5);
    EXPECT_EQ("l@11 ", m_log);
    EXPECT_EQ(3, again.m_nCalls);
    // A loop of its own inside TimeOut serves alarms that are armed there.
    CTestTimer modal([&] {
        later->SetAlarm(20);
        m_clock.Run(50);
    });
    modal.SetAlarm(0);
    m_clock.Run(100);
    EXPECT_EQ("l@11 l@35 ", m_log);
}

TEST_F(Timer, PassStopsAfterATenthOfASecond)
{
    std::vector<std::unique_ptr<CTestTimer>> timers;
    for (int i = 0; i < 5; ++i) {
        timers.push_back(std::make_unique<CTestTimer>([this] {
            m_log += std::to_string(CUGetTime() - m_uStart) + " ";
            m_clock.Jump(50);
        }));
        timers.back()->SetAlarm(10);
    }
    m_clock.Jump(10);
    m_clock.Fire();
    EXPECT_EQ(1, m_clock.Pump(1));
    EXPECT_EQ("10 60 ", m_log);
    EXPECT_EQ(static_cast<long>(m_uStart + 10), timers[1]->m_nNow);  // when the pass began
    EXPECT_EQ(2, m_clock.Pump());  // two more passes, without waiting
    EXPECT_EQ("10 60 110 160 210 ", m_log);
    EXPECT_EQ(std::vector<UINT>{10}, m_clock.m_delays);
}

TEST_F(Timer, WaitsAMinuteAtMostAtATime)
{
    const auto a = Make('a');
    a->SetAlarm(600000);
    m_clock.Run(599999);
    EXPECT_EQ("", m_log);
    m_clock.Run(1);
    EXPECT_EQ("a@600000 ", m_log);
    EXPECT_EQ(std::vector<UINT>(10, 60000), m_clock.m_delays);
}

TEST_F(Timer, ClockMayWrap)
{
    m_clock.Jump(0UL - 500 - CUGetTime());
    m_uStart = CUGetTime();
    ASSERT_EQ(0UL - 500, m_uStart);
    const auto a = Make('a'), b = Make('b'), c = Make('c'), d = Make('d');
    c->SetAlarm(700);
    a->SetAlarm(499);
    b->SetAlarm(500);  // at 0, which would mean not armed
    d->SetAlarm(0x7FFFFFFF);
    c->SetAlarmIfEarlier(800);
    m_clock.Run(1000);
    EXPECT_EQ("a@499 b@501 c@700 ", m_log);
    EXPECT_EQ(1u, CCUTimerTask::GetThreadTimerTask()->GetListLength());
}

TEST_F(Timer, DueAlarmPostsAMessageInsteadOfStartingATimer)
{
    const auto a = Make('a'), b = Make('b');
    a->SetAlarm(0);
    b->SetAlarm(-5);
    EXPECT_EQ(1, CCUTimerTask::GetThreadTimerTask()->GetPendingCount());
    EXPECT_EQ("", m_log);
    EXPECT_EQ(1, m_clock.Pump());
    EXPECT_EQ("b@0 a@0 ", m_log);
    EXPECT_TRUE(m_clock.m_delays.empty());
}

// The object lies in memory that nobody may touch once it is destroyed.
TEST_F(Timer, AfterShutdownNothingIsArmedOrKilledAndNoDeadObjectIsServed)
{
    const auto a = Make('a'), b = Make('b'), c = Make('c');
    void *memory = VirtualAlloc(nullptr, sizeof(CTestTimer), MEM_COMMIT, PAGE_READWRITE);
    CTestTimer *pDead = new (memory) CTestTimer;
    a->SetAlarm(0);
    pDead->SetAlarm(0);
    b->SetAlarm(0);
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
