// The program's own allocation functions: the library's bring its exception machinery along.

#include <stdlib.h>

#include <new>

#include "Base/Lifetime.h"
#include "CU/Platform.h"
#include "Text/StringBlock.h"

namespace {

// No caller of this system looks at a null result, so running out of memory ends in the system's
// own exception, which the crash report names.
void *Allocate(size_t nSize)
{
    void *block = malloc(CUHeapSize(nSize));
    if (!block)
        RaiseException(static_cast<DWORD>(STATUS_NO_MEMORY), EXCEPTION_NONCONTINUABLE, 0, nullptr);
    return block;
}

CCULastCall s_lastCall;

void FreeKept(CCULastCall &)
{
    // The thread that unloads a module may be another one than that which has kept blocks.
    if (g_moduleEnd == CUModuleUnloads)
        g_nBlockKeeper = GetCurrentThreadId();
    CUFreeKeptStringBlocks();
}

// The thread that starts the program keeps string blocks; later nobody could tell which one that
// is. A program that defines its own operators is linked without this source: no block is kept
// there, and its operators see each one come and go.
const struct CKeeper
{
    CKeeper()
    {
        CUKeepStringBlocks();
        CUAtLast(s_lastCall, FreeKept);
    }
} KEEPER;

}  // namespace

void *operator new(size_t nSize)
{
    return Allocate(nSize);
}

void *operator new[](size_t nSize)
{
    return Allocate(nSize);
}

void operator delete(void *block) noexcept
{
    free(block);
}

void operator delete[](void *block) noexcept
{
    free(block);
}

void operator delete(void *block, size_t) noexcept
{
    free(block);
}

void operator delete[](void *block, size_t) noexcept
{
    free(block);
}
