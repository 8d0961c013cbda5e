#pragma once

#include <stddef.h>

#include "CU/String.h"

// The heap blocks of strings: the header (CCUStringData), the characters and a NUL. They come from
// the global operator new.
//
// Most strings are short and soon gone, and most of them belong to the thread that started the
// program. In a program with our own operator new (New.cpp) that thread keeps some blocks of each
// small size that its strings let go of, for its next strings: no lock, no call of the heap.

// A block of one owner with nLength characters, of which only the NUL is written.
CCUStringData *CUNewStringBlock(int nLength);
// Gives the block a capacity of nLength, more than it has, with its text, its length and its count
// as they are. The block may move. Null, and nothing done, when there is no memory or the program's
// operator new is not ours.
CCUStringData *CUGrowStringBlock(CCUStringData *pData, int nLength);
// After the last owner has let go: frees the block, or keeps it where its count is 0.
void CUFreeStringBlock(CCUStringData *pData);

// What our operator new asks the heap for when nSize bytes are wanted. The heap itself rounds up to
// steps of CU_HEAP_STEP bytes. Small blocks are rounded here, so that a kept one serves all lengths
// of its step.
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
// How many are kept; about, on another thread than the keeper.
int CUCountKeptStringBlocks();
// The thread that keeps. While it is 0, operator new and delete see each block come and go.
extern DWORD g_nBlockKeeper;
// Whether operator new is ours, over malloc, so that a block can grow by realloc.
extern bool g_bBlocksAreMalloced;
