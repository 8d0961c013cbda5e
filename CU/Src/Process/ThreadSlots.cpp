// The storage slots in which every thread has a value of its own.

#include "Base/KeepLastError.h"
#include "Base/Module.h"
#include "CU/CU.h"

namespace {

// The slots that have been allocated, a bit for each.
const DWORD MOST_SLOTS = 64 + 1024;
volatile LONG s_slots[MOST_SLOTS / 32];

}  // namespace

int CUAllocateThreadLocalStorageIndex()
{
    const DWORD nIndex = TlsAlloc();
    if (nIndex < MOST_SLOTS)
        InterlockedOr(&s_slots[nIndex / 32], static_cast<LONG>(1UL << nIndex % 32));
    return static_cast<int>(nIndex);  // TLS_OUT_OF_INDEXES is -1
}

void *CUGetThreadLocalStorage(int nIndex)
{
    // TlsGetValue clears the last error, which belongs to whoever is about to report it.
    const CCUKeepLastError keepLastError;
    return TlsGetValue(static_cast<DWORD>(nIndex));
}

bool CUSetThreadLocalStorage(int nIndex, void *value)
{
    return TlsSetValue(static_cast<DWORD>(nIndex), value) != FALSE;
}

void CUUnloadSlots()
{
    for (DWORD nIndex = 0; nIndex < MOST_SLOTS; ++nIndex) {
        if (static_cast<DWORD>(s_slots[nIndex / 32]) >> nIndex % 32 & 1)
            TlsFree(nIndex);
    }
}
