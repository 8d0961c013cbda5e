#include "Memory.h"

#include <stdlib.h>

#include "CU/Platform.h"

void *CUAllocate(size_t nSize)
{
    return CUReallocate(nullptr, nSize);
}

void *CUReallocate(void *block, size_t nSize)
{
    const size_t nAtLeastOne = nSize ? nSize : 1;
    block = block ? realloc(block, nAtLeastOne) : malloc(nAtLeastOne);
    if (!block)
        RaiseException(static_cast<DWORD>(STATUS_NO_MEMORY), EXCEPTION_NONCONTINUABLE, 0, nullptr);
    return block;
}
