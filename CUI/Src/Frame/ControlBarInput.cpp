// The bar as its user sees it: mouse, keyboard, menus, tooltips.

#include "CUI/ControlBar.h"

#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "CUI/ToolTip.h"
#include "Command/CommandText.h"
#include "Control/ControlTip.h"
#include "Drawing/Look.h"
#include "Frame/BarItems.h"
#include "Menu/MenuClosing.h"
#include "Window/Input.h"
#include "Window/Mirrored.h"

namespace {

// Asks whether the mouse has left, where the system does not tell.
const UINT LEAVE_TIMER = 1;

// In a dialog the bar wants its keys while it has the focus.
long DialogCode(const MSG *pMsg)
{
    const bool bKey = pMsg && pMsg->message == WM_KEYDOWN &&
                      (pMsg->wParam == VK_RETURN || pMsg->wParam == VK_ESCAPE);
    return DLGC_WANTARROWS | (bKey ? DLGC_WANTMESSAGE : 0);
}

}  // namespace

HWND CCUIControlBar::s_hFocusBefore;

HWND CCUIControlBar::Target() const
{
    return m_hTarget ? m_hTarget : GetParent(m_hWnd);
}

int CCUIControlBar::HitTest(const POINT &point) const
{
    for (int i = 0; i <= m_pItems->Count(); ++i) {
        const bool bButton = i == m_pItems->Count() || (*m_pItems)[i].IsButton();
        if (bButton && PtInRect(&m_pItems->Place(i), point))
            return i;
    }
    return -1;
}

bool CCUIControlBar::CanPress(int nItem) const
{
    if (nItem < 0 || nItem > m_pItems->Count() || IsRectEmpty(&m_pItems->Place(nItem)))
        return false;
    const CCUIBarItem *const pItem = m_pItems->At(nItem);
    return !pItem || (pItem->IsButton() && (pItem->nState & CUI_COMMAND_ACTIVE));
}

// --- The lit item ---

void CCUIControlBar::SetHot(int nItem)
{
    if (nItem == m_nHot)
        return;
    CWatch watch(this);
    RepaintItem(m_nHot);
    m_nHot = nItem;
    RepaintItem(nItem);
    const CCUIBarItem *const pItem = m_pItems->At(nItem);
    const unsigned int nID = pItem ? pItem->GetCommand() : 0;
    ShowTip(nID);
    if (!watch.IsGone() && m_hWnd)
        SendMessageA(Target(), WM_MENUSELECT, MAKEWPARAM(nID, nID ? 0 : CUI_MENU_CLOSED), 0);
}

// Of the lit item, whose command that is.
void CCUIControlBar::ShowTip(unsigned int nID)
{
    CWatch watch(this);
    CCUICommandHandler *const pHandler = GetShowToolTips() ? CUIFindCommand(nID) : nullptr;
    const CCUString sTip = pHandler ? pHandler->GetShortTT(nID) : CCUString();
    if (watch.IsGone() || !m_hWnd)
        return;
    if (sTip.IsEmpty() || m_nHot < 0)
        CUIHideControlTip(m_hWnd);
    else
        CUIControlTip().SetTool(m_hWnd, &m_pItems->Place(m_nHot), sTip);
}

void CCUIControlBar::OnMouseMove(UINT nFlags, POINT &point)
{
    CWatch watch(this);
    if (!m_bTracking) {
        m_bTracking = true;
        if (!TrackMouseLeave())
            SetTimer(m_hWnd, LEAVE_TIMER, CUI_MOUSE_LOOK, nullptr);
    }
    if (m_bDragging) {
        POINT screen = point;
        ClientToScreen(m_hWnd, &screen);
        SetSide(SideAt(screen));
    } else if (m_nPressed < 0) {
        SetHot(HitTest(point));
    } else if (m_bInside != (HitTest(point) == m_nPressed)) {
        m_bInside = !m_bInside;
        RepaintItem(m_nPressed);
    }
    if (!watch.IsGone())
        CCUIControlWindow::OnMouseMove(nFlags, point);
}

