#pragma once

#include "CU/Platform.h"

// Units of a FILETIME in a second.
const long long CUTicksPerSecond = 10000000;

// A FILETIME as the number it is: 100 ns since 1601-01-01.
inline long long CUFileTimeToTicks(const FILETIME &time)
{
    return static_cast<long long>((static_cast<unsigned long long>(time.dwHighDateTime) << 32) |
                                  time.dwLowDateTime);
}

// 1970-01-01 00:00:00 UTC as such a number.
long long CUEpochTicks();
