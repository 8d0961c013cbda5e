#include <gtest/gtest.h>

#include "CU/Clock.h"
#include "CU/Time.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"

namespace {

// Standard time begins at `end` and daylight time at `start`.
TIME_ZONE_INFORMATION Zone(LONG nBias, const SYSTEMTIME &end, const SYSTEMTIME &start,
                           LONG nDaylightBias = -60)
{
    return {nBias, L"Winter", end, 0, L"Summer", start, nDaylightBias};
}

const TIME_ZONE_INFORMATION s_eastern =
    Zone(300, {0, 11, 0, 1, 2, 0, 0, 0}, {0, 3, 0, 2, 2, 0, 0, 0});

// What the clocks show at an instant, as if it were UTC, by the system.
SYSTEMTIME SystemLocal(const TIME_ZONE_INFORMATION &zone, long nTime)
{
    const long long nTicks = nTime * 10000000LL + 116444736000000000;
    const FILETIME file = {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
    SYSTEMTIME utc = {}, local = {};
    FileTimeToSystemTime(&file, &utc);
    SystemTimeToTzSpecificLocalTime(&zone, &utc, &local);
    return local;
}

long ToSeconds(const SYSTEMTIME &time)
{
    FILETIME file;
    SystemTimeToFileTime(&time, &file);
    return static_cast<long>(CUFileTimeToSeconds(file));
}

bool AgreesAt(const TIME_ZONE_INFORMATION &zone, long nTime)
{
    const SYSTEMTIME t = SystemLocal(zone, nTime);
    tm record = {};
    CCUTime(nTime).GetLocalTm(&record, &zone);
    const LONG nBias = record.tm_isdst > 0 ? zone.DaylightBias : zone.StandardBias;
    const long nLocal = static_cast<long>(_mkgmtime(&record));
    const CCUTime back(t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, -1, &zone);
    // An hour that the clock shows twice is standard time.
    const bool bTwice = (back.GetTime() > nTime) == (zone.DaylightBias < 0) &&
                        ToSeconds(SystemLocal(zone, back.GetTime())) == ToSeconds(t);
    return nLocal == ToSeconds(t) && nLocal == nTime - (zone.Bias + nBias) * 60 &&
           (back.GetTime() == nTime || bTwice);
}

}  // namespace

TEST(TimeZone, AgreesWithTheSystemBothWays)
{
    const TIME_ZONE_INFORMATION zones[] = {
        s_eastern, Zone(-60, {0, 10, 0, 5, 3, 0, 0, 0}, {0, 3, 0, 5, 2, 0, 0, 0}),
        // South, with an odd offset of half an hour, without any, at midnight, in January; Namibia,
        // whose winter time is the one that differs; dates instead of weekdays.
        Zone(-630, {0, 4, 0, 1, 2, 0, 0, 0}, {0, 10, 0, 1, 2, 0, 0, 0}, -30), Zone(-345, {}, {}),
        Zone(60, {0, 10, 0, 5, 1, 0, 0, 0}, {0, 3, 0, 5, 0, 0, 0, 0}),
        Zone(-720, {0, 1, 0, 1, 3, 0, 0, 0}, {0, 11, 0, 1, 2, 0, 0, 0}),
        Zone(-120, {0, 9, 0, 1, 2, 0, 0, 0}, {0, 4, 0, 1, 2, 0, 0, 0}, 60),
        Zone(300, {2010, 11, 0, 7, 2, 0, 0, 0}, {2010, 3, 0, 14, 2, 0, 0, 0})};
    long nYear = 2009;
    for (const TIME_ZONE_INFORMATION &zone : zones) {
        for (long nTime = 2 * 86400; nTime < 0x7FFFFFFF - 12 * 86400; nTime += 1000003)
            ASSERT_TRUE(AgreesAt(zone, nTime)) << zone.Bias << " at " << nTime;
        // And every half hour of one year, to the second.
        const long nFirst = CCUTime(++nYear, 1, 1, 0, 0, 0, 0, &zone).GetTime();
        for (long nTime = nFirst; nTime < nFirst + 366 * 86400; nTime += 1800) {
            ASSERT_TRUE(AgreesAt(zone, nTime)) << zone.Bias << " at " << nTime;
            ASSERT_TRUE(AgreesAt(zone, nTime - 1)) << zone.Bias << " before " << nTime;
        }
    }
    // The clocks changed in every month.
    for (WORD wMonth = 1; wMonth <= 12; ++wMonth) {
        const WORD wNext = wMonth % 12 + 1;
        const TIME_ZONE_INFORMATION zone =
            Zone(0, {0, wMonth, 0, 5, 2, 0, 0, 0}, {0, wNext, 0, 1, 2, 0, 0, 0});
        for (long nTime = 2 * 86400; nTime < 0x7FFFFFFF - 12 * 86400; nTime += 500009)
            ASSERT_TRUE(AgreesAt(zone, nTime)) << "month " << wMonth << " at " << nTime;
    }
}

TEST(TimeZone, EndOfDaylightTimeMovedOverMidnightStaysOnItsDay)
{
    // On 21 February 2010.
    TIME_ZONE_INFORMATION zone = Zone(180, {0, 2, 0, 3, 0, 0, 0, 0}, {0, 10, 0, 3, 0, 0, 0, 0});
    const auto isDaylight = [&](int nHour, int nMinute, int nSecond) {
        tm record;
        const CCUTime time(2010, 2, 21, nHour, nMinute, nSecond, 0, &zone);
        return time.GetLocalTm(&record, &zone)->tm_isdst == 1;
    };
    EXPECT_TRUE(isDaylight(22, 59, 59));
    EXPECT_FALSE(isDaylight(23, 0, 0));
    // The step is a millisecond short of a day, either way.
    zone.StandardDate.wMilliseconds = 1;
    EXPECT_FALSE(isDaylight(23, 0, 0));
    zone.StandardDate = {0, 2, 0, 3, 23, 30, 0, 0};
    zone.DaylightBias = 60;
    EXPECT_TRUE(isDaylight(0, 30, 0));
    EXPECT_FALSE(isDaylight(0, 30, 1));
}

TEST(TimeZone, NullStandsForTheCurrentZone)
{
    const CReports reports;
    DWORD dwResult = TIME_ZONE_ID_STANDARD;
    const CFakeCall<DWORD(TIME_ZONE_INFORMATION *)> current("GetTimeZoneInformation",
                                                            [&](TIME_ZONE_INFORMATION *zone) {
                                                                *zone = s_eastern;
                                                                return dwResult;
                                                            });
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    EXPECT_EQ(994264215, noon.GetTime());
    EXPECT_STREQ("2001-07-04 12:30:15 Summer", noon.Format("%Y-%m-%d %H:%M:%S %Z"));
    EXPECT_EQ((std::vector<int>{2001, 7, 4, 12, 30, 15, 4}),
              (std::vector<int>{noon.GetYear(), noon.GetMonth(), noon.GetDay(), noon.GetHour(),
                                noon.GetMinute(), noon.GetSecond(), noon.GetDayOfWeek()}));
    dwResult = TIME_ZONE_ID_INVALID;
    const CDumped dumped;
    Sleep(50);  // the zone is asked for once in a tick of the clock
    const time_t time = 994264215;
    const tm local = *localtime(&time);
    EXPECT_EQ(0, memcmp(&local, noon.GetLocalTm(nullptr, nullptr), sizeof local));
    EXPECT_EQ("CCUTime - invalid time zone\n", dumped.m_text);
}
