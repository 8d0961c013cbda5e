#include "StringBlock.h"

#include <stdlib.h>

#include "Memory.h"

DWORD g_nBlockKeeper = 0;

namespace {

// Small blocks are asked for in the heap's own steps, so that a kept one serves all lengths of its
// step; this takes no byte that the heap would not take by itself.
const size_t STEP = 8;
const size_t LARGEST_KEPT = 128;
const int KEPT_OF_A_SIZE = 16;

struct CKept
{
    int nCount;
    void *blocks[KEPT_OF_A_SIZE];
};

CKept s_kept[LARGEST_KEPT / STEP + 1];

// Keeps from the construction of the program's statics to their destruction.
struct CKeeping
{
    CKeeping() { g_nBlockKeeper = GetCurrentThreadId(); }
    ~CKeeping()
    {
        // A program that another thread ends may have its keeper at work in here.
        if (GetCurrentThreadId() != g_nBlockKeeper)
            return;
        g_nBlockKeeper = 0;
        for (CKept &kept : s_kept) {
            while (kept.nCount > 0)
                free(kept.blocks[--kept.nCount]);
        }
    }
};

const CKeeping s_keeping;

inline size_t BlockSize(int nLength)
{
    const size_t nSize = sizeof(CCUStringData) + static_cast<size_t>(nLength) + 1;
    return nSize > LARGEST_KEPT ? nSize : (nSize + STEP - 1) & ~(STEP - 1);
}

// Where blocks of that size are kept; null: not at all, or not by this thread.
inline CKept *KeptOf(size_t nSize)
{
    if (nSize > LARGEST_KEPT || GetCurrentThreadId() != g_nBlockKeeper)
        return nullptr;
    return &s_kept[nSize / STEP];
}

}  // namespace

CCUStringData *CUNewStringBlock(int nLength)
{
    const size_t nSize = BlockSize(nLength);
    CKept *kept = KeptOf(nSize);
    void *block = kept && kept->nCount > 0 ? kept->blocks[--kept->nCount] : CUAllocate(nSize);
    CCUStringData *pData = static_cast<CCUStringData *>(block);
    pData->nRefs = 1;
    pData->nDataLength = nLength;
    pData->nAllocLength = nLength;
    reinterpret_cast<char *>(pData + 1)[nLength] = '\0';
    return pData;
}

CCUStringData *CUGrowStringBlock(CCUStringData *pData, int nLength)
{
    const size_t nSize = BlockSize(nLength);
    if (nSize != BlockSize(pData->nAllocLength))
        pData = static_cast<CCUStringData *>(CUReallocate(pData, nSize));
    pData->nAllocLength = nLength;
    return pData;
}

void CUFreeStringBlock(CCUStringData *pData)
{
    CKept *kept = KeptOf(BlockSize(pData->nAllocLength));
    if (kept && kept->nCount < KEPT_OF_A_SIZE)
        kept->blocks[kept->nCount++] = pData;
    else
        free(pData);
}
