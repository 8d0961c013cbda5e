#include "Window/WindowMap.h"

#include "CU/Prober.h"
#include "Window/WindowThread.h"

namespace {

// Most programs have a handful of windows and never leave this table.
const unsigned FIRST_BITS = 6;
CUIWindowSlot s_firstSlots[1u << FIRST_BITS];
CUIWindowTable s_first = {(1u << FIRST_BITS) - 1, 32 - FIRST_BITS, s_firstSlots, nullptr};

unsigned s_nUsed;  // slots with a handle; under the lock

long Windows(void *)
{
    return static_cast<long>(s_nUsed);
}
CCUProberFunction s_windows("\\CUI\\Windows", "Bound", Windows, "windows that have objects");

// A change: has the lock, and tells readers that they cannot trust what they see.
class CChange
{
public:
    CChange() { Count(); }
    ~CChange() { Count(); }
    CChange(const CChange &) = delete;
    CChange &operator=(const CChange &) = delete;

private:
    static void Count() { CUIWindowTable::s_nChanges.Set(CUIWindowTable::s_nChanges.Get() + 1); }
    const CUIWindowMapLock m_lock;
};

CUIWindowSlot &FindSlot(HWND hWnd)
{
    return CUIWindowTable::Current().FindSlot(hWnd);
}

// The handle of a slot comes last: a reader that finds it finds the rest.
void Store(CUIWindowSlot &slot, HWND hWnd, uintptr_t nWindow, WNDPROC pOldProc,
           CUIWindowThread *pThread)
{
    slot.pThread.Set(pThread);
    slot.pOldProc.Set(pOldProc);
    slot.nWindow.Set(nWindow);
    slot.hWnd.Set(hWnd);
}

void Copy(CUIWindowSlot &slot, const CUIWindowSlot &from)
{
    Store(slot, from.hWnd.Get(), from.nWindow.Get(), from.pOldProc.Get(), from.pThread.Get());
}

CUIWindowTable *NewTable(unsigned nBits)
{
    const unsigned nSlots = 1u << nBits;
    auto *pTable =
        new CUIWindowTable{nSlots - 1, 32 - nBits, nullptr, CUIWindowTable::s_pCurrent.Get()};
    pTable->pSlots = new CUIWindowSlot[nSlots]();
    return pTable;
}

// A table of twice the size takes over. The old one stays, for readers that are still in it: all
// old tables together are smaller than the new one.
void Grow(const CUIWindowTable &old)
{
    CUIWindowTable *const pNew = NewTable(32 - old.nShift + 1);
    for (unsigned i = 0; i <= old.nMask; ++i) {
        const CUIWindowSlot &slot = old.pSlots[i];
        if (slot.hWnd.Get())
            Copy(pNew->FindSlot(slot.hWnd.Get()), slot);
    }
    CUIWindowTable::s_pCurrent.Set(pNew);
}

// Frees the slot. Searches end at a free slot, so each slot further down the run that is found by
// way of the gap moves up into it, and leaves the next gap.
void Free(const CUIWindowTable &table, CUIWindowSlot &slot)
{
    slot.pThread.Get()->Unbind();
    auto nGap = static_cast<unsigned>(&slot - table.pSlots);
    for (unsigned i = nGap + 1; table.SlotAt(i).hWnd.Get(); ++i) {
        const unsigned nFirst = table.FirstIndex(table.SlotAt(i).hWnd.Get());
        const unsigned nFromFirst = (i - nFirst) & table.nMask;
        const bool bSearchPassesGap = nFromFirst >= i - nGap;
        if (!bSearchPassesGap)
            continue;
        Copy(table.SlotAt(nGap), table.SlotAt(i));
        nGap = i;
    }
    Store(table.SlotAt(nGap), nullptr, 0, nullptr, nullptr);
    --s_nUsed;
}

// Frees all slots for which `isGone` says so.
template <typename IsGone>
void FreeIf(IsGone isGone)
{
    const CUIWindowTable &table = CUIWindowTable::Current();
    for (unsigned i = 0; i <= table.nMask; ++i) {
        CUIWindowSlot &slot = table.pSlots[i];
        // What moved up into the slot may be one of them as well.
        while (slot.hWnd.Get() && isGone(slot))
            Free(table, slot);
    }
}

}  // namespace

