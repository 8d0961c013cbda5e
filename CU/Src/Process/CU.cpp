#include "CU/CU.h"

#include "Base/KeepLastError.h"
#include "Base/Lock.h"
#include "Base/Multimedia.h"
#include "Base/Module.h"
#include "CU/IDGenerator.h"
#include "Process/Shutdown.h"

namespace {

// timeGetTime of the first CUGetTime, 0 before it. Not CUOnce's work: the value tells by itself
// whether it is known, which saves a look at a second word in every call.
volatile LONG s_nFirstTime = 0;
volatile LONG s_bShutdown = FALSE;

// Registered messages are numbered from here to the end of 16 bits. One bit for each tells in no
// time whether it is ours.
const unsigned int FIRST_MESSAGE = 0xC000;
volatile LONG s_ourMessages[(0x10000 - FIRST_MESSAGE) / 32];

// The slots that have been allocated, a bit for each.
const DWORD MOST_SLOTS = 64 + 1024;
volatile LONG s_slots[MOST_SLOTS / 32];

CCULazyLock s_mutex;

volatile LONG s_nLastID = 9999;

}  // namespace

unsigned long CUGetTime()
{
    if (s_nFirstTime == 0) {
        // A clock that is just wrapping counts as one millisecond earlier: 0 means not known.
        const DWORD nNow = g_multimedia.getTime();
        if (InterlockedCompareExchange(&s_nFirstTime, nNow ? static_cast<LONG>(nNow) : -1, 0) == 0)
            return 0;
    }
    return g_multimedia.getTime() - static_cast<DWORD>(s_nFirstTime);
}

void CUShutdown()
{
    s_bShutdown = TRUE;
}

bool CUIsShutdown()
{
    return s_bShutdown != FALSE;
}

unsigned int CURegisterMessageId(const char *name)
{
    if (!name)
        return 0;
    const unsigned int uMessage = RegisterWindowMessageA(name);
    if (uMessage >= FIRST_MESSAGE) {
        const unsigned int nBit = uMessage - FIRST_MESSAGE;
        InterlockedOr(&s_ourMessages[nBit / 32], static_cast<LONG>(1UL << nBit % 32));
    }
    return uMessage;
}

bool CUIsYourMessage(unsigned int uMessage)
{
    if (uMessage < FIRST_MESSAGE || uMessage > 0xFFFF)
        return false;
    const unsigned int nBit = uMessage - FIRST_MESSAGE;
    return (static_cast<DWORD>(s_ourMessages[nBit / 32]) >> nBit % 32 & 1) != 0;
}

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

unsigned int CCUIIDGenerator::GetNextID()
{
    return static_cast<unsigned int>(InterlockedIncrement(&s_nLastID));
}

void CUEnterMutex()
{
    s_mutex.Enter();
}

void CULeaveMutex()
{
    s_mutex.Leave();
}

void CUUnloadSlots()
{
    for (DWORD nIndex = 0; nIndex < MOST_SLOTS; ++nIndex) {
        if (static_cast<DWORD>(s_slots[nIndex / 32]) >> nIndex % 32 & 1)
            TlsFree(nIndex);
    }
}
