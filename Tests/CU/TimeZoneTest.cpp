#include <gtest/gtest.h>

#include <random>

#include "CU/Clock.h"
#include "CU/Time.h"
#include "Support/Fuzz.h"
#include "Support/Reports.h"
#include "Support/ZoneHook.h"

namespace {

// Standard time begins at `end` and daylight time at `start`.
TIME_ZONE_INFORMATION Zone(LONG nBias, const SYSTEMTIME &end, const SYSTEMTIME &start,
                           LONG nDaylightBias = -60)
{
    return {nBias, L"Winter", end, 0, L"Summer", start, nDaylightBias};
}

const SYSTEMTIME s_never = {};
const TIME_ZONE_INFORMATION s_eastern =
    Zone(300, {0, 11, 0, 1, 2, 0, 0, 0}, {0, 3, 0, 2, 2, 0, 0, 0});
// Daylight time ends when Saturday does, which is 23:00 of standard time.
const TIME_ZONE_INFORMATION s_brasilia =
    Zone(180, {0, 2, 0, 3, 0, 0, 0, 0}, {0, 10, 0, 3, 0, 0, 0, 0});

SYSTEMTIME ToFields(long nSeconds)
{
    const long long nTicks = nSeconds * 10000000LL + 116444736000000000;
    const FILETIME file = {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
    SYSTEMTIME time = {};
    FileTimeToSystemTime(&file, &time);
    return time;
}

long ToSeconds(const SYSTEMTIME &time)
{
    FILETIME file;
    SystemTimeToFileTime(&time, &file);
    return static_cast<long>(CUFileTimeToSeconds(file));
}

// What is added to an instant to get its local time: the system's answer, and ours.
long SystemOffset(const TIME_ZONE_INFORMATION &zone, long nTime)
{
    const SYSTEMTIME utc = ToFields(nTime);
    SYSTEMTIME local = {};
    SystemTimeToTzSpecificLocalTime(&zone, &utc, &local);
    return ToSeconds(local) - nTime;
}

long OurOffset(const TIME_ZONE_INFORMATION &zone, long nTime)
{
    tm record = {};
    CCUTime(nTime).GetLocalTm(&record, &zone);
    const LONG nBias = record.tm_isdst > 0 ? zone.DaylightBias : zone.StandardBias;
    // Normalises its argument, the flag included.
    const long nOffset = static_cast<long>(_mkgmtime(&record)) - nTime;
    return nOffset == (zone.Bias + nBias) * -60 ? nOffset : -1;
}

// The instant of a wall clock's time, given as if it were UTC.
long SystemInstant(const TIME_ZONE_INFORMATION &zone, long nWall)
{
    const SYSTEMTIME local = ToFields(nWall);
    SYSTEMTIME utc = {};
    TzSpecificLocalTimeToSystemTime(&zone, &local, &utc);
    return ToSeconds(utc);
}

long OurInstant(const TIME_ZONE_INFORMATION &zone, long nWall)
{
    const SYSTEMTIME t = ToFields(nWall);
    const CCUTime time(t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, -1, &zone);
    return time.GetTime();
}

// How much later than the system's our changes of the clocks may come.
long MostLate(const TIME_ZONE_INFORMATION &zone)
{
    // The end of daylight time, moved over midnight, stays on its day and so comes a day late.
    if (zone.StandardDate.wHour * 60 + zone.StandardDate.wMinute + zone.DaylightBias < 0)
        return 86400;
    // Rules count in milliseconds; this system's count in whole minutes.
    return zone.StandardDate.wSecond || zone.DaylightDate.wSecond ? 60 : 0;
}

// Both ways at an instant and the time that the clocks show at it.
bool AgreesAt(const TIME_ZONE_INFORMATION &zone, long nTime)
{
    const long nLate = MostLate(zone), nSystem = SystemOffset(zone, nTime);
    const long nOurs = OurOffset(zone, nTime);
    if (nOurs != nSystem && SystemOffset(zone, nTime - nLate) != nOurs)
        return false;
    const long nWall = nTime + nSystem;
    const long nInstant = OurInstant(zone, nWall), nExpected = SystemInstant(zone, nWall);
    // The end counts in standard time: an hour that the clock shows twice is the later one.
    const bool bTwice = nInstant > nExpected && nInstant + SystemOffset(zone, nInstant) == nWall;
    return nInstant == nExpected || bTwice ||
           (nLate && SystemOffset(zone, nInstant - nLate) == nWall - nInstant);
}

// Some 8,000 instants over the whole range, and the days around each change of the clocks.
void CompareZone(const TIME_ZONE_INFORMATION &zone)
{
    const long nLast = 0x7FFFFFFF - 5 * 86400;
    for (long nTime = 2 * 86400; nTime < nLast; nTime += 250013) {
        ASSERT_TRUE(AgreesAt(zone, nTime)) << nTime;
        long nBefore = nTime, nAfter = nTime + 250013;
        const long nOffset = SystemOffset(zone, nBefore);
        if (SystemOffset(zone, nAfter) == nOffset)
            continue;
        // To the second.
        while (nAfter - nBefore > 1) {
            const long nMiddle = nBefore + (nAfter - nBefore) / 2;
            (SystemOffset(zone, nMiddle) == nOffset ? nBefore : nAfter) = nMiddle;
        }
        for (long nMinutes = -26 * 60; nMinutes <= 26 * 60; nMinutes += 30) {
            for (long nSecond = -1; nSecond <= 1; ++nSecond)
                ASSERT_TRUE(AgreesAt(zone, nAfter + nMinutes * 60 + nSecond)) << nAfter;
        }
    }
}

BOOL s_bZoneKnown = TRUE;
TIME_ZONE_INFORMATION s_current;

DWORD WINAPI FakeCurrentZone(TIME_ZONE_INFORMATION *zone)
{
    *zone = s_current;
    return s_bZoneKnown ? TIME_ZONE_ID_STANDARD : TIME_ZONE_ID_INVALID;
}

}  // namespace

TEST(TimeZone, AgreesWithTheSystemBothWaysExceptWhereItsRulesDiffer)
{
    const TIME_ZONE_INFORMATION zones[] = {
        s_eastern, s_brasilia, Zone(-60, {0, 10, 0, 5, 3, 0, 0, 0}, {0, 3, 0, 5, 2, 0, 0, 0}),
        // South, of half an hour, with an odd offset, without any.
        Zone(-600, {0, 4, 0, 1, 3, 0, 0, 0}, {0, 10, 0, 1, 2, 0, 0, 0}),
        Zone(-630, {0, 4, 0, 1, 2, 0, 0, 0}, {0, 10, 0, 1, 2, 0, 0, 0}, -30),
        Zone(-765, {0, 4, 0, 1, 3, 45, 0, 0}, {0, 9, 0, 5, 2, 45, 0, 0}),
        Zone(-345, s_never, s_never),
        // At midnight, with seconds, in the first days of a year.
        Zone(60, {0, 10, 0, 5, 1, 0, 0, 0}, {0, 3, 0, 5, 0, 0, 0, 0}),
        Zone(-120, {0, 10, 5, 5, 1, 59, 59, 999}, {0, 3, 4, 5, 23, 59, 59, 999}),
        Zone(-720, {0, 1, 0, 1, 3, 0, 0, 0}, {0, 11, 0, 1, 2, 0, 0, 0}),
        // New Zealand, Samoa, Israel, Chile, Paraguay, Iran, Egypt; Newfoundland a minute past
        // midnight; Namibia, whose winter time is the one that differs.
        Zone(-720, {0, 4, 0, 1, 3, 0, 0, 0}, {0, 9, 0, 5, 2, 0, 0, 0}),
        Zone(-780, {0, 4, 0, 1, 4, 0, 0, 0}, {0, 9, 0, 5, 3, 0, 0, 0}),
        Zone(-120, {0, 10, 0, 5, 2, 0, 0, 0}, {0, 3, 5, 4, 2, 0, 0, 0}),
        Zone(240, {0, 4, 6, 1, 23, 59, 59, 999}, {0, 9, 6, 1, 23, 59, 59, 999}),
        Zone(240, {0, 3, 6, 4, 23, 59, 59, 999}, {0, 10, 6, 1, 23, 59, 59, 999}),
        Zone(-210, {0, 9, 2, 3, 23, 59, 59, 999}, {0, 3, 0, 4, 0, 0, 0, 0}),
        Zone(-120, {0, 9, 4, 5, 23, 59, 59, 999}, {0, 4, 5, 5, 0, 0, 0, 0}),
        Zone(210, {0, 11, 0, 1, 0, 1, 0, 0}, {0, 3, 0, 2, 0, 1, 0, 0}),
        Zone(-120, {0, 9, 0, 1, 2, 0, 0, 0}, {0, 4, 0, 1, 2, 0, 0, 0}, 60),
        // Dates instead of weekdays hold in every year.
        Zone(300, {2010, 11, 0, 7, 2, 0, 0, 0}, {2010, 3, 0, 14, 2, 0, 0, 0})};
    for (const TIME_ZONE_INFORMATION &zone : zones) {
        SCOPED_TRACE(&zone - zones);
        CompareZone(zone);
    }
}

TEST(TimeZone, EndOfDaylightTimeMovedOverMidnightStaysOnItsDay)
{
    // On 21 February 2010.
    TIME_ZONE_INFORMATION zone = s_brasilia;
    const auto isDaylight = [&](int nDay, int nHour, int nMinute, int nSecond) {
        tm record;
        const CCUTime time(2010, 2, nDay, nHour, nMinute, nSecond, 0, &zone);
        return time.GetLocalTm(&record, &zone)->tm_isdst == 1;
    };
    EXPECT_TRUE(isDaylight(21, 22, 59, 59) && !isDaylight(21, 23, 0, 0));
    // The step is a millisecond short of a day, either way.
    zone.StandardDate.wMilliseconds = 1;
    EXPECT_TRUE(isDaylight(21, 22, 59, 59) && !isDaylight(21, 23, 0, 0));
    zone.StandardDate = {0, 2, 0, 3, 23, 30, 0, 0};
    zone.DaylightBias = 60;
    EXPECT_TRUE(isDaylight(21, 0, 30, 0) && !isDaylight(21, 0, 30, 1));
    // A flag that is given decides alone; other zones and zones without a rule in the same year.
    const CCUTime summer(2010, 1, 21, 0, 0, 0, 1, &zone);
    EXPECT_EQ(-3600, (CCUTime(2010, 1, 21, 0, 0, 0, 2, &zone) - summer).GetSpan());
    EXPECT_STREQ("Winter", summer.FormatTZI("%Z", &s_eastern));
    EXPECT_STREQ("Summer", summer.FormatTZI("%Z", &zone));
    zone.StandardDate.wMonth = 0;
    EXPECT_STREQ("Winter", summer.FormatTZI("%Z", &zone));
    // Of a 13th month only the offset is left, and that goes by the days after December.
    zone.DaylightDate = {1, 12, 0, 20, 0, 0, 0, 0};
    zone.StandardDate = {1, 2, 0, 1, 0, 0, 0, 0};
    zone.Bias = 0;
    EXPECT_EQ(3600, CCUTime(2001, 13, 1, 0, 0, 0, -1, &zone).GetTime());
}

TEST(TimeZone, RecordsOfNonsenseAreSafe)
{
    std::mt19937 random(1);
    for (int i = 0; i < FuzzInputs(); ++i) {
        unsigned int words[sizeof(TIME_ZONE_INFORMATION) / 4];
        for (unsigned int &word : words)
            word = random();
        TIME_ZONE_INFORMATION zone;
        memcpy(&zone, words, sizeof zone);
        if (i % 2) {
            zone.StandardDate.wMonth = static_cast<WORD>(1 + zone.StandardDate.wMonth % 13);
            zone.DaylightDate.wMonth = static_cast<WORD>(1 + zone.DaylightDate.wMonth % 13);
            zone.Bias %= 2000;
        }
        tm record;
        const CCUTime time(static_cast<long>(random() >> 1));
        const tm *result = time.GetLocalTm(&record, &zone);
        ASSERT_LT(time.FormatTZI("%Z%%Z%z", &zone).GetLength(), 128);
        ASSERT_TRUE(!result || (result->tm_mon >= 0 && result->tm_mon < 12));
        // Standard time of a month that does not exist.
        ASSERT_TRUE(!result || zone.DaylightDate.wMonth <= 12 || result->tm_isdst == 0);
    }
}

TEST(TimeZone, NullStandsForTheCurrentZone)
{
    const CReports reports;
    const CZoneHook hook(FakeCurrentZone);
    s_current = s_eastern;
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    EXPECT_EQ(994264215, noon.GetTime());
    EXPECT_TRUE(noon.GetYear() == 2001 && noon.GetMonth() == 7 && noon.GetDay() == 4 &&
                noon.GetHour() == 12 && noon.GetMinute() == 30 && noon.GetSecond() == 15 &&
                noon.GetDayOfWeek() == 4);
    // The shared record is the C library's.
    EXPECT_EQ(noon.GetGmtTm(nullptr), noon.GetLocalTm(nullptr, nullptr));

    // A change of zone shows by the next tick of the clock.
    s_current.Bias = 0;
    CZoneHook::WaitForTick();
    EXPECT_EQ(17, noon.GetHour());

    s_bZoneKnown = FALSE;
    CDumped dumped;
    CZoneHook::WaitForTick();
    const time_t time = 994264215;
    const tm local = *localtime(&time);
    EXPECT_EQ(0, memcmp(&local, noon.GetLocalTm(nullptr, nullptr), sizeof local));
    EXPECT_EQ("CCUTime - invalid time zone\n", dumped.m_text);
}
