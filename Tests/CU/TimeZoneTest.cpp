#include <gtest/gtest.h>

#include <string>

#include "CU/Clock.h"
#include "CU/Registry.h"
#include "CU/Time.h"
#include "Support/Fuzz.h"
#include "Support/Reports.h"
#include "Support/ZoneHook.h"

namespace {

// The record that the system keeps for the zone, or kept in the year "2010" for "Zone/2010".
TIME_ZONE_INFORMATION ReadZone(const std::string &name)
{
    struct
    {
        LONG nBias, nStandardBias, nDaylightBias;
        SYSTEMTIME standard, daylight;
    } rules = {};
    const size_t nSlash = name.find('/');
    std::string path = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\" +
                       name.substr(0, nSlash) + " Standard Time";
    if (nSlash != std::string::npos)
        path += "\\Dynamic DST";
    const CCURegistry registry(HKEY_LOCAL_MACHINE, path.c_str());
    DWORD nSize = sizeof rules;
    EXPECT_TRUE(
        registry.GetBinary(nSlash == std::string::npos ? "TZI" : &name[nSlash + 1], &rules, nSize));
    return {rules.nBias, L"Winter",      rules.standard,     rules.nStandardBias,
            L"Summer",   rules.daylight, rules.nDaylightBias};
}

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

// How many comparisons there were, and how many differences each rule explained.
struct CCounts
{
    int nCompared, nMidnight, nSeconds, nTwice, nUnexplained;
};

// Both ways at an instant and the time that the clocks show at it.
void CompareAt(const TIME_ZONE_INFORMATION &zone, long nTime, CCounts &counts)
{
    counts.nCompared += 2;
    // The end of daylight time, moved over midnight, stays on its day and so comes a day late.
    const bool bMidnight =
        zone.StandardDate.wHour * 60 + zone.StandardDate.wMinute + zone.DaylightBias < 0;
    // Rules count in milliseconds; this system's count in whole minutes.
    const bool bSeconds = zone.StandardDate.wSecond || zone.DaylightDate.wSecond;
    const long nLate = bMidnight ? 86400 : bSeconds ? 60 : 0;
    int &nExplained = bMidnight ? counts.nMidnight : counts.nSeconds;
    const long nSystem = SystemOffset(zone, nTime), nOurs = OurOffset(zone, nTime);
    if (nLate && nOurs != nSystem && SystemOffset(zone, nTime - nLate) == nOurs)
        ++nExplained;
    else if (nOurs != nSystem && counts.nUnexplained++ < 5)
        ADD_FAILURE() << "instant " << nTime << ": " << nOurs << ", the system " << nSystem;

    const long nWall = nTime + nSystem;
    const long nInstant = OurInstant(zone, nWall), nExpected = SystemInstant(zone, nWall);
    // The end counts in standard time: an hour that the clock shows twice is the later one.
    if (nInstant > nExpected && nInstant + SystemOffset(zone, nInstant) == nWall)
        ++counts.nTwice;
    else if (nLate && nInstant != nExpected &&
             SystemOffset(zone, nInstant - nLate) == nWall - nInstant)
        ++nExplained;
    else if (nInstant != nExpected && counts.nUnexplained++ < 5)
        ADD_FAILURE() << "clock " << nWall << ": " << nInstant << ", the system " << nExpected;
}

// Some 8,000 instants over the whole range, and the days around each change of the clocks.
void CompareZone(const TIME_ZONE_INFORMATION &zone, CCounts &counts)
{
    const long nLast = 0x7FFFFFFF - 5 * 86400;
    for (long nTime = 2 * 86400; nTime < nLast; nTime += 250013) {
        CompareAt(zone, nTime, counts);
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
                CompareAt(zone, nAfter + nMinutes * 60 + nSecond, counts);
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
    // North, south, parts of an hour, none, at midnight, with seconds, in the first days of a year.
    const char *const names[] = {
        "Eastern",     "Pacific",      "W. Europe", "GMT",         "AUS Eastern",
        "New Zealand", "Lord Howe",    "Nepal",     "India",       "Chatham Islands",
        "Tokyo",       "Newfoundland", "Hawaiian",  "Azores",      "Egypt/2010",
        "Iran/2010",   "Paraguay",     "Cuba",      "Jordan/2012", "E. South America/2010"};
    CCounts counts = {};
    for (const char *name : names) {
        SCOPED_TRACE(name);
        CompareZone(ReadZone(name), counts);
    }
    // Dates instead of weekdays hold in every year.
    TIME_ZONE_INFORMATION absolute = ReadZone("Eastern");
    absolute.StandardDate = {2010, 11, 0, 7, 2, 0, 0, 0};
    absolute.DaylightDate = {2010, 3, 0, 14, 2, 0, 0, 0};
    CompareZone(absolute, counts);
    EXPECT_GE(counts.nCompared, 200000);
    EXPECT_TRUE(counts.nMidnight && counts.nSeconds && counts.nTwice);
    EXPECT_EQ(0, counts.nUnexplained);
}

TEST(TimeZone, EndOfDaylightTimeMovedOverMidnightStaysOnItsDay)
{
    // Ends on Sunday 21 February 2010 at 00:00 daylight time, -01:00 in standard time.
    TIME_ZONE_INFORMATION zone = ReadZone("E. South America/2010");
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
    const TIME_ZONE_INFORMATION north = ReadZone("Eastern");
    EXPECT_STREQ("Winter", summer.FormatTZI("%Z", &north));
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
    unsigned nRandom = 1;
    const auto next = [&] {
        return static_cast<WORD>((nRandom = nRandom * 1664525 + 1013904223) >> 16);
    };
    for (int i = 0; i < FuzzInputs(); ++i) {
        WORD words[sizeof(TIME_ZONE_INFORMATION) / 2];
        for (WORD &word : words)
            word = next();
        TIME_ZONE_INFORMATION zone;
        memcpy(&zone, words, sizeof zone);
        if (i % 2) {
            zone.StandardDate.wMonth = static_cast<WORD>(1 + zone.StandardDate.wMonth % 13);
            zone.DaylightDate.wMonth = static_cast<WORD>(1 + zone.DaylightDate.wMonth % 13);
            zone.Bias %= 2000;
        }
        tm record;
        const CCUTime time(static_cast<long>(nRandom >> 1));
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
    s_current = ReadZone("Eastern");
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    EXPECT_EQ(994264215, noon.GetTime());
    const int fields[] = {noon.GetYear(),   noon.GetMonth(),  noon.GetDay(),      noon.GetHour(),
                          noon.GetMinute(), noon.GetSecond(), noon.GetDayOfWeek()};
    const int expected[] = {2001, 7, 4, 12, 30, 15, 4};
    EXPECT_EQ(0, memcmp(expected, fields, sizeof fields));
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
