#include <gtest/gtest.h>

#include "CU/Time.h"
#include "Support/Reports.h"

namespace {

const int s_nMaximum = 0x7FFFFFFF;

std::string Parsed(const CCUTime &start, const char *text)
{
    CCUTime time(start);
    if (!(strchr(text, '/') ? time.ParseDate(text) : time.ParseTime(text)))
        return time == start ? "no" : "changed";
    return static_cast<const char *>(time.Format("%m/%d/%Y %H:%M:%S"));
}

}  // namespace

TEST(Time, NegativeValuesBecomeTheMaximumExceptInCompoundOperators)
{
    CCUTime time(-1L);
    EXPECT_EQ(s_nMaximum, time.GetTime());
    time = 100L;
    EXPECT_EQ(s_nMaximum, (time - CCUTimeSpan(101)).GetTime());
    EXPECT_EQ(s_nMaximum, (time + CCUTimeSpan(s_nMaximum)).GetTime());
    EXPECT_EQ(0, (time + CCUTimeSpan(-100)).GetTime());
    EXPECT_EQ(-1, (time += CCUTimeSpan(-101)).GetTime());
    EXPECT_EQ(s_nMaximum, CCUTime(time).GetTime());
    // Neither the difference nor comparisons look at the replaced value.
    EXPECT_EQ(101, (CCUTime(100L) - time).GetSpan());
    EXPECT_LT(time, CCUTime(0L));
    EXPECT_EQ(s_nMaximum - 1, (time -= CCUTimeSpan(-s_nMaximum)).GetTime());
}

TEST(Time, NowIsTheSystemsNow)
{
    SYSTEMTIME local;
    GetLocalTime(&local);
    FILETIME file;
    GetSystemTimeAsFileTime(&file);
    const long nNow = static_cast<long>(time(nullptr));
    for (const CCUTime &now : {CCUTime(), CCUTime::GetTickCount(), CCUTime(local), CCUTime(file)})
        EXPECT_LE(abs(now.GetTime() - nNow), 60);
    local.wYear = 1899;
    EXPECT_EQ(0, CCUTime(local).GetTime());
    file.dwHighDateTime = 0xFFFFFFFF;
    EXPECT_EQ(s_nMaximum, CCUTime(file).GetTime());
}

TEST(Time, FieldsAtAndBeyondTheLimits)
{
    // Fields, minutes west of Greenwich, instant.
    const int cases[][8] = {{1970, 1, 1, 0, 0, 0, 0, 0},
                            {1970, 1, 1, 0, 0, 0, -60, s_nMaximum},
                            {1969, 12, 31, 19, 0, 1, 300, 1},
                            {2038, 1, 19, 3, 14, 6, 0, s_nMaximum - 1},
                            {2038, 1, 19, 3, 14, 8, 0, s_nMaximum},
                            // What does not exist leaves the zone's offset.
                            {2001, 4, 31, 0, 0, 0, 300, 18000},
                            {65536 + 2001, 1, 1, 0, 0, 0, 60, 3600},
                            {-1, -s_nMaximum, s_nMaximum, s_nMaximum, -1, 60, 60, 3600}};
    for (const auto &f : cases) {
        TIME_ZONE_INFORMATION zone = {};
        zone.Bias = f[6];
        CCUString sTrace;
        if (f[7] == s_nMaximum)
            sTrace.Format(
                "CCUTime invalid data: Y(%d), M(%d), D(%d), H(%d), M(%d), S(%d) - using "
                "the maximum time instead\n",
                f[0], f[1], f[2], f[3], f[4], f[5]);
        const CDumped dumped;
        EXPECT_EQ(f[7], CCUTime(f[0], f[1], f[2], f[3], f[4], f[5], -1, &zone).GetTime());
        EXPECT_STREQ(sTrace, dumped.m_text.c_str());
    }
    const int days[] = {-1, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, -1};
    for (int nMonth = 0; nMonth < 14; ++nMonth)
        EXPECT_EQ(days[nMonth], CUGetDaysInMonth(2100, nMonth)) << nMonth;
}

TEST(Time, ParsesTimesAndDates)
{
    const CCUTime noon(2001, 7, 4, 12, 30, 15);
    const char *const texts[][2] = {
        {"12:00:00 AM", "07/04/2001 00:00:00"}, {"12:00:00 PM", "07/04/2001 12:00:00"},
        {"01:02:03pp", "07/04/2001 13:02:03"},  {"01:02:03xA and so on", "07/04/2001 01:02:03"},
        {"9:5:7", "07/04/2001 09:05:07"},       {"23:59:59", "07/04/2001 23:59:59"},
        {"2/28/2001", "02/28/2001 12:30:15"},   {"12/31/1970 x", "12/31/1970 12:30:15"}};
    for (const auto &text : texts)
        EXPECT_EQ(text[1], Parsed(noon, text[0])) << text[0];
    for (const char *text : {"13:00:00 PM", "00:00:00 AM", "24:00:00", "1:60:0", "1:0:60", "-1:0:0",
                             "01:02:03 xM", "1:2", "", "2/29/2001", "12/31/1969", "13/1/2001",
                             "0/1/2001", "1/0/2001", "4/31/2001", "1/2"})
        EXPECT_EQ("no", Parsed(noon, text)) << text;
    EXPECT_NE("no", Parsed(noon, "2/29/2100"));
}

TEST(TimeSpan, SplitsFormatsAndParses)
{
    CReports reports;
    const CCUTimeSpan negative(-1, 0, 0, 30);
    EXPECT_EQ(-23, negative.GetTotalHours());
    // 128 characters fit; of more only the first do.
    const CCUString sLine('x', 128);
    const CCUString cases[][3] = {
        {"%%1 %D %H:%M:%S%%", "%1 0 -23:-59:-30%", ""},
        {"a%x%", "ax", "0; 0"},
        {sLine, sLine, ""},
        {sLine + 'y', sLine, "pch < &szBuffer[128]"},
        {sLine.Left(127) + "%H", sLine.Left(127) + '-', "pch < &szBuffer[128]"}};
    for (const auto &item : cases) {
        const auto format = [&] { EXPECT_STREQ(item[1], negative.Format(item[0])); };
        EXPECT_STREQ(item[2], reports.Of("Time", format).c_str());
    }
    CCUTimeSpan span(1, 2, 3, 4);
    EXPECT_STREQ("1 02:03:04", span.Format("%D %H:%M:%S"));
    EXPECT_FALSE(span.Parse("1:2:3"));
    EXPECT_EQ(93784, span.GetSpan());
    EXPECT_TRUE(span.Parse("1:-2:3:400 more"));
    EXPECT_EQ(86400 - 7200 + 180 + 400, span.GetSpan());
    EXPECT_EQ(79779 + 79781, (span - 1L).GetSpan() + (span + 1L).GetSpan());
}
