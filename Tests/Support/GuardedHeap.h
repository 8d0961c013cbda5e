#pragma once

#include <stddef.h>
#include <string.h>

#include "ImportHook.h"
#include "CU/Platform.h"

// Stands in for malloc and free of this program as long as it lives. Between Arm and Disarm every
// block ends at a page that nobody may touch (up to three bytes before it, to start aligned), so
// that one byte too far is a crash, and is filled with rubbish. For one thread and few blocks.
class CGuardedHeap
{
public:
    CGuardedHeap() : m_malloc("malloc", Malloc), m_free("free", Free) { s_pHeap = this; }

    void Arm()
    {
        m_nLargest = 0;
        m_bArmed = true;
    }
    void Disarm() { m_bArmed = false; }
    // The largest block asked for since Arm, and how many guarded blocks are not freed.
    size_t Largest() const { return m_nLargest; }
    int Live() const { return m_nLive; }

private:
    static const size_t Page = 4096;
    static const int Most = 64;
    struct CBlock
    {
        char *m_base;
        void *m_data;
    };

    static void *__cdecl Malloc(size_t nSize)
    {
        CGuardedHeap &heap = *s_pHeap;
        if (!heap.m_bArmed || heap.m_nLive == Most)
            return heap.m_malloc.Original<decltype(malloc)>()(nSize);
        if (nSize > heap.m_nLargest)
            heap.m_nLargest = nSize;
        const size_t nRounded = (nSize + 3) & ~static_cast<size_t>(3);
        const size_t nPages = (nRounded + Page - 1) / Page * Page;
        char *base = static_cast<char *>(
            VirtualAlloc(nullptr, nPages + Page, MEM_RESERVE, PAGE_NOACCESS));
        if (!base || !VirtualAlloc(base, nPages, MEM_COMMIT, PAGE_READWRITE))
            return nullptr;
        memset(base, 0xA5, nPages);
        CBlock &block = heap.m_live[heap.m_nLive++];
        block = {base, base + nPages - nRounded};
        return block.m_data;
    }
    static void __cdecl Free(void *p)
    {
        CGuardedHeap &heap = *s_pHeap;
        for (int i = 0; p && i < heap.m_nLive; ++i) {
            if (heap.m_live[i].m_data == p) {
                VirtualFree(heap.m_live[i].m_base, 0, MEM_RELEASE);
                heap.m_live[i] = heap.m_live[--heap.m_nLive];
                return;
            }
        }
        heap.m_free.Original<decltype(free)>()(p);
    }

    inline static CGuardedHeap *s_pHeap = nullptr;
    CImportHook m_malloc;
    CImportHook m_free;
    bool m_bArmed = false;
    size_t m_nLargest = 0;
    int m_nLive = 0;
    CBlock m_live[Most] = {};
};
