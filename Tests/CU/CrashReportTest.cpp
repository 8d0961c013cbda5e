#include <gtest/gtest.h>

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
#include "Support/FakeTime.h"
#include "Support/ProgramName.h"
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

#define CHILD_CRASH(crash) \
    CHILD_PROCESS(crash)   \
    {                      \
        Start(), crash();  \
    }
CHILD_CRASH(WriteToNull)
CHILD_CRASH(CallNull)
CHILD_CRASH(RaiseUnknown)
CHILD_CRASH(OverflowStack)
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
static void CrashAgain(void (*crash)())
{
    CUShutdownAfterCrash(true);
    Start();
    CURegisterExceptionHandler([](FILE *) { RaiseUnknown(); });
    crash();
}
CHILD_PROCESS(CrashAgain)
{
    CrashAgain(WriteToNull);
}
CHILD_PROCESS(OverflowAgain)
{
    CrashAgain(OverflowStack);
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
    SCOPED_TRACE(c.part);
    const CTemporaryDirectory directory;
    DWORD nExitCode = c.nExitCode;
    if (nExitCode == AsWithout) {
        SetEnvironmentVariableA("TEST_WITHOUT_REPORT", "1");
        nExitCode = CChildProcess(c.part).ExitCode();
        SetEnvironmentVariableA("TEST_WITHOUT_REPORT", nullptr);
    }
    EXPECT_EQ(nExitCode, CChildProcess(c.part).ExitCode());
    const std::string text = directory.Contents("ZELTrace-*");
    EXPECT_EQ(0u, text.find(std::string(56, '=') + "\r\n")) << text;
    // Free memory belongs to nobody.
    EXPECT_EQ(std::string::npos, text.find("\n00000000 ")) << text;
    size_t n = 0;
    for (const std::string &part :
         {std::string("Exception:") + c.name + "  Code:", std::string("Last Error:5a5a\r\n"),
          std::string("\r\nEAX:"), std::string("\r\nEIP:"),
          ProgramName() + " " + c.function + "+0x", std::string("CrashReportTest.cpp("),
          std::string("\r\nthe handler's line\r\n")})
    {
        n = text.find(part, n);
        ASSERT_NE(std::string::npos, n) << part << "\n" << text;
    }
}

TEST(CrashReport, NamesWhatEscapedAndLeavesTheEndToWhoeverIsToMakeIt)
{
    const char *const access = "EXCEPTION_ACCESS_VIOLATION";
    for (const CCase &c :
         {CCase{"WriteToNull", 0xC0000005, access, "WriteToNull"},
          CCase{"CallNull", 0xC0000005, access, "CallNull"},
          CCase{"RaiseUnknown", 0xE1234567, "Unknown Exception", "RaiseUnknown"},
          CCase{"OverflowStack", AsWithout, "EXCEPTION_STACK_OVERFLOW", "Recurse"},
          CCase{"CallIt", 0xE0505643, "Pure Virtual Function Call", "CAbstract::CallIt"},
          CCase{"EarlierFilter", ExitCodeOfFilter, access, "WriteToNull"},
          CCase{"Shutdown", 0xC0000005, access, "WriteToNull"},
          CCase{"CrashAgain", 0xE1234567, access, "WriteToNull"},
          CCase{"OverflowAgain", 0xE1234567, "EXCEPTION_STACK_OVERFLOW", "Recurse"}})
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
    return 0;
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
    WaitForSingleObject(hThread, INFINITE);
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
    const size_t nLine = strcspn(szAll, "\n") + 1;
    for (const size_t nSize : {0u, 1u, nLine - 1, nLine, nLine + 1, nLine + 2}) {
        CGuardedBuffer buffer(nSize);
        const int nLines =
            CUGetStackTrace(GetCurrentThread(), buffer.Data(), static_cast<unsigned int>(nSize));
        EXPECT_LT(nLines, nAll);
        if (nSize == 0)
            continue;
        const std::string text = buffer.Data();
        EXPECT_EQ(nLines, std::count(text.begin(), text.end(), '\n'));
        EXPECT_TRUE(text.empty() || text.back() == '\n');
    }
}

TEST(ReportFiles, PurgingKeepsTheLastDays)
{
    const CTemporaryDirectory directory;
    const CFakeTime clock;
    CFakeTime::s_now = CFakeTime::Local(2024, 3, 1, 12);
    const int cases[][2] = {{0x7FFFFFFF, 0}, {30, 1}, {1, 1}, {0, 1}, {-5, 0}};  // kept, deleted
    for (const char *date : {"2024-01-30", "2024-01-31", "2024-02-29", "2024-03-01", "2024-03-02"})
        fclose(fopen((directory.Path() + "\\ZELTrace-" + date + ".txt").c_str(), "w"));
    fclose(fopen((directory.Path() + "\\ZELTrace-1999.txt").c_str(), "w"));
    for (const auto &c : cases)
        EXPECT_EQ(c[1], CUPurgeTraceFiles(c[0])) << c[0];
    EXPECT_EQ(3u, directory.Files("ZELTrace-*").size());
    const std::string log = directory.Contents("ZELLog-*");
    EXPECT_NE(std::string::npos, log.find("Deleting trace file: ZELTrace-2024-01-30.txt\r\n"
                                          "Deleting trace file: ZELTrace-2024-01-31.txt\r\n"
                                          "Deleting trace file: ZELTrace-2024-02-29.txt\r\n"));
}
