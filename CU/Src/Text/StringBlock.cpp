#include "Text/StringBlock.h"

#include <stdlib.h>

#include <new>

DWORD g_nBlockKeeper = 0;

namespace {

const int KEPT_OF_A_SIZE = 16;

struct CKept
{
    int nCount;
    void *blocks[KEPT_OF_A_SIZE];
};

CKept s_kept[CU_LARGEST_SMALL_BLOCK / CU_HEAP_STEP + 1];

inline size_t BlockSize(int nLength)
{
    return sizeof(CCUStringData) + static_cast<size_t>(nLength) + 1;
}

// Where blocks of that size are kept; null: not at all, or not by this thread.
inline CKept *KeptOf(size_t nSize)
{
    if (nSize > CU_LARGEST_SMALL_BLOCK || GetCurrentThreadId() != g_nBlockKeeper)
        return nullptr;
    return &s_kept[CUHeapSize(nSize) / CU_HEAP_STEP];
}

}  // namespace

void CUKeepStringBlocks()
{
    g_nBlockKeeper = GetCurrentThreadId();
}

void CUFreeKeptStringBlocks()
{
    // A program that another thread ends may have its keeper at work in here.
    if (GetCurrentThreadId() != g_nBlockKeeper)
        return;
    g_nBlockKeeper = 0;
    for (CKept &kept : s_kept) {
        while (kept.nCount > 0)
            operator delete(kept.blocks[--kept.nCount]);
    }
}

CCUStringData *CUNewStringBlock(int nLength)
{
    const size_t nSize = BlockSize(nLength);
    CKept *kept = KeptOf(nSize);
    void *block = kept && kept->nCount > 0 ? kept->blocks[--kept->nCount] : operator new(nSize);
    CCUStringData *pData = static_cast<CCUStringData *>(block);
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): it lets lengths come to any value.
    pData->nRefs = 1;
    pData->nDataLength = nLength;
    pData->nAllocLength = nLength;
    reinterpret_cast<char *>(pData + 1)[nLength] = '\0';
    return pData;
}

CCUStringData *CUGrowStringBlock(CCUStringData *pData, int nLength)
{
    // Only our own operator new is known to be over malloc.
    if (g_nBlockKeeper == 0)
        return nullptr;
    const size_t nSize = CUHeapSize(BlockSize(nLength));
    if (nSize != CUHeapSize(BlockSize(pData->nAllocLength))) {
        void *block = realloc(pData, nSize);
        if (!block)
            return nullptr;
        pData = static_cast<CCUStringData *>(block);
    }
    pData->nAllocLength = nLength;
    return pData;
}

void CUFreeStringBlock(CCUStringData *pData)
{
    // A block that was let go of once too often would be kept twice.
    CKept *kept = pData->nRefs == 0 ? KeptOf(BlockSize(pData->nAllocLength)) : nullptr;
    if (kept && kept->nCount < KEPT_OF_A_SIZE)
        kept->blocks[kept->nCount++] = pData;
    else
        operator delete(pData);
}
