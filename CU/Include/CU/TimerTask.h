#pragma once

/// @file
/// What serves the alarms of a thread.

#include "CU/ThreadExit.h"

class CCUTimer;
enum CUUnloadPhase : int;

/// All armed timers of one thread, in the order in which they are due, behind one hidden window and
/// at most one pending system notification. Made by the thread's first SetAlarm, deleted when the
/// thread ends; every call except GetThreadTimerTask is that thread's. Programs use CCUTimer.
///
/// CURunProcessInfoHandlers("timertask") writes how many times TimeOut was called, the longest call
/// in milliseconds and the virtual table of the object that took it, and sets all three back to 0.
/// Three debug switches at "\Debug\Timer", 0 at first: with "TimerDebug" above 0, a call of TimeOut
/// is traced that takes more than "TimeOutThreshold" milliseconds (0: 1000), or that comes after
/// "TimerCountThreshold" others (0: 200) in one serving of due timers.
class CU_API CCUTimerTask : public CCUThreadExitHandler
{
public:
    /// Unlinks every timer, destroys the window and deletes the task. bKillTimer false leaves a
    /// pending multimedia timer to run out, with a line in the trace.
    void OnThreadExit(bool bKillTimer) override;

    /// Arms the timer to be due in nMilliseconds, in place of an earlier alarm of the same timer.
    /// Timers due at the same millisecond are served in the order of arming. Does nothing after
    /// CUShutdown.
    void SetAlarm(CCUTimer *pTimer, long nMilliseconds);
    /// Disarms the timer. Does nothing when it is not armed, and after CUShutdown. A timer that is
    /// armed but not in this task's list (armed by another thread) is reported, and disarmed all
    /// the same; it is counted off this list's length, though it stays in the other list.
    void KillAlarm(CCUTimer *pTimer);
    /// Asks the system for one notification when the first timer is due (after 60 s at the latest).
    /// Does nothing after CUShutdown.
    void ResetTimer();

    /// The calling thread's task, made by the first call; null when there is no storage for it or
    /// for the notice of the thread's end.
    static CCUTimerTask *GetThreadTimerTask();

    /// Timers that are armed, less those of other lists that were killed here: it may go below 0,
    /// which reads as a number near 2^32.
    unsigned long GetListLength() const { return m_uListLength; }
    /// Notifications asked for and not yet received; counts too low where the system lets a timer
    /// be killed that is just calling back.
    long GetPendingCount() const { return m_nPending; }

protected:
    ~CCUTimerTask() override;

private:
    friend void CUUnloadTimers(CUUnloadPhase phase);
    friend long CUCountArmedTimers();

    CCUTimerTask() = default;
    static void Initialize();
    // Takes a timer that is destroyed out of the calling thread's list, even after CUShutdown.
    static void Forget(CCUTimer *pTimer);
    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam);
    bool OnMessage(UINT uMessage);
    void MakeWindow();
    bool Unlink(const CCUTimer *pTimer);
    void CancelNotification();
    bool RemoveRealMessage();
    void StartMultimediaTimer(long nDelay);
    void PostMock();
    void ServeTimers();
    static void TraceTimeOut(const void *pTimer, unsigned long uBefore, unsigned long uAfter);

    CCUTimer *m_pFirst = nullptr;
    unsigned long m_uListLength = 0;
    long m_nPending = 0;
    unsigned long m_uStartTick = 0;  // when window timer 1 is due; 0 once it has fired
    BOOL m_bMockTimerSet = FALSE;    // a "TimerTaskMock" is on its way
    unsigned int m_uTimerID = 0;     // the pending multimedia timer
    HWND m_hWnd = nullptr;
    const unsigned long *m_pPassStart = nullptr;  // of the pass that is running
    CCUTimerTask *m_pNextTask = nullptr;
};
