#include "WindowMap.h"

#include <stdint.h>

#include <atomic>

#include "../../CU/Src/Instance.h"
#include "../../CU/Src/Unload.h"
#include "CU/CU.h"
#include "CU/ThreadExit.h"

namespace {

// Open addressing with linear probing, at most half full. A slot without a handle ends a run;
// removing closes the gap, so that windows that come and go leave nothing in the way.
struct CSlot
{
    std::atomic<HWND> hWnd;
    std::atomic<CCUIWindow *> pWindow;
    std::atomic<WNDPROC> pOldProc;
    std::atomic<DWORD> nThread;
};

struct CTable
{
    unsigned nMask;
    unsigned nShift;
    CSlot *pSlots;
    CTable *pSmaller;  // that was there before
};

// Most programs have a handful of windows and never leave this table.
constexpr unsigned s_nFirstBits = 6;
CSlot s_firstSlots[1u << s_nFirstBits];
CTable s_first = {(1u << s_nFirstBits) - 1, 32 - s_nFirstBits, s_firstSlots, nullptr};

std::atomic<CTable *> s_pTable(&s_first);
unsigned s_nUsed;  // slots; under the lock
std::atomic<int> s_nLock;
// Odd while slots are being changed, so that a reader without the lock knows what it may trust.
std::atomic<unsigned> s_nChanges;

class CLock
{
public:
    CLock()
    {
        // Sleep(0) lets nobody of a lower priority run, and that may be who has it.
        for (int i = 0; s_nLock.exchange(1, std::memory_order_acquire); ++i)
            Sleep(i < 100 ? 0 : 1);
    }
    ~CLock() { s_nLock.store(0, std::memory_order_release); }
    CLock(const CLock &) = delete;
    CLock &operator=(const CLock &) = delete;
};

class CChange
{
public:
    CChange() { ++s_nChanges; }
    ~CChange() { ++s_nChanges; }
    CChange(const CChange &) = delete;
    CChange &operator=(const CChange &) = delete;

private:
    const CLock m_lock;
};

unsigned FirstIndex(const CTable &table, HWND hWnd)
{
    const auto nHandle = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(hWnd));
    return (nHandle * 2654435769u) >> table.nShift;
}

CSlot &SlotAt(const CTable &table, unsigned nIndex)
{
    return table.pSlots[nIndex & table.nMask];
}

// The handle's slot, or the free one at the end of its run.
CSlot &FindSlot(const CTable &table, HWND hWnd)
{
    for (unsigned i = FirstIndex(table, hWnd);; ++i) {
        CSlot &slot = SlotAt(table, i);
        const HWND hSlot = slot.hWnd.load(std::memory_order_acquire);
        if (hSlot == hWnd || !hSlot)
            return slot;
    }
}

CTable &CurrentTable()
{
    return *s_pTable.load(std::memory_order_acquire);
}

// The handle of a slot comes last: a reader that finds it finds the rest.
void Store(CSlot &slot, HWND hWnd, const CUIWindowBinding &binding, DWORD nThread)
{
    slot.nThread.store(nThread, std::memory_order_relaxed);
    slot.pOldProc.store(binding.pOldProc, std::memory_order_relaxed);
    slot.pWindow.store(binding.pWindow, std::memory_order_release);
    slot.hWnd.store(hWnd, std::memory_order_release);
}

void Copy(CSlot &slot, const CSlot &from)
{
    Store(slot, from.hWnd, {from.pWindow, from.pOldProc}, from.nThread);
}

CTable *NewTable(unsigned nBits)
{
    const unsigned nSlots = 1u << nBits;
    auto *pTable = new CTable{nSlots - 1, 32 - nBits, nullptr, &CurrentTable()};
    pTable->pSlots = new CSlot[nSlots]();
    return pTable;
}

// Twice the slots. The old table stays for readers that are still in it: all the old tables of a
// process together are smaller than its last one.
void Grow(const CTable &old)
{
    CTable *const pNew = NewTable(32 - old.nShift + 1);
    for (unsigned i = 0; i <= old.nMask; ++i) {
        const CSlot &slot = old.pSlots[i];
        if (slot.hWnd)
            Copy(FindSlot(*pNew, slot.hWnd), slot);
    }
    s_pTable.store(pNew, std::memory_order_release);
}

// Frees the slot and closes the gap with what further down the run may stand there.
void Free(const CTable &table, CSlot &slot)
{
    auto nGap = static_cast<unsigned>(&slot - table.pSlots);
    for (unsigned i = nGap + 1; SlotAt(table, i).hWnd; ++i) {
        const unsigned nFirst = FirstIndex(table, SlotAt(table, i).hWnd);
        if (((i - nFirst) & table.nMask) < i - nGap)
            continue;
        Copy(SlotAt(table, nGap), SlotAt(table, i));
        nGap = i;
    }
    Store(SlotAt(table, nGap), nullptr, {nullptr, nullptr}, 0);
    --s_nUsed;
}

void RemoveThread(DWORD nThread)
{
    const CChange change;
    const CTable &table = CurrentTable();
    for (unsigned i = 0; i <= table.nMask; ++i) {
        CSlot &slot = table.pSlots[i];
        // What closes the gap may be the thread's as well.
        while (slot.hWnd && slot.nThread == nThread)
            Free(table, slot);
    }
}

