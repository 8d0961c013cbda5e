#pragma once

#include <time.h>

#include "Support/ImportHook.h"

// The C library's clock standing where the test sets it.
class CFakeTime
{
public:
    // A time of the current zone.
    static time_t Local(int nYear, int nMonth, int nDay, int nHour = 0)
    {
        tm local = {};
        local.tm_year = nYear - 1900, local.tm_mon = nMonth - 1, local.tm_mday = nDay;
        local.tm_hour = nHour, local.tm_isdst = -1;
        return mktime(&local);
    }
    inline static time_t s_now;

private:
    static time_t Now(time_t *) { return s_now; }
    const CImportHook m_hook{"time", Now};
};
