#include "CUI/Window.h"

#include "Base/SystemLibrary.h"
#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/Menu.h"
#include "Window/WindowBinding.h"
#include "Window/WindowHookList.h"
#include "Window/WindowText.h"
#include "Window/WindowThread.h"

namespace {

// The parent or owner, but not the desktop: no program may disable that or make it an owner.
HWND ParentOf(HWND hWnd)
{
    const HWND hParent = GetParent(hWnd);
    return hParent == GetDesktopWindow() ? nullptr : hParent;
}

typedef BOOL WINAPI TrackCall(TRACKMOUSEEVENT *);

// Windows 95 has it in comctl32.dll at the most, and only in a later one.
TrackCall *FindTrack()
{
    TrackCall *const pTrack = CUFindFunction<TrackCall>("user32.dll", "TrackMouseEvent");
    return pTrack ? pTrack : CUFindFunction<TrackCall>("comctl32.dll", "_TrackMouseEvent");
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

}  // namespace

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
      m_bRoutesCommands(false),
      m_bMissedDetach(0),
      m_hCreated(nullptr),
      m_pMessages(nullptr),
      m_pLife(nullptr),
      m_pHooks(nullptr)
{
}

CCUIWindow::~CCUIWindow()
{
    m_bDead = 1;
    // The thread's next window must not be bound to an object that is gone.
    CUIWindowThread::StopWaiting(this);
    if (Exist() && CUILeadsTo(m_hWnd, this)) {
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
    EndLife();
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

int CCUIWindow::TrackMouseLeave()
{
    static TrackCall *s_track;
    if (!s_track)
        s_track = FindTrack();
    TRACKMOUSEEVENT event = {sizeof event, TME_LEAVE, m_hWnd, 0};
    return s_track && s_track(&event);
}

int CCUIWindow::SendMessageToDescendants(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam,
                                         int *pnSent)
{
    if (!IsWindow(hWnd))
        return 0;
    // Not a walk from sibling to sibling: it may have no end where windows change places meanwhile.
    const CSending sending = {message, wParam, lParam, pnSent};
    EnumChildWindows(hWnd, SendToDescendant, reinterpret_cast<LPARAM>(&sending));
    return 1;
}

// --- What programs do daily ---

void CCUIWindow::Show(bool bShow)
{
    ShowWindow(m_hWnd, bShow ? SW_SHOW : SW_HIDE);
}

bool CCUIWindow::IsShown() const
{
    return (GetWindowLongA(m_hWnd, GWL_STYLE) & WS_VISIBLE) != 0;
}

void CCUIWindow::Enable(bool bEnable)
{
    EnableWindow(m_hWnd, bEnable);
}

bool CCUIWindow::IsEnabled() const
{
    return IsWindowEnabled(m_hWnd) != 0;
}

void CCUIWindow::Focus()
{
    if (m_hWnd)
        SetFocus(m_hWnd);
}

bool CCUIWindow::HasFocus() const
{
    return m_hWnd && GetFocus() == m_hWnd;
}

void CCUIWindow::SetText(const char *pszText)
{
    SetWindowTextA(m_hWnd, pszText ? pszText : "");
}

CCUString CUIWindowText(HWND hWnd)
{
    CCUString sText;
    const int nLength = GetWindowTextLengthA(hWnd);
    if (nLength > 0) {
        GetWindowTextA(hWnd, sText.GetBuffer(nLength), nLength + 1);
        sText.ReleaseBuffer();
    }
    return sText;
}

CCUString CCUIWindow::GetText() const
{
    return CUIWindowText(m_hWnd);
}

RECT CCUIWindow::GetPlace() const
{
    RECT rect = {0, 0, 0, 0};
    GetWindowRect(m_hWnd, &rect);
    if (GetWindowLongA(m_hWnd, GWL_STYLE) & WS_CHILD)
        MapWindowPoints(nullptr, GetParent(m_hWnd), reinterpret_cast<POINT *>(&rect), 2);
    return rect;
}

void CCUIWindow::Move(const RECT &place)
{
    SetWindowPos(m_hWnd, nullptr, place.left, place.top, CUIWidth(place), CUIHeight(place),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

RECT CCUIWindow::GetClientArea() const
{
    RECT rect = {0, 0, 0, 0};
    GetClientRect(m_hWnd, &rect);
    return rect;
}

void CCUIWindow::Invalidate(const RECT *prc)
{
    if (m_hWnd)
        InvalidateRect(m_hWnd, prc, TRUE);
}
