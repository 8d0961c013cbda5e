#include "Window/WindowMap.h"

#include "Base/Module.h"
#include "Base/Lock.h"
#include "Window/WindowTable.h"
#include "Window/WindowThread.h"

namespace {

// Most programs have a handful of windows and never leave this table.
constexpr unsigned s_nFirstBits = 6;
CUIWindowSlot s_firstSlots[1u << s_nFirstBits];
CUIWindowTable s_first = {(1u << s_nFirstBits) - 1, 32 - s_nFirstBits, s_firstSlots, nullptr};

unsigned s_nUsed;  // slots; under the lock
CCULazyLock s_lock;

class CChange
{
public:
    CChange() { ++CUIWindowTable::s_nChanges; }
    ~CChange() { ++CUIWindowTable::s_nChanges; }
    CChange(const CChange &) = delete;
    CChange &operator=(const CChange &) = delete;

private:
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
    slot.pThread.store(pThread, std::memory_order_relaxed);
    slot.pOldProc.store(pOldProc, std::memory_order_relaxed);
    slot.nWindow.store(nWindow, std::memory_order_release);
    slot.hWnd.store(hWnd, std::memory_order_release);
}

void Copy(CUIWindowSlot &slot, const CUIWindowSlot &from)
{
    Store(slot, from.hWnd, from.nWindow, from.pOldProc, from.pThread);
}

CUIWindowTable *NewTable(unsigned nBits)
{
    const unsigned nSlots = 1u << nBits;
    auto *pTable = new CUIWindowTable{nSlots - 1, 32 - nBits, nullptr, CUIWindowTable::s_pCurrent};
    pTable->pSlots = new CUIWindowSlot[nSlots]();
    return pTable;
}

// Twice the slots. The old table stays for readers that are still in it: all the old tables of a
// process together are smaller than its last one.
void Grow(const CUIWindowTable &old)
{
    CUIWindowTable *const pNew = NewTable(32 - old.nShift + 1);
    for (unsigned i = 0; i <= old.nMask; ++i) {
        const CUIWindowSlot &slot = old.pSlots[i];
        if (slot.hWnd)
            Copy(pNew->FindSlot(slot.hWnd), slot);
    }
    CUIWindowTable::s_pCurrent.store(pNew, std::memory_order_release);
}

// Frees the slot and closes the gap with what further down the run may stand there.
void Free(const CUIWindowTable &table, CUIWindowSlot &slot)
{
    slot.pThread.load()->Unbind();
    auto nGap = static_cast<unsigned>(&slot - table.pSlots);
    for (unsigned i = nGap + 1; table.SlotAt(i).hWnd; ++i) {
        const unsigned nFirst = table.FirstIndex(table.SlotAt(i).hWnd);
        if (((i - nFirst) & table.nMask) < i - nGap)
            continue;
        Copy(table.SlotAt(nGap), table.SlotAt(i));
        nGap = i;
    }
    Store(table.SlotAt(nGap), nullptr, 0, nullptr, nullptr);
    --s_nUsed;
}

// Frees all slots for which `isGone` says so.
template <typename IsGone>
void FreeThose(IsGone isGone)
{
    const CUIWindowTable &table = CUIWindowTable::Current();
    for (unsigned i = 0; i <= table.nMask; ++i) {
        CUIWindowSlot &slot = table.pSlots[i];
        // What closes the gap may be one of them as well.
        while (slot.hWnd && isGone(slot))
            Free(table, slot);
    }
}

}  // namespace

std::atomic<CUIWindowTable *> CUIWindowTable::s_pCurrent(&s_first);
std::atomic<unsigned> CUIWindowTable::s_nChanges;

CUIWindowMapLock::CUIWindowMapLock()
{
    s_lock.Enter();
}

CUIWindowMapLock::~CUIWindowMapLock()
{
    s_lock.Leave();
}

bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding)
{
    const CUIWindowMapLock lock;
    const CUIWindowSlot &slot = FindSlot(hWnd);
    if (!slot.hWnd)
        return false;
    binding = {reinterpret_cast<CCUIWindow *>(slot.nWindow & ~CUIWindowSlot::DOUBTED),
               slot.pOldProc};
    return true;
}

