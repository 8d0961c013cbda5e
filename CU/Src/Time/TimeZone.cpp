// Time zones: when daylight time begins and ends, and what a zone's clocks show. Every year
// divisible by 4 is a leap year here. Years are counted since 1900, as in tm.

#include "Time/TimeZone.h"

#include <string.h>

#include "Base/Lock.h"
#include "Base/Wrap.h"

namespace {

const long SECONDS_PER_DAY = 86400;
const long MILLISECONDS_PER_DAY = 86400000;
const long DAYS_IN_FOUR_YEARS = 1461;
const WORD LAST_OF_MONTH = 5;  // in a rule's wDay: the fifth such weekday, or the last

// For months from 0: the day of the year, from 0, of the last day before the month. So entry n is
// also that of the last day of month n counted from 1, and a day of the month is added to an entry.
typedef short CDaysOfYear[13];
const CDaysOfYear COMMON_YEAR = {-1, 30, 58, 89, 119, 150, 180, 211, 242, 272, 303, 333, 364};
const CDaysOfYear LEAP_YEAR = {-1, 30, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

const CDaysOfYear &DaysOfYear(long nYear)
{
    return (nYear & 3) == 0 ? LEAP_YEAR : COMMON_YEAR;
}

struct CTransitions
{
    CUTimeOfYear start;  // into daylight time
    CUTimeOfYear end;    // out of it, expressed in standard time
};

// The weekday (0 is Sunday) of a day of the year, by the number of days since 1900. Number 25563 is
// a Sunday, 28 December 1969. Before it the result is negative or 0: transitions depend on that.
long Weekday(long nYear, long nDay)
{
    const long nLeapDays = CUWrapSub(nYear, 1) >> 2;
    const long nDaysSince1900 = CUWrapAdd(CUWrapMul(365, nYear), nDay + nLeapDays);
    return CUWrapSub(nDaysSince1900, 25563) % 7;
}

// The day of the year on which a rule applies. Its month is 1..12; nonsense in its other fields
// only makes a nonsense day.
long TransitionDay(long nYear, const SYSTEMTIME &rule)
{
    const CDaysOfYear &days = DaysOfYear(nYear);
    const bool bIsDate = rule.wYear != 0;
    if (bIsDate)
        return days[rule.wMonth - 1] + rule.wDay;
    // Otherwise it is the n-th of a weekday in its month, with n in wDay.
    const long nFirst = days[rule.wMonth - 1] + 1;
    const long nLast = days[rule.wMonth];
    const long nFirstWeekday = Weekday(nYear, nFirst);
    long nDay = nFirst + 7 * rule.wDay + rule.wDayOfWeek - nFirstWeekday;
    if (nFirstWeekday <= rule.wDayOfWeek)
        nDay -= 7;
    if (rule.wDay == LAST_OF_MONTH && nDay > nLast)
        nDay -= 7;
    return nDay;
}

CUTimeOfYear StartOfDaylight(long nYear, const SYSTEMTIME &rule)
{
    return {nYear, TransitionDay(nYear, rule),
            CUMilliseconds(rule.wHour, rule.wMinute, rule.wSecond, rule.wMilliseconds)};
}

CUTimeOfYear EndOfDaylight(long nYear, const SYSTEMTIME &rule, LONG nDaylightBias)
{
    long nMilliseconds = CUMilliseconds(rule.wHour, CUWrapAdd(rule.wMinute, nDaylightBias),
                                        rule.wSecond, rule.wMilliseconds);
    // Over midnight the time comes back into the day by one millisecond less than a day, and the
    // day stays: results depend on both.
    if (nMilliseconds < 0)
        nMilliseconds += MILLISECONDS_PER_DAY - 1;
    else if (nMilliseconds >= MILLISECONDS_PER_DAY)
        nMilliseconds -= MILLISECONDS_PER_DAY - 1;
    return {nYear, TransitionDay(nYear, rule), nMilliseconds};
}

CTransitions ComputeTransitions(const TIME_ZONE_INFORMATION &zone, long nYear)
{
    return {StartOfDaylight(nYear, zone.DaylightDate),
            EndOfDaylight(nYear, zone.StandardDate, zone.DaylightBias)};
}

// Keeps the transitions of the zone and year asked for last.
CTransitions GetTransitions(const TIME_ZONE_INFORMATION &zone, long nYear)
{
    static volatile LONG s_nLock;
    static TIME_ZONE_INFORMATION s_zone;
    static CTransitions s_transitions;
    const CCUTryLock lock(s_nLock);
    if (!lock.IsTaken())
        return ComputeTransitions(zone, nYear);
    if (s_transitions.start.nYear != nYear || s_transitions.end.nYear != nYear ||
        memcmp(&s_zone, &zone, sizeof zone) != 0)
    {
        s_zone = zone;
        s_transitions = ComputeTransitions(zone, nYear);
    }
    return s_transitions;
}

bool IsMonth(WORD wMonth)
{
    return wMonth >= 1 && wMonth <= 12;
}

// In UTC, for nTime from 0 on. Cheaper than gmtime, which breaks down the month and weekday, too.
// Days are counted from 1 January 1968 on, a leap year as is every fourth year up to 2038.
CUTimeOfYear ToTimeOfYear(long nTime)
{
    const long nDaysSince1968 = nTime / SECONDS_PER_DAY + 366 + 365;
    const long nLeapYear = 68 + nDaysSince1968 / DAYS_IN_FOUR_YEARS * 4;
    const long nDay = nDaysSince1968 % DAYS_IN_FOUR_YEARS;
    const long nMilliseconds = nTime % SECONDS_PER_DAY * 1000;
    if (nDay < 366)
        return {nLeapYear, nDay, nMilliseconds};
    const long nLaterDay = nDay - 366;
    return {nLeapYear + 1 + nLaterDay / 365, nLaterDay % 365, nMilliseconds};
}

}  // namespace

DWORD CUGetCurrentZone(TIME_ZONE_INFORMATION &zone)
{
    static volatile LONG s_nLock;
    static bool s_bKnown;
    static DWORD s_dwTick;
    static DWORD s_dwResult;
    static TIME_ZONE_INFORMATION s_zone;
    const CCUTryLock lock(s_nLock);
    if (!lock.IsTaken())
        return GetTimeZoneInformation(&zone);
    const DWORD dwTick = GetTickCount();
    if (!s_bKnown || dwTick != s_dwTick) {
        s_dwResult = GetTimeZoneInformation(&s_zone);
        s_dwTick = dwTick;
        s_bKnown = true;
    }
    zone = s_zone;
    return s_dwResult;
}

bool CUIsDaylightTime(const TIME_ZONE_INFORMATION &zone, const CUTimeOfYear &time)
{
    // A zone without daylight time has a month of 0; a month that does not exist is taken alike.
    if (!IsMonth(zone.DaylightDate.wMonth) || !IsMonth(zone.StandardDate.wMonth))
        return false;
    const CTransitions transitions = GetTransitions(zone, time.nYear);
    const long nStart = transitions.start.nDay;
    const long nEnd = transitions.end.nDay;
    if (time.nDay == nStart)
        return time.nMilliseconds >= transitions.start.nMilliseconds;
    if (time.nDay == nEnd)
        return time.nMilliseconds < transitions.end.nMilliseconds;
    if (nStart >= nEnd)
        return time.nDay < nEnd || time.nDay > nStart;
    return nStart < time.nDay && time.nDay < nEnd;
}

long CUDayOfYear(long nYear, int nMonth, int nDay)
{
    const int nEntry = nMonth < 0 ? 0 : nMonth > 12 ? 12 : nMonth;
    return CUWrapAdd(nDay, DaysOfYear(nYear)[nEntry]);
}

long CUMilliseconds(long nHour, long nMinute, long nSecond, long nMilliseconds)
{
    const long nMinutes = CUWrapAdd(CUWrapMul(nHour, 60), nMinute);
    const long nSeconds = CUWrapAdd(CUWrapMul(nMinutes, 60), nSecond);
    return CUWrapAdd(CUWrapMul(nSeconds, 1000), nMilliseconds);
}

long CULocalSeconds(long nTime, const TIME_ZONE_INFORMATION &zone, bool &bDaylight)
{
    const long nStandard = CUWrapSub(nTime, CUWrapMul(zone.Bias, 60));
    // No calendar here knows times before 1970.
    bDaylight = nStandard >= 0 && CUIsDaylightTime(zone, ToTimeOfYear(nStandard));
    const LONG nBias = bDaylight ? zone.DaylightBias : zone.StandardBias;
    return CUWrapSub(nStandard, CUWrapMul(nBias, 60));
}
