#include <gtest/gtest.h>

#include <string>

#include "../../CU/Src/Report/ReportFile.h"
#include "CU/Assert.h"
#include "CU/Time.h"
#include "Support/FakeTime.h"
#include "Support/HeapWatch.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"

#define CU_SOURCE "AssertTest"

namespace {

void First(FILE *file)
{
    fputs("first\n", file);
}

void Fleeting(FILE *file)
{
    fputs("fleeting\n", file);
    CUUnregisterExceptionHandler(Fleeting);
}

decltype(&HeapAlloc) s_heapAlloc;
SIZE_T s_nLargest = 0;

LPVOID WINAPI NoteSize(HANDLE hHeap, DWORD dwFlags, SIZE_T nSize)
{
    s_nLargest = nSize > s_nLargest ? nSize : s_nLargest;
    return s_heapAlloc(hHeap, dwFlags, nSize);
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
    ++CFakeTime::s_now;
    for (void (*handler)(FILE *) : {Fleeting, First, First})
        CURegisterExceptionHandler(handler);
    SetLastError(0xABCD);
    const int nLine = __LINE__ + 1;
    EXPECT_EQ(1, FailTheCheck(1));
    EXPECT_EQ(0xABCDu, GetLastError());
    EXPECT_NE(std::string::npos,
              directory.Contents("ZELTrace-2019-12-31.txt").find("Assert:before "));
    const std::string text = directory.Contents("ZELTrace-2020-01-01.txt");
    char szText[256];
    sprintf(szText,
            "========================================================\r\n%s\r\n"
            "Assert:n == 0  File:AssertTest  Line:%d  Last Error:abcd\r\n\r\n",
            static_cast<const char *>(CCUTime().Format("%x %X")), CheckLine);
    EXPECT_EQ(0u, text.find(szText)) << text;
    // The stack, the innermost first, with the line of the caller.
    const size_t nFailed = text.find(".exe FailTheCheck+0x", strlen(szText));
    sprintf(szText, " AssertTest.cpp(%d)\r\n", CheckLine);
    const size_t nCheck = text.find(szText, nFailed);
    sprintf(szText, " AssertTest.cpp(%d)\r\n", nLine);
    EXPECT_NE(std::string::npos, text.find(szText, nCheck)) << text;
    EXPECT_NE(std::string::npos, text.find("\r\n\r\nfleeting\r\nfirst\r\nfirst\r\n"));
    CUUnregisterExceptionHandler(First);
    CUDisplayAssert("after", "Source", 1);
    const std::string after = directory.Contents("ZELTrace-2020-01-01.txt");
    EXPECT_EQ(text.size(), after.find("====", text.size()));
    EXPECT_STREQ("\r\n\r\nfirst\r\n", after.c_str() + after.size() - 11);
}

TEST(Assert, ReportsTheFirstTenFailuresOnly)
{
    const CTemporaryDirectory directory;
    static LONG s_nReports = 0;
    CURegisterExceptionHandler([](FILE *) { InterlockedIncrement(&s_nReports); });
    // They count though they cannot be written.
    for (const std::string &path : {directory.Path() + "\\missing", std::string(300, 'x')}) {
        CTemporaryDirectory::Set(path);
        EXPECT_EQ(0, CUDisplayAssert("a", "Source", 1));
    }
    CTemporaryDirectory::Set(directory.Path());
    CThreads::Run(32, [](int) { CUDisplayAssert("b", "Source", 1); });
    EXPECT_EQ(8, s_nReports);
}

TEST(Assert, DatesAReportAsCCUTimeWouldButWithoutATrace)
{
    const CTemporaryDirectory directory;
    const CFakeTime clock;
    // The last of the zones cannot be told.
    DWORD dwAnswer = TIME_ZONE_ID_STANDARD;
    const CFakeCall<DWORD(TIME_ZONE_INFORMATION *)> zone(
        "GetTimeZoneInformation", [&](TIME_ZONE_INFORMATION *eastern) {
            *eastern = {};
            eastern->Bias = 300, eastern->DaylightBias = -60;
            eastern->DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
            eastern->StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
            return dwAnswer;
        });
    for (const time_t now : {1594000000, -1, 1600000000}) {
        CFakeTime::s_now = now;
        dwAnswer = now == 1600000000 ? TIME_ZONE_ID_INVALID : TIME_ZONE_ID_STANDARD;
        CUDisplayAssert("a", "Source", 1);
        EXPECT_TRUE(directory.Files("ZELLog-*").empty());
        const CCUTime time;
        const std::string text =
            directory.Contents(std::string(time.Format("ZELTrace-%Y-%m-%d.txt")));
        const std::string head = std::string(56, '=') + "\r\n";
        EXPECT_EQ(0u, text.find(head + std::string(time.Format("%x %X")) + "\r\n")) << text;
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
    s_heapAlloc = HeapAlloc;
    const CImportHook hook("HeapAlloc", NoteSize, "msvcrt.dll");
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
    int nFlag = 0;
    const CCUNoRecur outer(&nFlag);
    EXPECT_EQ(1, nFlag);
    EXPECT_TRUE(directory.Files("*").empty());
    delete new CCUNoRecur(&nFlag);
    EXPECT_EQ(0, nFlag);
    EXPECT_NE(std::string::npos,
              directory.Contents("*").find("Assert:*m_nFlag == 0  File:Assert  "));
}
