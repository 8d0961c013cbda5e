#include "CUI/Window.h"

#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/Menu.h"
#include "Window/WindowHookList.h"
#include "Window/WindowMap.h"
#include "Window/WindowThread.h"

#define CU_SOURCE "Window"

namespace {

// A property of windows that are bound no more but have our procedure below somebody else's. It
// goes with its window: another window that gets the same handle later does not have it.
const char IN_CHAIN[] = "kvxCCUIWindow-chain";

// The property that holds a window's object, with the process in its name: a window's properties
// are seen by every process.
const char *PropertyName()
{
    const CCUMutexGuard guard;
    // The characters alone: windows that are globals ask for it on their way out.
    static char s_szName[32];
    if (!*s_szName)
        wsprintfA(s_szName, "kvxCCUIWindow-%d", GetCurrentProcessId());
    return s_szName;
}

// The parent or owner, but not the desktop: no program may disable that or make it an owner.
HWND ParentOf(HWND hWnd)
{
    const HWND hParent = GetParent(hWnd);
    return hParent == GetDesktopWindow() ? nullptr : hParent;
}

WNDPROC GetProcedure(HWND hWnd)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongA(hWnd, GWL_WNDPROC));
}

struct CSending
{
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    int *pnSent;
};

BOOL CALLBACK SendToDescendant(HWND hWnd, LPARAM lParam)
{
    const auto &sending = *reinterpret_cast<const CSending *>(lParam);
    SendMessageA(hWnd, sending.message, sending.wParam, sending.lParam);
    if (sending.pnSent)
        ++*sending.pnSent;
    return TRUE;
}

WNDPROC SetProcedure(HWND hWnd, WNDPROC pProc)
{
    return reinterpret_cast<WNDPROC>(
        SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(pProc)));
}

}  // namespace

bool CUIIsStillBound(HWND hWnd, CCUIWindow *pWindow)
{
    const DWORD nError = GetLastError();
    const bool bBound = GetPropA(hWnd, PropertyName()) == pWindow;
    if (!bBound)
        CUIWindowMapRemoveDoubted(hWnd, pWindow);
    SetLastError(nError);
    return bBound;
}

CCUIWindow::CCUIWindow()
    : m_hWnd(nullptr),
      m_pOldProc(nullptr),
      m_hWndOwner(nullptr),
      m_bActive(0),
      m_bEnded(0),
      m_pAwaited(nullptr),
      m_bDead(0),
      m_hAccelerators(nullptr),
      m_pContextMenu(nullptr),
      m_bShowToolTips(1),
      m_bMissedDetach(0),
      m_hCreated(nullptr),
      m_pMessage(nullptr),
      m_pWatch(nullptr),
      m_pHooks(nullptr)
{
}

CCUIWindow::~CCUIWindow()
{
    m_bDead = 1;
    // A window made later must not be bound to what is gone.
    CUIWindowThread::StopWaiting(this);
    if (Exist() && GetPropA(m_hWnd, PropertyName()) == this) {
        CUDump("Destroying Window in ~CCUIWindow.\n");
        CCUIWindow::Destroy();
    }
    if (m_hWnd || m_bMissedDetach) {
        CUDump("Detach not called in OnDestroy().\n");
        Detach();
    }
    if (m_hAccelerators)
        DestroyAcceleratorTable(m_hAccelerators);
    delete m_pHooks;
    for (CWatch *pWatch = m_pWatch; pWatch; pWatch = pWatch->m_pNext)
        pWatch->m_pWindow = nullptr;
}

void CCUIWindow::Attach(HWND hWnd)
{
    CU_ASSERT(!m_pOldProc);
    CU_ASSERT(!m_hWnd);
    if (m_hWnd)
        Detach();
    if (CCUIWindow *pBefore = FromHandle(hWnd))
        pBefore->Detach();
    if (!SetPropA(hWnd, PropertyName(), this))
        return;
    // A former binding may have left our procedure in the chain, below somebody else's. Put on top
    // once more it would be called by itself. What was there before it is on top again where that
    // somebody has taken all of the chain away.
    CUIWindowBinding binding = {nullptr, nullptr};
    if (!CUIWindowMapGet(hWnd, binding) || !GetPropA(hWnd, IN_CHAIN) ||
        GetProcedure(hWnd) == binding.pOldProc)
        binding.pOldProc = SetProcedure(hWnd, StaticWindowProc);
    if (!binding.pOldProc) {
        SetPropA(hWnd, PropertyName(), nullptr);
        return;
    }
    m_hWnd = hWnd;
    m_pOldProc = binding.pOldProc;
    m_bMissedDetach = 0;
    binding.pWindow = this;
    CUIWindowMapSet(hWnd, binding);
}

