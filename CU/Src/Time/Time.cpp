#include "CU/Time.h"

#include <stdio.h>
#include <string.h>

#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "Time/Clock.h"
#include "Time/LocalTime.h"
#include "Time/TimeZone.h"

namespace {

// The greatest instant, which also stands for an invalid one.
const long MAXIMUM_TIME = 0x7FFFFFFF;

struct CFields
{
    int nYear, nMonth, nDay, nHour, nMinute, nSecond;
};

// Seconds since 1970 of the fields read as UTC; 0 for fields that name no date and time.
long long SecondsOfFields(const CFields &fields)
{
    const int values[] = {fields.nYear, fields.nMonth,  fields.nDay,
                          fields.nHour, fields.nMinute, fields.nSecond};
    // The fields of a SYSTEMTIME have 16 bits: what does not fit would be cut to some other date.
    for (const int nValue : values) {
        if (nValue < 0 || nValue > 0xFFFF)
            return 0;
    }
    SYSTEMTIME time = {};
    time.wYear = static_cast<WORD>(fields.nYear);
    time.wMonth = static_cast<WORD>(fields.nMonth);
    time.wDay = static_cast<WORD>(fields.nDay);
    time.wHour = static_cast<WORD>(fields.nHour);
    time.wMinute = static_cast<WORD>(fields.nMinute);
    time.wSecond = static_cast<WORD>(fields.nSecond);
    FILETIME file;
    if (!SystemTimeToFileTime(&time, &file))
        return 0;
    return (CUFileTimeToTicks(file) - CUEpochTicks()) / CU_TICKS_PER_SECOND;
}

bool IsDaylight(const CFields &fields, int isDst, const TIME_ZONE_INFORMATION &zone)
{
    if (isDst != -1)
        return isDst == 1;
    const long nYear = CUWrapSub(fields.nYear, 1900);
    return CUIsDaylightTime(zone,
                            {nYear, CUDayOfYear(nYear, CUWrapSub(fields.nMonth, 1), fields.nDay),
                             CUMilliseconds(fields.nHour, fields.nMinute, fields.nSecond, 0)});
}

long InstantOfFields(const CFields &fields, int isDst, const TIME_ZONE_INFORMATION *tzi)
{
    TIME_ZONE_INFORMATION current = {};
    if (!tzi) {
        CUGetCurrentZone(current);
        tzi = &current;
    }
    const LONG nBias = IsDaylight(fields, isDst, *tzi) ? tzi->DaylightBias : tzi->StandardBias;
    // In 64 bits: a sum that is out of range must not wrap into it.
    const long long nSeconds =
        SecondsOfFields(fields) + (static_cast<long long>(tzi->Bias) + nBias) * 60;
    if (nSeconds >= 0 && nSeconds <= MAXIMUM_TIME)
        return static_cast<long>(nSeconds);
    CUDump(
        "CCUTime invalid data: Y(%d), M(%d), D(%d), H(%d), M(%d), S(%d) - using the maximum time "
        "instead\n",
        fields.nYear, fields.nMonth, fields.nDay, fields.nHour, fields.nMinute, fields.nSecond);
    return MAXIMUM_TIME;
}

long InstantOfSystemTime(const SYSTEMTIME &time, int isDst)
{
    if (time.wYear < 1900)
        return 0;
    return InstantOfFields(
        {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond}, isDst,
        nullptr);
}

long InstantOfFileTime(const FILETIME &time, int isDst)
{
    FILETIME local;
    SYSTEMTIME fields;
    if (!FileTimeToLocalFileTime(&time, &local) || !FileTimeToSystemTime(&local, &fields))
        return MAXIMUM_TIME;
    return InstantOfSystemTime(fields, isDst);
}

// A field in the current zone, counted from nFirst; 0 for an instant that has none.
int LocalField(const CCUTime &time, int tm::*pField, int nFirst)
{
    const tm *record = time.GetLocalTm(nullptr, nullptr);
    return record ? record->*pField + nFirst : 0;
}

tm *CopyOut(tm *record, tm *out)
{
    if (!record || !out)
        return record;
    *out = *record;
    return out;
}

bool IsInRange(int nValue, int nFirst, int nLast)
{
    return nValue >= nFirst && nValue <= nLast;
}

}  // namespace

CCUTime::CCUTime() : m_nTime(Clamp(static_cast<long>(time(nullptr)))) {}

CCUTime::CCUTime(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond, int isDst,
                 const _TIME_ZONE_INFORMATION *tzi)
    : m_nTime(InstantOfFields({nYear, nMonth, nDay, nHour, nMinute, nSecond}, isDst, tzi))
{
}

CCUTime::CCUTime(const _SYSTEMTIME &time, int isDst) : m_nTime(InstantOfSystemTime(time, isDst)) {}

