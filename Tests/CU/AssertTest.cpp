#include <gtest/gtest.h>

#include <string>

#include "../../CU/Src/Report/ReportFile.h"
#include "CU/Assert.h"
#include "CU/String.h"
#include "CU/Time.h"
#include "Support/FakeTime.h"
#include "Support/HeapWatch.h"
#include "Support/ProgramName.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"
#include "Support/ZoneHook.h"

#define CU_SOURCE "AssertTest"

namespace {

const char Separator[] = "========================================================\r\n";

std::string s_calls;

void First(FILE *file)
{
    fputs("first\n", file);
    s_calls += '1';
}

void Second(FILE *)
{
    s_calls += '2';
}

void Fleeting(FILE *)
{
    s_calls += 'F';
    CUUnregisterExceptionHandler(Fleeting);
}

const int CheckLine = __LINE__ + 3;
__attribute__((noinline)) int FailTheCheck(int n)
{
    return CU_ASSERT(n == 0) + n;
}

}  // namespace

TEST(Assert, AppendsAReportToTheDaysFile)
{
    const CTemporaryDirectory directory;
    const CFakeTime clock;
    CFakeTime::s_now = CFakeTime::Local(2020, 1, 1) - 1;
    CUDisplayAssert("before", "Source", 1);
    CUDisplayAssert("before", "Source", 1);
    ++CFakeTime::s_now;
    SetLastError(0xABCD);
    const int nLine = __LINE__ + 1;
    EXPECT_EQ(1, FailTheCheck(1));
    EXPECT_EQ(0xABCDu, GetLastError());
    const std::string eve = directory.Contents("ZELTrace-2019-12-31.txt");
    const size_t nFirst = eve.find("Assert:before "), nLast = eve.rfind("Assert:before ");
    EXPECT_TRUE(nFirst < nLast && eve.find("Assert:before ", nFirst + 1) == nLast) << eve;
    const std::string text = directory.Contents("ZELTrace-2020-01-01.txt");

    const SYSTEMTIME midnight = {2020, 1, 3, 1, 0, 0, 0, 0};
    char szDate[64], szTime[64], szText[256];
    GetDateFormatA(LOCALE_USER_DEFAULT, 0, &midnight, nullptr, szDate, sizeof szDate);
    GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &midnight, nullptr, szTime, sizeof szTime);
    sprintf(szText, "%s%s %s\r\nAssert:n == 0  File:AssertTest  Line:%d  Last Error:abcd\r\n\r\n",
            Separator, szDate, szTime, CheckLine);
    EXPECT_EQ(0u, text.find(szText)) << text;
    // The stack, the innermost first, with the line of the caller.
    const size_t nFailed = text.find(ProgramName() + " FailTheCheck+0x", strlen(szText));
    sprintf(szText, "AssertTest.cpp(%d)\r\n", CheckLine);
    const size_t nCheck = text.find(szText, nFailed);
    sprintf(szText, "AssertTest.cpp(%d)\r\n", nLine);
    EXPECT_NE(std::string::npos, text.find(szText, nCheck)) << text;
    EXPECT_STREQ("\r\n\r\n", text.c_str() + text.size() - 4);
}

TEST(Assert, ReportsTheFirstTenFailuresOnly)
{
    const CTemporaryDirectory directory;
    static LONG s_nReports = 0;
    CURegisterExceptionHandler([](FILE *) { InterlockedIncrement(&s_nReports); });
    // They count though they cannot be written.
    for (const std::string &path : {directory.Path() + "\\missing", std::string(300, 'x')}) {
        CTemporaryDirectory::Set(path);
        SetLastError(7);
        EXPECT_EQ(0, CUDisplayAssert("a", "Source", 1));
        EXPECT_EQ(7u, GetLastError());
    }
    CTemporaryDirectory::Set(directory.Path());
    EXPECT_EQ(0, s_nReports);
    CThreads::Run(8, [](int) {
        for (int i = 0; i < 4; ++i)
            CUDisplayAssert("b", "Source", 1);
    });
    EXPECT_EQ(8, s_nReports);
}

