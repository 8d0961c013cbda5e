#include <gtest/gtest.h>

#include <time.h>

#include <string>

#include "CU/Assert.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"

#define CU_SOURCE "AssertTest"

namespace {

const char Separator[] = "========================================================\r\n";

size_t Count(const std::string &text, const std::string &part)
{
    size_t nCount = 0;
    for (size_t n = text.find(part); n != std::string::npos; n = text.find(part, n + 1))
        ++nCount;
    return nCount;
}

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

DWORD WINAPI NoTempPath(DWORD, char *)
{
    return 0;
}

time_t s_time;

time_t FakeTime(time_t *)
{
    return s_time;
}

const int CheckLine = __LINE__ + 3;
__attribute__((noinline)) int FailTheCheck(int n)
{
    return CU_ASSERT(n == 0) + n;
}

std::string NameOfToday()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    char szName[64];
    sprintf(szName, "ZELTrace-%04d-%02d-%02d.txt", now.wYear, now.wMonth, now.wDay);
    return szName;
}

}  // namespace

TEST(Assert, AppendsAReportToTheDaysFile)
{
    const CTemporaryDirectory directory;
    char szDate[64], szTime[64], szText[256];
    std::string text, head;
    int nLine = 0;
    do {  // once more when the second has changed meanwhile
        GetDateFormatA(LOCALE_USER_DEFAULT, 0, nullptr, nullptr, szDate, sizeof szDate);
        GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, nullptr, szTime, sizeof szTime);
        head = std::string(Separator) + szDate + " " + szTime + "\r\n";
        const size_t nOld = directory.Contents("*").size();
        SetLastError(0xABCD);
        nLine = __LINE__ + 1;
        EXPECT_EQ(1, FailTheCheck(1));
        EXPECT_EQ(0xABCDu, GetLastError());
        text = directory.Contents("*").c_str() + nOld;
    } while (text.find(head) != 0 && Count(directory.Contents("*"), Separator) < 5);
    EXPECT_EQ(std::vector<std::string>{NameOfToday()}, directory.Files("*"));
    sprintf(szText, "Assert:n == 0  File:AssertTest  Line:%d  Last Error:abcd\r\n\r\n", CheckLine);
    head += szText;
    EXPECT_EQ(0, text.compare(0, head.size(), head)) << text;
    // The stack, the innermost first, with the line of the caller.
    const std::string stack = text.c_str() + head.size();
    sprintf(szText, "AssertTest.cpp(%d)\r\n", CheckLine);
    const size_t nFailed = stack.find("CUTests.exe FailTheCheck+0x");
    const size_t nCheck = stack.find(szText, nFailed);
    sprintf(szText, "AssertTest.cpp(%d)\r\n", nLine);
    EXPECT_NE(std::string::npos, stack.find(szText, nCheck)) << stack;
    EXPECT_STREQ("\r\n\r\n", stack.c_str() + stack.size() - 4);
}

TEST(Assert, ReportsTheFirstTenFailuresOnly)
{
    const CTemporaryDirectory directory;
    {
        const CImportHook noDirectory("GetTempPathA", NoTempPath);
        EXPECT_EQ(0, CUDisplayAssert("counted though it cannot be written", "Source", 1));
    }
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(0, CUDisplayAssert("a < b", "Source", i));
    const std::string text = directory.Contents("ZELTrace-*");
    EXPECT_EQ(9u, Count(text, Separator));
    EXPECT_EQ(1u, Count(text, "Line:8 "));
    EXPECT_EQ(0u, Count(text, "Line:9 "));
}

TEST(Assert, StartsANewFileWithTheDay)
{
    const CTemporaryDirectory directory;
    const CImportHook clock("time", FakeTime);
    tm midnight = {};
    midnight.tm_year = 120, midnight.tm_mday = 1, midnight.tm_isdst = -1;
    s_time = mktime(&midnight) - 1;
    CUDisplayAssert("before", "Source", 1);
    ++s_time;
    CUDisplayAssert("after", "Source", 1);
    EXPECT_EQ(1u, Count(directory.Contents("ZELTrace-2019-12-31.txt"), "Assert:before "));
    EXPECT_EQ(1u, Count(directory.Contents("ZELTrace-2020-01-01.txt"), "Assert:after "));
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
    for (int i = 0; i < 3; ++i) {
        CURegisterExceptionHandler(Fleeting);
        CUUnregisterExceptionHandler(Fleeting);
    }
    CUDisplayAssert("a", "Source", 1);
    EXPECT_EQ("F12121", s_calls);
}

TEST(Assert, LosesNothingButTheReportWithoutADirectory)
{
    const CTemporaryDirectory directory;
    CURegisterExceptionHandler(Second);
    for (const std::string &path : {directory.Path() + "\\missing", std::string(300, 'x')}) {
        CTemporaryDirectory::Set(path);
        SetLastError(7);
        EXPECT_EQ(0, CUDisplayAssert("a", "Source", 1));
        EXPECT_EQ(7u, GetLastError());
    }
    EXPECT_EQ("", s_calls);
    EXPECT_TRUE(directory.Files("*").empty());
}

TEST(Assert, ReportsFromManyThreadsStayWithinTheLimit)
{
    const CTemporaryDirectory directory;
    static LONG s_nReports = 0;
    CURegisterExceptionHandler([](FILE *) { InterlockedIncrement(&s_nReports); });
    CThreads::Run(8, [](int nThread) {
        for (int i = 0; i < 4; ++i)
            CUDisplayAssert("a", "Source", nThread);
    });
    EXPECT_EQ(10, s_nReports);
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
            EXPECT_EQ(1, nFlag);
            EXPECT_EQ(1u,
                      Count(directory.Contents("*"), "Assert:*m_nFlag == 0  File:Assert  Line:"));
        }
        EXPECT_EQ(0, nFlag);
        nFlag = 5;
    }
    EXPECT_EQ(0, nFlag);
    {
        CCUNoRecur first(&nFlag);
        const CCUNoRecur second(&nOther);
        EXPECT_EQ(&first, &(first = second));
    }
    EXPECT_EQ(1, nFlag);
    EXPECT_EQ(0, nOther);
}