CCUTime::CCUTime(const _FILETIME &time, int isDst) : m_nTime(InstantOfFileTime(time, isDst)) {}

CCUTime &CCUTime::operator=(long nSeconds)
{
    m_nTime = Clamp(nSeconds);
    return *this;
}

CCUTime &CCUTime::operator=(const CCUTime &other)
{
    m_nTime = Clamp(other.m_nTime);
    return *this;
}

CCUTime CCUTime::GetTickCount()
{
    return CCUTime();
}

tm *CCUTime::GetGmtTm(tm *out) const
{
    return CopyOut(CUGmtTm(m_nTime), out);
}

tm *CCUTime::GetLocalTm(tm *out, const _TIME_ZONE_INFORMATION *tzi) const
{
    bool bInvalidZone;
    tm *record = CULocalTm(m_nTime, tzi, bInvalidZone);
    if (bInvalidZone) {
        CUDump("CCUTime - invalid time zone\n");
        // Who hears the trace may have asked for a time, too: there is one record a thread.
        record = CULocalTm(m_nTime, tzi, bInvalidZone);
    }
    return CopyOut(record, out);
}

int CCUTime::GetYear() const
{
    return LocalField(*this, &tm::tm_year, 1900);
}

int CCUTime::GetMonth() const
{
    return LocalField(*this, &tm::tm_mon, 1);
}

int CCUTime::GetDay() const
{
    return LocalField(*this, &tm::tm_mday, 0);
}

int CCUTime::GetHour() const
{
    return LocalField(*this, &tm::tm_hour, 0);
}

int CCUTime::GetMinute() const
{
    return LocalField(*this, &tm::tm_min, 0);
}

int CCUTime::GetSecond() const
{
    return LocalField(*this, &tm::tm_sec, 0);
}

int CCUTime::GetDayOfWeek() const
{
    return LocalField(*this, &tm::tm_wday, 1);
}

CCUTimeSpan CCUTime::operator-(const CCUTime &other) const
{
    return CUWrapSub(m_nTime, other.m_nTime);
}

CCUTime CCUTime::operator+(CCUTimeSpan span) const
{
    return CUWrapAdd(m_nTime, span.GetSpan());
}

CCUTime CCUTime::operator-(CCUTimeSpan span) const
{
    return CUWrapSub(m_nTime, span.GetSpan());
}

CCUTime &CCUTime::operator+=(CCUTimeSpan span)
{
    m_nTime = CUWrapAdd(m_nTime, span.GetSpan());
    return *this;
}

CCUTime &CCUTime::operator-=(CCUTimeSpan span)
{
    m_nTime = CUWrapSub(m_nTime, span.GetSpan());
    return *this;
}

int CCUTime::ParseTime(const CCUString &sText)
{
    char szText[40];
    strncpy(szText, sText, sizeof szText - 1);
    szText[sizeof szText - 1] = '\0';
    const bool bTwelveHours = strlen(szText) >= 10;
    const char half = static_cast<char>(bTwelveHours ? szText[9] | 0x20 : 0);
    if (bTwelveHours) {
        if (half != 'p' && half != 'a')
            return 0;
        szText[8] = '\0';
    }
    int nHour = 0;
    int nMinute = 0;
    int nSecond = 0;
    if (sscanf(szText, "%d:%d:%d", &nHour, &nMinute, &nSecond) != 3)
        return 0;
    if (!IsInRange(nHour, bTwelveHours ? 1 : 0, bTwelveHours ? 12 : 23) ||
        !IsInRange(nMinute, 0, 59) || !IsInRange(nSecond, 0, 59))
        return 0;
    if (half == 'p' && nHour < 12)
        nHour += 12;
    else if (half == 'a' && nHour == 12)
        nHour = 0;
    *this = CCUTime(GetYear(), GetMonth(), GetDay(), nHour, nMinute, nSecond);
    return 1;
}

int CCUTime::ParseDate(const CCUString &sText)
{
    int nMonth = 0;
    int nDay = 0;
    int nYear = 0;
    if (sscanf(sText, "%d/%d/%d", &nMonth, &nDay, &nYear) != 3)
        return 0;
    if (!IsInRange(nMonth, 1, 12) || nYear < 1970 ||
        !IsInRange(nDay, 1, CUGetDaysInMonth(nYear, nMonth)))
        return 0;
    *this = CCUTime(nYear, nMonth, nDay, GetHour(), GetMinute(), GetSecond());
    return 1;
}

int CUGetDaysInMonth(int nYear, int nMonth)
{
    switch (nMonth) {
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12: return 31;
    case 4:
    case 6:
    case 9:
    case 11: return 30;
    case 2: return nYear % 4 == 0 ? 29 : 28;
    default: return -1;
    }
}
