#include <gtest/gtest.h>

#include <random>

#include "CU/Time.h"
#include "Support/Fuzz.h"
#include "Support/GuardedBuffer.h"
#include "Support/Reports.h"
#include "Support/ZoneHook.h"

namespace {

const int s_nMaximum = 0x7FFFFFFF;

// Standard time all year, so many minutes west of Greenwich.
TIME_ZONE_INFORMATION West(LONG nMinutes)
{
    TIME_ZONE_INFORMATION zone = {};
    zone.Bias = nMinutes;
    return zone;
}

DWORD WINAPI ZoneWithSummer(TIME_ZONE_INFORMATION *zone)
{
    *zone = West(300);
    zone->DaylightBias = -60;
    zone->DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    zone->StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    return TIME_ZONE_ID_STANDARD;
}

}  // namespace

TEST(Time, NegativeValuesBecomeTheMaximumExceptInCompoundOperators)
{
    EXPECT_EQ(s_nMaximum, CCUTime(-1L).GetTime());
    CCUTime time(100L);
    time = -5L;
    EXPECT_EQ(s_nMaximum, time.GetTime());
    time = 100L;
    EXPECT_EQ(s_nMaximum, (time - CCUTimeSpan(101)).GetTime());
    EXPECT_EQ(s_nMaximum, (time + CCUTimeSpan(s_nMaximum)).GetTime());
    EXPECT_EQ(0, (time + CCUTimeSpan(-100)).GetTime());
    EXPECT_EQ(-1, (time += CCUTimeSpan(-101)).GetTime());
    EXPECT_EQ(s_nMaximum, CCUTime(time).GetTime());
    // Neither the difference nor comparisons look at the replaced value.
    EXPECT_EQ(101, (CCUTime(100L) - time).GetSpan());
    EXPECT_EQ(-s_nMaximum - 1, (CCUTime(s_nMaximum) - time).GetSpan());
    EXPECT_TRUE(time < CCUTime(0L) && time != CCUTime(0L) && !(time == CCUTime(s_nMaximum)));
    EXPECT_TRUE(time <= time && time >= time && !(time > time));
    // What has no fields answers 0 for all of them.
    EXPECT_EQ(nullptr, time.GetGmtTm(nullptr));
    EXPECT_EQ(0, time.GetYear() + time.GetMonth() + time.GetDayOfWeek());
    time -= CCUTimeSpan(-s_nMaximum);
    EXPECT_EQ(s_nMaximum - 1, time.GetTime());
}

TEST(Time, NowIsTheSystemsNow)
{
    const long nBefore = static_cast<long>(time(nullptr));
    SYSTEMTIME local;
    GetLocalTime(&local);
    FILETIME file;
    GetSystemTimeAsFileTime(&file);
    for (const CCUTime &now :
         {CCUTime(), CCUTime::GetTickCount(), CCUTime(local, -1), CCUTime(file, -1)})
        EXPECT_TRUE(now.GetTime() >= nBefore && now.GetTime() <= time(nullptr)) << now.GetTime();
    local.wYear = 1899;
    EXPECT_EQ(0, CCUTime(local, -1).GetTime());
    file.dwHighDateTime = 0xFFFFFFFF;
    EXPECT_EQ(s_nMaximum, CCUTime(file, -1).GetTime());
}

TEST(Time, FieldsAtAndBeyondTheLimits)
{
    const int nLeast = -s_nMaximum - 1;
    // Fields, minutes west of Greenwich, instant.
    const int cases[][8] = {
        {1970, 1, 1, 0, 0, 0, 0, 0},
        {1970, 1, 1, 0, 0, 0, -60, s_nMaximum},
        {1969, 12, 31, 19, 0, 1, 300, 1},
        {2038, 1, 19, 3, 14, 6, 0, s_nMaximum - 1},
        {2038, 1, 19, 3, 14, 8, -1, s_nMaximum - 59},
        {2038, 1, 19, 3, 14, 8, 0, s_nMaximum},
        {2040, 1, 1, 0, 0, 0, -720, s_nMaximum},
        {1900, 1, 1, 0, 0, 0, -720, s_nMaximum},
        // A date or time that does not exist leaves the zone's offset.
        {2001, 4, 31, 0, 0, 0, 300, 18000},
        {65536 + 2001, 1, 1, 0, 0, 0, 60, 3600},
        {2001, 1, 1, 65536, 0, 0, 60, 3600},
        {nLeast, nLeast, s_nMaximum, s_nMaximum, nLeast, 60, 60, 3600},
    };
    for (const auto &f : cases) {
        const TIME_ZONE_INFORMATION zone = West(f[6]);
        CCUString sTrace;
        if (f[7] == s_nMaximum)
            sTrace.Format(
                "CCUTime invalid data: Y(%d), M(%d), D(%d), H(%d), M(%d), S(%d) - using "
                "the maximum time instead\n",
                f[0], f[1], f[2], f[3], f[4], f[5]);
        CDumped dumped;
        EXPECT_EQ(f[7], CCUTime(f[0], f[1], f[2], f[3], f[4], f[5], -1, &zone).GetTime())
            << &f - cases;
        EXPECT_STREQ(sTrace, dumped.m_text.c_str());
    }
    const int days[] = {-1, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, -1};
    for (int nMonth = 0; nMonth < 14; ++nMonth)
        EXPECT_EQ(days[nMonth], CUGetDaysInMonth(2001, nMonth)) << nMonth;
}

