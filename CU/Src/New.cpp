// The program's own allocation functions: the library's bring its exception machinery along.

#include <stdlib.h>

#include <new>

#include "Memory.h"

void *operator new(size_t nSize)
{
    return CUAllocate(nSize);
}

void *operator new[](size_t nSize)
{
    return CUAllocate(nSize);
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
