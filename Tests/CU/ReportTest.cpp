#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "../../CU/Src/Report/Demangle.h"
#include "../../CU/Src/Report/ReportFile.h"
#include "CU/Assert.h"
#include "CU/CrashReport.h"
#include "CU/StackTrace.h"
#include "CU/Time.h"
#include "Support/ChildProcess.h"
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

// Gives another report time to come between.
HANDLE s_hBegun, s_hOther;
void Slow(FILE *file)
{
    fputs("begin", file);
    fflush(file);
    SetEvent(s_hBegun);
    WaitForSingleObject(s_hOther, 300);
    fputs(" end\n", file);
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
    const CFakeCall<DWORD(TIME_ZONE_INFORMATION *)> zone("GetTimeZoneInformation",
                                                         [](TIME_ZONE_INFORMATION *west) {
                                                             *west = {};
                                                             west->Bias = 300;
                                                             return TIME_ZONE_ID_UNKNOWN;
                                                         });
    CFakeTime::s_now = 1577854800 - 1;  // midnight there, and a second
    CUDisplayAssert("before", "Source", 1);
    ++CFakeTime::s_now;
    for (void (*handler)(FILE *) : {First, Fleeting, First})
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
    sprintf(szText, " ReportTest.cpp(%d)\r\n", CheckLine);
    const size_t nCheck = text.find(szText, nFailed);
    sprintf(szText, " ReportTest.cpp(%d)\r\n", nLine);
    EXPECT_NE(std::string::npos, text.find(szText, nCheck)) << text;
    EXPECT_NE(std::string::npos, text.find("\r\n\r\nfirst\r\nfleeting\r\nfirst\r\n"));
    CUUnregisterExceptionHandler(First);
    CUDisplayAssert("after", "Source", 1);
    const std::string after = directory.Contents("ZELTrace-2020-01-01.txt");
    EXPECT_STREQ("\r\n\r\nfirst\r\n", after.c_str() + after.size() - 11);
}

TEST(Assert, ReportsTheFirstTenFailuresOnlyOnHoweverManyThreads)
{
    const CTemporaryDirectory directory;
    static LONG s_nReports = 0;
    CURegisterExceptionHandler([](FILE *) { InterlockedIncrement(&s_nReports); });
    CThreads::Run(32, [](int) { CUDisplayAssert("b", "Source", 1); });
    EXPECT_EQ(10, s_nReports);
}

TEST(Assert, WritesOneReportAfterTheOther)
{
    const CTemporaryDirectory directory;
    s_hBegun = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    s_hOther = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    CURegisterExceptionHandler(Slow);
    CThreads::Run(2, [](int nThread) {
        if (nThread)
            WaitForSingleObject(s_hBegun, INFINITE);
        CUDisplayAssert("text", "Source", nThread);
        SetEvent(nThread ? s_hOther : s_hBegun);
    });
    CUUnregisterExceptionHandler(Slow);
    const std::string text = directory.Contents("*");
    EXPECT_LT(text.find("Line:0"), text.find("begin end")) << text;
    EXPECT_LT(text.find("begin end"), text.find("Line:1")) << text;
}

// It may be written with a damaged heap.
TEST(Assert, ReportsWithoutTheHeap)
{
    const CTemporaryDirectory directory;
    const CHeapWatch heap;
    int nFlag = 1;
    const CCUNoRecur running(&nFlag);
    EXPECT_EQ(0, CHeapWatch::Made());
    EXPECT_NE(std::string::npos,
              directory.Contents("*").find("Assert:*m_nFlag == 0  File:Assert  "));
}

TEST(Assert, PurgingKeepsTheReportsOfTheLastDays)
{
    const CTemporaryDirectory directory;
    const CFakeTime clock;
    CFakeTime::s_now = CFakeTime::Local(2024, 3, 1, 12);
    for (const char *date : {"2024-01-30", "2024-01-31", "2024-02-29", "2024-03-01", "2024-03-02"})
        directory.Make(std::string("ZELTrace-") + date + ".txt");
    const int cases[][2] = {{0x7FFFFFFF, 0}, {30, 1}, {1, 1}, {0, 1}, {-5, 0}};  // kept, deleted
    for (const auto &c : cases)
        EXPECT_EQ(c[1], CUPurgeTraceFiles(c[0])) << c[0];
    EXPECT_EQ(2u, directory.Files("ZELTrace-*").size());
    EXPECT_NE(
        std::string::npos,
        directory.Contents("ZELLog-*").find("Deleting trace file: ZELTrace-2024-01-30.txt\r\n"));
}

TEST(StackTrace, WalksAnotherThreadAndLetsItGoOn)
{
    const auto start = reinterpret_cast<LPTHREAD_START_ROUTINE>(Sleep);
    const HANDLE hThread = CreateThread(nullptr, 0, start, nullptr, CREATE_SUSPENDED, nullptr);
    char szStack[4096];
    EXPECT_LT(0, CUGetStackTrace(hThread, szStack, sizeof szStack));
    EXPECT_EQ(nullptr, strstr(szStack, "TestBody")) << "this thread's: " << szStack;
    EXPECT_EQ(1u, SuspendThread(hThread));
    TerminateThread(hThread, 0);
}

