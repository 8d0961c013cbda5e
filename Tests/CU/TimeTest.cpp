#include "CU/Time.h"

#include <gtest/gtest.h>

#include <vector>

#include "CU/Clock.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"

namespace {

const int s_nMaximum = 0x7FFFFFFF;

FILETIME FileTime(double seconds)
{
    const long long nTicks = static_cast<long long>(seconds * 1e7) + 116444736000000000;
    return {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
}

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
    const FILETIME file = FileTime(nTime);
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

// A summer's afternoon two hours east of Greenwich.
const SYSTEMTIME s_fields = {2001, 7, 0, 4, 16, 30, 15, 0};
TIME_ZONE_INFORMATION s_zone = Zone(-120, {0, 10, 0, 5, 3, 0, 0, 0}, {0, 3, 0, 5, 2, 0, 0, 0});

CCUString Formatted(const CCUString &sFormat)
{
    return CCUTime(2001, 7, 4, 16, 30, 15, -1, &s_zone).FormatTZI(sFormat, &s_zone);
}

CCUString Date(DWORD dwFlags)
{
    char szText[256] = "";
    GetDateFormatA(LOCALE_USER_DEFAULT, dwFlags, &s_fields, nullptr, szText, sizeof szText);
    return szText;
}

}  // namespace

TEST(Time, AgreesWithTheSystemBothWaysInEveryZone)
{
    std::vector<TIME_ZONE_INFORMATION> zones = {
        s_eastern, s_zone,
        // South, with an odd offset of half an hour, without any, at midnight; Namibia, whose
        // winter time is the one that differs; dates instead of weekdays.
        Zone(-630, {0, 4, 0, 1, 2, 0, 0, 0}, {0, 10, 0, 1, 2, 0, 0, 0}, -30), Zone(-345, {}, {}),
        Zone(60, {0, 10, 0, 5, 1, 0, 0, 0}, {0, 3, 0, 5, 0, 0, 0, 0}),
        Zone(-120, {0, 9, 0, 1, 2, 0, 0, 0}, {0, 4, 0, 1, 2, 0, 0, 0}, 60),
        Zone(300, {2010, 11, 0, 7, 2, 0, 0, 0}, {2010, 3, 0, 14, 2, 0, 0, 0})};
    for (WORD wMonth = 1; wMonth <= 12; ++wMonth) {
        const WORD wNext = wMonth % 12 + 1;
        zones.push_back(Zone(0, {0, wMonth, 0, 5, 2, 0, 0, 0}, {0, wNext, 0, 1, 2, 0, 0, 0}));
    }
    long nYear = 2009;
    for (const TIME_ZONE_INFORMATION &zone : zones) {
        for (long nTime = 2 * 86400; nTime < s_nMaximum - 12 * 86400; nTime += 1000003)
            ASSERT_TRUE(AgreesAt(zone, nTime)) << zone.Bias << " at " << nTime;
        // And every half hour of one year, to the second.
        const long nFirst = CCUTime(++nYear, 1, 1, 0, 0, 0, 0, &zone).GetTime();
        for (long nTime = nFirst; nTime < nFirst + 366 * 86400; nTime += 1800)
            ASSERT_TRUE(AgreesAt(zone, nTime) && AgreesAt(zone, nTime - 1))
                << zone.Bias << " at " << nTime;
    }
}

TEST(Time, NullStandsForTheCurrentZone)
{
    const CTemporaryDirectory directory;
    const CFakeCall<DWORD(TIME_ZONE_INFORMATION *)> current("GetTimeZoneInformation",
                                                            [](TIME_ZONE_INFORMATION *zone) {
                                                                *zone = s_eastern;
                                                                return TIME_ZONE_ID_STANDARD;
                                                            });
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    EXPECT_EQ(994264215, noon.GetTime());
    EXPECT_STREQ("2001-07-04 12:30:15 Summer", noon.Format("%Y-%m-%d %H:%M:%S %Z"));
    EXPECT_EQ((std::vector<int>{2001, 7, 4, 12, 30, 15, 4}),
              (std::vector<int>{noon.GetYear(), noon.GetMonth(), noon.GetDay(), noon.GetHour(),
                                noon.GetMinute(), noon.GetSecond(), noon.GetDayOfWeek()}));
    // Said to be standard time, and daylight time.
    EXPECT_EQ(3600,
              (CCUTime(2001, 7, 4, 12, 0, 0, 0) - CCUTime(2001, 7, 4, 12, 0, 0, 1)).GetSpan());
}

TEST(Time, WhatIsNegativeOrTooLateBecomesTheMaximumExceptInCompoundOperators)
{
    const TIME_ZONE_INFORMATION utc = {};
    EXPECT_EQ(s_nMaximum - 1, CCUTime(2038, 1, 19, 3, 14, 6, -1, &utc).GetTime());
    EXPECT_EQ(s_nMaximum, CCUTime(2038, 1, 19, 3, 14, 8, -1, &utc).GetTime());
    CCUTime time(-1L);
    EXPECT_EQ(s_nMaximum, time.GetTime());
    time = 100L;
    EXPECT_EQ(s_nMaximum, (time - CCUTimeSpan(101)).GetTime());
    EXPECT_EQ(-1, (time += CCUTimeSpan(-101)).GetTime());
}

TEST(Time, NowIsTheSystemsNow)
{
    SYSTEMTIME local;
    GetLocalTime(&local);
    FILETIME file;
    GetSystemTimeAsFileTime(&file);
    for (const CCUTime &now : {CCUTime(), CCUTime::GetTickCount(), CCUTime(local), CCUTime(file)})
        EXPECT_NEAR(static_cast<double>(now.GetTime()), static_cast<double>(time(nullptr)), 60);
}

TEST(Time, ParsesTimesAndDates)
{
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    const auto parsed = [&](const char *text) {
        CCUTime time(noon);
        if (!(strchr(text, '/') ? time.ParseDate(text) : time.ParseTime(text)))
            return CCUString(time == noon ? "no" : "changed");
        return time.Format("%m/%d/%Y %H:%M:%S");
    };
    const char *const texts[][2] = {
        {"12:00:00 AM", "07/04/2001 00:00:00"}, {"12:00:00 PM", "07/04/2001 12:00:00"},
        {"01:02:03pp", "07/04/2001 13:02:03"},  {"01:02:03xA and so on", "07/04/2001 01:02:03"},
        {"9:5:7", "07/04/2001 09:05:07"},       {"23:59:59", "07/04/2001 23:59:59"},
        {"12/31/1970 x", "12/31/1970 12:30:15"}};
    for (const auto &text : texts)
        EXPECT_STREQ(text[1], parsed(text[0])) << text[0];
    for (const char *text :
         {"13:00:00 PM", "00:00:00 AM", "24:00:00", "1:60:0", "1:0:60", "-1:0:0", "01:02:03 xM",
          "1:2", "2/29/2001", "12/31/1969", "13/1/2001", "0/1/2001", "1/0/2001", "1/2"})
        EXPECT_STREQ("no", parsed(text)) << text;
    EXPECT_STRNE("no", parsed("2/29/2100"));
    const int days[] = {-1, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, -1};
    for (int nMonth = 0; nMonth < 14; ++nMonth)
        EXPECT_EQ(days[nMonth] - (nMonth == 2), CUGetDaysInMonth(2101, nMonth)) << nMonth;
}

TEST(Time, SpansAreSplitFormattedAndParsed)
{
    const CTemporaryDirectory directory;
    EXPECT_STREQ("%1 0 -23:-59:-30%", CCUTimeSpan(-1, 0, 0, 30).Format("%%1 %D %H:%M:%S%%"));
    EXPECT_STREQ(CCUString('x', 128), CCUTimeSpan(0).Format(CCUString('x', 129)));  // what fits
    CCUTimeSpan span(1, 2, 3, 4);
    EXPECT_STREQ("1 02:03:04", span.Format("%D %H:%M:%S"));
    EXPECT_FALSE(span.Parse("1:2:3"));
    EXPECT_EQ(93784, span.GetSpan());
    EXPECT_TRUE(span.Parse("1:-2:3:400 more"));
    EXPECT_EQ(86400 - 7200 + 180 + 400, span.GetSpan());
    EXPECT_EQ(2 * 79780 - 1, (span - 2L).GetSpan() + (span + 1L).GetSpan());
}

TEST(Time, FormatExpandsTheUsersPicturesAndZoneNames)
{
    char szTime[256] = "";
    GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &s_fields, nullptr, szTime, sizeof szTime);
    const CCUString sShort = Date(0);
    memcpy(s_zone.DaylightName, L"Zone of 32 characters, no NUL...", sizeof s_zone.DaylightName);
    const CCUString cases[][2] = {
        {"%x!%X %lx", sShort + "!" + szTime + ' ' + Date(DATE_LONGDATE)},
        {"%sx", "Wed, Jul 4, 2001"},  // of the C locale's picture, its names cut short
        {"%Z|%z", "Zone of 32 characters, no NUL...|Zone of 32 characters, no NUL..."},
        {"%Y-%m-%d %H:%M:%S %a %j%%", "2001-07-04 16:30:15 Wed 185%"}};
    for (const auto &item : cases)
        EXPECT_STREQ(item[1], Formatted(item[0])) << item[0];
    const CCUTime winter(2001, 1, 1, 0, 0, 0, -1, &s_zone);
    EXPECT_STREQ("Winter", winter.FormatTZI("%Z", &s_zone));
    EXPECT_STREQ("2000-12-31 22:00:00", winter.FormatGmt("%Y-%m-%d %H:%M:%S"));
}

