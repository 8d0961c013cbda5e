#pragma once

#include <vector>

#include "CU/CU.h"
#include "Support/MultimediaHook.h"

// A multimedia clock that stands still until the test moves it, with the one-shot timer on it that
// a thread's timers may have. It fires on the test's own thread.
class CFakeClock
{
public:
    CFakeClock() : m_nNow(Begin(this)) {}

    // Moves the clock and nothing else: a timer that should have fired is late.
    void Jump(DWORD nMilliseconds) { m_nNow += nMilliseconds; }
    // Moves the clock from timer to timer, dispatching what they post.
    void Run(DWORD nMilliseconds)
    {
        const DWORD nEnd = m_nNow + nMilliseconds;
        for (Pump(); m_callback && static_cast<long>(m_nDue - nEnd) <= 0; Pump()) {
            if (static_cast<long>(m_nDue - m_nNow) > 0)
                m_nNow = m_nDue;
            Fire();
        }
        m_nNow = nEnd;
    }
    void Fire()
    {
        const LPTIMECALLBACK callback = m_callback;
        m_callback = nullptr;
        callback(m_nID, 0, m_user, 0, 0);
    }
    static int Pump(int nMost = 1000)
    {
        MSG msg;
        int nCount = 0;
        for (; nCount < nMost && PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE); ++nCount)
            DispatchMessageA(&msg);
        return nCount;
    }

    bool IsPending() const { return m_callback != nullptr; }
    std::vector<UINT> m_delays;  // of all timers that were asked for
    bool m_bFailing = false;     // no timer is to be had, as while one is pending

private:
    // Before the hooks, of which each reads the time that those before it have changed.
    static DWORD Begin(CFakeClock *pClock)
    {
        s_pClock = pClock;
        return MultimediaTime();
    }
    static DWORD WINAPI GetTime() { return s_pClock->m_nNow; }
    static MMRESULT WINAPI SetEvent(UINT nDelay, UINT, LPTIMECALLBACK callback, DWORD_PTR user,
                                    UINT)
    {
        CFakeClock &clock = *s_pClock;
        clock.m_delays.push_back(nDelay);
        if (clock.m_bFailing || clock.m_callback)
            return 0;
        clock.m_callback = callback;
        clock.m_nDue = clock.m_nNow + nDelay;
        clock.m_user = user;
        return ++clock.m_nID;
    }
    static MMRESULT WINAPI KillEvent(UINT nID)
    {
        if (!s_pClock->m_callback || nID != s_pClock->m_nID)
            return MMSYSERR_INVALPARAM;
        s_pClock->m_callback = nullptr;
        return TIMERR_NOERROR;
    }

    inline static CFakeClock *s_pClock = nullptr;
    DWORD m_nNow, m_nDue = 0;
    UINT m_nID = 0;
    LPTIMECALLBACK m_callback = nullptr;
    DWORD_PTR m_user = 0;
    CMultimediaHook<decltype(&::timeGetTime)> m_getTime{g_multimedia.getTime, GetTime};
    CMultimediaHook<decltype(&::timeSetEvent)> m_setEvent{g_multimedia.setEvent, SetEvent};
    CMultimediaHook<decltype(&::timeKillEvent)> m_killEvent{g_multimedia.killEvent, KillEvent};
};
