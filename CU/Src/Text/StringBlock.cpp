#include "Text/StringBlock.h"

#include <stdlib.h>

#include <new>

DWORD g_nBlockKeeper = 0;
bool g_bBlocksAreMalloced = false;

namespace {

const int MOST_KEPT_OF_A_SIZE = 16;

struct CKept
{
    int nCount;
    void *blocks[MOST_KEPT_OF_A_SIZE];
};

// Indexed by the size in steps of the heap.
CKept s_kept[CU_LARGEST_SMALL_BLOCK / CU_HEAP_STEP + 1];

inline size_t BlockSize(int nLength)
{
    return sizeof(CCUStringData) + static_cast<size_t>(nLength) + 1;
}

// Where this thread keeps blocks of nSize bytes; null where it keeps none.
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
    g_bBlocksAreMalloced = true;
}

void CUFreeKeptStringBlocks()
{
    // Where another thread ends the program, the keeper may be just using what it keeps.
    if (GetCurrentThreadId() != g_nBlockKeeper)
        return;
    g_nBlockKeeper = 0;
    for (CKept &kept : s_kept) {
        while (kept.nCount > 0)
            operator delete(kept.blocks[--kept.nCount]);
    }
}

int CUCountKeptStringBlocks()
{
    int nCount = 0;
    for (const CKept &kept : s_kept)
        nCount += kept.nCount;
    return nCount;
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
    if (!g_bBlocksAreMalloced)
        return nullptr;
    const size_t nSize = CUHeapSize(BlockSize(nLength));
    const bool bHasRoom = nSize == CUHeapSize(BlockSize(pData->nAllocLength));
    CCUStringData *const pGrown =
        bHasRoom ? pData : static_cast<CCUStringData *>(realloc(pData, nSize));
    if (pGrown)
        pGrown->nAllocLength = nLength;
    return pGrown;
}

void CUFreeStringBlock(CCUStringData *pData)
{
    // The count is below 0 when more strings let go of the block than shared it: kept again, it
    // would be given to two strings.
    CKept *kept = pData->nRefs == 0 ? KeptOf(BlockSize(pData->nAllocLength)) : nullptr;
    if (kept && kept->nCount < MOST_KEPT_OF_A_SIZE)
        kept->blocks[kept->nCount++] = pData;
    else
        operator delete(pData);
}