TEST(StackTrace, NamesFunctionsAsTheSourceHasThem)
{
    const char *const names[][2] = {{"_Z3Runi", "Run"},
                                    {"__ZN5Scope3RunEi", "Scope::Run"},
                                    {"main", "main"},
                                    {"_ZNK5Scope3RunEv", "Scope::Run"},
                                    {"_ZN5ScopeC1Ev", "Scope::Scope"},
                                    {"_ZN5ScopeD2Ev", "Scope::~Scope"},
                                    {"_ZN5ScopeIiE3RunEv", "_ZN5ScopeIiE3RunEv"},
                                    {"_Z4Run", "_Z4Run"}};
    for (const auto &name : names) {
        char szName[32];
        CUDemangle(name[0], szName, sizeof szName);
        EXPECT_STREQ(name[1], szName);
    }
}

TEST(StackTrace, LeavesOutWhatDoesNotFitByWholeLines)
{
    char szAll[4096];
    SetLastError(17);
    const int nAll = CUGetStackTrace(GetCurrentThread(), szAll, sizeof szAll);
    EXPECT_EQ(17u, GetLastError());
    EXPECT_EQ(nAll, std::count(szAll, szAll + strlen(szAll), '\n'));
    // Around what the first line takes, which differs by the call's place in this function.
    const size_t nLine = strcspn(szAll, "\n") + 1;
    for (const size_t nSize : {1u, nLine - 1, nLine, nLine + 1, nLine + 2}) {
        std::string text(nSize + 1, 'x');
        const int nLines = CUGetStackTrace(GetCurrentThread(), &text[0], nSize);
        EXPECT_EQ('x', text[nSize]);
        EXPECT_EQ(nLines, std::count(text.begin(), text.end(), '\n'));
    }
}

namespace {

LONG WINAPI EarlierFilter(EXCEPTION_POINTERS *)
{
    return TerminateProcess(GetCurrentProcess(), 77);
}

// Each crash has its name in the stack, and is the processor's, not a checker's.
#define CRASH __attribute__((no_sanitize("undefined"))) void
volatile int s_nZero = 0;

CRASH WriteToNull()
{
    *static_cast<volatile int *>(reinterpret_cast<int *>(s_nZero)) = 1;
}

CRASH CallNull()
{
    reinterpret_cast<void (*)()>(s_nZero)();
}

CRASH RaiseUnknown()
{
    RaiseException(0xE1234567, 0, 0, nullptr);
}

CRASH CrashTwice()
{
    CURegisterExceptionHandler([](FILE *) { RaiseUnknown(); });
    WriteToNull();
}

int WINAPI Recurse(volatile int n)
{
    volatile char room[4096] = {};
    return s_nZero ? 0 : Recurse(n + 1) + room[0];
}

// With a debug-help library that faults, as the system's did on Windows 95. The second overflow
// needs the guard page that the first one took.
void OverflowWithFaultyHelp()
{
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> find(
        "GetProcAddress", [&](HMODULE hLibrary, LPCSTR name) {
            const bool bWalk = !IS_INTRESOURCE(name) && strcmp(name, "StackWalk") == 0;
            return bWalk ? reinterpret_cast<FARPROC>(Recurse) : find.Original(hLibrary, name);
        });
    CUDisplayAssert("a", "Source", 1);
    Recurse(0);
}

struct CCase
{
    const char *part;
    DWORD nExitCode;
    bool bShutdown;
    const char *exception, *function;
    void (*crash)();
};
const char *const ACCESS = "Exception:EXCEPTION_ACCESS_VIOLATION";
const CCase s_cases[] = {
    {"Null", 77, false, ACCESS, "CUTests.exe CallNull+0x", CallNull},
    {"Again", 0xE1234567, true, ACCESS, "CUTests.exe WriteToNull+0x", CrashTwice},
    {"Help", 0xC00000FD, true, "Exception:EXCEPTION_STACK_OVERFLOW", "CUTests.exe+0x",
     OverflowWithFaultyHelp}};

void Play(const CCase &c)
{
    CURegisterExceptionHandler([](FILE *file) { fputs("the handler's line\n", file); });
    SetUnhandledExceptionFilter(EarlierFilter);
    CUShutdownAfterCrash(c.bShutdown);
    CUStartExceptionHandler();
    CUStartExceptionHandler();
    SetLastError(0x5A5A);
    c.crash();
}

const bool s_bRegistered = [] {
    for (const CCase &c : s_cases)
        CChildProcess::Play(c.part, [&c] { Play(c); });
    return true;
}();

}  // namespace

TEST(CrashReport, NamesWhatEscapedAndLeavesTheEndToWhoIsToMakeIt)
{
    for (const CCase &c : s_cases) {
        const CTemporaryDirectory directory;
        EXPECT_EQ(c.nExitCode, CChildProcess(c.part).ExitCode()) << c.part;
        const std::string text = directory.Contents("ZELTrace-*");
        size_t n = 0;
        for (const char *part : {"====\r\n", c.exception, "  Code:", "Last Error:5a5a\r\n",
                                 "\r\nEAX:", "\r\nEIP:", c.function, "\r\nthe handler's line\r\n"})
        {
            n = text.find(part, n);
            ASSERT_NE(std::string::npos, n) << part << "\n" << text;
        }
        // From the crash to main.
        const char *const pszStack = strstr(text.c_str(), "\r\nEIP:");
        EXPECT_LT(4, std::count(pszStack, text.c_str() + text.size(), '+')) << text;
    }
}
