#pragma once

#include "CU/String.h"
#include "CUI/Platform.h"

const char *const WORK_STOPPED = "The work was stopped.";

// Hears how far the work is.
class CDiscProgress
{
public:
    virtual ~CDiscProgress() {}
    // `nDone` of `nTotal` bytes are written; `sFile` is the one in work, relative to the disc.
    // False: stop.
    virtual bool OnProgress(ULONGLONG nDone, ULONGLONG nTotal, const CCUString &sFile) = 0;
};