void CCUIControlBar::MouseHasLeft()
{
    m_bTracking = false;
    if (GetFocus() != m_hWnd && m_nPressed < 0)
        SetHot(-1);
}

// --- Pressing ---

void CCUIControlBar::OnLButtonDown(UINT nFlags, POINT &point)
{
    const int nItem = HitTest(point);
    if (nItem < 0) {
        RECT client;
        GetClientRect(m_hWnd, &client);
        if (m_pItems->m_bGrip && PtInRect(&client, point))
            Drag();
        else
            CCUIControlWindow::OnLButtonDown(nFlags, point);
        return;
    }
    if (!CanPress(nItem))
        return;
    if (nItem == m_pItems->Count()) {
        OpenOverflow();
        return;
    }
    const CCUIBarItem &item = (*m_pItems)[nItem];
    const RECT rcArrow = CCUIBarItems::Arrow(item);
    if (PtInRect(&rcArrow, point)) {
        OpenMenu(nItem, *item.pMenu);
        return;
    }
    m_nPressed = nItem;
    m_bInside = true;
    RepaintItem(nItem);
    SetCapture(m_hWnd);
}

void CCUIControlBar::OnLButtonUp(UINT nFlags, POINT &point)
{
    CWatch watch(this);
    const int nItem = m_nPressed;
    const bool bInside = m_bInside;
    m_bDragging = false;
    EndPress();
    // While it was held nobody told that the mouse has left.
    if (!watch.IsGone() && !bInside && !CUIIsMouseOver(m_hWnd))
        SetHot(-1);
    if (watch.IsGone())
        return;
    if (nItem >= 0 && bInside)
        Press(nItem);
    else
        CCUIControlWindow::OnLButtonUp(nFlags, point);
}

// Nothing is pressed any more.
void CCUIControlBar::EndPress()
{
    RepaintItem(m_nPressed);
    m_nPressed = -1;
    m_bInside = false;
    if (GetCapture() == m_hWnd)
        ReleaseCapture();
}

// What the target does may be the end of the bar.
void CCUIControlBar::SendCommand(unsigned int nID)
{
    SendMessageA(Target(), WM_COMMAND, MAKEWPARAM(nID, 0), reinterpret_cast<LPARAM>(m_hWnd));
}

void CCUIControlBar::Press(int nItem)
{
    const CCUIBarItem *const pItem = m_pItems->At(nItem);
    if (pItem && CanPress(nItem))
        SendCommand(pItem->GetCommand());
}

void CCUIControlBar::OnCommand(UINT nCode, UINT nID, HWND hControl)
{
    CWatch watch(this);
    if (hControl && ReflectLastMessage(hControl, nullptr))
        return;
    if (!watch.IsGone())
        SendMessageA(Target(), WM_COMMAND, MAKEWPARAM(nID, nCode),
                     reinterpret_cast<LPARAM>(hControl));
}

long CCUIControlBar::OnNotify(UINT nID, NMHDR *pHeader)
{
    if (!pHeader)
        return CCUIControlWindow::OnNotify(nID, pHeader);
    CWatch watch(this);
    long result = 0;
    if (ReflectLastMessage(pHeader->hwndFrom, &result) || watch.IsGone())
        return result;
    return SendMessageA(Target(), WM_NOTIFY, nID, reinterpret_cast<LPARAM>(pHeader));
}

// --- Menus ---

// The item looks pressed while its menu is open. bOpen: it is about to be.
void CCUIControlBar::ShowMenuOpen(int nItem, bool bOpen)
{
    if (CCUIBarItem *const pItem = m_pItems->At(nItem))
        pItem->bArrow = bOpen;
    RepaintItem(nItem);
    if (bOpen) {
        m_nPressed = nItem;
        m_bInside = true;
    } else {
        EndPress();
    }
}

