#pragma once

#include <stddef.h>

// The heap of the layer, which is the C runtime's: what one gives, its free takes back. No caller
// of this system looks at a null result, so running out of memory ends in the system's own
// exception, which the crash report names.
void *CUAllocate(size_t nSize);
// A null block is none yet.
void *CUReallocate(void *block, size_t nSize);
