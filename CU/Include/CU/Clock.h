#pragma once

/// @file
/// The system clock as a double number of seconds since 1970-01-01 00:00:00 UTC. Every function may
/// be called from any thread and reports a failure by its result alone.

#include "CU/Platform.h"

/// Converts a FILETIME, which counts units of 100 ns in UTC, to seconds since 1970. The FILETIME's
/// highest bit is its sign.
CU_API double CUFileTimeToSeconds(const FILETIME &time);

/// The current time as the system's clock has it: it stands still between two ticks of that clock
/// (10 to 55 ms on older systems).
CU_API double CUGetSystemTimeSeconds();

/// The current time with the resolution of the performance counter, which fills in between the
/// ticks: never before CUGetSystemTimeSeconds, never more than a tick ahead of it, and never going
/// back unless the clock is set back.
CU_API double CUDoubleTime();

/// The length of a clock tick and what the clock is advanced by at each, both in 100 ns. False,
/// with nothing stored, when the system does not tell.
CU_API bool CUGetSystemTimeAdjustment(double &increment, double &adjustment);

/// Makes the clock advance by `adjustment` at every tick, in units of 100 ns, truncated to a whole
/// number. A value outside 0 to 2^32 - 1 becomes the nearer end, and NaN becomes 0. False when the
/// privilege "SeSystemtimePrivilege" cannot be enabled. True says only that the system was asked:
/// its answer is not looked at.
CU_API bool CUSetSystemTimeAdjustment(double adjustment);

/// Sets the clock, with that privilege where it can be had, and sends WM_TIMECHANGE to all
/// top-level windows. False when the system refuses, for NaN, and for what lies outside the years
/// 1601 to 30827.
CU_API bool CUSetSystemTime(double seconds);
