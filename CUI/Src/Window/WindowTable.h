#pragma once

#include <stdint.h>

#include <atomic>

#include "CUI/Platform.h"

class CUIWindowThread;

// The memory of the window map. Open addressing with linear probing, at most half full. A slot
// without a handle ends a run; removing closes the gap, so that windows that come and go leave
// nothing in the way.
struct CUIWindowSlot
{
    // A bit of nWindow, which is nothing else where no object is bound: nobody asks for that one.
    static constexpr uintptr_t DOUBTED = 1;

    std::atomic<HWND> hWnd;
    std::atomic<uintptr_t> nWindow;  // the object's address, and DOUBTED
    std::atomic<WNDPROC> pOldProc;
    std::atomic<CUIWindowThread *> pThread;
};

struct CUIWindowTable
{
    unsigned nMask;
    unsigned nShift;
    CUIWindowSlot *pSlots;
    CUIWindowTable *pSmaller;  // that was there before

    static std::atomic<CUIWindowTable *> s_pCurrent;
    // Odd while slots are being changed, so that a reader without the lock knows what it may trust.
    static std::atomic<unsigned> s_nChanges;

    static const CUIWindowTable &Current() { return *s_pCurrent.load(std::memory_order_acquire); }
    unsigned FirstIndex(HWND hWnd) const
    {
        const auto nHandle = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(hWnd));
        return (nHandle * 2654435769u) >> nShift;
    }
    CUIWindowSlot &SlotAt(unsigned nIndex) const { return pSlots[nIndex & nMask]; }
    // The handle's slot, or the free one at the end of its run.
    CUIWindowSlot &FindSlot(HWND hWnd) const
    {
        for (unsigned i = FirstIndex(hWnd);; ++i) {
            CUIWindowSlot &slot = SlotAt(i);
            const HWND hSlot = slot.hWnd.load(std::memory_order_acquire);
            if (hSlot == hWnd || !hSlot)
                return slot;
        }
    }
};
