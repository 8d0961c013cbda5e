#include "WindowMap.h"

#include <stdint.h>

#include <atomic>

#include "CU/CU.h"
#include "CU/ThreadExit.h"

namespace {

// Open addressing with linear probing. A slot without a handle ends a run; a slot with a handle and
// no procedure is vacant: its window has been unbound, but the run goes on behind it.
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
};

// Most programs have a handful of windows and never leave this table.
constexpr unsigned s_nFirstBits = 6;
CSlot s_firstSlots[1u << s_nFirstBits];
CTable s_first = {(1u << s_nFirstBits) - 1, 32 - s_nFirstBits, s_firstSlots};

std::atomic<CTable *> s_pTable(&s_first);
unsigned s_nUsed;  // slots that are not vacant; under the lock
std::atomic<int> s_nLock;

class CLock
{
public:
    CLock()
    {
        while (s_nLock.exchange(1, std::memory_order_acquire))
            Sleep(0);
    }
    ~CLock() { s_nLock.store(0, std::memory_order_release); }
    CLock(const CLock &) = delete;
    CLock &operator=(const CLock &) = delete;
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

CSlot *FindSlot(const CTable &table, HWND hWnd)
{
    for (unsigned i = FirstIndex(table, hWnd);; ++i) {
        CSlot &slot = SlotAt(table, i);
        const HWND hSlot = slot.hWnd.load(std::memory_order_acquire);
        if (hSlot == hWnd)
            return &slot;
        if (!hSlot)
            return nullptr;
    }
}

bool IsVacant(const CSlot &slot)
{
    return !slot.pOldProc.load(std::memory_order_relaxed);
}

// Into the first vacant slot of the handle's run; the table has room.
void Insert(const CTable &table, HWND hWnd, const CUIWindowBinding &binding, DWORD nThread)
{
    unsigned i = FirstIndex(table, hWnd);
    while (!IsVacant(SlotAt(table, i)))
        ++i;
    CSlot &slot = SlotAt(table, i);
    // A reader that looks for this handle finds it unbound until the object is there.
    slot.hWnd.store(hWnd, std::memory_order_release);
    slot.nThread.store(nThread, std::memory_order_relaxed);
    slot.pOldProc.store(binding.pOldProc, std::memory_order_release);
    slot.pWindow.store(binding.pWindow, std::memory_order_release);
}

CTable *NewTable(unsigned nBits)
{
    const unsigned nSlots = 1u << nBits;
    auto *pTable = new CTable{nSlots - 1, 32 - nBits, nullptr};
    pTable->pSlots = new CSlot[nSlots]();
    return pTable;
}

// Twice the slots. The old table stays for readers that are still in it: all the old tables of a
// process together are smaller than its last one.
void Grow(const CTable &old)
{
    const CTable *pNew = NewTable(32 - old.nShift + 1);
    for (unsigned i = 0; i <= old.nMask; ++i) {
        const CSlot &slot = old.pSlots[i];
        if (!IsVacant(slot))
            Insert(*pNew, slot.hWnd, {slot.pWindow, slot.pOldProc}, slot.nThread);
    }
    s_pTable.store(const_cast<CTable *>(pNew), std::memory_order_release);
}

void Vacate(const CTable &table, CSlot &slot)
{
    slot.pWindow.store(nullptr, std::memory_order_release);
    slot.pOldProc.store(nullptr, std::memory_order_release);
    --s_nUsed;
    // At the end of its run the slot, and the vacant ones before it, need not keep the run going.
    auto i = static_cast<unsigned>(&slot - table.pSlots);
    if (SlotAt(table, i + 1).hWnd.load(std::memory_order_relaxed))
        return;
    while (SlotAt(table, i).hWnd.load(std::memory_order_relaxed) && IsVacant(SlotAt(table, i)))
        SlotAt(table, i--).hWnd.store(nullptr, std::memory_order_release);
}

void RemoveThread(DWORD nThread)
{
    const CLock lock;
    const CTable &table = *s_pTable.load(std::memory_order_relaxed);
    for (unsigned i = 0; i <= table.nMask; ++i) {
        CSlot &slot = table.pSlots[i];
        if (!IsVacant(slot) && slot.nThread.load(std::memory_order_relaxed) == nThread)
            Vacate(table, slot);
    }
}

// A thread that ends takes its windows along without a message to them, and their handles may come
// back for others.
class CThreadWatch : public CCUThreadExitHandler
{
public:
    void OnThreadExit(bool) override
    {
        RemoveThread(GetCurrentThreadId());
        delete this;
    }
};

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
    const CTable &table = *s_pTable.load(std::memory_order_acquire);
    for (;;) {
        const CSlot *pSlot = FindSlot(table, hWnd);
        if (!pSlot)
            return nullptr;
        CCUIWindow *const pWindow = pSlot->pWindow.load(std::memory_order_acquire);
        // Unless another thread has just given the slot to another window.
        if (pSlot->hWnd.load(std::memory_order_acquire) == hWnd)
            return pWindow;
    }
}

bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding)
{
    const CLock lock;
    const CSlot *pSlot = hWnd ? FindSlot(*s_pTable.load(std::memory_order_relaxed), hWnd) : nullptr;
    if (!pSlot || IsVacant(*pSlot))
        return false;
    binding.pWindow = pSlot->pWindow.load(std::memory_order_relaxed);
    binding.pOldProc = pSlot->pOldProc.load(std::memory_order_relaxed);
    return true;
}

void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding)
{
    WatchThread();
    const CLock lock;
    const CTable *pTable = s_pTable.load(std::memory_order_relaxed);
    CSlot *pSlot = FindSlot(*pTable, hWnd);
    if (pSlot && !IsVacant(*pSlot)) {
        pSlot->nThread.store(GetCurrentThreadId(), std::memory_order_relaxed);
        pSlot->pOldProc.store(binding.pOldProc, std::memory_order_release);
        pSlot->pWindow.store(binding.pWindow, std::memory_order_release);
        return;
    }
    // At most half full, so that runs stay short and always end.
    if (++s_nUsed > pTable->nMask / 2) {
        Grow(*pTable);
        pTable = s_pTable.load(std::memory_order_relaxed);
    }
    Insert(*pTable, hWnd, binding, GetCurrentThreadId());
}

void CUIWindowMapRemove(HWND hWnd)
{
    const CLock lock;
    const CTable &table = *s_pTable.load(std::memory_order_relaxed);
    CSlot *pSlot = hWnd ? FindSlot(table, hWnd) : nullptr;
    if (pSlot && !IsVacant(*pSlot))
        Vacate(table, *pSlot);
}
