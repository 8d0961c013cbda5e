#include "CUI/ControlWindow.h"

#include "CU/Assert.h"
#include "CUI/Data.h"
#include "CUI/LayoutWindow.h"
#include "CUI/WindowClass.h"
#include "Control/ControlProperty.h"
#include "Window/WindowText.h"

#define CU_SOURCE "ControlWindow"

namespace {

const int DEFAULT_FIXED_SIZE = 20;
const unsigned long DEFAULT_LAYOUT_FLAGS = 4;
// The layout flags that concern the parent's other children too.
const unsigned long WHOLE_LAYOUT_FLAGS = 0xFFFF0F00;

// The class of dialogs.
const DWORD DIALOG_ATOM = 0x8002;

const LONG KIND_OF_WINDOW = static_cast<LONG>(WS_POPUP | WS_CHILD);

void SetKindOfWindow(HWND hWnd, DWORD nKind)
{
    const LONG nStyle = GetWindowLongA(hWnd, GWL_STYLE);
    SetWindowLongA(hWnd, GWL_STYLE, (nStyle & ~KIND_OF_WINDOW) | static_cast<LONG>(nKind));
}

void RegisterControlClass()
{
    WNDCLASSA windowClass = {};
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hCursor = CUIGetWinData()->hcurArrow;
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszClassName = CUI_CONTROL_PROPERTY;
    CUIRegisterWindowClass(&windowClass);
}

}  // namespace

const CCUString g_sControlWindowProp(CUI_CONTROL_PROPERTY);

CCUIControlWindow::CCUIControlWindow()
    : m_propData{DEFAULT_FIXED_SIZE, CUI_NO_WINDOW_COLOR, DEFAULT_LAYOUT_FLAGS, 0, 0},
      m_rcSaved(),
      m_hSavedParent(nullptr),
      m_hSavedPredecessor(nullptr),
      m_hSavedFocus(nullptr),
      m_pEventCallback(nullptr),
      m_bSwitching(0),
      m_hPropertyOwner(nullptr)
{
}

// The property must not lead to an object that is gone. OnDestroy takes it away, but not from a
// window that was detached, nor when the base's destructor destroys the window.
CCUIControlWindow::~CCUIControlWindow()
{
    PublishLayoutData(nullptr);
}

void CCUIControlWindow::PublishLayoutData(HWND hWnd)
{
    if (m_hPropertyOwner && GetPropA(m_hPropertyOwner, CUI_CONTROL_PROPERTY) == &m_propData)
        SetPropA(m_hPropertyOwner, CUI_CONTROL_PROPERTY, nullptr);
    m_hPropertyOwner = hWnd;
    if (hWnd)
        CU_ASSERT_TEXT(SetPropA(hWnd, CUI_CONTROL_PROPERTY, &m_propData),
                       "SetProp(*this, g_sControlWindowProp, (HANDLE)&m_propData)");
}

int CCUIControlWindow::PreCreate(CREATESTRUCTA *pCreate)
{
    if (!pCreate->lpszClass) {
        RegisterControlClass();
        pCreate->lpszClass = CUI_CONTROL_PROPERTY;
    }
    return CCUIWindow::PreCreate(pCreate);
}

int CCUIControlWindow::OnCreate(CREATESTRUCTA *pCreate)
{
    CWatch watch(this);
    const int nResult = CCUIWindow::OnCreate(pCreate);
    if (nResult == -1 || watch.IsGone())
        return nResult;
    PublishLayoutData(m_hWnd);
    return nResult;
}

void CCUIControlWindow::OnDestroy()
{
    CU_ASSERT_TEXT(SetPropA(m_hWnd, CUI_CONTROL_PROPERTY, nullptr),
                   "SetProp(*this, g_sControlWindowProp, (HANDLE)0)");
    // The object's next window starts as a child.
    m_propData.bFullScreen = 0;
    CCUIWindow::OnDestroy();
}

void CCUIControlWindow::SetWindowEventCallback(CCUIWindowEventCallback *pCallback)
{
    m_pEventCallback = pCallback;
}

// The parent to be told of a change, or null.
HWND CCUIControlWindow::GetLayoutParent() const
{
    return Exist() ? GetParent(m_hWnd) : nullptr;
}

