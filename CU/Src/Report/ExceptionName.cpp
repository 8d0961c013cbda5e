#include "Report/ExceptionName.h"

namespace {

struct CExceptionName
{
    DWORD dwCode;
    const char *name;
};

#define NAMED(code)                     \
    {                                   \
        static_cast<DWORD>(code), #code \
    }

const CExceptionName s_names[] = {
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
    {CUExceptionPureVirtual, "Pure Virtual Function Call"},
    {0xC0000135, "STATUS_DLL_NOT_FOUND"},
    {0xC0000139, "STATUS_ENTRYPOINT_NOT_FOUND"},
    {0xC0000374, "STATUS_HEAP_CORRUPTION"},
    {0xC0000409, "STATUS_STACK_BUFFER_OVERRUN"},
    {0xC06D007E, "Delay-Loaded Library Not Found"},
    {0xC06D007F, "Delay-Loaded Function Not Found"},
    {0xE06D7363, "C++ Exception"},
    {0x20474343, "C++ Exception"},
};

}  // namespace

const char *CUGetExceptionName(DWORD dwCode)
{
    for (const CExceptionName &entry : s_names) {
        if (entry.dwCode == dwCode)
            return entry.name;
    }
    return "Unknown Exception";
}
