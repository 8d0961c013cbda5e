#pragma once

#include <time.h>

#include "CU/Platform.h"

// The answer of GetTimeZoneInformation, which costs several times a conversion and is therefore
// asked for once in a tick of GetTickCount.
DWORD CUGetCurrentZone(TIME_ZONE_INFORMATION &zone);

// Whether the zone's rules make it daylight time at the fields' year, day of year, hour, minute
// and second.
bool CUIsDaylightTime(const TIME_ZONE_INFORMATION &zone, const tm &fields);

// The day of the year (0 = 1 January), for a year in years since 1900 and a month from 0; a month
// outside 0..11 is taken for the nearest.
int CUDayOfYear(long nYear, int nMonth, int nDay);