CCUAtomic<CUIWindowTable *> CUIWindowTable::s_pCurrent(&s_first);
CCUAtomic<unsigned> CUIWindowTable::s_nChanges;

uintptr_t CUIWindowMapReadLocked(HWND hWnd)
{
    const CUIWindowMapLock lock;
    return FindSlot(hWnd).nWindow.Get();
}

bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding)
{
    const CUIWindowMapLock lock;
    const CUIWindowSlot &slot = FindSlot(hWnd);
    if (!slot.hWnd.Get())
        return false;
    binding = {CUIWindowSlot::Object(slot.nWindow.Get()), slot.pOldProc.Get()};
    return true;
}

// All bindings of the thread.
static void RemoveThread(const CUIWindowThread *pThread)
{
    const CChange change;
    FreeIf([=](const CUIWindowSlot &slot) { return slot.pThread.Get() == pThread; });
}

static LRESULT CALLBACK WatchProc(int nCode, WPARAM wParam, LPARAM lParam)
{
    const HHOOK hWatch = CUIWindowThread::Current().GetWatch();
    const LRESULT result = CallNextHookEx(hWatch, nCode, wParam, lParam);
    if (nCode == HCBT_DESTROYWND && !result)
        CUIWindowMapDoubt(reinterpret_cast<HWND>(wParam));
    return result;
}

void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding)
{
    CUIWindowThread &thread = CUIWindowThread::Current();
    CUIWindowThread::s_forget = RemoveThread;
    {
        const CChange change;
        thread.Bind();
        CUIWindowThread *const pBefore = FindSlot(hWnd).pThread.Get();
        if (pBefore)
            pBefore->Unbind();
        else if (++s_nUsed > CUIWindowTable::Current().nMask / 2)
            Grow(CUIWindowTable::Current());
        const auto nWindow = reinterpret_cast<uintptr_t>(binding.pWindow);
        Store(FindSlot(hWnd), hWnd, nWindow ? nWindow : CUIWindowSlot::DOUBTED, binding.pOldProc,
              &thread);
    }
    // Only now: another thread may have removed this thread's last binding until here, and with it
    // the watch.
    thread.Watch(WatchProc);
}

void CUIWindowMapRemove(HWND hWnd)
{
    const CChange change;
    CUIWindowSlot &slot = FindSlot(hWnd);
    if (slot.hWnd.Get())
        Free(CUIWindowTable::Current(), slot);
}

void CUIWindowMapRemoveDoubted(HWND hWnd, const CCUIWindow *pWindow)
{
    const CChange change;
    CUIWindowSlot &slot = FindSlot(hWnd);
    if (slot.nWindow.Get() == (reinterpret_cast<uintptr_t>(pWindow) | CUIWindowSlot::DOUBTED))
        Free(CUIWindowTable::Current(), slot);
}

static BOOL CALLBACK DoubtChild(HWND hWnd, LPARAM)
{
    const CChange change;
    CUIWindowSlot &slot = FindSlot(hWnd);
    if (slot.hWnd.Get())
        slot.Doubt();
    return TRUE;
}

void CUIWindowMapDoubt(HWND hWnd)
{
    // While the map has few windows, each is asked whether it is inside. When it has many, the
    // system's list of the windows inside, which costs a call to it, is shorter.
    const bool bFew = &CUIWindowTable::Current() == &s_first;
    if (!bFew)
        EnumChildWindows(hWnd, DoubtChild, 0);
    const CChange change;
    FreeIf([=](CUIWindowSlot &slot) {
        const HWND hSlot = slot.hWnd.Get();
        if (hSlot == hWnd || (bFew && IsChild(hWnd, hSlot)))
            slot.Doubt();
        return (slot.nWindow.Get() & CUIWindowSlot::DOUBTED) && !IsWindow(hSlot);
    });
}
