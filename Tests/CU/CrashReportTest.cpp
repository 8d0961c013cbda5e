#include <gtest/gtest.h>

#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CU/Assert.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "CU/StackTrace.h"
#include "CU/String.h"
#include "Support/ChildProcess.h"
#include "Support/GuardedBuffer.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"

namespace {

const DWORD ExitCodeOfFilter = 77;
const DWORD AsWithout = 0xFFFFFFFF;  // what the system alone makes of it

LONG WINAPI EarlierFilter(EXCEPTION_POINTERS *)
{
    TerminateProcess(GetCurrentProcess(), ExitCodeOfFilter);
    return EXCEPTION_CONTINUE_SEARCH;
}

void Handler(FILE *file)
{
    fputs("the handler's line\n", file);
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

CRASH DivideByZero()
{
    s_nZero = 100 / s_nZero;
}

void RaiseUnknown()
{
    RaiseException(0xE1234567, 0, 0, nullptr);
}

int Recurse(volatile char *last)
{
    volatile char room[4096];
    room[0] = *last;
    return s_nZero ? 0 : Recurse(room) + room[0];
}

void OverflowStack()
{
    volatile char first = 0;
    Recurse(&first);
}

struct CAbstract
{
    CAbstract() { CallIt(); }
    void CallIt() { Pure(); }  // NOLINT(clang-analyzer-cplusplus.PureVirtualCall): the point
    virtual void Pure() = 0;
};

struct CConcrete : CAbstract
{
    void Pure() override {}
};

void Start()
{
    if (getenv("TEST_WITHOUT_REPORT"))
        return;
    CURegisterExceptionHandler(Handler);
    CUStartExceptionHandler();
    CUStartExceptionHandler();
    SetLastError(0x5A5A);
}

}  // namespace

CHILD_PROCESS(WriteToNull)
{
    Start(), WriteToNull();
}
CHILD_PROCESS(CallNull)
{
    Start(), CallNull();
}
CHILD_PROCESS(DivideByZero)
{
    Start(), DivideByZero();
}
CHILD_PROCESS(RaiseUnknown)
{
    Start(), RaiseUnknown();
}
CHILD_PROCESS(OverflowStack)
{
    Start(), OverflowStack();
}
CHILD_PROCESS(CallIt)
{
    CURegisterExceptionHandler(Handler);
    SetLastError(0x5A5A);
    const CConcrete object;
}
CHILD_PROCESS(EarlierFilter)
{
    SetUnhandledExceptionFilter(EarlierFilter);
    Start(), WriteToNull();
}
CHILD_PROCESS(Shutdown)
{
    SetUnhandledExceptionFilter(EarlierFilter);
    CUShutdownAfterCrash(true);
    Start(), WriteToNull();
}
CHILD_PROCESS(CrashAgain)
{
    CUShutdownAfterCrash(true);
    Start();
    CURegisterExceptionHandler([](FILE *) { DivideByZero(); });
    WriteToNull();
}

struct CCase
{
    const char *part;
    DWORD nExitCode;
    const char *name;
    const char *function;
};

void ExpectReport(const CCase &c)
{
    const CTemporaryDirectory directory;
    SetEnvironmentVariableA("TEST_WITHOUT_REPORT", "1");
    const DWORD nPlainCode = c.nExitCode == AsWithout ? CChildProcess(c.part).ExitCode() : 0;
    SetEnvironmentVariableA("TEST_WITHOUT_REPORT", nullptr);
    EXPECT_EQ(c.nExitCode == AsWithout ? nPlainCode : c.nExitCode, CChildProcess(c.part).ExitCode())
        << c.part;
    const std::string text = directory.Contents("ZELTrace-*");
    EXPECT_EQ(0u, text.find(std::string(56, '=') + "\r\n")) << text;
    // Free memory belongs to nobody.
    EXPECT_EQ(std::string::npos, text.find("\n00000000 ")) << text;
    size_t n = 0;
    for (const std::string &part :
         {std::string("Exception:") + c.name + "  Code:", std::string("Last Error:5a5a\r\n"),
          std::string("\r\nEAX:"), std::string("\r\nEIP:"),
          std::string("CUTests.exe ") + c.function + "+0x", std::string("CrashReportTest.cpp("),
          std::string("\r\nthe handler's line\r\n")})
    {
        n = text.find(part, n);
        ASSERT_NE(std::string::npos, n) << c.part << ": " << part << "\n" << text;
    }
}

TEST(CrashReport, NamesWhatEscapedAndLetsTheSystemGoOn)
{
    for (const CCase &c :
         {CCase{"WriteToNull", 0xC0000005, "EXCEPTION_ACCESS_VIOLATION", "WriteToNull"},
          CCase{"CallNull", 0xC0000005, "EXCEPTION_ACCESS_VIOLATION", "CallNull"},
          CCase{"DivideByZero", 0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO", "DivideByZero"}})
        ExpectReport(c);
}

TEST(CrashReport, KnowsCodesWithoutANameStacksRunOverAndMissingFunctions)
{
    for (const CCase &c :
         {CCase{"RaiseUnknown", 0xE1234567, "Unknown Exception", "RaiseUnknown"},
          CCase{"OverflowStack", AsWithout, "EXCEPTION_STACK_OVERFLOW", "Recurse"},
          CCase{"CallIt", 0xE0505643, "Pure Virtual Function Call", "CAbstract::CallIt"}})
        ExpectReport(c);
}

TEST(CrashReport, LeavesTheEndToWhoeverIsToMakeIt)
{
    for (const CCase &c :
         {CCase{"EarlierFilter", ExitCodeOfFilter, "EXCEPTION_ACCESS_VIOLATION", "WriteToNull"},
          CCase{"Shutdown", 0xC0000005, "EXCEPTION_ACCESS_VIOLATION", "WriteToNull"},
          CCase{"CrashAgain", 0xC0000094, "EXCEPTION_ACCESS_VIOLATION", "WriteToNull"}})
        ExpectReport(c);
}

namespace {

HANDLE s_inPlace, s_goOn;

void WaitInPlace()
{
    SetEvent(s_inPlace);
    WaitForSingleObject(s_goOn, INFINITE);
}

DWORD WINAPI OtherThread(void *)
{
    WaitInPlace();
    return 5;
}

time_t s_time;

time_t FakeTime(time_t *)
{
    return s_time;
}

}  // namespace

TEST(StackTrace, WalksAnotherThreadAndLetsItGoOn)
{
    s_inPlace = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    s_goOn = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE hThread = CreateThread(nullptr, 0, OtherThread, nullptr, 0, nullptr);
    WaitForSingleObject(s_inPlace, INFINITE);
    char szStack[4096];
    std::string stack;
    // It may not have begun to wait yet.
    do {
        EXPECT_LT(2, CUGetStackTrace(hThread, szStack, sizeof szStack));
        stack = szStack;
    } while (stack.find("WaitInPlace") == std::string::npos);
    EXPECT_LT(stack.find("WaitInPlace"), stack.find("OtherThread"));
    SetEvent(s_goOn);
    DWORD nCode = 0;
    WaitForSingleObject(hThread, INFINITE);
    GetExitCodeThread(hThread, &nCode);
    EXPECT_EQ(5u, nCode);
    EXPECT_EQ(0, CUGetStackTrace(s_goOn, szStack, sizeof szStack));
    EXPECT_STREQ("", szStack);
}

// Whoever held itself, or two that held each other, would hang.
TEST(StackTrace, ThreadsMayWalkThemselvesAndEachOther)
{
    static HANDLE s_threads[2];
    static LONG s_nReady = 0;
    CThreads::Run(2, [](int nThread) {
        char szNothing[1];
        DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(),
                        &s_threads[nThread], 0, FALSE, DUPLICATE_SAME_ACCESS);
        CUGetStackTrace(s_threads[nThread], szNothing, sizeof szNothing);
        InterlockedIncrement(&s_nReady);
        while (InterlockedExchangeAdd(&s_nReady, 0) < 2)
            Sleep(0);
        for (int i = 0; i < 300; ++i)
            CUGetStackTrace(s_threads[1 - nThread], szNothing, sizeof szNothing);
    });
}

TEST(StackTrace, LeavesOutWhatDoesNotFitByWholeLines)
{
    char szAll[4096];
    SetLastError(17);
    const int nAll = CUGetStackTrace(GetCurrentThread(), szAll, sizeof szAll);
    EXPECT_EQ(17u, GetLastError());
    EXPECT_NE(nullptr, strstr(szAll, "CrashReportTest.cpp("));
    EXPECT_EQ(nAll, std::count(szAll, szAll + strlen(szAll), '\n'));
    // Around what the first line takes, which differs by the call's place in this function.
    const unsigned int nLine = static_cast<unsigned int>(strcspn(szAll, "\n")) + 1;
    for (const unsigned int nSize : {0u, 1u, 2u, nLine - 2, nLine - 1, nLine, nLine + 1, nLine + 2})
    {
        CGuardedBuffer buffer(nSize);
        const int nLines = CUGetStackTrace(GetCurrentThread(), buffer.Data(), nSize);
        EXPECT_LT(nLines, nAll);
        if (nSize == 0)
            continue;
        const std::string text = buffer.Data();
        EXPECT_EQ(nLines, std::count(text.begin(), text.end(), '\n'));
        EXPECT_TRUE(text.empty() || text.back() == '\n');
    }
}

TEST(TraceFiles, PurgingKeepsTheLastDays)
{
    const CTemporaryDirectory directory;
    const CImportHook clock("time", FakeTime);
    tm noon = {};
    noon.tm_year = 124, noon.tm_mon = 2, noon.tm_mday = 1, noon.tm_hour = 12, noon.tm_isdst = -1;
    s_time = mktime(&noon);  // 2024-03-01
    const struct
    {
        int nDaysToKeep, nDeleted;
    } cases[] = {{0x7FFFFFFF, 0}, {30, 1}, {1, 1}, {0, 1}, {-5, 0}};
    for (const char *name :
         {"ZELTrace-2024-01-30.txt", "ZELTrace-2024-01-31.txt", "ZELTrace-2024-02-29.txt",
          "ZELTrace-2024-03-01.txt", "ZELTrace-2024-03-02.txt", "ZELTrace-1999.txt"})
        fclose(fopen((directory.Path() + "\\" + name).c_str(), "w"));
    for (const auto &c : cases)
        EXPECT_EQ(c.nDeleted, CUPurgeTraceFiles(c.nDaysToKeep)) << c.nDaysToKeep;
    EXPECT_EQ(3u, directory.Files("ZELTrace-*").size());
    const std::string log = directory.Contents("ZELLog-*");
    EXPECT_NE(std::string::npos, log.find("Deleting trace file: ZELTrace-2024-01-30.txt\r\n"
                                          "Deleting trace file: ZELTrace-2024-01-31.txt\r\n"
                                          "Deleting trace file: ZELTrace-2024-02-29.txt\r\n"));
}
