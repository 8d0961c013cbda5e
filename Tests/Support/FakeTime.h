#pragma once

#include <time.h>

#include "Support/ImportHook.h"

// The C library's clock standing where the test sets it.
struct CFakeTime
{
    CFakeTime() : m_hook("time", Now) {}
    // A time of the current zone.
    static time_t Local(int nYear, int nMonth, int nDay, int nHour = 0)
    {
        tm local = {0, 0, nHour, nDay, nMonth - 1, nYear - 1900, 0, 0, -1};
        return mktime(&local);
    }
    static time_t Now(time_t *) { return s_now; }

    inline static time_t s_now;
    const CImportHook m_hook;
};
