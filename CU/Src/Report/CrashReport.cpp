#include "CU/CrashReport.h"

#include <stdio.h>

#include "Base/Handle.h"
#include "Base/KeepLastError.h"
#include "Base/Module.h"
#include "Process/ThreadExit.h"
#include "Report/ReportFile.h"
#include "Report/StackTrace.h"

namespace {

// Raised where a virtual function is called that its class does not have yet, or no longer.
const DWORD PURE_VIRTUAL_CALL = 0xE0505643;

struct CExceptionName
{
    DWORD dwCode;
    const char *name;
};

#define NAMED(code)                     \
    {                                   \
        static_cast<DWORD>(code), #code \
    }

const CExceptionName EXCEPTION_NAMES[] = {
    NAMED(EXCEPTION_ACCESS_VIOLATION),
    NAMED(EXCEPTION_ARRAY_BOUNDS_EXCEEDED),
    NAMED(EXCEPTION_BREAKPOINT),
    NAMED(EXCEPTION_DATATYPE_MISALIGNMENT),
    NAMED(EXCEPTION_FLT_DENORMAL_OPERAND),
    NAMED(EXCEPTION_FLT_DIVIDE_BY_ZERO),
    NAMED(EXCEPTION_FLT_INEXACT_RESULT),
    NAMED(EXCEPTION_FLT_INVALID_OPERATION),
    NAMED(EXCEPTION_FLT_OVERFLOW),
    NAMED(EXCEPTION_FLT_STACK_CHECK),
    NAMED(EXCEPTION_FLT_UNDERFLOW),
    NAMED(EXCEPTION_GUARD_PAGE),
    NAMED(EXCEPTION_ILLEGAL_INSTRUCTION),
    NAMED(EXCEPTION_IN_PAGE_ERROR),
    NAMED(EXCEPTION_INT_DIVIDE_BY_ZERO),
    NAMED(EXCEPTION_INT_OVERFLOW),
    NAMED(EXCEPTION_INVALID_DISPOSITION),
    NAMED(EXCEPTION_INVALID_HANDLE),
    NAMED(EXCEPTION_NONCONTINUABLE_EXCEPTION),
    NAMED(EXCEPTION_PRIV_INSTRUCTION),
    NAMED(EXCEPTION_SINGLE_STEP),
    NAMED(EXCEPTION_STACK_OVERFLOW),
    NAMED(STATUS_NO_MEMORY),
    NAMED(STATUS_CONTROL_C_EXIT),
    {PURE_VIRTUAL_CALL, "Pure Virtual Function Call"},
    {0xC0000135, "STATUS_DLL_NOT_FOUND"},
    {0xC0000139, "STATUS_ENTRYPOINT_NOT_FOUND"},
    {0xC0000374, "STATUS_HEAP_CORRUPTION"},
    {0xC0000409, "STATUS_STACK_BUFFER_OVERRUN"},
    {0xC06D007E, "Delay-Loaded Library Not Found"},
    {0xC06D007F, "Delay-Loaded Function Not Found"},
    {0xE06D7363, "C++ Exception"},
    {0x20474343, "C++ Exception"},
};
#undef NAMED

const char *NameOfException(DWORD dwCode)
{
    for (const CExceptionName &entry : EXCEPTION_NAMES) {
        if (entry.dwCode == dwCode)
            return entry.name;
    }
    return "Unknown Exception";
}

const DWORD LONGEST_REPORT = 30000;  // ms that a crashed thread waits for a report to end

LONG s_bStarted = 0;
LONG s_bShutdown = 0;
LPTOP_LEVEL_EXCEPTION_FILTER s_previousFilter = nullptr;
LONG s_nReportingThread = 0;  // 0: no crash has been reported yet
LONG s_bReported = 0;

struct CCrash
{
    const EXCEPTION_POINTERS *pointers;
    HANDLE hThread;
    DWORD dwThreadId;
    DWORD dwLastError;
};

void WriteWhatHappened(FILE *file, const CCrash &crash)
{
    const EXCEPTION_RECORD &record = *crash.pointers->ExceptionRecord;
    char szProgram[MAX_PATH] = "";
    if (!CUIsAtThreadEnd())
        GetModuleFileNameA(nullptr, szProgram, MAX_PATH - 1);
    fprintf(file, "Exception:%s  Code:%08lx  Address:%08lx  Thread:%lx  Last Error:%lx\n",
            NameOfException(record.ExceptionCode), record.ExceptionCode,
            reinterpret_cast<DWORD>(record.ExceptionAddress), crash.dwThreadId, crash.dwLastError);
    const bool bAccess = record.ExceptionCode == static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION) ||
                         record.ExceptionCode == static_cast<DWORD>(EXCEPTION_IN_PAGE_ERROR);
    if (bAccess && record.NumberParameters >= 2) {
        const ULONG_PTR nKind = record.ExceptionInformation[0];
        fprintf(file, "%s address %08lx\n",
                nKind == 0 ? "Reading" : (nKind == 1 ? "Writing" : "Executing"),
                record.ExceptionInformation[1]);
    }
    fprintf(file, "Program:%s\n", szProgram);
}

