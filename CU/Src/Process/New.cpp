// The program's own allocation functions: the library's bring its exception machinery along.

#include <stdlib.h>

#include <new>

#include "Base/Unload.h"
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

// A program with operators of its own is not linked with these, nor with this: it sees each block.
const CUKeepingOfStringBlocks s_keeping;

}  // namespace

// The thread that kept blocks may not be the one that unloads, whose destructor left them alone.
void CUUnloadStringBlocks()
{
    g_nBlockKeeper = GetCurrentThreadId();
    s_keeping.~CUKeepingOfStringBlocks();
}

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
