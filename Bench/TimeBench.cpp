#include <stdlib.h>

#include "Bench.h"
#include "CU/Clock.h"
#include "CU/Time.h"

namespace {

TIME_ZONE_INFORMATION Eastern()
{
    TIME_ZONE_INFORMATION zone = {};
    zone.Bias = 300;
    zone.DaylightBias = -60;
    zone.DaylightDate.wMonth = 3;
    zone.DaylightDate.wDay = 2;
    zone.DaylightDate.wHour = 2;
    zone.StandardDate.wMonth = 11;
    zone.StandardDate.wDay = 1;
    zone.StandardDate.wHour = 2;
    return zone;
}

}  // namespace

BENCH_GROUP(Time)
{
    const TIME_ZONE_INFORMATION zone = Eastern();
    // In summer, so that both sides have daylight time to add.
    const CCUTime time(2001, 7, 4, 12, 30, 15, -1, &zone);
    SYSTEMTIME utc = {2001, 7, 0, 4, 16, 30, 15, 0};
    BenchCompare(
        "GetLocalTm, zone cached",
        [&] {
            tm record;
            BenchKeep(time.GetLocalTm(&record, &zone));
        },
        "SystemTimeToTzSpecificLocalTime",
        [&] {
            SYSTEMTIME local;
            BenchKeep(SystemTimeToTzSpecificLocalTime(&zone, &utc, &local));
        },
        1.0);
    tm record;
    time.GetLocalTm(&record, nullptr);
    BenchCompare(
        "CCUTime::Format \"%Y-%m-%d %H:%M:%S\"",
        [&] { BenchKeep(time.Format("%Y-%m-%d %H:%M:%S")); }, "strftime",
        [&] {
            char szText[128];
            BenchKeep(strftime(szText, sizeof szText, "%Y-%m-%d %H:%M:%S", &record));
        },
        2.0);
    BenchCompare(
        "CCUTime::Format \"%A %B %j\"", [&] { BenchKeep(time.Format("%A %B %j")); }, "strftime",
        [&] {
            char szText[128];
            BenchKeep(strftime(szText, sizeof szText, "%A %B %j", &record));
        },
        0);
    BenchCompare(
        "CUDoubleTime", [] { BenchKeep(CUDoubleTime()); }, "GetSystemTimeAsFileTime",
        [] {
            FILETIME now;
            GetSystemTimeAsFileTime(&now);
            BenchKeep(now);
        },
        0);
}
