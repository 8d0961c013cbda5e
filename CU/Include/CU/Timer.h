#pragma once

/// @file
/// Alarms.

#include "CU/Platform.h"

/// A one-shot alarm: derive from it, arm it, and TimeOut is called once when the delay has passed,
/// in the message loop of the thread that armed it. An object that never arms costs two words.
/// A timer belongs to the thread that armed it for as long as it is armed: arming, killing and
/// destroying it then is that thread's alone. Delays are milliseconds from -2^30 to 2^30 - 1 (12
/// days): the clock wraps, and all alarms of a thread must lie within half its range.
class CU_API CCUTimer
{
public:
    CCUTimer(const CCUTimer &) = delete;
    CCUTimer &operator=(const CCUTimer &) = delete;

protected:
    CCUTimer() = default;
    /// Kills the alarm.
    virtual ~CCUTimer();

public:
    /// The alarm has come. nNow is the CUGetTime at which the serving of due timers began. The
    /// timer is not armed any more, so it may arm itself again, or delete itself. After 100 ms of
    /// serving, what else is due waits for the next turn of the message loop.
    ///
    /// A message loop in here does not serve the thread's other timers: the notification for them
    /// is asked for when this serving ends, when a timer is armed that is due before all others, or
    /// half a second after the thread's first timer was armed, whereupon the loop serves them all.
    /// A timer that wants to run something modal posts a message, to a window of its own or to
    /// CUGetWindow (CU.h), and does it there.
    virtual void TimeOut(long nNow);

protected:
    /// Arms the timer, in place of any earlier alarm; a delay of 0 or less is served by the next
    /// turn of the message loop, from within TimeOut a millisecond later at the earliest. Does
    /// nothing after CUShutdown, nor in a process without a thread-local storage slot to spare.
    void SetAlarm(long nMilliseconds);
    /// The same, unless the timer is armed for that moment or an earlier one.
    void SetAlarmIfEarlier(long nMilliseconds);
    /// Does nothing when the timer is not armed, and after CUShutdown.
    void KillAlarm();

private:
    friend class CCUTimerTask;

    static void (*s_forget)(CCUTimer *pTimer);

    CCUTimer *m_pNext = nullptr;
    unsigned long m_uAlarm = 0;  // CUGetTime at which it is due; 0: not armed
};
