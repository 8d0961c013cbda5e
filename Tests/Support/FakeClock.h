#pragma once

#include <mmsystem.h>
#include <vector>

#include "CU/CU.h"
#include "Support/ImportHook.h"

// A multimedia clock that stands still until the test moves it, with the system's one-shot timers
// on it. They fire on the test's own thread.
class CFakeClock
{
public:
    CFakeClock()
        : m_nNow(timeGetTime()),
          m_getTime("timeGetTime", GetTime),
          m_setEvent("timeSetEvent", SetEvent),
          m_killEvent("timeKillEvent", KillEvent)
    {
        s_pClock = this;
    }
    ~CFakeClock() { s_pClock = nullptr; }

    // Moves the clock and nothing else: timers that should have fired are late.
    void Jump(DWORD nMilliseconds) { m_nNow += nMilliseconds; }
    // Moves the clock from timer to timer, dispatching what they post.
    void Run(DWORD nMilliseconds)
    {
        const DWORD nEnd = m_nNow + nMilliseconds;
        Pump();
        while (!m_timers.empty() && static_cast<long>(m_timers[0].due - nEnd) <= 0) {
            if (static_cast<long>(m_timers[0].due - m_nNow) > 0)
                m_nNow = m_timers[0].due;
            Fire();
            Pump();
        }
        m_nNow = nEnd;
    }
    void Fire()
    {
        const CTimer timer = m_timers[0];
        m_timers.erase(m_timers.begin());
        timer.callback(timer.id, 0, timer.user, 0, 0);
    }
    static int Pump(int nMost = 1000)
    {
        MSG msg;
        int nCount = 0;
        for (; nCount < nMost && PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE); ++nCount)
            DispatchMessageA(&msg);
        return nCount;
    }

    size_t Pending() const { return m_timers.size(); }
    std::vector<UINT> m_delays;  // of all timers that were asked for
    bool m_bFailing = false;     // no timer is to be had

private:
    struct CTimer
    {
        UINT id;
        DWORD due;
        LPTIMECALLBACK callback;
        DWORD_PTR user;
    };

    static DWORD WINAPI GetTime() { return s_pClock->m_nNow; }
    static MMRESULT WINAPI SetEvent(UINT nDelay, UINT, LPTIMECALLBACK callback, DWORD_PTR user,
                                    UINT)
    {
        CFakeClock &clock = *s_pClock;
        clock.m_delays.push_back(nDelay);
        if (clock.m_bFailing)
            return 0;
        clock.m_timers.push_back({++clock.m_nLastID, clock.m_nNow + nDelay, callback, user});
        return clock.m_nLastID;
    }
    static MMRESULT WINAPI KillEvent(UINT nID)
    {
        std::vector<CTimer> &timers = s_pClock->m_timers;
        for (size_t i = 0; i < timers.size(); ++i) {
            if (timers[i].id == nID) {
                timers.erase(timers.begin() + static_cast<long>(i));
                return TIMERR_NOERROR;
            }
        }
        return MMSYSERR_INVALPARAM;
    }

    inline static CFakeClock *s_pClock = nullptr;
    DWORD m_nNow;
    UINT m_nLastID = 0;
    std::vector<CTimer> m_timers;  // at most one while all is well
    CImportHook m_getTime, m_setEvent, m_killEvent;
};
