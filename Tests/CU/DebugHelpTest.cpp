// Reports with a debug-help library that faults, as the system's did on Windows 95.

#include <gtest/gtest.h>

#include <malloc.h>

#include <string>

#include "CU/Assert.h"
#include "CU/CrashReport.h"
#include "CU/StackTrace.h"
#include "Support/ChildProcess.h"
#include "Support/ImportHook.h"
#include "Support/ProgramName.h"
#include "Support/TemporaryDirectory.h"
#include "Support/Threads.h"

#include <imagehlp.h>

namespace {

// Puts a function in the place of the library's of that name, before it is asked for.
class CHelpHook
{
public:
    template <typename F>
    CHelpHook(const char *name, F *function) : m_hook("GetProcAddress", Find)
    {
        s_name = name;
        s_function = reinterpret_cast<FARPROC>(function);
        s_find = m_hook.Original<decltype(GetProcAddress)>();
    }
    inline static FARPROC s_original = nullptr;

private:
    static FARPROC WINAPI Find(HMODULE hLibrary, const char *name)
    {
        const FARPROC found = s_find(hLibrary, name);
        if (IS_INTRESOURCE(name) || strcmp(name, s_name) != 0)
            return found;
        s_original = found;
        return s_function;
    }
    inline static const char *s_name;
    inline static FARPROC s_function;
    inline static decltype(&GetProcAddress) s_find;
    const CImportHook m_hook;
};

EXCEPTION_REGISTRATION_RECORD *&FirstHandler()
{
    EXCEPTION_REGISTRATION_RECORD **thread;
    asm volatile("movl %%fs:0x18, %0" : "=r"(thread));
    return *thread;
}

volatile int s_nZero = 0;
int s_nUnwound = 0;
LONG s_nComplete = 0;

__attribute__((no_sanitize("undefined"))) void WINAPI WriteToNull()
{
    *static_cast<volatile int *>(reinterpret_cast<int *>(s_nZero)) = 1;
}

void WINAPI Raise()
{
    RaiseException(0xE1234567, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

int Recurse(volatile char *last)
{
    volatile char room[4096];
    room[0] = *last;
    return s_nZero ? 0 : Recurse(room) + room[0];
}

void WINAPI OverflowStack()
{
    volatile char first = 0;
    Recurse(&first);
}

// On a system that calls handlers with the direction flag as the fault has left it.
void WINAPI FaultBackwards()
{
    EXCEPTION_REGISTRATION_RECORD *const guard = FirstHandler();
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = 0xE1234567;
    asm volatile("std");
    reinterpret_cast<EXCEPTION_DISPOSITION(__cdecl *)(EXCEPTION_RECORD *, void *, void *, void *)>(
        reinterpret_cast<void *>(guard->Handler))(&record, guard, nullptr, nullptr);
}

// As a function that gives its locks back on the way out.
EXCEPTION_DISPOSITION __cdecl CountUnwinding(EXCEPTION_RECORD *record, void *, CONTEXT *, void *)
{
    s_nUnwound += (record->ExceptionFlags & 2) != 0;
    return ExceptionContinueSearch;
}

void WINAPI FaultWithHandler()
{
    EXCEPTION_REGISTRATION_RECORD record;
    record.Next = FirstHandler();
    record.Handler = reinterpret_cast<PEXCEPTION_ROUTINE>(reinterpret_cast<void *>(CountUnwinding));
    FirstHandler() = &record;
    WriteToNull();
}

const struct CFault
{
    const char *function;
    void(WINAPI *fault)();
} s_faults[] = {{"StackWalk", WriteToNull},   {"StackWalk", FaultWithHandler},
                {"StackWalk", OverflowStack}, {"StackWalk", FaultBackwards},
                {"SymInitialize", Raise},     {"SymGetSymFromAddr", WriteToNull},
                {"SymGetLineFromAddr", Raise}};

const CFault &Fault()
{
    return s_faults[atoi(getenv("TEST_FAULT"))];
}

decltype(&RtlUnwind) s_unwind = nullptr;

// As a system that does not return from the unwinding but jumps to where it is told. As every
// function, it counts on the direction flag being clear.
void WINAPI UnwindAndJump(void *frame, void *target, EXCEPTION_RECORD *record, void *value)
{
    if (__builtin_ia32_readeflags_u32() & 0x400)
        exit(1);
    s_unwind(frame, target, record, value);
    static_cast<void *volatile *>(__builtin_frame_address(0))[1] = target;
}

void StartReports()
{
    CURegisterExceptionHandler([](FILE *file) {
        fputs("complete\n", file);
        InterlockedIncrement(&s_nComplete);
    });
    CUShutdownAfterCrash(true);
    CUStartExceptionHandler();
}

int Count(const std::string &text, const std::string &part)
{
    int n = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++n;
    return n;
}

// The child ends by an access violation. Its last `nReports` reports are whole: those that threads
// make at once may write over each other.
void ExpectReports(const char *part, int nReports)
{
    const CTemporaryDirectory directory;
    EXPECT_EQ(0xC0000005, CChildProcess(part).ExitCode());
    std::string text = directory.Contents("ZELTrace-*");
    if (nReports > 1)
        text.erase(0, text.rfind("Assert:reported "));
    EXPECT_EQ(1, Count(text, "Exception:EXCEPTION_ACCESS_VIOLATION ")) << text;
    EXPECT_EQ(nReports, Count(text, "\ncomplete\r\n")) << text;
    EXPECT_LE(3 * nReports, Count(text, " " + ProgramName())) << text;
}

}  // namespace

CHILD_PROCESS(ReportWithFaultyHelp)
{
    const CHelpHook hook(Fault().function, Fault().fault);
    StartReports();
    CThreads::Run(2, [](int) {
        const void *handler = FirstHandler();
        CUDisplayAssert("reported", "Source", 1);
        if (FirstHandler() != handler)
            exit(1);
    });
    CUDisplayAssert("reported", "Source", 1);
    if (s_nComplete == 3 && s_nUnwound == (Fault().fault == FaultWithHandler))
        WriteToNull();
}

CHILD_PROCESS(CrashWithFaultyHelp)
{
    const CHelpHook hook(Fault().function, Fault().fault);
    const CImportHook unwind("RtlUnwind", UnwindAndJump);
    s_unwind = unwind.Original<decltype(RtlUnwind)>();
    StartReports();
    WriteToNull();
}

CHILD_PROCESS(OverflowAfterFaultyHelp)
{
    const CHelpHook hook("StackWalk", OverflowStack);
    StartReports();
    CUDisplayAssert("reported", "Source", 1);
    OverflowStack();
}

TEST(DebugHelp, AStackOverflowLeavesTheStackUsable)
{
    const CTemporaryDirectory directory;
    EXPECT_EQ(0xC00000FD, CChildProcess("OverflowAfterFaultyHelp").ExitCode());
    EXPECT_EQ(1, Count(directory.Contents("ZELTrace-*"), "Exception:EXCEPTION_STACK_OVERFLOW "));
}

TEST(DebugHelp, AFaultCostsTheStackAtMost)
{
    for (const CFault &fault : s_faults) {
        const std::string number = std::to_string(&fault - s_faults);
        SCOPED_TRACE(number + fault.function);
        SetEnvironmentVariableA("TEST_FAULT", number.c_str());
        ExpectReports("ReportWithFaultyHelp", 2);
        ExpectReports("CrashWithFaultyHelp", 1);
    }
}

namespace {

int s_nWalks = 0;

// The library's, and greedy.
BOOL WINAPI Walk(DWORD dwMachine, HANDLE hProcess, HANDLE hThread, STACKFRAME *frame, void *context,
                 PREAD_PROCESS_MEMORY_ROUTINE read, PFUNCTION_TABLE_ACCESS_ROUTINE access,
                 PGET_MODULE_BASE_ROUTINE getBase, PTRANSLATE_ADDRESS_ROUTINE translate)
{
    ++s_nWalks;
    memset(_alloca(40000), 0, 40000);
    // Which no walk may be without.
    ADDRESS address = {};
    address.Offset = 0x1234;
    address.Mode = AddrModeFlat;
    EXPECT_EQ(0x1234u, translate(hProcess, hThread, &address));
    return reinterpret_cast<decltype(&StackWalk)>(CHelpHook::s_original)(
        dwMachine, hProcess, hThread, frame, context, read, access, getBase, translate);
}

__attribute__((noinline)) int TraceWithStackOf(DWORD nLeft, char *buffer, unsigned int nSize)
{
    MEMORY_BASIC_INFORMATION memory;
    const char *const here = static_cast<const char *>(__builtin_frame_address(0));
    VirtualQuery(here, &memory, sizeof memory);
    const size_t nAll = static_cast<size_t>(here - static_cast<char *>(memory.AllocationBase));
    volatile char *const burnt = static_cast<char *>(_alloca(nAll - nLeft));
    burnt[0] = 0;
    return CUGetStackTrace(GetCurrentThread(), buffer, nSize);
}

}  // namespace

TEST(DebugHelp, IsLeftAloneWhereTheStackIsShort)
{
    const CHelpHook hook("StackWalk", Walk);
    CThreads::Run(1, [](int) {
        char szStack[4096];
        EXPECT_LT(2, TraceWithStackOf(32768, szStack, sizeof szStack));
        EXPECT_EQ(nullptr, strstr(szStack, "TraceWithStackOf"));
        EXPECT_EQ(0, s_nWalks);
        EXPECT_LT(2, TraceWithStackOf(131072, szStack, sizeof szStack));
        EXPECT_NE(nullptr, strstr(szStack, "TraceWithStackOf")) << szStack;
        EXPECT_LT(2, s_nWalks);
    });
}