// Shows the menu beside the item that is at rcScreen. Answers the command that was chosen; 0: none.
int CCUIControlBar::ChooseBeside(CCUIMenu &menu, const RECT &rcScreen)
{
    // The menu of a mirrored window begins at the right and goes to the left.
    const bool bLeft = IsVertical() == CUIIsMirrored(m_hWnd);
    POINT point = {bLeft ? rcScreen.left : rcScreen.right,
                   IsVertical() ? rcScreen.top : rcScreen.bottom};
    CWatch watch(this);
    const UINT nFlags = TPM_RETURNCMD | (IsVertical() ? 0 : TPM_VERTICAL);
    const int nCommand = DisplayPopupMenu(&menu, nFlags, point, &rcScreen);
    if (!watch.IsGone() && m_hWnd)
        CUITakeClosingClick(m_hWnd, rcScreen);
    return nCommand;
}

void CCUIControlBar::OpenMenu(int nItem, CCUIMenu &menu)
{
    CWatch watch(this);
    ShowMenuOpen(nItem, true);
    RECT rcScreen = m_pItems->Place(nItem);
    MapWindowPoints(m_hWnd, nullptr, reinterpret_cast<POINT *>(&rcScreen), 2);
    const int nCommand = ChooseBeside(menu, rcScreen);
    if (watch.IsGone() || !m_hWnd)
        return;
    ShowMenuOpen(nItem, false);
    if (!watch.IsGone())
        LeaveKeyboard();
    if (!watch.IsGone() && !CUIIsMouseOver(m_hWnd))
        SetHot(-1);
    if (nCommand && !watch.IsGone())
        SendCommand(static_cast<unsigned int>(nCommand));
}

void CCUIControlBar::OpenOverflow()
{
    CWatch watch(this);
    CCUIMenu menu;
    bool bSeparator = false;
    for (int i = 0; !watch.IsGone() && i < m_pItems->Count(); ++i) {
        const CCUIBarItem &item = (*m_pItems)[i];
        if (!IsRectEmpty(&item.rc))
            continue;
        // Only between commands.
        bSeparator = bSeparator || item.IsSeparator();
        const unsigned int nID = item.GetCommand();
        CCUICommandHandler *const pHandler = CUIFindCommand(nID);
        if (!pHandler)
            continue;
        if (bSeparator && GetMenuItemCount(menu.GetHandle()) > 0)
            AppendMenuA(menu.GetHandle(), MF_SEPARATOR, 0, nullptr);
        bSeparator = false;
        AppendMenuA(menu.GetHandle(), MF_STRING, nID, pHandler->GetShortTT(nID));
    }
    if (!watch.IsGone())
        OpenMenu(m_pItems->Count(), menu);
}

// --- The keyboard ---

bool CCUIControlBar::ActivateNext(HWND hParent, bool bBack)
{
    const UINT nWay = bBack ? GW_HWNDPREV : GW_HWNDNEXT;
    const HWND hFocus = GetFocus();
    HWND hFirst = GetWindow(hParent, GW_CHILD);
    if (hFirst && bBack)
        hFirst = GetWindow(hFirst, GW_HWNDLAST);
    bool bActive = false;
    for (HWND hWnd = hFirst; hWnd && !bActive; hWnd = GetWindow(hWnd, nWay)) {
        bActive = Find(hWnd) && (hWnd == hFocus || IsChild(hWnd, hFocus));
        if (bActive)
            hFirst = GetWindow(hWnd, nWay);
    }
    for (HWND hWnd = hFirst; hWnd; hWnd = GetWindow(hWnd, nWay)) {
        if (Find(hWnd) && IsWindowVisible(hWnd) && IsWindowEnabled(hWnd)) {
            SetFocus(hWnd);
            return true;
        }
    }
    if (bActive)
        SetFocus(IsWindow(s_hFocusBefore) ? s_hFocusBefore : hParent);
    return bActive;
}

void CCUIControlBar::LeaveKeyboard()
{
    if (GetFocus() == m_hWnd)
        SetFocus(IsWindow(s_hFocusBefore) ? s_hFocusBefore : GetParent(m_hWnd));
}

