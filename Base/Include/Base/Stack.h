#pragma once

#include "CU/Platform.h"

// The bounds of the stack that the calling thread is on, or its fiber; stacks grow downwards. The
// system's NtCurrentTeb, which has them too, is one that GCC 12 warns of.
inline const NT_TIB &CUStackBounds()
{
#if defined(_MSC_VER)
    return *reinterpret_cast<const NT_TIB *>(__readfsdword(0x18));
#else
    const NT_TIB *pBlock;
    asm("movl %%fs:0x18, %0" : "=r"(pBlock));
    return *pBlock;
#endif
}