TEST(Assert, CallsTheReportHandlersInOrder)
{
    const CTemporaryDirectory directory;
    CURegisterExceptionHandler(nullptr);
    CURegisterExceptionHandler(Fleeting);
    CURegisterExceptionHandler(First);
    CURegisterExceptionHandler(Second);
    CURegisterExceptionHandler(First);
    CUDisplayAssert("a", "Source", 1);
    EXPECT_EQ("F121", s_calls);
    const std::string text = directory.Contents("ZELTrace-*");
    EXPECT_STREQ("\r\n\r\nfirst\r\nfirst\r\n", text.c_str() + text.size() - 18);
    CUUnregisterExceptionHandler(First);
    CUUnregisterExceptionHandler(Fleeting);
    {
        const CHeapWatch heap;
        for (int i = 0; i < 10; ++i) {
            CURegisterExceptionHandler(Fleeting);
            CUUnregisterExceptionHandler(Second);
            CURegisterExceptionHandler(Second);
            CUUnregisterExceptionHandler(Fleeting);
        }
        EXPECT_EQ(0, CHeapWatch::Made());
    }
    CUDisplayAssert("a", "Source", 1);
    EXPECT_EQ("F12112", s_calls);
}

namespace {

decltype(&HeapAlloc) s_heapAlloc;
SIZE_T s_nLargest = 0;

LPVOID WINAPI NoteSize(HANDLE hHeap, DWORD dwFlags, SIZE_T nSize)
{
    s_nLargest = nSize > s_nLargest ? nSize : s_nLargest;
    return s_heapAlloc(hHeap, dwFlags, nSize);
}

}  // namespace

namespace {

DWORD WINAPI Eastern(TIME_ZONE_INFORMATION *zone)
{
    *zone = {};
    zone->Bias = 300, zone->DaylightBias = -60;
    zone->DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    zone->StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    return TIME_ZONE_ID_STANDARD;
}

DWORD WINAPI NoZone(TIME_ZONE_INFORMATION *)
{
    return TIME_ZONE_ID_INVALID;
}

}  // namespace

TEST(Assert, DatesAReportAsCCUTimeWouldButWithoutATrace)
{
    const CTemporaryDirectory directory;
    const CFakeTime clock;
    const time_t times[] = {1594000000, -1, 1600000000};
    for (int i = 0; i < 3; ++i) {
        const CZoneHook zone(i == 2 ? NoZone : Eastern);
        CFakeTime::s_now = times[i];
        CUDisplayAssert("a", "Source", 1);
        EXPECT_TRUE(directory.Files("ZELLog-*").empty());
        const CCUTime now;
        const std::string text =
            directory.Contents(std::string(now.Format("ZELTrace-%Y-%m-%d.txt")));
        EXPECT_EQ(0u, text.find(Separator + std::string(now.Format("%x %X")) + "\r\n")) << text;
    }
}

// It may be written with a damaged heap. What is left is Wine's fopen, which copies its arguments.
TEST(Assert, ReportsWithoutTheHeap)
{
    const CTemporaryDirectory directory;
    {
        const CHeapWatch heap;
        CUDisplayAssert("a", "Source", 1);
        EXPECT_EQ(0, CHeapWatch::Made());
    }
    const CImportHook hook("HeapAlloc", NoteSize, "msvcrt.dll");
    s_heapAlloc = hook.Original<decltype(HeapAlloc)>();
    CCUReportBuffer buffer;
    FILE *file = CUOpenReport(buffer);
    ASSERT_TRUE(file);
    fprintf(file, "text %d\n", 1);
    CUCloseReport(file);
    EXPECT_GT(2u * MAX_PATH, s_nLargest);
    EXPECT_NE(std::string::npos, directory.Contents("*").find("\r\ntext 1\r\n"));
}

TEST(NoRecur, ReportsARunningFunctionAndTakesTheFlag)
{
    const CTemporaryDirectory directory;
    int nFlag = 0, nOther = 0;
    {
        const CCUNoRecur outer(&nFlag);
        EXPECT_EQ(1, nFlag);
        EXPECT_TRUE(directory.Files("*").empty());
        {
            const CCUNoRecur inner(&nFlag);
            const std::string text = directory.Contents("*");
            const size_t n = text.find("Assert:*m_nFlag == 0  File:Assert  Line:");
            EXPECT_TRUE(n != std::string::npos && n == text.rfind("Assert:")) << text;
        }
        EXPECT_EQ(0, nFlag);
        nFlag = 5;
    }
    EXPECT_EQ(0, nFlag);
    {
        CCUNoRecur first(&nFlag);
        const CCUNoRecur second(&nOther);
        first = second;
    }
    EXPECT_TRUE(nFlag == 1 && nOther == 0);
}
