#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "CU/Assert.h"
#include "CU/CrashReport.h"
#include "CU/StackTrace.h"
#include "Support/ChildProcess.h"
#include "Support/FakeTime.h"
#include "Support/GuardedBuffer.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"

namespace {

LONG WINAPI EarlierFilter(EXCEPTION_POINTERS *)
{
    TerminateProcess(GetCurrentProcess(), 77);
    return EXCEPTION_CONTINUE_SEARCH;
}

// Each crash has its name in the stack, and is the processor's, not a checker's.
#define CRASH __attribute__((no_sanitize("undefined"))) void WINAPI
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

int Recurse(volatile char *last)
{
    volatile char room[4096];
    room[0] = *last;
    return s_nZero ? 0 : Recurse(room) + room[0];
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
    CURegisterExceptionHandler([](FILE *file) { fputs("the handler's line\n", file); });
    CUStartExceptionHandler();
    CUStartExceptionHandler();
    SetLastError(0x5A5A);
}

}  // namespace

CHILD_PROCESS(CallNull)
{
    Start(), CallNull();
}
CHILD_PROCESS(OverflowStack)
{
    CUShutdownAfterCrash(true);
    volatile char first = 0;
    Start(), Recurse(&first);
}
CHILD_PROCESS(CallIt)
{
    SetUnhandledExceptionFilter(EarlierFilter);
    Start();
    const CConcrete object;
}
CHILD_PROCESS(Shutdown)
{
    SetUnhandledExceptionFilter(EarlierFilter);
    CUShutdownAfterCrash(true);
    Start(), RaiseUnknown();
}
CHILD_PROCESS(CrashAgain)
{
    CUShutdownAfterCrash(true);
    Start();
    CURegisterExceptionHandler([](FILE *) { RaiseUnknown(); });
    WriteToNull();
}
// With a debug-help library that faults, as the system's did on Windows 95.
CHILD_PROCESS(FaultyHelp)
{
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> find(
        "GetProcAddress", [&](HMODULE hLibrary, LPCSTR name) {
            const bool bWalk = !IS_INTRESOURCE(name) && strcmp(name, "StackWalk") == 0;
            return bWalk ? reinterpret_cast<FARPROC>(WriteToNull) : find.Original(hLibrary, name);
        });
    Start();
    CUDisplayAssert("reported", "Source", 1);
    WriteToNull();
}

struct CCase
{
    const char *part;
    DWORD nExitCode;
    const char *name;
    const char *function;
};

struct CrashReport : testing::TestWithParam<CCase>
{
};

TEST_P(CrashReport, NamesWhatEscapedAndLeavesTheEndToWhoeverIsToMakeIt)
{
    const CTemporaryDirectory directory;
    EXPECT_EQ(GetParam().nExitCode, CChildProcess(GetParam().part).ExitCode());
    std::string text = directory.Contents("ZELTrace-*");
    EXPECT_EQ(0u, text.find(std::string(56, '=') + "\r\n")) << text;
    // Free memory belongs to nobody.
    EXPECT_EQ(std::string::npos, text.find("\n00000000 ")) << text;
    size_t n = 0;
    for (const char *part : {GetParam().name, "  Code:", "Last Error:5a5a\r\n", "\r\nEAX:",
                             "\r\nEIP:", GetParam().function, "\r\nthe handler's line\r\n"})
    {
        n = text.find(part, n);
        ASSERT_NE(std::string::npos, n) << part << "\n" << text;
    }
}

const char *const ACCESS = "Exception:EXCEPTION_ACCESS_VIOLATION";
const CCase s_cases[] = {
    {"CallNull", 0xC0000005, ACCESS, "CUTests.exe CallNull+0x"},
    {"OverflowStack", 0xC00000FD, "Exception:EXCEPTION_STACK_OVERFLOW", "CUTests.exe Recurse+0x"},
    {"CallIt", 77, "Exception:Pure Virtual Function Call", "CUTests.exe CAbstract::CallIt+0x"},
    {"Shutdown", 0xE1234567, "Exception:Unknown Exception", "CUTests.exe RaiseUnknown+0x"},
    {"CrashAgain", 0xE1234567, ACCESS, "CUTests.exe WriteToNull+0x"},
    {"FaultyHelp", 0xC0000005, ACCESS, "CUTests.exe+0x"}};
INSTANTIATE_TEST_SUITE_P(, CrashReport, testing::ValuesIn(s_cases),
                         [](const auto &crash) { return crash.param.part; });

static HANDLE s_inPlace, s_goOn;

static DWORD WINAPI WaitInPlace(void *)
{
    SetEvent(s_inPlace);
    return WaitForSingleObject(s_goOn, INFINITE);
}

TEST(StackTrace, WalksAnotherThreadAndLetsItGoOn)
{
    s_inPlace = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    s_goOn = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE hThread = CreateThread(nullptr, 0, WaitInPlace, nullptr, 0, nullptr);
    WaitForSingleObject(s_inPlace, INFINITE);
    char szStack[4096];
    // It may not have begun to wait yet.
    do {
        EXPECT_LT(2, CUGetStackTrace(hThread, szStack, sizeof szStack));
    } while (!strstr(szStack, "WaitInPlace"));
    SetEvent(s_goOn);
    WaitForSingleObject(hThread, INFINITE);
    EXPECT_EQ(0, CUGetStackTrace(s_goOn, szStack, sizeof szStack));
    EXPECT_STREQ("", szStack);
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
        CGuardedBuffer buffer(nSize);
        const int nLines = CUGetStackTrace(GetCurrentThread(), buffer.Data(), nSize);
        const std::string text = buffer.Data();
        EXPECT_EQ(nLines, std::count(text.begin(), text.end(), '\n'));
        EXPECT_TRUE(text.empty() || text.back() == '\n');
    }
}

TEST(TraceFiles, PurgingKeepsTheLastDays)
{
    const CTemporaryDirectory directory;
    const CFakeTime clock;
    CFakeTime::s_now = CFakeTime::Local(2024, 3, 1, 12);
    const int cases[][2] = {{0x7FFFFFFF, 0}, {30, 1}, {1, 1}, {0, 1}, {-5, 0}};  // kept, deleted
    for (const char *date :
         {"2024-01-30", "2024-01-31", "2024-02-29", "2024-03-01", "2024-03-02", "1999"})
        directory.Make(std::string("ZELTrace-") + date + ".txt");
    for (const auto &c : cases)
        EXPECT_EQ(c[1], CUPurgeTraceFiles(c[0])) << c[0];
    EXPECT_EQ(3u, directory.Files("ZELTrace-*").size());
    const std::string log = directory.Contents("ZELLog-*");
    EXPECT_NE(std::string::npos, log.find("Deleting trace file: ZELTrace-2024-01-30.txt\r\n"
                                          "Deleting trace file: ZELTrace-2024-01-31.txt\r\n"));
}
