#pragma once

#include <functional>

#include "CU/Timer.h"
#include "Support/FakeClock.h"

// A timer that the test arms, and that does what the test wants when it is called.
class CTestTimer : public CCUTimer
{
public:
    explicit CTestTimer(std::function<void()> action = [] {}) : m_action(std::move(action)) {}
    using CCUTimer::KillAlarm;
    using CCUTimer::SetAlarm;
    using CCUTimer::SetAlarmIfEarlier;
    void TimeOut(long nNow) override
    {
        ++m_nCalls;
        m_nNow = nNow;
        const std::function<void()> action = m_action;  // it may delete this
        action();
    }

    std::function<void()> m_action;
    int m_nCalls = 0;
    long m_nNow = 0;
};

// The hidden window of this process's timers, null when there is none.
inline HWND TimerTaskWindow()
{
    HWND hWnd = nullptr;
    DWORD nProcess = 0;
    while (nProcess != GetCurrentProcessId() &&
           (hWnd = FindWindowExA(nullptr, hWnd, "CCUTimerTask", "CCUTimerTask")) != nullptr)
        GetWindowThreadProcessId(hWnd, &nProcess);
    return hWnd;
}

// Puts the thread's timers behind the first half second of their window.
inline void PassStartTick(CFakeClock &clock)
{
    CTestTimer timer;
    timer.SetAlarm(0);
    SendMessageA(TimerTaskWindow(), WM_TIMER, 1, 0);
    clock.Run(10);
    clock.m_delays.clear();
}
