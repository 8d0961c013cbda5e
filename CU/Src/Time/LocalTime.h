#pragma once

#include <time.h>

#include "CU/Platform.h"

// What a calendar shows at an instant, in the C library's record, one a thread; null for an instant
// that has none. Without a word to the trace, which names its files by these.

tm *CUGmtTm(long nTime);
// By the rules of a zone; null: the current one. bInvalidZone: the system could not tell that one,
// and the record is what the C library takes for local time.
tm *CULocalTm(long nTime, const TIME_ZONE_INFORMATION *pZone, bool &bInvalidZone);
