#pragma once

#include "CU/Platform.h"

// A FILETIME as one number: ticks of 100 ns since 1601-01-01 00:00:00 UTC.
const long long CU_TICKS_PER_SECOND = 10000000;

inline long long CUFileTimeToTicks(const FILETIME &time)
{
    return static_cast<long long>((static_cast<unsigned long long>(time.dwHighDateTime) << 32) |
                                  time.dwLowDateTime);
}

// 1970-01-01 00:00:00 UTC in such ticks.
long long CUEpochTicks();
