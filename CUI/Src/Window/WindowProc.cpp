// The message table: one line a message, then the base handlers.

#include "CUI/Window.h"
#include "CUI/Menu.h"
#include "Window/MessageArgs.h"
#include "Window/WindowMessage.h"

namespace {

// The framework's own messages.
constexpr UINT s_nSetWindowState = WM_USER + 0x35;
constexpr UINT s_nShowToolTips = WM_USER + 0x38;

}  // namespace

long CCUIWindow::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    CPointArg point(lParam);
    const auto w = static_cast<UINT>(wParam);

    // clang-format off
    switch (message) {
    case WM_CREATE:         return OnCreate(HandleArg<CREATESTRUCTA *>(lParam));
    case WM_DESTROY:        OnDestroy(); return 0;
    case WM_SIZE:           OnSize(w, static_cast<int>(LowArg(lParam)), static_cast<int>(HighArg(lParam))); return 0;
    case WM_ACTIVATE:       OnActivate(LowArg(wParam), HighArg(wParam), HandleArg<HWND>(lParam)); return 0;
    case WM_SETFOCUS:       OnSetFocus(HandleArg<HWND>(wParam)); return 0;
    case WM_KILLFOCUS:      OnKillFocus(HandleArg<HWND>(wParam)); return 0;
    case WM_PAINT:          OnPaint(HandleArg<HDC>(wParam)); return 0;
    case WM_CLOSE:          OnClose(); return 0;
    case WM_ERASEBKGND:     return OnEraseBkgnd(HandleArg<HDC>(wParam));
    case WM_SYSCOLORCHANGE: OnSysColorChange(); return 0;
    case WM_SHOWWINDOW:     OnShowWindow(static_cast<int>(wParam), lParam); return 0;
    case WM_WININICHANGE:   OnWinIniChange(wParam, HandleArg<const char *>(lParam)); return 0;
    case WM_CANCELMODE:     OnCancelMode(); return 0;
    case WM_SETCURSOR:      return OnSetCursor(HandleArg<HWND>(wParam), LowArg(lParam), HighArg(lParam));
    case WM_DRAWITEM:       return OnDrawItem(w, HandleArg<DRAWITEMSTRUCT *>(lParam));
    case WM_MEASUREITEM:    return OnMeasureItem(w, HandleArg<MEASUREITEMSTRUCT *>(lParam));
    case WM_NOTIFY:         return OnNotify(w, HandleArg<NMHDR *>(lParam));
    case WM_CONTEXTMENU:    OnContextMenu(HandleArg<HWND>(wParam), point); return 0;
    case WM_COMMAND:        OnCommand(HighArg(wParam), LowArg(wParam), HandleArg<HWND>(lParam)); return 0;
    case WM_INITMENUPOPUP:  OnInitMenuPopup(HandleArg<HMENU>(wParam), LowArg(lParam), static_cast<int>(HighArg(lParam))); return 0;
    case WM_MENUSELECT:     OnMenuSelect(LowArg(wParam), HighArg(wParam), HandleArg<HMENU>(lParam)); return 0;
    case WM_MENUCHAR:       return OnMenuChar(LowArg(wParam) & 0xFF, HighArg(wParam), HandleArg<HMENU>(lParam));
    case WM_MOUSEMOVE:      OnMouseMove(w, point); return 0;
    case WM_LBUTTONDOWN:    OnLButtonDown(w, point); return 0;
    case WM_LBUTTONUP:      OnLButtonUp(w, point); return 0;
    case WM_LBUTTONDBLCLK:  OnLButtonDblClk(w, point); return 0;
    case WM_RBUTTONDOWN:    OnRButtonDown(w, point); return 0;
    case WM_RBUTTONUP:      OnRButtonUp(w, point); return 0;
    case WM_RBUTTONDBLCLK:  OnRButtonDblClk(w, point); return 0;
    case WM_PARENTNOTIFY:   OnParentNotify(LowArg(wParam), HighArg(wParam), lParam); return 0;
    case WM_CAPTURECHANGED: OnCaptureChanged(HandleArg<HWND>(lParam)); return 0;
    case s_nSetWindowState: OnSetWindowState(w); return 0;
    case s_nShowToolTips:   OnShowToolTips(static_cast<int>(wParam)); return 0;
    default:                return OnMessage(message, wParam, lParam);
    }
    // clang-format on
}

// --- Handlers that leave the message to default processing ---