void CCUIControlWindow::SetLayoutFlags(unsigned long nFlags)
{
    const unsigned long nOld = m_propData.nLayoutFlags;
    if (nFlags == nOld)
        return;
    m_propData.nLayoutFlags = nFlags;
    HWND hParent = GetLayoutParent();
    if (!hParent || m_propData.bColorChanging)
        return;
    if ((nOld | nFlags) & WHOLE_LAYOUT_FLAGS) {
        SendMessageA(hParent, CUI_WM_LAYOUT, 0, CUI_LAYOUT_ALL);
        UpdateWindow(hParent);
    } else {
        SendMessageA(hParent, CUI_WM_LAYOUT, reinterpret_cast<WPARAM>(m_hWnd), CUI_LAYOUT_CHANGED);
    }
}

void CCUIControlWindow::SetFixedSize(int nSize)
{
    if (nSize == m_propData.nFixedSize)
        return;
    m_propData.nFixedSize = nSize;
    HWND hParent = GetLayoutParent();
    if (hParent && !m_propData.bColorChanging)
        SendMessageA(hParent, CUI_WM_LAYOUT, reinterpret_cast<WPARAM>(m_hWnd), CUI_LAYOUT_CHANGED);
}

void CCUIControlWindow::SetColorChanging(int bChanging)
{
    m_propData.bColorChanging = bChanging;
}

void CCUIControlWindow::SetWindowColor(unsigned long crWindow)
{
    if (crWindow == m_propData.crWindow)
        return;
    m_propData.bColorChanging = 0;
    m_propData.crWindow = crWindow;
    if (!Exist())
        return;
    HWND hWnd = m_hWnd;
    if (HWND hParent = GetParent(hWnd)) {
        RECT rect;
        GetWindowRect(hWnd, &rect);
        MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT *>(&rect), 2);
        InflateRect(&rect, 2, 2);
        InvalidateRect(hParent, &rect, TRUE);
        UpdateWindow(hParent);
    }
    InvalidateRect(hWnd, nullptr, TRUE);
    UpdateWindow(hWnd);
}

void CCUIControlWindow::SetFullScreen(int bFull)
{
    bFull = bFull ? 1 : 0;
    if (bFull == m_propData.bFullScreen || !Exist())
        return;
    m_propData.bFullScreen = bFull;
    // Asked for by a handler during a transition: that is finished first, since the placement to go
    // back to is not complete before. The loop below, further up on the stack, then goes on with
    // the other one.
    if (m_bSwitching)
        return;
    CWatch watch(this);
    m_bSwitching = 1;
    int bReached = !bFull;
    while (bReached != m_propData.bFullScreen && Exist()) {
        bReached = m_propData.bFullScreen;
        HWND hWnd = m_hWnd;
        ShowWindow(hWnd, SW_HIDE);
        if (watch.IsGone())
            return;
        const bool bStands = bReached ? EnterFullScreen(hWnd) : LeaveFullScreen(hWnd);
        if (!bStands)
            return;
    }
    m_bSwitching = 0;
}

// Both transitions answer false when a handler has deleted the object.
bool CCUIControlWindow::EnterFullScreen(HWND hWnd)
{
    CWatch watch(this);
    const int cxScreen = GetSystemMetrics(SM_CXSCREEN);
    const int cyScreen = GetSystemMetrics(SM_CYSCREEN);
    HWND hFocus = SetFocus(hWnd);
    if (watch.IsGone())
        return false;
    m_hSavedFocus = hFocus;
    GetWindowRect(hWnd, &m_rcSaved);
    MapWindowPoints(nullptr, GetParent(hWnd), reinterpret_cast<POINT *>(&m_rcSaved), 2);
    m_hSavedPredecessor = GetWindow(hWnd, GW_HWNDPREV);
    HWND hParent = SetParent(hWnd, GetDesktopWindow());
    if (watch.IsGone())
        return false;
    m_hSavedParent = hParent;
    SetWindowLongA(hWnd, GWL_EXSTYLE, GetWindowLongA(hWnd, GWL_EXSTYLE) | WS_EX_TOOLWINDOW);
    SetKindOfWindow(hWnd, WS_POPUP);
    if (watch.IsGone() || !TellCallback("InFullScreen"))
        return false;
    SetWindowPos(hWnd, HWND_TOPMOST, 0, 0, cxScreen, cyScreen, SWP_SHOWWINDOW);
    SetForegroundWindow(hWnd);
    return !watch.IsGone();
}

