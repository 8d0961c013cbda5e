// The system goes on in silence when a window procedure that it calls has crashed: Wine 8 does for
// every message that is sent. Here it ends the test.
#include <stdio.h>

#include "CU/Platform.h"

namespace {

// Faults in libraries are the system's own, which probes memory that way.
LONG CALLBACK EndAtFault(EXCEPTION_POINTERS *pInfo)
{
    const EXCEPTION_RECORD &fault = *pInfo->ExceptionRecord;
    MEMORY_BASIC_INFORMATION memory = {};
    VirtualQuery(fault.ExceptionAddress, &memory, sizeof memory);
    const bool bLibrary =
        memory.Type == MEM_IMAGE && memory.AllocationBase != GetModuleHandleA(nullptr);
    if (bLibrary || fault.ExceptionCode >> 28 != 0xC)
        return EXCEPTION_CONTINUE_SEARCH;
    printf("Fault %lx at %p\n", fault.ExceptionCode, fault.ExceptionAddress);
    fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_CONTINUE_SEARCH;
}

const void *const s_pWatch = AddVectoredExceptionHandler(1, EndAtFault);

}  // namespace