TEST(Clock, DoubleTimeFillsInBetweenTicks)
{
    FILETIME now = {};
    LARGE_INTEGER frequency, counter = {};
    const CFakeCall<void(FILETIME *)> clock("GetSystemTimeAsFileTime",
                                            [&](FILETIME *time) { *time = now; });
    const CFakeCall<BOOL(LARGE_INTEGER *)> counting("QueryPerformanceCounter",
                                                    [&](LARGE_INTEGER *time) {
                                                        *time = counter;
                                                        return TRUE;
                                                    });
    // As on Windows 95, where a tick is 55 ms. Time goes on with the counter while the clock stands
    // still, never past the end of the tick or behind the clock, and follows when the clock is set.
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> noFunction("GetProcAddress",
                                                         [](HMODULE, LPCSTR) { return nullptr; });
    const double steps[][3] = {{1000, 5, 1000},           {1000, 5.004, 1000.004},
                               {1000, 5.07, 1000.055},    {1000.055, 5.08, 1000.065},
                               {1000.11, 5.081, 1000.11}, {1500, 5.083, 1500}};
    QueryPerformanceFrequency(&frequency);
    for (const auto &step : steps) {
        now = FileTime(step[0]);
        counter.QuadPart = static_cast<LONGLONG>(step[1] * static_cast<double>(frequency.QuadPart));
        EXPECT_NEAR(step[2], CUDoubleTime(), 1e-5);
    }
}