TEST(Time, ParsesTimesAndDates)
{
    const CZoneHook hook(ZoneWithSummer);
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    const auto parsed = [&](const char *text, bool bDate) {
        CCUTime time(noon);
        if (!(bDate ? time.ParseDate(text) : time.ParseTime(text)))
            return CCUString(time == noon ? "no" : "changed");
        return time.Format("%m/%d/%Y %H:%M:%S");
    };
    const char *const texts[][2] = {
        {"12:00:00 AM", "07/04/2001 00:00:00"},
        {"12:00:00 PM", "07/04/2001 12:00:00"},
        {"01:02:03pp", "07/04/2001 13:02:03"},
        {"01:02:03xA and on over forty characters", "07/04/2001 01:02:03"},
        {"9:5:7", "07/04/2001 09:05:07"},
        {"23:59:59", "07/04/2001 23:59:59"},
        {"2/28/2001", "02/28/2001 12:30:15"},
        {"12/31/1970 x", "12/31/1970 12:30:15"}};
    for (const auto &text : texts)
        EXPECT_STREQ(text[1], parsed(text[0], strchr(text[0], '/') != nullptr)) << text[0];
    for (const char *text : {"13:00:00 PM", "00:00:00 AM", "24:00:00", "1:60:0", "1:0:60", "-1:0:0",
                             "01:02:03 xM", "1:2", "", "99999999999:0:0"})
        EXPECT_STREQ("no", parsed(text, false)) << text;
    for (const char *text :
         {"2/29/2001", "12/31/1969", "13/1/2001", "0/1/2001", "1/0/2001", "4/31/2001", "1/2", ""})
        EXPECT_STREQ("no", parsed(text, true)) << text;
    // Every fourth year is a leap year to the parser; the date names no instant all the same.
    EXPECT_TRUE(parsed("2/29/2100", true) != "no");
}

TEST(TimeSpan, SplitsFormatsAndParses)
{
    CReports reports;
    const CCUTimeSpan negative(-1, 0, 0, 30);
    EXPECT_TRUE(negative.GetTotalSeconds() == -86370 && negative.GetTotalHours() == -23 &&
                negative.GetTotalMinutes() == -1439);
    // 128 characters fit; of more only the first do.
    const CCUString sLine('x', 128), sShort = sLine.Left(127);
    const char *const tooLong = "pch < &szBuffer[128]";
    const CCUString cases[][3] = {{"%D %H:%M:%S", "0 -23:-59:-30", ""},
                                  {"%%1 %D,%%", "%1 0,%", ""},
                                  {"", "", ""},
                                  {"a%x", "ax", "0"},
                                  {"a%", "a", "0"},
                                  {sLine, sLine, ""},
                                  {sLine + 'y', sLine, tooLong},
                                  {sShort + "%H", sShort + '-', tooLong}};
    for (const auto &item : cases) {
        EXPECT_STREQ(
            item[2],
            reports.Of("Time", [&] { EXPECT_STREQ(item[1], negative.Format(item[0])); }).c_str());
    }
    EXPECT_STREQ("1 02:03:04", CCUTimeSpan(1, 2, 3, 4).Format("%D %H:%M:%S"));
    EXPECT_STREQ("", negative.Format(nullptr));

    CCUTimeSpan span(7);
    EXPECT_FALSE(span.Parse("1:2:3") || span.Parse("") || span != 7L);
    EXPECT_EQ(1, span.Parse("1:-2:3:400 more"));
    EXPECT_EQ(86400 - 7200 + 180 + 400, span.GetSpan());
    span = CCUTimeSpan(2147483647, 2147483647, 0, -1) + CCUTimeSpan(1);
    EXPECT_EQ(static_cast<long>(2147483647u * 90000u), span.GetSpan());
    EXPECT_TRUE((span -= 1L) < span + 1L && span != 0L && !(span > span) && span <= span);
}

TEST(Time, GeneratedTextsAreSafe)
{
    const CTemporaryDirectory directory;
    const CZoneHook hook(ZoneWithSummer);
    std::mt19937 random(7);
    const char alphabet[] = "0123456789012345::://// -+%%DHMSaApPxXlsZz#\x80\xFF";
    CGuardedBuffer buffer(400);
    for (int i = 0; i < FuzzInputs(); ++i) {
        const unsigned nLength = random() % (i % 16 ? 24 : 400);
        char *text = buffer.Data() + 399 - nLength;
        for (unsigned n = 0; n < nLength; ++n)
            text[n] = alphabet[random() % (sizeof alphabet - 1)];
        text[nLength] = '\0';
        CCUTime time(static_cast<long>(random() >> 1));
        const long nBefore = time.GetTime();
        ASSERT_TRUE(time.ParseTime(text) || time.ParseDate(text) || time.GetTime() == nBefore);
        ASSERT_GE(time.GetTime(), 0);
        CCUTimeSpan span(static_cast<long>(random()));
        span.Parse(text);
        ASSERT_LE(span.Format(text).GetLength(), 128);
        ASSERT_LT(time.FormatGmt(text).GetLength(), 128);
    }
}
