#pragma once

#include <stdint.h>

#include "Base/Atomic.h"
#include "CUI/Window.h"

// From window handle to object for the whole process: asked for every message, so a look-up is a
// few reads in memory and takes no lock. Bindings change rarely, under a lock.
//
// A binding is doubted once somebody begins to destroy its window. A procedure that was installed
// after ours may keep the last messages to itself: then the window goes without a word to us, and
// its handle may come back for another. Only the system knows (WindowBinding.h).

class CUIWindowThread;

struct CUIWindowBinding
{
    CCUIWindow *pWindow;  // null: unbound, but our procedure is still called for the window
    WNDPROC pOldProc;     // what our procedure replaced there, never null
};

// --- The map's memory ---

// One binding.
struct CUIWindowSlot
{
    // A bit of nWindow: objects lie on even addresses. Where no object is bound nWindow is this bit
    // alone, since nobody else notices that such a window has gone.
    static constexpr uintptr_t DOUBTED = 1;

    CCUAtomic<HWND> hWnd;
    CCUAtomic<uintptr_t> nWindow;  // the object's address, and DOUBTED
    CCUAtomic<WNDPROC> pOldProc;
    CCUAtomic<CUIWindowThread *> pThread;  // of the window

    void Doubt() { nWindow.Set(nWindow.Get() | DOUBTED); }  // under the lock
    static CCUIWindow *Object(uintptr_t nWindow)
    {
        return reinterpret_cast<CCUIWindow *>(nWindow & ~DOUBTED);
    }
};

// A hash table with linear probing, at most half full. A search begins at the handle's first index
// and goes on from slot to slot: such a run ends with a free slot. Removing moves later slots up
// into the gap, so that windows that come and go leave nothing in the way.
struct CUIWindowTable
{
    unsigned nMask;  // the number of slots, a power of 2, less 1
    unsigned nShift;
    CUIWindowSlot *pSlots;
    CUIWindowTable *pSmaller;  // that was there before

    static CCUAtomic<CUIWindowTable *> s_pCurrent;
    // Odd while slots are being changed, so that a reader without the lock knows what it may trust.
    static CCUAtomic<unsigned> s_nChanges;

    static const CUIWindowTable &Current() { return *s_pCurrent.Get(); }
    unsigned FirstIndex(HWND hWnd) const
    {
        const auto nHandle = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(hWnd));
        return (nHandle * 2654435769u) >> nShift;  // 2^32 divided by the golden ratio
    }
    CUIWindowSlot &SlotAt(unsigned nIndex) const { return pSlots[nIndex & nMask]; }
    // The handle's slot, or the free one at the end of its run.
    CUIWindowSlot &FindSlot(HWND hWnd) const
    {
        for (unsigned i = FirstIndex(hWnd);; ++i) {
            CUIWindowSlot &slot = SlotAt(i);
            const HWND hSlot = slot.hWnd.Get();
            if (hSlot == hWnd || !hSlot)
                return slot;
        }
    }
};

// --- Looking up ---

// What the handle's slot has in nWindow, read under the lock.
uintptr_t CUIWindowMapReadLocked(HWND hWnd);

// The object that is bound to the window, or null.
inline CCUIWindow *CUIWindowMapFind(HWND hWnd, bool &bDoubted)
{
    bDoubted = false;
    if (!hWnd)
        return nullptr;
    const unsigned nChanges = CUIWindowTable::s_nChanges.Get();
    uintptr_t nWindow = CUIWindowTable::Current().FindSlot(hWnd).nWindow.Get();
    const bool bChanging = nChanges % 2 != 0;
    if (bChanging || nChanges != CUIWindowTable::s_nChanges.Get())
        nWindow = CUIWindowMapReadLocked(hWnd);
    bDoubted = (nWindow & CUIWindowSlot::DOUBTED) != 0;
    return CUIWindowSlot::Object(nWindow);
}

// False when the window is not in the map.
bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding);

// --- Changing ---

// To be called on the thread of the window.
void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding);
void CUIWindowMapRemove(HWND hWnd);
// Removes a doubted binding to this object, but not what the window's thread has put in its place
// meanwhile.
void CUIWindowMapRemoveDoubted(HWND hWnd, const CCUIWindow *pWindow);
// Somebody begins to destroy the window, and with it those inside, which are not announced one by
// one: their bindings are doubted from now on. Bindings that were doubted before are removed where
// the window has gone.
void CUIWindowMapDoubt(HWND hWnd);
