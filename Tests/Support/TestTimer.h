#pragma once

#include <string.h>
#include <functional>

#include "CU/Timer.h"

// A timer that the test arms, and that does what the test wants when it is called.
class CTestTimer : public CCUTimer
{
public:
    explicit CTestTimer(std::function<void()> action = nullptr) : m_action(action) {}
    using CCUTimer::KillAlarm;
    using CCUTimer::SetAlarm;
    using CCUTimer::SetAlarmIfEarlier;
    void TimeOut(long nNow) override
    {
        ++m_nCalls;
        m_nNow = nNow;
        const std::function<void()> action = m_action;  // it may delete this
        if (action)
            action();
    }

    std::function<void()> m_action;
    int m_nCalls = 0;
    long m_nNow = 0;
};

inline BOOL CALLBACK IsTimerTaskWindow(HWND hWnd, LPARAM result)
{
    char szClass[32] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    if (strcmp(szClass, "CCUTimerTask") == 0)
        *reinterpret_cast<HWND *>(result) = hWnd;
    return TRUE;
}

// The hidden window of the calling thread's timers, null when there is none.
inline HWND TimerTaskWindow()
{
    HWND hWnd = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), IsTimerTaskWindow, reinterpret_cast<LPARAM>(&hWnd));
    return hWnd;
}
