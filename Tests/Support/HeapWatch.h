#pragma once

#include <malloc.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <utility>

#include "../../CU/Src/Text/StringBlock.h"
#include "Support/ImportHook.h"

// Stands in for the heap of this program, on all threads: counts the blocks, puts them right
// before pages that nobody may touch, so that a byte too far is a crash, as is any use of a block
// that has been given back. The up to three bytes between a block and its page are looked at when
// it is freed. What is larger than a slot, or comes when all are taken, goes to the ordinary heap;
// given back it is overwritten, kept for a while, and then looked at: nobody may have written
// there.
class CHeapWatch
{
public:
    CHeapWatch()
    {
        g_nBlockKeeper = 0;
        g_bBlocksAreMalloced = false;
        s_malloc = m_malloc.Original<void *__cdecl(size_t)>();
        s_free = m_free.Original<void __cdecl(void *)>();
        s_nMade = s_nFreed = 0;
        s_nLargest = 0;
        // What earlier tests of this process left in a slot may come back later: slots stay.
        if (s_base)
            return;
        const size_t nAll = SLOTS * (SLOT_SIZE + PAGE);
        s_base = static_cast<char *>(VirtualAlloc(nullptr, nAll, MEM_RESERVE, PAGE_NOACCESS));
        for (int i = 0; i < SLOTS; ++i)
            VirtualAlloc(Slot(i), SLOT_SIZE, MEM_COMMIT, PAGE_READWRITE);
    }
    ~CHeapWatch()
    {
        for (void *&pDead : s_dead)
            Bury(std::exchange(pDead, nullptr));
        g_nBlockKeeper = GetCurrentThreadId();
        g_bBlocksAreMalloced = true;
    }

    // Blocks taken, and taken but not given back, since the object was made.
    static int Made() { return s_nMade; }
    static int Live() { return s_nMade - s_nFreed; }
    // The largest block asked for since the last call. For one thread.
    static size_t TakeLargest() { return std::exchange(s_nLargest, 0); }

private:
    enum
    {
        PAGE = 4096,
        SLOT_SIZE = 1 << 18,
        SLOTS = 12,
        GRAVES = 64,
        SLACK = 0xA5,
        DEAD = 0xDD
    };

    static char *Slot(int i) { return s_base + i * (SLOT_SIZE + PAGE); }
    static void Protect(int i, DWORD nProtection)
    {
        VirtualProtect(Slot(i), SLOT_SIZE, nProtection, &nProtection);
    }
    static size_t Rounded(size_t nSize) { return (nSize + 3) & ~3U; }
    static int SlotOf(const void *p)
    {
        const char *block = static_cast<const char *>(p);
        return block < s_base || block >= Slot(SLOTS) ? -1 : (block - s_base) / (SLOT_SIZE + PAGE);
    }
    static void Bury(void *p)
    {
        const auto *const pBytes = static_cast<const BYTE *>(p);
        if (p && std::any_of(pBytes, pBytes + _msize(p), [](BYTE n) { return n != DEAD; }))
            abort();
        s_free(p);
    }
    static void *__cdecl Malloc(size_t nSize)
    {
        InterlockedIncrement(&s_nMade);
        s_nLargest = nSize > s_nLargest ? nSize : s_nLargest;
        for (int i = 0; i < SLOTS && nSize <= SLOT_SIZE; ++i) {
            const LONG nLength = static_cast<LONG>(nSize);
            if (InterlockedCompareExchange(&s_nSizes[i], nLength, 0) != 0)
                continue;
            Protect(i, PAGE_READWRITE);
            return memset(Slot(i) + SLOT_SIZE - Rounded(nSize), SLACK, Rounded(nSize));
        }
        return s_malloc(nSize);
    }
    // Always to another place.
    static void *__cdecl Realloc(void *p, size_t nSize)
    {
        void *block = Malloc(nSize);
        const size_t nOld = SlotOf(p) < 0 ? _msize(p) : static_cast<size_t>(s_nSizes[SlotOf(p)]);
        memcpy(block, p, nOld < nSize ? nOld : nSize);
        Free(p);
        return block;
    }
    static void __cdecl Free(void *p)
    {
        if (!p)
            return;
        InterlockedIncrement(&s_nFreed);
        const int nSlot = SlotOf(p);
        if (nSlot < 0) {
            memset(p, DEAD, _msize(p));
            const LONG nGrave = InterlockedIncrement(&s_nDead) & (GRAVES - 1);
            Bury(InterlockedExchangePointer(&s_dead[nGrave], p));
            return;
        }
        const size_t nSize = static_cast<size_t>(s_nSizes[nSlot]);
        if (memcmp(static_cast<char *>(p) + nSize, "\xA5\xA5\xA5", Rounded(nSize) - nSize) != 0)
            abort();
        Protect(nSlot, PAGE_NOACCESS);
        InterlockedExchange(&s_nSizes[nSlot], 0);
    }

    inline static void *(__cdecl *s_malloc)(size_t);
    inline static void(__cdecl *s_free)(void *);
    inline static char *s_base = nullptr;
    inline static LONG s_nSizes[SLOTS] = {}, s_nMade = 0, s_nFreed = 0;
    inline static size_t s_nLargest = 0;
    inline static void *s_dead[GRAVES] = {};
    inline static LONG s_nDead = 0;
    CImportHook m_malloc{"malloc", Malloc}, m_realloc{"realloc", Realloc}, m_free{"free", Free};
};
