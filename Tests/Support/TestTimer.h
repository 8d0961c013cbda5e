#pragma once

#include <functional>
#include <utility>

#include "CU/Timer.h"

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

// The hidden window of the calling thread's timers, null when there is none.
inline HWND TimerTaskWindow()
{
    HWND hWnd = nullptr;
    while ((hWnd = FindWindowExA(nullptr, hWnd, "CCUTimerTask", "CCUTimerTask")) != nullptr &&
           GetWindowThreadProcessId(hWnd, nullptr) != GetCurrentThreadId())
    {
    }
    return hWnd;
}
