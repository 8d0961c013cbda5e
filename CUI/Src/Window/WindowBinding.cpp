// How an object is bound to a window: a property of the window leads to the object, and the window
// is subclassed with our procedure. The map has a copy of both.

#include "Window/WindowBinding.h"

#include "Base/KeepLastError.h"
#include "Base/Lifetime.h"
#include "Base/Module.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "Menu/MenuHooks.h"
#include "Window/LoadedLibrary.h"
#include "Window/WindowHookList.h"
#include "Window/WindowMap.h"
#include "Window/WindowThread.h"

#define CU_SOURCE "Window"

namespace {

// A property of windows to which no object is bound any more but which have our procedure below
// somebody else's. It goes with the window: another one that gets the same handle does not have it.
const char IN_CHAIN[] = "kvxCCUIWindow-chain";

// The property that holds a window's object, with the process in its name: a window's properties
// are seen by every process.
const char *PropertyName()
{
    const CCUMutexGuard guard;
    // Not a CCUString: windows that are globals ask for it in their destructors, and by then it
    // might be destroyed.
    static char s_szName[32];
    if (!*s_szName)
        wsprintfA(s_szName, "kvxCCUIWindow-%d", GetCurrentProcessId());
    return s_szName;
}

WNDPROC GetProcedure(HWND hWnd)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongA(hWnd, GWL_WNDPROC));
}

WNDPROC SetProcedure(HWND hWnd, WNDPROC pProc)
{
    return reinterpret_cast<WNDPROC>(
        SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(pProc)));
}

bool SetObject(HWND hWnd, CCUIWindow *pWindow)
{
    return SetPropA(hWnd, PropertyName(), pWindow) != 0;
}

// Our procedure in a window's chain of procedures, each of which calls the one that it replaced.
class CSubclassing
{
public:
    CSubclassing(HWND hWnd, WNDPROC pOurs) : m_hWnd(hWnd), m_pOurs(pOurs) {}

    // Puts our procedure on top, unless it is in the chain already: called twice a message, it
    // would call itself for ever. Answers what ours replaced, null when the system refuses.
    WNDPROC Begin()
    {
        CUIWindowBinding before = {nullptr, nullptr};
        const bool bKnown = CUIWindowMapGet(m_hWnd, before);
        if (bKnown && IsLeftInChain() && !IsChainTakenBack(before.pOldProc))
            return before.pOldProc;
        return SetProcedure(m_hWnd, m_pOurs);
    }

    // Takes our procedure away. Somebody who subclassed after us goes on calling it: then it stays
    // and passes everything on.
    void End(WNDPROC pOldProc)
    {
        if (IsOnTop()) {
            CUIWindowMapRemove(m_hWnd);
            SetProcedure(m_hWnd, pOldProc);
        } else {
            CUIWindowMapSet(m_hWnd, {nullptr, pOldProc});
            SetPropA(m_hWnd, IN_CHAIN, m_hWnd);
        }
    }

private:
    bool IsOnTop() const { return GetProcedure(m_hWnd) == m_pOurs; }
    // A former binding ended while somebody else's procedure was above ours.
    bool IsLeftInChain() const { return GetPropA(m_hWnd, IN_CHAIN) != nullptr; }
    // That somebody has since put back what was there before ours.
    bool IsChainTakenBack(WNDPROC pOldProc) const { return GetProcedure(m_hWnd) == pOldProc; }

    const HWND m_hWnd;
    const WNDPROC m_pOurs;
};

}  // namespace

bool CUILeadsTo(HWND hWnd, const CCUIWindow *pWindow)
{
    return GetPropA(hWnd, PropertyName()) == pWindow;
}

bool CUIIsStillBound(HWND hWnd, const CCUIWindow *pWindow)
{
    const CCUKeepLastError keep;
    const bool bBound = CUILeadsTo(hWnd, pWindow);
    if (!bBound)
        CUIWindowMapRemoveDoubted(hWnd, pWindow);
    return bBound;
}

void CCUIWindow::Attach(HWND hWnd)
{
    CU_ASSERT(!m_pOldProc);
    CU_ASSERT(!m_hWnd);
    if (m_hWnd)
        Detach();
    if (CCUIWindow *pBefore = FromHandle(hWnd))
        pBefore->Detach();
    const bool bLeads = SetObject(hWnd, this);
    const WNDPROC pOldProc = bLeads ? CSubclassing(hWnd, StaticWindowProc).Begin() : nullptr;
    if (!pOldProc) {
        CUDump("Unable to bind to window %p, gle: %lu\n", static_cast<void *>(hWnd),
               GetLastError());
        if (bLeads)
            SetObject(hWnd, nullptr);
        return;
    }
    m_hWnd = hWnd;
    m_pOldProc = pOldProc;
    m_bMissedDetach = 0;
    CUIWindowMapSet(hWnd, {this, pOldProc});
}

