#include <gtest/gtest.h>

#include "CU/Registry.h"
#include "CU/Time.h"
#include "Support/Dumped.h"
#include "Support/Fuzz.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"

namespace {

const long long s_nEpoch = 116444736000000000;

struct CZoneName
{
    const char *name;
    const char *year;  // of older rules, if not the present ones
    bool bAbsolute;    // rules turned into dates of 2010
};

// The record that the system keeps for the zone.
TIME_ZONE_INFORMATION ReadZone(const CZoneName &name)
{
    struct
    {
        LONG nBias, nStandardBias, nDaylightBias;
        SYSTEMTIME standard, daylight;
    } rules = {};
    CCURegistry registry(HKEY_LOCAL_MACHINE,
                         "Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones");
    DWORD nSize = sizeof rules;
    EXPECT_TRUE(registry.Descend(name.name) && (!name.year || registry.Descend("Dynamic DST")) &&
                registry.GetBinary(name.year ? name.year : "TZI", &rules, nSize));
    TIME_ZONE_INFORMATION zone = {rules.nBias,         L"Winter", rules.standard,
                                  rules.nStandardBias, L"Summer", rules.daylight,
                                  rules.nDaylightBias};
    if (name.bAbsolute) {
        zone.StandardDate = {2010, 11, 0, 7, 2, 0, 0, 0};
        zone.DaylightDate = {2010, 3, 0, 14, 2, 0, 0, 0};
    }
    return zone;
}

SYSTEMTIME ToFields(long long nSeconds)
{
    const long long nTicks = nSeconds * 10000000 + s_nEpoch;
    const FILETIME file = {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
    SYSTEMTIME time = {};
    FileTimeToSystemTime(&file, &time);
    return time;
}

long ToSeconds(const SYSTEMTIME &time)
{
    FILETIME file = {};
    SystemTimeToFileTime(&time, &file);
    const long long nTicks = static_cast<long long>(file.dwHighDateTime) << 32 | file.dwLowDateTime;
    return static_cast<long>((nTicks - s_nEpoch) / 10000000);
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
    const tm *local = CCUTime(nTime).GetLocalTm(&record, &zone);
    const bool bDaylight = local && local->tm_isdst > 0;
    // Normalises its argument, the flag included.
    const long nOffset = static_cast<long>(_mkgmtime(&record)) - nTime;
    const LONG nBias = bDaylight ? zone.DaylightBias : zone.StandardBias;
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
    const SYSTEMTIME local = ToFields(nWall);
    return CCUTime(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond,
                   -1, &zone)
        .GetTime();
}

bool IsEndMovedOverMidnight(const TIME_ZONE_INFORMATION &zone)
{
    return zone.StandardDate.wHour * 60 + zone.StandardDate.wMinute + zone.DaylightBias < 0;
}

bool HasSeconds(const TIME_ZONE_INFORMATION &zone)
{
    return zone.StandardDate.wSecond || zone.DaylightDate.wSecond;
}

// How many times each rule explained a difference, and how many comparisons there were.
struct CCounts
{
    int nCompared, nMidnight, nPrecise, nNamedTwice, nUnexplained;
};

void CompareOffset(const TIME_ZONE_INFORMATION &zone, long nTime, CCounts &counts)
{
    ++counts.nCompared;
    const long nOurs = OurOffset(zone, nTime);
    const long nSystem = SystemOffset(zone, nTime);
    if (nOurs == nSystem)
        return;
    // The end of daylight time, moved over midnight, stays on its day and so comes a day late.
    if (IsEndMovedOverMidnight(zone) && nOurs > nSystem &&
        SystemOffset(zone, nTime - 86400) == nOurs)
        ++counts.nMidnight;
    // Rules count in milliseconds; this system's count in whole minutes.
    else if (HasSeconds(zone) && SystemOffset(zone, nTime - 60) == nOurs)
        ++counts.nPrecise;
    else if (counts.nUnexplained++ < 5)
        ADD_FAILURE() << "instant " << nTime << ": " << nOurs << ", the system " << nSystem;
}

void CompareInstant(const TIME_ZONE_INFORMATION &zone, long nWall, CCounts &counts)
{
    ++counts.nCompared;
    const long nOurs = OurInstant(zone, nWall);
    const long nSystem = SystemInstant(zone, nWall);
    if (nOurs == nSystem)
        return;
    // The end counts in standard time: an hour that the clock shows twice is the later one.
    if (nOurs > nSystem && nOurs + SystemOffset(zone, nOurs) == nWall)
        ++counts.nNamedTwice;
    else if (IsEndMovedOverMidnight(zone) && nOurs < nSystem &&
             SystemOffset(zone, nOurs - 86400) == nWall - nOurs)
        ++counts.nMidnight;
    else if (HasSeconds(zone) && nOurs == OurInstant(zone, nWall - 60) + 60)
        ++counts.nPrecise;
    else if (counts.nUnexplained++ < 5)
        ADD_FAILURE() << "wall clock " << nWall << ": " << nOurs << ", the system " << nSystem;
}

// Both ways at an instant.
void CompareAt(const TIME_ZONE_INFORMATION &zone, long nTime, CCounts &counts)
{
    CompareOffset(zone, nTime, counts);
    CompareInstant(zone, nTime + SystemOffset(zone, nTime), counts);
}

BOOL s_bZoneKnown = TRUE;
TIME_ZONE_INFORMATION s_current;

DWORD WINAPI FakeCurrentZone(TIME_ZONE_INFORMATION *zone)
{
    *zone = s_current;
    return s_bZoneKnown ? TIME_ZONE_ID_STANDARD : TIME_ZONE_ID_INVALID;
}

void WaitForTick()
{
    const DWORD dwTick = GetTickCount();
    while (GetTickCount() == dwTick) {
    }
}

const CZoneName s_eastern = {"Eastern Standard Time", nullptr, false};

}  // namespace

TEST(TimeZone, AgreesWithTheSystemBothWaysExceptWhereItsRulesDiffer)
{
    const CZoneName zones[] = {s_eastern,
                               {"Eastern Standard Time", nullptr, true},
                               {"Pacific Standard Time", nullptr, false},
                               {"W. Europe Standard Time", nullptr, false},
                               {"GMT Standard Time", nullptr, false},
                               {"AUS Eastern Standard Time", nullptr, false},
                               {"New Zealand Standard Time", nullptr, false},
                               {"Chatham Islands Standard Time", nullptr, false},
                               {"Lord Howe Standard Time", nullptr, false},
                               {"India Standard Time", nullptr, false},
                               {"Nepal Standard Time", nullptr, false},
                               {"Tokyo Standard Time", nullptr, false},
                               {"Hawaiian Standard Time", nullptr, false},
                               {"Newfoundland Standard Time", "2010", false},
                               {"Iran Standard Time", "2010", false},
                               {"Egypt Standard Time", "2010", false},
                               {"Paraguay Standard Time", nullptr, false},
                               {"E. South America Standard Time", "2010", false},
                               {"Cuba Standard Time", nullptr, false},
                               {"Azores Standard Time", nullptr, false},
                               {"Jordan Standard Time", "2012", false}};
    CCounts counts = {};
    for (const CZoneName &name : zones) {
        SCOPED_TRACE(name.name);
        const TIME_ZONE_INFORMATION zone = ReadZone(name);
        const long nLast = 0x7FFFFFFF - 5 * 86400;
        for (long nTime = 2 * 86400; nTime < nLast; nTime += 250013) {
            CompareAt(zone, nTime, counts);
            long nBefore = nTime;
            long nAfter = nTime + 250013 < nLast ? nTime + 250013 : nLast;
            const long nOffset = SystemOffset(zone, nBefore);
            if (SystemOffset(zone, nAfter) == nOffset)
                continue;
            // The clocks change in between: to the second when, and what is around.
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
    RecordProperty("compared", counts.nCompared);
    EXPECT_GE(counts.nCompared, 200000);
    EXPECT_GT(counts.nMidnight, 0);
    EXPECT_GT(counts.nPrecise, 0);
    EXPECT_GT(counts.nNamedTwice, 0);
    EXPECT_EQ(0, counts.nUnexplained);
}

TEST(TimeZone, EndOfDaylightTimeMovedOverMidnightStaysOnItsDay)
{
    // Ends on Sunday 21 February 2010 at 00:00 daylight time, -01:00 in standard time.
    const TIME_ZONE_INFORMATION zone = ReadZone({"E. South America Standard Time", "2010", false});
    const CCUTime last(2010, 2, 21, 22, 59, 59, 0, &zone);
    tm record;
    EXPECT_EQ(1, last.GetLocalTm(&record, &zone)->tm_isdst);
    EXPECT_EQ(0, (last + 1L).GetLocalTm(&record, &zone)->tm_isdst);
    // A flag that is given decides alone; without a rule there is only standard time.
    EXPECT_EQ(3600, (last - CCUTime(2010, 2, 21, 22, 59, 59, 1, &zone)).GetSpan());
    EXPECT_TRUE(last == CCUTime(2010, 2, 21, 22, 59, 59, 2, &zone));
    TIME_ZONE_INFORMATION none = zone;
    none.StandardDate.wMonth = 0;
    EXPECT_EQ(0, last.GetLocalTm(&record, &none)->tm_isdst);
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
        ASSERT_TRUE(!result || (result->tm_mon >= 0 && result->tm_mon < 12));
        // Standard time of a month that does not exist.
        ASSERT_TRUE(!result || zone.DaylightDate.wMonth <= 12 || result->tm_isdst == 0);
    }
}

TEST(TimeZone, NullStandsForTheCurrentZone)
{
    const CTemporaryDirectory directory;
    const CImportHook hook("GetTimeZoneInformation", FakeCurrentZone);
    s_current = ReadZone(s_eastern);
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
    WaitForTick();
    EXPECT_EQ(17, noon.GetHour());

    s_bZoneKnown = FALSE;
    CDumped dumped;
    WaitForTick();
    const time_t time = 994264215;
    const tm local = *localtime(&time);
    EXPECT_EQ(0, memcmp(&local, noon.GetLocalTm(nullptr, nullptr), sizeof local));
    EXPECT_EQ("CCUTime - invalid time zone\n", dumped.m_text);
}