// clang-format off
int CCUIWindow::OnCreate(CREATESTRUCTA *) { return Default(); }
void CCUIWindow::OnClose() { Default(); }
void CCUIWindow::OnActivate(UINT, UINT, HWND) { Default(); }
void CCUIWindow::OnSize(UINT, int, int) { Default(); }
void CCUIWindow::OnPaint(HDC) { Default(); }
int CCUIWindow::OnEraseBkgnd(HDC) { return Default(); }
void CCUIWindow::OnLButtonDown(UINT, POINT &) { Default(); }
void CCUIWindow::OnLButtonUp(UINT, POINT &) { Default(); }
void CCUIWindow::OnLButtonDblClk(UINT, POINT &) { Default(); }
void CCUIWindow::OnRButtonDown(UINT, POINT &) { Default(); }
void CCUIWindow::OnRButtonUp(UINT, POINT &) { Default(); }
void CCUIWindow::OnRButtonDblClk(UINT, POINT &) { Default(); }
void CCUIWindow::OnMouseMove(UINT, POINT &) { Default(); }
void CCUIWindow::OnShowWindow(int, int) { Default(); }
int CCUIWindow::OnSetCursor(HWND, UINT, UINT) { return Default(); }
void CCUIWindow::OnSetFocus(HWND) { Default(); }
void CCUIWindow::OnKillFocus(HWND) { Default(); }
void CCUIWindow::OnParentNotify(UINT, UINT, LPARAM) { Default(); }
void CCUIWindow::OnMenuSelect(UINT, UINT, HMENU) { Default(); }
void CCUIWindow::OnInitMenuPopup(HMENU, UINT, int) { Default(); }
long CCUIWindow::OnMenuChar(UINT, UINT, HMENU) { return Default(); }
void CCUIWindow::OnCancelMode() { Default(); }
void CCUIWindow::OnCaptureChanged(HWND) { Default(); }
void CCUIWindow::OnSetWindowState(UINT) { Default(); }
// clang-format on

// --- Handlers with something of their own to do ---

void CCUIWindow::OnContextMenu(HWND, POINT &point)
{
    if (!m_pContextMenu) {
        Default();
        return;
    }
    POINT at = point;
    if (at.x == -1 && at.y == -1) {
        // Asked for by the keyboard: nowhere in particular.
        at.x = at.y = 0;
        ClientToScreen(m_hWnd, &at);
    }
    DisplayPopupMenu(m_pContextMenu, TPM_LEFTALIGN | TPM_RIGHTBUTTON, at, nullptr);
}

void CCUIWindow::OnShowToolTips(int bShow)
{
    m_bShowToolTips = bShow;
    Default();
}

int CCUIWindow::PreTranslateMessage(MSG *pMsg)
{
    return m_hAccelerators && TranslateAcceleratorA(m_hWnd, m_hAccelerators, pMsg);
}

// --- Messages that a child sent come back to the child first ---

long CCUIWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ReflectOrDefault(FindReflectChild(message, wParam, lParam));
}

long CCUIWindow::OnNotify(UINT, NMHDR *pHeader)
{
    return ReflectOrDefault(pHeader ? pHeader->hwndFrom : nullptr);
}

void CCUIWindow::OnCommand(UINT, UINT, HWND hControl)
{
    ReflectOrDefault(hControl);
}

int CCUIWindow::OnDrawItem(UINT, DRAWITEMSTRUCT *pDraw)
{
    return ReflectOrDefault(pDraw && pDraw->CtlType != ODT_MENU ? pDraw->hwndItem : nullptr);
}

int CCUIWindow::OnMeasureItem(UINT nID, MEASUREITEMSTRUCT *pMeasure)
{
    const bool bControl = pMeasure && pMeasure->CtlType != ODT_MENU;
    return ReflectOrDefault(bControl ? GetDlgItem(m_hWnd, static_cast<int>(nID)) : nullptr);
}

// The child that sent one of the messages without a handler of their own; null for all others.
HWND CCUIWindow::FindReflectChild(UINT message, WPARAM, LPARAM lParam) const
{
    switch (message) {
    case WM_CTLCOLORMSGBOX:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSCROLLBAR:
    case WM_CTLCOLORSTATIC:
    case WM_HSCROLL:
    case WM_VSCROLL:
    case WM_CHARTOITEM:
    case WM_VKEYTOITEM: return HandleArg<HWND>(lParam);
    case WM_COMPAREITEM: return lParam ? HandleArg<COMPAREITEMSTRUCT *>(lParam)->hwndItem : nullptr;
    case WM_DELETEITEM: return lParam ? HandleArg<DELETEITEMSTRUCT *>(lParam)->hwndItem : nullptr;
    default: return nullptr;
    }
}

long CCUIWindow::ReflectOrDefault(HWND hChild)
{
    CWatch watch(this);
    long result = 0;
    if (hChild && ReflectLastMessage(hChild, &result))
        return result;
    return watch.IsGone() ? 0 : Default();
}

int CCUIWindow::ReflectLastMessage(HWND hChild, long *pResult)
{
    CCUIWindow *const pChild = FromHandle(hChild);
    // A dialog is asked about its own colour with its own handle.
    if (!m_pMessage || !pChild || pChild == this)
        return 0;
    const CMessage &message = *m_pMessage;
    long result = 0;
    int bHandled = 0;
    if (message.m_message == WM_NOTIFY)
        bHandled = pChild->OnReflectedNotification(static_cast<UINT>(message.m_wParam),
                                                   HandleArg<NMHDR *>(message.m_lParam), result);
    else
        bHandled = pChild->OnReflectedMessage(message.m_message, message.m_wParam, message.m_lParam,
                                              result);
    if (bHandled && pResult)
        *pResult = result;
    return bHandled;
}

int CCUIWindow::OnReflectedNotification(UINT, NMHDR *, long &)
{
    return 0;
}

int CCUIWindow::OnReflectedMessage(UINT, WPARAM, LPARAM, long &)
{
    return 0;
}