HWND CCUIWindow::Detach()
{
    const HWND hWnd = m_hWnd;
    const WNDPROC pOldProc = m_pOldProc;
    m_hWnd = nullptr;
    m_pOldProc = nullptr;
    // A handle that is somebody else's by now is left alone: another object's, or another window's
    // where a later subclass kept the end of ours to itself.
    bool bDoubted = false;
    if (!pOldProc || CUIWindowMapFind(hWnd, bDoubted) != this)
        return hWnd;
    if (GetPropA(hWnd, PropertyName()) != this) {
        CUIWindowMapRemove(hWnd);
        return hWnd;
    }
    if (GetProcedure(hWnd) == StaticWindowProc) {
        CUIWindowMapRemove(hWnd);
        SetProcedure(hWnd, pOldProc);
    } else {
        // Somebody subclassed after us and goes on calling our procedure.
        CUIWindowMapSet(hWnd, {nullptr, pOldProc});
        SetPropA(hWnd, IN_CHAIN, hWnd);
    }
    SetPropA(hWnd, PropertyName(), nullptr);
    return hWnd;
}

int CCUIWindow::Destroy()
{
    if (!Exist())
        return 0;
    // The end of the thread has taken its bindings away already when late objects go: globals, and
    // what an exit handler deletes. Their windows are still to be told.
    if (!FromHandle(m_hWnd))
        CUIWindowMapSet(m_hWnd, {this, m_pOldProc});
    return DestroyWindow(m_hWnd);
}

void CCUIWindow::InsertMessageHook(CCUIWindowHook *pHook)
{
    if (!pHook)
        return;
    if (!m_pHooks)
        m_pHooks = new CCUIWindowHookList;
    m_pHooks->Add(pHook);
}

void CCUIWindow::RemoveMessageHook(CCUIWindowHook *pHook)
{
    while (m_pHooks && m_pHooks->Remove(pHook)) {
    }
}

// The base OnDestroy: the object lets go first, so the message needs the handle and the procedure
// named.
void CCUIWindow::OnDestroy()
{
    SetContextMenu(nullptr);
    const HWND hWnd = m_hWnd;
    const WNDPROC pOldProc = m_pOldProc;
    Detach();
    CallProcedure(pOldProc, hWnd, WM_DESTROY, 0, 0);
}

int CCUIWindow::Exist() const
{
    return m_hWnd && IsWindow(m_hWnd) &&
           (FromHandle(m_hWnd) == this || GetPropA(m_hWnd, PropertyName()) == this);
}

bool CCUIWindow::HasWindow()
{
    if (m_hWnd && !Exist()) {
        m_bMissedDetach = 1;
        Detach();
    }
    return m_hWnd != nullptr;
}

HWND CCUIWindow::GetTopLevelWindow() const
{
    HWND hTop = m_hWnd;
    for (HWND hWnd = m_hWnd; hWnd; hWnd = ParentOf(hWnd))
        hTop = hWnd;
    return hTop;
}

HWND CCUIWindow::GetSafeOwner(HWND *phDisabled)
{
    HWND hOwner = m_hWnd;
    HWND hParent = ParentOf(hOwner);
    while (hParent && (GetWindowLongA(hOwner, GWL_STYLE) & WS_CHILD)) {
        hOwner = hParent;
        hParent = ParentOf(hOwner);
    }
    if (!phDisabled)
        return hOwner;
    *phDisabled = nullptr;
    const HWND hTop = GetTopLevelWindow();
    if (hTop != hOwner && IsWindowEnabled(hTop)) {
        EnableWindow(hTop, FALSE);
        *phDisabled = hTop;
    }
    return hOwner;
}

int CCUIWindow::SetAccelerators(ACCEL *pAccelerators, int nCount)
{
    if (m_hAccelerators)
        DestroyAcceleratorTable(m_hAccelerators);
    m_hAccelerators = nullptr;
    if (!pAccelerators || nCount <= 0)
        return 1;
    m_hAccelerators = CreateAcceleratorTableA(pAccelerators, nCount);
    return m_hAccelerators != nullptr;
}

int CCUIWindow::DisplayPopupMenu(CCUIMenu *pMenu, unsigned nFlags, POINT &point,
                                 const RECT *pExclude)
{
    if (!pMenu || !m_hWnd)
        return 0;
    TPMPARAMS params = {sizeof params, {}};
    if (pExclude)
        params.rcExclude = *pExclude;
    return TrackPopupMenuEx(pMenu->GetHandle(), nFlags, point.x, point.y, m_hWnd,
                            pExclude ? &params : nullptr);
}

int CCUIWindow::SendMessageToDescendants(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam,
                                         int *pnSent)
{
    if (!IsWindow(hWnd))
        return 0;
    // The system's own list: a walk from sibling to sibling has no end when they change places.
    const CSending sending = {message, wParam, lParam, pnSent};
    EnumChildWindows(hWnd, SendToDescendant, reinterpret_cast<LPARAM>(&sending));
    return 1;
}
