#pragma once

#include <stddef.h>

#include "CU/String.h"

// The heap blocks of strings, by the global operator new: the header, the characters and a NUL.
//
// Most strings are short and soon gone, and most of them belong to the thread that started the
// program. Over our own operator new that thread keeps, of each small size, some of the blocks that
// it lets go of, for its next strings: without a lock, and without a call of the heap.

// A block of one owner with nLength characters, of which only the NUL is written.
CCUStringData *CUNewStringBlock(int nLength);
// The block, with its text and its locking, at another place where there is no room behind it. Its
// length is not touched. Null, and nothing done: the operators are not ours.
CCUStringData *CUGrowStringBlock(CCUStringData *pData, int nLength);
// After the last owner has let go. Only a block whose count has come to 0 is kept.
void CUFreeStringBlock(CCUStringData *pData);

// What our operator new asks the heap for. Small blocks come in the heap's own steps, which takes
// no byte that the heap would not take by itself, and a kept one serves all lengths of its step.
const size_t CU_HEAP_STEP = 8;
const size_t CU_LARGEST_SMALL_BLOCK = 128;
inline size_t CUHeapSize(size_t nSize)
{
    if (nSize > CU_LARGEST_SMALL_BLOCK)
        return nSize;
    return nSize ? (nSize + CU_HEAP_STEP - 1) & ~(CU_HEAP_STEP - 1) : CU_HEAP_STEP;
}

// From the first call on, until the second, the calling thread keeps blocks. The second one does
// nothing on another thread.
void CUKeepStringBlocks();
void CUFreeKeptStringBlocks();
// The thread that keeps. While it is 0, operator new and delete see each block come and go.
extern DWORD g_nBlockKeeper;
