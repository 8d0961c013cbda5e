#pragma once

#include "CU/String.h"

// The heap blocks of strings: the header, the characters and a NUL.
//
// Most strings are short and soon gone, and most of them belong to the thread that started the
// program. Of each small size that thread keeps some of the blocks that it lets go of, for its next
// strings: without a lock, and without a call of the heap.

// A block of one owner with nLength characters, of which only the NUL is written.
CCUStringData *CUNewStringBlock(int nLength);
// The block, with its text and its locking, at another place where there is no room behind it. Its
// length is not touched.
CCUStringData *CUGrowStringBlock(CCUStringData *pData, int nLength);
void CUFreeStringBlock(CCUStringData *pData);

// The thread that keeps blocks. While it is 0, the heap sees each block come and go.
extern DWORD g_nBlockKeeper;
