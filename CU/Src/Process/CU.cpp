#include "CU/CU.h"

#include "Base/Lock.h"
#include "Base/Multimedia.h"
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
