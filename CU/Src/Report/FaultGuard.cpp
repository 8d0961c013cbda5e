#include "Report/FaultGuard.h"

#include "CU/Platform.h"

namespace {

// The compiler has no __try. What it would make of one is a record on the stack, in the list of the
// thread's handlers, which every system knows since Windows 95.
struct CGuard
{
    EXCEPTION_REGISTRATION_RECORD record;  // the first member: its place is the guard's
    void *state[5];                        // where to go on
};

// The head of that list is the first word of what the register shows.
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

EXCEPTION_DISPOSITION __cdecl OnException(EXCEPTION_RECORD *record, void *frame, CONTEXT *, void *)
{
    const DWORD Unwinding = 6;  // by somebody further up, who goes on elsewhere
    if (record->ExceptionFlags & Unwinding)
        return ExceptionContinueSearch;
    // RtlUnwind gives back no register but the stack's two. It returns, or jumps to where it is
    // told, whichever the system does: both come to the label. GCC would put one of C's before the
    // call.
    CGuard *volatile guard = static_cast<CGuard *>(frame);
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
    __builtin_longjmp(guard->state, 1);
}

}  // namespace

__attribute__((noinline)) bool CUCallGuarded(void (*call)(void *), void *argument)
{
    CGuard guard;
    guard.record.Next = FirstHandler();
    // The header says stdcall; compilers have always made it the other.
    guard.record.Handler =
        reinterpret_cast<PEXCEPTION_ROUTINE>(reinterpret_cast<void *>(OnException));
    volatile bool bDone = false;
    if (__builtin_setjmp(guard.state) == 0) {
        SetFirstHandler(&guard.record);
        call(argument);
        bDone = true;
    }
    SetFirstHandler(guard.record.Next);
    return bDone;
}
