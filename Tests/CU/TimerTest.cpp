#include <gtest/gtest.h>

#include <memory>
#include <sstream>
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
        PassStartTick(m_clock);
        m_uStart = CUGetTime();
    }
    // A timer that notes when it is called, as "name@milliseconds ".
    std::unique_ptr<CTestTimer> Make(char name)
    {
        return std::make_unique<CTestTimer>(
            [this, name] { m_log += name + ("@" + std::to_string(CUGetTime() - m_uStart)) + " "; });
    }

    // Steps: "a10" arms, "a?10" arms if earlier, "a!" kills, "+10" lets the clock run, "w" sets it
    // half a second before it wraps.
    void Play(const char *script)
    {
        std::istringstream steps(script);
        for (std::string step; steps >> step;) {
            const long n = atol(step.c_str() + strcspn(step.c_str(), "-0123456789"));
            if (step == "w") {
                m_clock.Jump(0UL - 500 - CUGetTime());
                m_uStart = CUGetTime();
            } else if (step[0] == '+') {
                m_clock.Run(static_cast<DWORD>(n));
            } else {
                CTestTimer &timer = **m_timers[step[0] - 'a'];
                step[1] == '!'   ? timer.KillAlarm()
                : step[1] == '?' ? timer.SetAlarmIfEarlier(n)
                                 : timer.SetAlarm(n);
            }
        }
    }

    CFakeClock m_clock;
    unsigned long m_uStart;
    std::string m_log;
    CCUTimerTask *const m_pTask = CCUTimerTask::GetThreadTimerTask();
    std::unique_ptr<CTestTimer> a = Make('a'), b = Make('b'), c = Make('c'), d = Make('d');
    const std::unique_ptr<CTestTimer> *const m_timers[4] = {&a, &b, &c, &d};
};

TEST_F(Timer, ServesEachOnceByAlarmAndEqualOnesInTheOrderOfArming)
{
    const struct
    {
        const char *script, *log;
        unsigned long nLeft;  // in the list at the end
        std::vector<UINT> delays;
    } cases[] = {
        // Armed again b is behind d; the old alarm of a and the killed c are never called.
        {"a300 b100 c50 d100 b100 a200 c! +1000", "d@100 b@100 a@200 ", 0, {300, 100, 50, 50, 100}},
        // What is due already needs no timer, only a turn of the message loop.
        {"a0 b-5 +10", "b@0 a@0 ", 0, {}},
        // The same moment is not earlier and keeps its place.
        {"a100 b100 c100 +40 a?60 b?61 c?59 d?70 +200",
         "c@99 a@100 b@100 d@110 ",
         0,
         {100, 59, 1, 10}},
        {"a600000 +700000", "a@600000 ", 0, std::vector<UINT>(10, 60000)},
        // The clock wraps half a second on; b is due at 0, which would mean not armed.
        {"w c700 a499 b500 d2147483647 c?800 +1000",
         "a@499 b@501 c@700 ",
         1,
         {700, 499, 2, 199, 60000}},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.script);
        m_log.clear();
        m_clock.m_delays.clear();
        m_uStart = CUGetTime();
        Play(test.script);
        EXPECT_EQ(test.log, m_log);
        EXPECT_EQ(test.nLeft, m_pTask->GetListLength());
        EXPECT_EQ(m_clock.IsPending() ? 1 : 0, m_pTask->GetPendingCount());
        EXPECT_EQ(test.delays, m_clock.m_delays);
    }
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

TEST_F(Timer, LoopInATimeOutServesNoOtherUntilOneIsArmedBeforeAll)
{
    d->m_action = [&] {
        m_clock.Run(50);
        EXPECT_EQ("", m_log);
        a->SetAlarm(1000);  // not before all
        m_clock.Run(50);
        EXPECT_EQ("", m_log);
        a->SetAlarm(-100);
        m_clock.Run(100);
        EXPECT_EQ("a@100 b@100 c@150 ", m_log);
    };
    b->SetAlarm(20);
    c->SetAlarm(150);
    d->SetAlarm(0);
    m_clock.Run(0);
    EXPECT_EQ(1, d->m_nCalls);
    // The same work, asked for by a message.
    m_log.clear();
    d->m_action = [] { PostMessageA(CUGetWindow(), WM_USER, 0, 0); };
    static CFakeClock *s_pClock;
    s_pClock = &m_clock;
    CUSetMessageHandler(WM_USER, [](unsigned int, WPARAM, LPARAM) { s_pClock->Run(50); });
    m_uStart = CUGetTime();
    b->SetAlarm(20);
    d->SetAlarm(0);
    m_clock.Run(0);
    EXPECT_EQ("b@20 ", m_log);
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

TEST_F(Timer, AfterShutdownNothingIsArmedOrKilledAndNoDeadObjectIsServed)
{
    // Memory that nobody may touch once the object is destroyed.
    void *memory = VirtualAlloc(nullptr, sizeof(CTestTimer), MEM_COMMIT, PAGE_READWRITE);
    CTestTimer *pDead = new (memory) CTestTimer;
    for (CTestTimer *pTimer : {a.get(), pDead, b.get()})
        pTimer->SetAlarm(0);
    CUShutdown();
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