void CCUIControlBar::TakeFocus(HWND hOld)
{
    const HWND hParent = GetParent(hOld);
    if (hOld && !Find(hOld) && !Find(hParent) && !Find(GetParent(hParent)))
        s_hFocusBefore = hOld;
    if (m_nHot < 0)
        SetHot(NextItem(-1, 1));
}

// The next item that can be pressed or is a window that takes the focus. After the last one comes
// the first; nFrom where there is no other.
int CCUIControlBar::NextItem(int nFrom, int nStep) const
{
    const int nPlaces = m_pItems->Count() + 1;
    int nItem = nFrom < 0 && nStep < 0 ? 0 : nFrom;
    for (int i = 0; i < nPlaces; ++i) {
        nItem = (nItem + nStep + nPlaces) % nPlaces;
        const CCUIBarItem *const pItem = m_pItems->At(nItem);
        const HWND hControl = pItem ? pItem->hControl : nullptr;
        const bool bStop = hControl && IsWindowVisible(hControl) && IsWindowEnabled(hControl) &&
                           (GetWindowLongA(hControl, GWL_STYLE) & WS_TABSTOP);
        if (bStop || CanPress(nItem))
            return nItem;
    }
    return nFrom;
}

// The item whose window that is, or contains that; -1: none.
int CCUIControlBar::FindControl(HWND hWnd) const
{
    for (int i = 0; i < m_pItems->Count(); ++i) {
        const HWND hControl = (*m_pItems)[i].hControl;
        if (hControl && (hWnd == hControl || IsChild(hControl, hWnd)))
            return i;
    }
    return -1;
}

void CCUIControlBar::GoTo(int nItem)
{
    const CCUIBarItem *const pItem = m_pItems->At(nItem);
    if (pItem && pItem->hControl)
        SetFocus(pItem->hControl);
    else
        SetHot(nItem);
}

void CCUIControlBar::PressByKey()
{
    const int nItem = m_nHot;
    if (!CanPress(nItem))
        return;
    if (nItem == m_pItems->Count()) {
        OpenOverflow();
        return;
    }
    // The command is for the window that had the focus.
    CWatch watch(this);
    LeaveKeyboard();
    if (!watch.IsGone() && m_hWnd)
        Press(nItem);
}

void CCUIControlBar::OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    if ((nKey == VK_LEFT || nKey == VK_RIGHT) && CUIIsMirrored(m_hWnd))
        nKey = VK_LEFT + VK_RIGHT - nKey;
    const CCUIBarItem *const pItem = m_pItems->At(m_nHot);
    if (pItem && pItem->pMenu && nKey == (IsVertical() ? VK_RIGHT : VK_DOWN)) {
        if (CanPress(m_nHot))
            OpenMenu(m_nHot, *pItem->pMenu);
        return;
    }
    switch (nKey) {
    case VK_LEFT:
    case VK_UP: GoTo(NextItem(m_nHot, -1)); break;
    case VK_RIGHT:
    case VK_DOWN: GoTo(NextItem(m_nHot, 1)); break;
    case VK_HOME: GoTo(NextItem(-1, 1)); break;
    case VK_END: GoTo(NextItem(0, -1)); break;
    case VK_RETURN:
    case VK_SPACE: PressByKey(); break;
    case VK_ESCAPE: LeaveKeyboard(); break;
    default: CCUIControlWindow::OnKeyDown(nKey, nRepeat, nFlags); break;
    }
}

int CCUIControlBar::PreTranslateMessage(MSG *pMsg)
{
    if (pMsg->message != WM_KEYDOWN || pMsg->wParam != VK_TAB || pMsg->hwnd == m_hWnd)
        return CCUIControlWindow::PreTranslateMessage(pMsg);
    const int nItem = FindControl(pMsg->hwnd);
    if (nItem < 0)
        return CCUIControlWindow::PreTranslateMessage(pMsg);
    CWatch watch(this);
    SetFocus(m_hWnd);
    if (!watch.IsGone() && m_hWnd)
        GoTo(NextItem(nItem, GetKeyState(VK_SHIFT) < 0 ? -1 : 1));
    return 1;
}