// A thread that ends takes its windows along without a message to them, and their handles may come
// back for others.
class CThreadWatch : public CCUThreadExitHandler
{
public:
    CThreadWatch()
    {
        const CLock lock;
        m_pNext = s_pFirst;
        s_pFirst = this;
    }
    ~CThreadWatch() override
    {
        const CLock lock;
        CThreadWatch **link = &s_pFirst;
        while (*link != this)
            link = &(*link)->m_pNext;
        *link = m_pNext;
    }
    void OnThreadExit(bool) override
    {
        // A module that is unloaded still has to let go of them.
        if (g_moduleEnd != CUModuleUnloads)
            RemoveThread(GetCurrentThreadId());
        delete this;
    }
    static CThreadWatch *s_pFirst;

private:
    CThreadWatch *m_pNext;
};
CThreadWatch *CThreadWatch::s_pFirst = nullptr;

void WatchThread()
{
    static std::atomic<int> s_nStorage(-1);
    if (s_nStorage.load() < 0) {
        const CCUMutexGuard guard;
        if (s_nStorage.load() < 0)
            s_nStorage.store(CUAllocateThreadLocalStorageIndex());
    }
    const int nStorage = s_nStorage.load();
    if (nStorage < 0 || CUGetThreadLocalStorage(nStorage))
        return;
    auto *pWatch = new CThreadWatch;
    if (CURegisterThreadExitHandler(pWatch))
        CUSetThreadLocalStorage(nStorage, pWatch);
    else
        delete pWatch;
}

}  // namespace

CCUIWindow *CUIWindowMapFind(HWND hWnd)
{
    if (!hWnd)
        return nullptr;
    const unsigned nChanges = s_nChanges.load(std::memory_order_acquire);
    CCUIWindow *const pWindow =
        FindSlot(CurrentTable(), hWnd).pWindow.load(std::memory_order_acquire);
    if (nChanges % 2 == 0 && nChanges == s_nChanges.load(std::memory_order_acquire))
        return pWindow;
    // Another thread has been at the table meanwhile.
    const CLock lock;
    return FindSlot(CurrentTable(), hWnd).pWindow;
}

bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding)
{
    const CLock lock;
    const CSlot &slot = FindSlot(CurrentTable(), hWnd);
    if (!slot.hWnd)
        return false;
    binding = {slot.pWindow, slot.pOldProc};
    return true;
}

void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding)
{
    WatchThread();
    const CChange change;
    if (!FindSlot(CurrentTable(), hWnd).hWnd && ++s_nUsed > CurrentTable().nMask / 2)
        Grow(CurrentTable());
    Store(FindSlot(CurrentTable(), hWnd), hWnd, binding, GetCurrentThreadId());
}

void CUIWindowMapRemove(HWND hWnd)
{
    const CChange change;
    CSlot &slot = FindSlot(CurrentTable(), hWnd);
    if (slot.hWnd)
        Free(CurrentTable(), slot);
}

namespace {

bool IsOfModule(HWND hWnd)
{
    if (reinterpret_cast<HINSTANCE>(GetWindowLongA(hWnd, GWL_HINSTANCE)) == CUInstance())
        return true;
    // A dialog box has the instance that its maker named, and the procedure of our dialogs.
    const DWORD nDialogClass = 32770;
    MEMORY_BASIC_INFORMATION memory = {};
    return GetClassLongA(hWnd, GCW_ATOM) == nDialogClass &&
           VirtualQuery(reinterpret_cast<void *>(GetWindowLongA(hWnd, DWL_DLGPROC)), &memory,
                        sizeof memory) &&
           memory.AllocationBase == CUInstance();
}

// A window of the map whose turn it is; with bBound, one that is bound to an object.
HWND NextToUnload(CUUnloadPhase phase, bool bBound)
{
    const CLock lock;
    const CTable &table = CurrentTable();
    for (unsigned i = 0; i <= table.nMask; ++i) {
        const CSlot &slot = table.pSlots[i];
        const HWND hWnd = slot.hWnd;
        if (hWnd && (slot.pWindow || !bBound) && CUIsUnloadTurn(hWnd, phase))
            return hWnd;
    }
    return nullptr;
}

}  // namespace

// Objects let go of all windows before the first of them goes: none is told anything any more.
void CUIUnloadWindows(CUUnloadPhase phase)
{
    while (HWND hWnd = NextToUnload(phase, true)) {
        CUIWindowMapFind(hWnd)->Detach();
        CUIWindowMapSet(hWnd, {nullptr, DefWindowProcA});
    }
    while (HWND hWnd = NextToUnload(phase, false)) {
        CUIWindowMapRemove(hWnd);
        if (IsOfModule(hWnd))
            CUUnloadWindow(hWnd);
    }
    if (phase == CUUnloadOthers)
        return;
    while (CThreadWatch::s_pFirst)
        delete CThreadWatch::s_pFirst;
    while (CTable *const pTable = CurrentTable().pSmaller ? &CurrentTable() : nullptr) {
        s_pTable = pTable->pSmaller;
        delete[] pTable->pSlots;
        delete pTable;
    }
}