HWND CCUIWindow::Detach()
{
    const HWND hWnd = m_hWnd;
    const WNDPROC pOldProc = m_pOldProc;
    m_hWnd = nullptr;
    m_pOldProc = nullptr;
    // An object that nobody destroys would leave its blocks behind.
    if (g_moduleEnd == CUModuleUnloads)
        EndLife();
    bool bDoubted = false;
    const bool bInMap = CUIWindowMapFind(hWnd, bDoubted) == this;
    if (pOldProc && bInMap) {
        if (CUILeadsTo(hWnd, this)) {
            CSubclassing(hWnd, StaticWindowProc).End(pOldProc);
            SetObject(hWnd, nullptr);
        } else {
            // Our window went without a word to us, and the handle is another window's by now.
            CUIWindowMapRemove(hWnd);
        }
    }
    if (hWnd && m_pHooks) {
        // One of them may delete the object, and the list with it.
        CCUIWindowHookList::CWalk walk(*m_pHooks);
        while (CCUIWindowHook *const pHook = walk.Next())
            pHook->OnUnbound();
    }
    return hWnd;
}

int CCUIWindow::Destroy()
{
    if (!Exist())
        return 0;
    // At the end of the thread its bindings have been removed before the last objects go: globals,
    // and what an exit handler deletes. Their windows are still to get their messages.
    if (!FromHandle(m_hWnd))
        CUIWindowMapSet(m_hWnd, {this, m_pOldProc});
    return DestroyWindow(m_hWnd);
}

void CCUIWindow::OnDestroy()
{
    SetContextMenu(nullptr);
    // The object lets go first. Default processing needs the window and the procedure named then.
    const HWND hWnd = m_hWnd;
    const WNDPROC pOldProc = m_pOldProc;
    if (!(GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD))
        CUIMenuGoes(GetMenu(hWnd));
    Detach();
    CallProcedure(pOldProc, hWnd, WM_DESTROY, 0, 0);
}

int CCUIWindow::Exist() const
{
    return m_hWnd && IsWindow(m_hWnd) && (FromHandle(m_hWnd) == this || CUILeadsTo(m_hWnd, this));
}

bool CCUIWindow::HasWindow()
{
    if (m_hWnd && !Exist()) {
        m_bMissedDetach = 1;
        ForgetMessages();
        Detach();
    }
    return m_hWnd != nullptr;
}

// --- The end of a module ---

namespace {

// The atom of the system's class of dialogs.
const DWORD DIALOG_CLASS = 32770;

bool IsCodeOfModule(LONG pCode)
{
    MEMORY_BASIC_INFORMATION memory = {};
    return VirtualQuery(reinterpret_cast<void *>(pCode), &memory, sizeof memory) &&
           memory.AllocationBase == CUInstance();
}

// Whether the module made the window. A dialog does not tell by its instance, which the program
// names, but by its dialog procedure, which is ours.
bool IsOfModule(HWND hWnd)
{
    return reinterpret_cast<HINSTANCE>(GetWindowLongA(hWnd, GWL_HINSTANCE)) == CUInstance() ||
           (GetClassLongA(hWnd, GCW_ATOM) == DIALOG_CLASS &&
            IsCodeOfModule(GetWindowLongA(hWnd, DWL_DLGPROC)));
}

// The windows of the map whose turn it is, in an array for the caller to delete.
HWND *WindowsToUnload(CUUnloadPhase phase, unsigned &nWindows)
{
    const CUIWindowMapLock lock;
    const CUIWindowTable &table = CUIWindowTable::Current();
    HWND *const pWindows = new HWND[table.nMask + 1];
    nWindows = 0;
    for (unsigned i = 0; i <= table.nMask; ++i) {
        const HWND hWnd = table.pSlots[i].hWnd.Get();
        if (hWnd && CUIsUnloadTurn(hWnd, phase))
            pWindows[nWindows++] = hWnd;
    }
    return pWindows;
}

}  // namespace

// All objects let go before the first window goes, so that no handler runs any more.
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
        if (!IsOfModule(pWindows[i]))
            continue;
        if (phase == CUUnloadOthers)
            CUIKeepWindowLibraries();
        CUUnloadWindow(pWindows[i]);
    }
    delete[] pWindows;
    if (phase == CUUnloadOthers)
        return;
    CUIWindowThread::DeleteAll();
    for (CUIWindowTable *pTable; (pTable = CUIWindowTable::s_pCurrent.Get())->pSmaller;) {
        CUIWindowTable::s_pCurrent.Set(pTable->pSmaller);
        delete[] pTable->pSlots;
        delete pTable;
    }
}