// A focus that would be lost goes on as by Tab, or back where there is no other item to go to.
void CCUIControlBar::EnableControl(HWND hControl, bool bEnable)
{
    CWatch watch(this);
    const HWND hFocus = GetFocus();
    const bool bPassOn = !bEnable && (hFocus == hControl || IsChild(hControl, hFocus));
    if (bPassOn)
        SetFocus(m_hWnd);
    if (!watch.IsGone())
        EnableWindow(hControl, bEnable);
    if (!bPassOn || watch.IsGone() || !m_hWnd)
        return;
    const int nItem = FindControl(hControl);
    const int nNext = NextItem(nItem, 1);
    if (nNext == nItem)
        LeaveKeyboard();
    else
        GoTo(nNext);
}

// --- Messages ---

SIZE CCUIControlBar::NaturalSize() const
{
    const int nThickness = m_pItems->Thickness(IsVertical());
    const int nLength = m_pItems->Length(IsVertical());
    return IsVertical() ? SIZE{nThickness, nLength} : SIZE{nLength, nThickness};
}

void CCUIControlBar::LoseCapture()
{
    RepaintItem(m_nPressed);
    m_nPressed = -1;
    m_bDragging = false;
}

void CCUIControlBar::LoseWindow()
{
    CUIHideControlTip(m_hWnd);
    m_nHot = m_nPressed = -1;
    m_bTracking = false;
}

// For LEAVE_TIMER.
void CCUIControlBar::LookForMouse()
{
    if (CUIIsMouseOver(m_hWnd))
        return;
    KillTimer(m_hWnd, LEAVE_TIMER);
    MouseHasLeft();
}

// What a message does before the base class gets it. True: it was all, the base does not get it.
bool CCUIControlBar::Handle(UINT message, WPARAM wParam, LPARAM lParam, long &result)
{
    switch (message) {
    case WM_SYSCOLORCHANGE: m_pItems->RefreshPictures(); return false;
    case WM_MOUSELEAVE: MouseHasLeft(); return false;
    case WM_CANCELMODE: EndPress(); return false;
    case WM_KILLFOCUS: SetHot(-1); return false;
    case WM_CAPTURECHANGED: LoseCapture(); return false;
    case WM_DESTROY: LoseWindow(); return false;
    case WM_MENUSELECT: SendMessageA(Target(), message, wParam, lParam); return true;
    case WM_ERASEBKGND: result = 1; return true;
    case WM_GETDLGCODE: result = DialogCode(reinterpret_cast<const MSG *>(lParam)); return true;
    case CUI_WM_NATURALSIZE:
        *reinterpret_cast<SIZE *>(lParam) = NaturalSize();
        result = 1;
        return true;
    case WM_TIMER:
        if (wParam != LEAVE_TIMER)
            return false;
        LookForMouse();
        return true;
    case WM_SETCURSOR:
        if (reinterpret_cast<HWND>(wParam) == m_hWnd && LOWORD(lParam) == HTCLIENT)
            result = ShowDragCursor();
        return result != 0;
    default: return false;
    }
}

long CCUIControlBar::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    CWatch watch(this);
    long result = 0;
    if (message == WM_LBUTTONDBLCLK)
        message = WM_LBUTTONDOWN;
    if (Handle(message, wParam, lParam, result) || watch.IsGone())
        return result;
    result = CCUIControlWindow::WindowProc(message, wParam, lParam);
    if (watch.IsGone() || !m_hWnd)
        return result;
    switch (message) {
    case WM_SIZE: Relayout(); break;
    case WM_SETFOCUS: TakeFocus(reinterpret_cast<HWND>(wParam)); break;
    case WM_ENABLE:
    case WM_SYSCOLORCHANGE: Repaint(); break;
    case WM_WININICHANGE:
        m_pItems->ForgetSizes();
        ItemsChanged();
        break;
    default:
        // After the handlers, since a move of the mouse may have given the tip to another item.
        if (message >= WM_MOUSEFIRST && message <= WM_MBUTTONUP)
            CUIRelayToControlTip(m_hWnd, message, wParam, lParam);
        break;
    }
    return result;
}