void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding)
{
    CUIWindowThread &thread = CUIWindowThread::Current();
    {
        const CChange change;
        thread.Bind();
        CUIWindowThread *const pBefore = FindSlot(hWnd).pThread;
        if (pBefore)
            pBefore->Unbind();
        else if (++s_nUsed > CUIWindowTable::Current().nMask / 2)
            Grow(CUIWindowTable::Current());
        const auto nWindow = reinterpret_cast<uintptr_t>(binding.pWindow);
        Store(FindSlot(hWnd), hWnd, nWindow ? nWindow : CUIWindowSlot::DOUBTED, binding.pOldProc,
              &thread);
    }
    thread.Watch();  // now that nobody takes the thread's last binding away any more
}

void CUIWindowMapRemove(HWND hWnd)
{
    const CChange change;
    CUIWindowSlot &slot = FindSlot(hWnd);
    if (slot.hWnd)
        Free(CUIWindowTable::Current(), slot);
}

void CUIWindowMapRemoveDoubted(HWND hWnd, const CCUIWindow *pWindow)
{
    const CChange change;
    CUIWindowSlot &slot = FindSlot(hWnd);
    if (slot.nWindow == (reinterpret_cast<uintptr_t>(pWindow) | CUIWindowSlot::DOUBTED))
        Free(CUIWindowTable::Current(), slot);
}

static BOOL CALLBACK DoubtChild(HWND hWnd, LPARAM)
{
    const CChange change;
    CUIWindowSlot &slot = FindSlot(hWnd);
    if (slot.hWnd)
        slot.nWindow |= CUIWindowSlot::DOUBTED;
    return TRUE;
}

void CUIWindowMapDoubt(HWND hWnd)
{
    // The windows inside: of a few windows, each is asked whether it is one; the system's list of
    // them, which costs a call to it, is shorter than many.
    const bool bFew = &CUIWindowTable::Current() == &s_first;
    if (!bFew)
        EnumChildWindows(hWnd, DoubtChild, 0);
    const CChange change;
    FreeThose([=](CUIWindowSlot &slot) {
        if (slot.hWnd == hWnd || (bFew && IsChild(hWnd, slot.hWnd)))
            slot.nWindow |= CUIWindowSlot::DOUBTED;
        return (slot.nWindow & CUIWindowSlot::DOUBTED) && !IsWindow(slot.hWnd);
    });
}

void CUIWindowMapRemoveThread(const CUIWindowThread *pThread)
{
    const CChange change;
    FreeThose([=](const CUIWindowSlot &slot) { return slot.pThread == pThread; });
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

// Those of the map whose turn it is, for the caller to delete.
HWND *WindowsToUnload(CUUnloadPhase phase, unsigned &nWindows)
{
    const CUIWindowMapLock lock;
    const CUIWindowTable &table = CUIWindowTable::Current();
    HWND *const pWindows = new HWND[s_nUsed];
    nWindows = 0;
    for (unsigned i = 0; i <= table.nMask; ++i) {
        const HWND hWnd = table.pSlots[i].hWnd;
        if (hWnd && CUIsUnloadTurn(hWnd, phase))
            pWindows[nWindows++] = hWnd;
    }
    return pWindows;
}

}  // namespace

// Objects let go of all windows before the first of them goes: none is told anything any more.
void CUIUnloadWindows(CUUnloadPhase phase)
{
    unsigned nWindows = 0;
    HWND *const pWindows = WindowsToUnload(phase, nWindows);
    bool bDoubted = false;
    for (unsigned i = 0; i < nWindows; ++i) {
        if (CCUIWindow *const pWindow = CUIWindowMapFind(pWindows[i], bDoubted))
            pWindow->Detach();
    }
    for (unsigned i = 0; i < nWindows; ++i) {
        CUIWindowMapRemove(pWindows[i]);
        if (IsOfModule(pWindows[i]))
            CUUnloadWindow(pWindows[i]);
    }
    delete[] pWindows;
    if (phase == CUUnloadOthers)
        return;
    CUIWindowThread::DeleteAll();
    for (CUIWindowTable *pTable; (pTable = CUIWindowTable::s_pCurrent)->pSmaller;) {
        CUIWindowTable::s_pCurrent = pTable->pSmaller;
        delete[] pTable->pSlots;
        delete pTable;
    }
}
