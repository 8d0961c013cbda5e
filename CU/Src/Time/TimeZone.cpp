#include "Time/TimeZone.h"

#include <string.h>

#include "Base/Lock.h"
#include "Base/Wrap.h"

namespace {

// Days before each month, less one: plus a day of the month, the day of the year from 0. Entry n is
// also the last day of the n-th month, counted from 1.
typedef short CDaysOfYear[13];
const CDaysOfYear s_commonYear = {-1, 30, 58, 89, 119, 150, 180, 211, 242, 272, 303, 333, 364};
const CDaysOfYear s_leapYear = {-1, 30, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

// Years are counted since 1900 here, as in tm.
const CDaysOfYear &DaysOfYear(long nYear)
{
    return (nYear & 3) == 0 ? s_leapYear : s_commonYear;
}

struct CTransitions
{
    CUTimeOfYear start;  // into daylight time
    CUTimeOfYear end;    // out of it, expressed in standard time
};

// The day of a rule whose month is 1..12. Nonsense in its other fields only makes a nonsense day.
long TransitionDay(long nYear, const SYSTEMTIME &rule)
{
    const CDaysOfYear &days = DaysOfYear(nYear);
    if (rule.wYear != 0)
        return days[rule.wMonth - 1] + rule.wDay;
    const long nFirst = days[rule.wMonth - 1] + 1;
    const long nDaysBefore = CUWrapAdd(CUWrapMul(365, nYear), nFirst + (CUWrapSub(nYear, 1) >> 2));
    const long nFirstWeekday = CUWrapSub(nDaysBefore, 25563) % 7;
    long nDay = nFirst + 7 * rule.wDay + rule.wDayOfWeek - nFirstWeekday;
    if (nFirstWeekday <= rule.wDayOfWeek)
        nDay -= 7;
    // The fifth one means the last.
    if (rule.wDay == 5 && nDay > days[rule.wMonth])
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
    // The day does not follow when the time moves over midnight, and the step is a day less one
    // millisecond: results depend on both.
    if (nMilliseconds < 0)
        nMilliseconds += 86399999;
    else if (nMilliseconds >= 86400000)
        nMilliseconds -= 86399999;
    return {nYear, TransitionDay(nYear, rule), nMilliseconds};
}

CTransitions ComputeTransitions(const TIME_ZONE_INFORMATION &zone, long nYear)
{
    return {StartOfDaylight(nYear, zone.DaylightDate),
            EndOfDaylight(nYear, zone.StandardDate, zone.DaylightBias)};
}

// The transitions of the zone and year asked for last.
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

// Cheaper than gmtime, whose other fields no rule asks for. From 1970 to 2038 every year divisible
// by 4 is a leap year, and four years from a leap year on have 1461 days; 1968 is one.
CUTimeOfYear ToTimeOfYear(long nTime)
{
    const long nDays = nTime / 86400 + 731;
    const long nDayInFour = nDays % 1461;
    const long nYearInFour = nDayInFour < 366 ? 0 : (nDayInFour - 1) / 365;
    const long nDay = nYearInFour == 0 ? nDayInFour : nDayInFour - 1 - nYearInFour * 365;
    return {68 + nDays / 1461 * 4 + nYearInFour, nDay, nTime % 86400 * 1000};
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
    // A month of 0 is how a zone says that it has no daylight time; a rule in a month that does
    // not exist never comes into force either.
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