void WriteRegisters(FILE *file, const CONTEXT &context)
{
    fprintf(file,
            "\nEAX:%08lx  EBX:%08lx  ECX:%08lx  EDX:%08lx  ESI:%08lx  EDI:%08lx\n"
            "EIP:%08lx  ESP:%08lx  EBP:%08lx  Flags:%08lx\n"
            "CS:%04lx  DS:%04lx  SS:%04lx  ES:%04lx  FS:%04lx  GS:%04lx\n",
            context.Eax, context.Ebx, context.Ecx, context.Edx, context.Esi, context.Edi,
            context.Eip, context.Esp, context.Ebp, context.EFlags, context.SegCs, context.SegDs,
            context.SegSs, context.SegEs, context.SegFs, context.SegGs);
}

void WriteStack(FILE *file, const CCrash &crash)
{
    CCUStackAddresses stack = {};
    CUWalkStack(crash.hThread, *crash.pointers->ContextRecord, stack);
    stack.bFirstIsExact = true;
    char szStack[4096];
    CUFormatStack(stack, szStack, sizeof szStack);
    fprintf(file, "\n%s\n", szStack);
}

DWORD WINAPI WriteReport(void *parameter)
{
    const CCrash &crash = *static_cast<const CCrash *>(parameter);
    // If writing the report crashes too, ReportFirst must know this thread: it would wait for a
    // report that it keeps from going on.
    InterlockedExchange(&s_nReportingThread, static_cast<LONG>(GetCurrentThreadId()));
    CCUReportBuffer buffer;
    FILE *file = CUOpenReport(buffer);
    if (!file)
        return 0;
    WriteWhatHappened(file, crash);
    WriteRegisters(file, *crash.pointers->ContextRecord);
    // Reading the stack may crash again, if this crash has damaged it.
    fflush(file);
    WriteStack(file, crash);
    CUCloseReport(file);
    return 0;
}

// After a stack overflow the thread has no room left for a report: another one writes it.
void WriteReportOnNewThread(CCrash &crash)
{
    CCUObjectHandle hCrashed;
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(),
                    hCrashed.Receive(), 0, FALSE, DUPLICATE_SAME_ACCESS);
    crash.hThread = hCrashed;
    DWORD dwWriter = 0;
    const CCUObjectHandle hWriter(CreateThread(nullptr, 0, WriteReport, &crash, 0, &dwWriter));
    if (hWriter)
        WaitForSingleObject(hWriter, LONGEST_REPORT);
}

// Lets the report of another thread's crash come to its end, which the end of the process would cut
// off.
void WaitForReport()
{
    for (DWORD n = 0; !s_bReported && n < LONGEST_REPORT; n += 10)
        Sleep(10);
}

// Only the first crash of a process is reported.
void ReportFirst(CCrash &crash)
{
    const LONG nThread = static_cast<LONG>(crash.dwThreadId);
    const LONG nReporting = InterlockedCompareExchange(&s_nReportingThread, nThread, 0);
    if (nReporting == nThread)
        return;  // the report itself has crashed
    if (nReporting != 0) {
        WaitForReport();
        return;
    }
    if (crash.pointers->ExceptionRecord->ExceptionCode ==
        static_cast<DWORD>(EXCEPTION_STACK_OVERFLOW))
        WriteReportOnNewThread(crash);
    else
        WriteReport(&crash);
    InterlockedExchange(&s_bReported, 1);
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS *pointers)
{
    const CCUKeepLastError keepLastError;
    CCrash crash = {pointers, GetCurrentThread(), GetCurrentThreadId(), keepLastError.Error()};
    ReportFirst(crash);
    if (s_bShutdown)
        TerminateProcess(GetCurrentProcess(), pointers->ExceptionRecord->ExceptionCode);
    return s_previousFilter ? s_previousFilter(pointers) : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void CUStartExceptionHandler()
{
    if (!InterlockedExchange(&s_bStarted, 1))
        s_previousFilter = SetUnhandledExceptionFilter(OnUnhandledException);
}

// A filter that somebody has set after ours may still call ours; that cannot be mended from here.
void CUUnloadCrashReport()
{
    if (!s_bStarted)
        return;
    const LPTOP_LEVEL_EXCEPTION_FILTER top = SetUnhandledExceptionFilter(s_previousFilter);
    if (top != OnUnhandledException)
        SetUnhandledExceptionFilter(top);
}

void CUShutdownAfterCrash(bool bShutdown)
{
    InterlockedExchange(&s_bShutdown, bShutdown);
}

// The compiler puts this function where a virtual table has none yet. It takes the place of the C++
// library's, which ends the process without a word, and reports even where nobody has called
// CUStartExceptionHandler.
// NOLINTNEXTLINE(readability-identifier-naming): the compiler's name.
extern "C" void __cxa_pure_virtual()
{
    CUStartExceptionHandler();
    RaiseException(PURE_VIRTUAL_CALL, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}
