#include <gtest/gtest.h>

#include <string>

#include "CU/Assert.h"
#include "CU/Time.h"
#include "Support/FakeTime.h"
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
    const size_t nFailed = text.find(" CUTests.exe FailTheCheck+0x", strlen(szText));
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
