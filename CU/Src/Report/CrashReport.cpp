#include "CU/CrashReport.h"

#include <stdio.h>

#include "Base/KeepLastError.h"
#include "Base/Module.h"
#include "Report/ExceptionName.h"
#include "Report/StackWalk.h"
#include "Process/ThreadExit.h"
#include "Report/TraceFile.h"

namespace {

const DWORD LongestReport = 30000;  // milliseconds that others wait for one

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
            CUGetExceptionName(record.ExceptionCode), record.ExceptionCode,
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
    fprintf(file, "\nEAX:%08lx  EBX:%08lx  ECX:%08lx  EDX:%08lx  ESI:%08lx  EDI:%08lx\n",
            context.Eax, context.Ebx, context.Ecx, context.Edx, context.Esi, context.Edi);
    fprintf(file, "EIP:%08lx  ESP:%08lx  EBP:%08lx  Flags:%08lx\n", context.Eip, context.Esp,
            context.Ebp, context.EFlags);
    fprintf(file, "CS:%04lx  DS:%04lx  SS:%04lx  ES:%04lx  FS:%04lx  GS:%04lx\n", context.SegCs,
            context.SegDs, context.SegSs, context.SegEs, context.SegFs, context.SegGs);
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
    // Whose own crash must not wait for the report.
    InterlockedExchange(&s_nReportingThread, static_cast<LONG>(GetCurrentThreadId()));
    FILE *file = CUOpenReport();
    if (!file)
        return 0;
    WriteWhatHappened(file, crash);
    WriteRegisters(file, *crash.pointers->ContextRecord);
    // What follows reads what the crash may have damaged.
    fflush(file);
    WriteStack(file, crash);
    CUCloseReport(file);
    return 0;
}

// A stack that has run over has no room left for a report.
void WriteReportOnOwnStack(CCrash &crash)
{
    HANDLE hCrashed = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &hCrashed, 0,
                    FALSE, DUPLICATE_SAME_ACCESS);
    crash.hThread = hCrashed;
    DWORD dwWriter = 0;
    const HANDLE hWriter = CreateThread(nullptr, 0, WriteReport, &crash, 0, &dwWriter);
    if (hWriter) {
        WaitForSingleObject(hWriter, LongestReport);
        CloseHandle(hWriter);
    }
    if (hCrashed)
        CloseHandle(hCrashed);
}

// One crash a process is reported: the first. A thread that crashes meanwhile waits, for the
// process would end before the report does; a crash of the report itself does not.
void ReportFirst(CCrash &crash)
{
    const LONG nThread = static_cast<LONG>(crash.dwThreadId);
    const LONG nFirst = InterlockedCompareExchange(&s_nReportingThread, nThread, 0);
    if (nFirst != 0) {
        for (DWORD n = 0; nFirst != nThread && !s_bReported && n < LongestReport; n += 10)
            Sleep(10);
        return;
    }
    if (crash.pointers->ExceptionRecord->ExceptionCode ==
        static_cast<DWORD>(EXCEPTION_STACK_OVERFLOW))
        WriteReportOnOwnStack(crash);
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

// Who has put a filter on top of ours keeps ours in its chain; that cannot be mended from here.
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

// Called through the empty places of a virtual table, by the compiler's rule. The library's own
// ends the process without a word. The report is written even where nobody has asked for reports.
extern "C" void __cxa_pure_virtual()  // NOLINT(readability-identifier-naming)
{
    CUStartExceptionHandler();
    RaiseException(CUExceptionPureVirtual, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}
