#pragma once

/// @file
/// The report of a crash, and how long report files are kept.

#include "CU/Platform.h"

/// From here on an exception that nobody handles is written to the day's report file (see
/// Assert.h): its name and address, the registers, the stack, and what the report handlers add. The
/// handler that stood before, then the system's own handling, go on afterwards. Calling it again is
/// without effect.
CU_API void CUStartExceptionHandler();

/// Sets whether the process ends after a crash report, at once and with the exception's code as
/// exit code, instead of going on to the system's own handling, which may wait in a dialog. At
/// first it does not.
CU_API void CUShutdownAfterCrash(bool bShutdown);

/// Deletes the report files of the temporary directory, "ZELTrace-YYYY-MM-DD.txt", of days that lie
/// more than daysToKeep days back, each with the line "Deleting trace file: %s\n" in the trace.
/// Today's is always kept; a number below 0 counts as 0. Returns how many were deleted.
CU_API int CUPurgeTraceFiles(int daysToKeep = 30);