bool CCUIControlWindow::LeaveFullScreen(HWND hWnd)
{
    CWatch watch(this);
    SetWindowLongA(hWnd, GWL_EXSTYLE,
                   GetWindowLongA(hWnd, GWL_EXSTYLE) & ~(WS_EX_TOOLWINDOW | WS_EX_TOPMOST));
    SetKindOfWindow(hWnd, WS_CHILD);
    if (watch.IsGone())
        return false;
    HWND hParent = m_hSavedParent;
    SetParent(hWnd, hParent);
    if (watch.IsGone() || !TellCallback("OutOfFullScreen"))
        return false;
    // A window that was the uppermost, or whose predecessor has gone elsewhere, becomes the
    // uppermost, but no longer a topmost one. Behind a predecessor the system sees to that itself.
    HWND hFocus = m_hSavedFocus;
    HWND hAfter = GetParent(m_hSavedPredecessor) == hParent ? m_hSavedPredecessor : HWND_NOTOPMOST;
    SetWindowPos(hWnd, hAfter, m_rcSaved.left, m_rcSaved.top, m_rcSaved.right - m_rcSaved.left,
                 m_rcSaved.bottom - m_rcSaved.top, SWP_SHOWWINDOW);
    SetFocus(hFocus);
    return !watch.IsGone();
}

bool CCUIControlWindow::TellCallback(const char *pszEvent)
{
    CWatch watch(this);
    if (m_pEventCallback)
        m_pEventCallback->OnWindowEvent(pszEvent);
    return !watch.IsGone();
}

int CCUIControlWindow::GetFixedSize()
{
    return m_propData.nFixedSize;
}

unsigned long CCUIControlWindow::GetWindowColor()
{
    return m_propData.crWindow;
}

unsigned long CCUIControlWindow::GetLayoutFlags()
{
    return m_propData.nLayoutFlags;
}

int CCUIControlWindow::GetColorChanging()
{
    return m_propData.bColorChanging;
}

int CCUIControlWindow::GetFullScreen()
{
    return m_propData.bFullScreen;
}

void CCUIControlWindow::OnShowWindow(int bShow, int nStatus)
{
    HWND hWnd = m_hWnd;
    CCUIWindow::OnShowWindow(bShow, nStatus);
    if (HWND hParent = GetParent(hWnd)) {
        PostMessageA(hParent, CUI_WM_LAYOUT, reinterpret_cast<WPARAM>(hWnd),
                     bShow ? CUI_LAYOUT_SHOWN : CUI_LAYOUT_HIDDEN);
    }
}

void CCUIControlWindow::OnSetFocus(HWND hOld)
{
    CWatch watch(this);
    SendMessageA(GetParent(m_hWnd), CUI_WM_CHILDFOCUS, reinterpret_cast<WPARAM>(m_hWnd), 0);
    if (!watch.IsGone())
        CCUIWindow::OnSetFocus(hOld);
}

int CCUIControlWindow::PreTranslateMessage(MSG *pMsg)
{
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_TAB) {
        return SendMessageA(GetParent(m_hWnd), CUI_WM_TABKEY, reinterpret_cast<WPARAM>(m_hWnd), 0);
    }
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_ESCAPE && m_propData.bFullScreen) {
        CWatch watch(this);
        SetFullScreen(FALSE);
        if (watch.IsGone())
            return 1;
    }
    return CCUIWindow::PreTranslateMessage(pMsg);
}

void CCUIControlWindow::OnCancelMode()
{
    CWatch watch(this);
    if (m_propData.bFullScreen)
        SetFullScreen(FALSE);
    if (!watch.IsGone())
        CCUIWindow::OnCancelMode();
}

void CCUIControlWindow::NaturalSizeChanged()
{
    if (m_hWnd && (m_propData.nLayoutFlags & CUI_PLACE_FIT))
        SendMessageA(GetParent(m_hWnd), CUI_WM_LAYOUT, reinterpret_cast<WPARAM>(m_hWnd),
                     CUI_LAYOUT_CHANGED);
}

bool CCUIControlWindow::IsInDialog() const
{
    const HWND hParent = m_hWnd ? GetParent(m_hWnd) : nullptr;
    return hParent && GetClassLongA(hParent, GCW_ATOM) == DIALOG_ATOM;
}

void CCUIControlWindow::PassFocusOn()
{
    const HWND hWnd = m_hWnd;
    const HWND hParent = GetParent(hWnd);
    if (IsInDialog())
        SendMessageA(hParent, WM_NEXTDLGCTL, 0, 0);
    else
        SendMessageA(hParent, CUI_WM_TABKEY, reinterpret_cast<WPARAM>(hWnd), 0);
    if (GetFocus() == hWnd)
        SetFocus(hParent);
}

CCUString CCUIControlWindow::TextOf(HWND hWnd)
{
    return CUIWindowText(hWnd);
}
