#pragma once

#include "Support/ImportHook.h"

// Puts a current zone of the test's own in the place of the system's.
class CZoneHook
{
public:
    explicit CZoneHook(DWORD(WINAPI *function)(TIME_ZONE_INFORMATION *))
        : m_hook("GetTimeZoneInformation", function)
    {
        WaitForTick();
    }

    // The zone is asked for once in a tick of the clock: waits for the next one.
    static void WaitForTick()
    {
        const DWORD dwTick = GetTickCount();
        while (GetTickCount() == dwTick) {
        }
    }

private:
    CImportHook m_hook;
};
