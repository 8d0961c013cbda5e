#include "Report/FaultGuard.h"

#include "Base/Compiler.h"
#include "Base/SystemLibrary.h"
#include "CU/Platform.h"

namespace {

// A stack overflow uses up the guard page that tells of it; another one would end the process at
// once. Systems before Windows XP have no function that puts the page back.
void RestoreStackGuard()
{
    typedef int __cdecl ResetFunction();
    if (const auto reset = CUFindFunction<ResetFunction>("msvcrt.dll", "_resetstkoflw"))
        reset();
}

}  // namespace

#if defined(_MSC_VER)

CU_NOINLINE bool CUCallGuarded(void (*call)(void *), void *argument)
{
    DWORD dwCode = 0;
    __try
    {
        call(argument);
        return true;
    } __except (dwCode = GetExceptionCode(), EXCEPTION_EXECUTE_HANDLER)
    {
    }
    if (dwCode == static_cast<DWORD>(EXCEPTION_STACK_OVERFLOW))
        RestoreStackGuard();
    return false;
}

#else

namespace {

// GCC has no __try. What other compilers make of one is a record on the stack, in a list of the
// thread's handlers that every system knows since Windows 95.
struct CGuard
{
    EXCEPTION_REGISTRATION_RECORD record;  // the first member: its place is the guard's
    void *state[5];                        // where to go on
    DWORD dwCode;                          // of the exception that ended the call
};

// The list's head is the first word of the segment that the register shows.
EXCEPTION_REGISTRATION_RECORD *FirstHandler()
{
    EXCEPTION_REGISTRATION_RECORD *record;
    asm volatile("movl %%fs:0, %0" : "=r"(record));
    return record;
}

void SetFirstHandler(EXCEPTION_REGISTRATION_RECORD *record)
{
    asm volatile("movl %0, %%fs:0" : : "r"(record) : "memory");
}

// Lets all calls down to the guard's clean up. RtlUnwind keeps no register but ebp and esp, and it
// either returns, as in Wine 8, or jumps to the address given, as documented: here both come to the
// same label. GCC would move a label of C's away from behind the call.
void UnwindTo(void *frame, EXCEPTION_RECORD *record)
{
    decltype(&RtlUnwind) unwind = RtlUnwind;
    asm volatile(
        "pushl $0\n\t"
        "pushl %[record]\n\t"
        "pushl $1f\n\t"
        "pushl %[frame]\n\t"
        "call *%[unwind]\n"
        "1:"
        : [frame] "+a"(frame), [record] "+d"(record), [unwind] "+c"(unwind)
        :
        : "ebx", "esi", "edi", "cc", "memory");
}

EXCEPTION_DISPOSITION __cdecl OnException(EXCEPTION_RECORD *record, void *frame, CONTEXT *, void *)
{
    const DWORD Unwinding = 6;  // by somebody further up, who goes on elsewhere
    if (record->ExceptionFlags & Unwinding)
        return ExceptionContinueSearch;
    // The fault may have left the direction flag set. Wine 8 clears it; Windows XP and before do
    // not promise to.
    asm volatile("cld");
    CGuard *volatile guard = static_cast<CGuard *>(frame);
    guard->dwCode = record->ExceptionCode;
    UnwindTo(frame, record);
    __builtin_longjmp(guard->state, 1);
}

}  // namespace

CU_NOINLINE bool CUCallGuarded(void (*call)(void *), void *argument)
{
    CGuard guard;
    guard.record.Next = FirstHandler();
    // The header says stdcall; the system calls it as compilers have always made it, cdecl.
    guard.record.Handler =
        reinterpret_cast<PEXCEPTION_ROUTINE>(reinterpret_cast<void *>(OnException));
    if (__builtin_setjmp(guard.state) == 0) {
        SetFirstHandler(&guard.record);
        call(argument);
        SetFirstHandler(guard.record.Next);
        return true;
    }
    SetFirstHandler(guard.record.Next);
    if (guard.dwCode == static_cast<DWORD>(EXCEPTION_STACK_OVERFLOW))
        RestoreStackGuard();
    return false;
}

#endif
