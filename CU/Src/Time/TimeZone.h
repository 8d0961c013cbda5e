#pragma once

#include "CU/Platform.h"

// As GetTimeZoneInformation, which takes several times as long as a conversion and is therefore
// called at most once in a tick of GetTickCount.
DWORD CUGetCurrentZone(TIME_ZONE_INFORMATION &zone);

// A moment in a year, as the rules of zones have it.
struct CUTimeOfYear
{
    long nYear;          // since 1900
    long nDay;           // of the year, from 0
    long nMilliseconds;  // of the day
};

// Whether the zone's rules make it daylight time then.
bool CUIsDaylightTime(const TIME_ZONE_INFORMATION &zone, const CUTimeOfYear &time);

// The seconds since 1970 that a clock in the zone shows at an instant, and whether it shows
// daylight time. Below 0 when it shows a time before 1970 or after what 31 bits can hold.
long CULocalSeconds(long nTime, const TIME_ZONE_INFORMATION &zone, bool &bDaylight);

// The day of the year (0 = 1 January), for a year in years since 1900 and a month from 0. A 13th
// month (12) goes on after December; other months that do not exist are taken for the nearest.
long CUDayOfYear(long nYear, int nMonth, int nDay);

// Milliseconds of a time of day.
long CUMilliseconds(long nHour, long nMinute, long nSecond, long nMilliseconds);
