#include "TimeZone.h"

#include <string.h>

#include "CU/Dump.h"
#include "CU/Time.h"
#include "TryLock.h"
#include "Wrap.h"

namespace {

// Days before each month, less one: plus a day of the month, the day of the year from 0. Entry n is
// also the last day of the n-th month, counted from 1.
const short s_commonYear[13] = {-1, 30, 58, 89, 119, 150, 180, 211, 242, 272, 303, 333, 364};
const short s_leapYear[13] = {-1, 30, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

// Years are counted since 1900 here, as in tm.
const short *DaysOfYear(long nYear)
{
    return (nYear & 3) == 0 ? s_leapYear : s_commonYear;
}

// When a zone changes over in a year.
struct CTransition
{
    long nYear;
    long nDay;           // of the year, from 0
    long nMilliseconds;  // of the day
};

struct CTransitions
{
    CTransition start;  // into daylight time
    CTransition end;    // out of it, expressed in standard time
};

// The day of a rule whose month is 1..12. Nonsense in its other fields only makes a nonsense day.
long TransitionDay(long nYear, const SYSTEMTIME &rule)
{
    const short *days = DaysOfYear(nYear);
    if (rule.wYear != 0)
        return days[rule.wMonth - 1] + rule.wDay;
    const long nFirst = days[rule.wMonth - 1] + 1;
    const long nDaysBefore = WrapAdd(WrapMul(365, nYear), nFirst + (WrapSub(nYear, 1) >> 2));
    const long nFirstWeekday = WrapSub(nDaysBefore, 25563) % 7;
    long nDay = nFirst + 7 * rule.wDay + rule.wDayOfWeek - nFirstWeekday;
    if (nFirstWeekday <= rule.wDayOfWeek)
        nDay -= 7;
    // The fifth one means the last.
    if (rule.wDay == 5 && nDay > days[rule.wMonth])
        nDay -= 7;
    return nDay;
}

long SecondOfDay(long nHour, long nMinute, long nSecond)
{
    return (nHour * 60 + nMinute) * 60 + nSecond;
}

CTransition StartOfDaylight(long nYear, const SYSTEMTIME &rule)
{
    const long nSeconds = SecondOfDay(rule.wHour, rule.wMinute, rule.wSecond);
    return {nYear, TransitionDay(nYear, rule),
            WrapAdd(WrapMul(nSeconds, 1000), rule.wMilliseconds)};
}

CTransition EndOfDaylight(long nYear, const SYSTEMTIME &rule, LONG nDaylightBias)
{
    const long nSeconds =
        WrapAdd(SecondOfDay(rule.wHour, rule.wMinute, rule.wSecond), WrapMul(nDaylightBias, 60));
    long nMilliseconds = WrapAdd(WrapMul(nSeconds, 1000), rule.wMilliseconds);
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

// localtime's record, in a zone that the system cannot tell us.
tm *RuntimeLocal(long nTime)
{
    const time_t time = nTime;
    return localtime(&time);
}

tm *RuntimeGmt(long nTime)
{
    const time_t time = nTime;
    return gmtime(&time);
}

tm *BreakDown(long nTime, const TIME_ZONE_INFORMATION &zone)
{
    const long nStandard = WrapSub(nTime, WrapMul(zone.Bias, 60));
    tm *record = RuntimeGmt(nStandard);
    const bool bDaylight = record && CUIsDaylightTime(zone, *record);
    const LONG nBias = bDaylight ? zone.DaylightBias : zone.StandardBias;
    if (nBias != 0)
        record = RuntimeGmt(WrapSub(nStandard, WrapMul(nBias, 60)));
    if (!record)
        return RuntimeLocal(nTime);
    record->tm_isdst = bDaylight;
    return record;
}

// The trace's own time stamps come here, too: told from inside the trace it would never end.
void TraceInvalidZone()
{
    static volatile LONG s_nTracing;
    const CCUTryLock lock(s_nTracing);
    if (lock.IsTaken())
        CUDump("CCUTime - invalid time zone\n");
}

tm *CopyOut(tm *record, tm *out)
{
    if (!record || !out)
        return record;
    *out = *record;
    return out;
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

bool CUIsDaylightTime(const TIME_ZONE_INFORMATION &zone, const tm &fields)
{
    // A month of 0 is how a zone says that it has no daylight time; a rule in a month that does
    // not exist never comes into force either.
    if (!IsMonth(zone.DaylightDate.wMonth) || !IsMonth(zone.StandardDate.wMonth))
        return false;
    const CTransitions transitions = GetTransitions(zone, fields.tm_year);
    const long nStart = transitions.start.nDay;
    const long nEnd = transitions.end.nDay;
    const long nDay = fields.tm_yday;
    if (nDay != nStart && nDay != nEnd) {
        if (nStart >= nEnd)
            return nDay < nEnd || nDay > nStart;
        return nStart < nDay && nDay < nEnd;
    }
    const long nSeconds =
        WrapAdd(WrapMul(WrapAdd(WrapMul(fields.tm_hour, 60), fields.tm_min), 60), fields.tm_sec);
    const long nMilliseconds = WrapMul(nSeconds, 1000);
    if (nDay == nStart)
        return nMilliseconds >= transitions.start.nMilliseconds;
    return nMilliseconds < transitions.end.nMilliseconds;
}

int CUDayOfYear(long nYear, int nMonth, int nDay)
{
    const int nEntry = nMonth < 0 ? 0 : nMonth > 11 ? 11 : nMonth;
    return WrapAdd(nDay, DaysOfYear(nYear)[nEntry]);
}

tm *CCUTime::GetGmtTm(tm *out) const
{
    return CopyOut(RuntimeGmt(m_nTime), out);
}

tm *CCUTime::GetLocalTm(tm *out, const _TIME_ZONE_INFORMATION *tzi) const
{
    if (tzi)
        return CopyOut(BreakDown(m_nTime, *tzi), out);
    TIME_ZONE_INFORMATION current;
    if (CUGetCurrentZone(current) == TIME_ZONE_ID_INVALID) {
        TraceInvalidZone();
        return CopyOut(RuntimeLocal(m_nTime), out);
    }
    return CopyOut(BreakDown(m_nTime, current), out);
}
