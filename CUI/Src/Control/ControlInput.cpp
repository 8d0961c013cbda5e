// What mouse and keyboard do to own-drawn controls.

#include "CUI/Control.h"

#include "CUI/ToolTip.h"
#include "Control/ControlTip.h"
#include "Menu/MenuClosing.h"
#include "Window/Input.h"

long CCUIControl::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message >= WM_MOUSEFIRST && message <= WM_MBUTTONDBLCLK)
        CUIRelayToControlTip(m_hWnd, message, wParam, lParam);
    return CCUIControlWindow::WindowProc(message, wParam, lParam);
}

// --- Pressing ---

void CCUIControl::BeginPress(Press press)
{
    CWatch watch(this);
    m_press = press;
    // Handlers of the window that loses the capture may do anything.
    SetCapture(m_hWnd);
    if (watch.IsGone() || m_press != press)
        return;
    SetState(CUI_STATE_PRESSED, true);
    OnPress();
}

void CCUIControl::EndPress(bool bInside)
{
    CWatch watch(this);
    const bool bRelease = bInside && (m_nState & CUI_STATE_PRESSED);
    CancelPress();
    if (watch.IsGone() || !bRelease || !m_hWnd)
        return;
    // The command may take its time.
    UpdateWindow(m_hWnd);
    if (!watch.IsGone())
        OnRelease();
}

void CCUIControl::CancelPress()
{
    if (m_press == PressNone)
        return;
    CWatch watch(this);
    m_press = PressNone;
    SetState(CUI_STATE_PRESSED, false);
    if (GetCapture() == m_hWnd)
        ReleaseCapture();
    if (!watch.IsGone() && (m_nState & CUI_STATE_HOT))
        AwaitLeave();
}

void CCUIControl::OnPress() {}

void CCUIControl::OnRelease()
{
    Click();
}

void CCUIControl::OnCaptureChanged(HWND hNew)
{
    if (hNew != m_hWnd)
        CancelPress();
    CCUIControlWindow::OnCaptureChanged(hNew);
}

void CCUIControl::OnCancelMode()
{
    CWatch watch(this);
    CancelPress();
    if (!watch.IsGone() && m_hWnd)
        CCUIControlWindow::OnCancelMode();
}

// --- The mouse ---

bool CCUIControl::IsInside(const POINT &point) const
{
    RECT client;
    return GetClientRect(m_hWnd, &client) && PtInRect(&client, point);
}

void CCUIControl::OnLButtonDown(UINT, POINT &)
{
    CWatch watch(this);
    if (m_bFocusOnClick && GetFocus() != m_hWnd)
        SetFocus(m_hWnd);
    if (!watch.IsGone() && m_hWnd && m_press == PressNone && !(m_nState & CUI_STATE_DISABLED))
        BeginPress(PressMouse);
}

// The second of two quick clicks counts as one.
void CCUIControl::OnLButtonDblClk(UINT nFlags, POINT &point)
{
    OnLButtonDown(nFlags, point);
}

void CCUIControl::OnLButtonUp(UINT nFlags, POINT &point)
{
    if (m_press == PressMouse)
        EndPress(IsInside(point));
    else
        CCUIControlWindow::OnLButtonUp(nFlags, point);
}

void CCUIControl::OnMouseMove(UINT nFlags, POINT &point)
{
    const bool bInside = IsInside(point);
    if (m_press == PressMouse)
        SetState(CUI_STATE_PRESSED, bInside);
    CWatch watch(this);
    SetHot(bInside);
    if (!watch.IsGone() && m_hWnd)
        CCUIControlWindow::OnMouseMove(nFlags, point);
}

void CCUIControl::OnMouseLeave()
{
    CWatch watch(this);
    SetHot(false);
    if (!watch.IsGone() && m_hWnd)
        CCUIControlWindow::OnMouseLeave();
}

void CCUIControl::SetHot(bool bHot)
{
    if (bHot == ((m_nState & CUI_STATE_HOT) != 0) || (bHot && (m_nState & CUI_STATE_DISABLED)))
        return;
    SetState(CUI_STATE_HOT, bHot);
    if (!bHot) {
        CUIHideControlTip(m_hWnd);
        TellHelp(0, CUI_MENU_CLOSED);
        return;
    }
    AwaitLeave();
    CWatch watch(this);
    TellHelp(GetCommand(), 0);
    if (watch.IsGone() || !(m_nState & CUI_STATE_HOT))
        return;
    const CCUString sTip = GetShowToolTips() ? GetTipText() : CCUString();
    if (!watch.IsGone() && m_hWnd && !sTip.IsEmpty())
        CUIControlTip().SetTool(m_hWnd, nullptr, sTip);
}

// As a menu's owner hears of the item that is lit, so that help texts take one way.
void CCUIControl::TellHelp(unsigned int nID, UINT nFlags)
{
    const CCUIWindow *const pRouter = GetCommand() ? FindRouter() : nullptr;
    if (pRouter)
        SendMessageA(*pRouter, WM_MENUSELECT, MAKEWPARAM(nID, nFlags), 0);
}

void CCUIControl::AwaitLeave()
{
    if (!TrackMouseLeave())
        SetAlarm(CUI_MOUSE_LOOK);
}

// Windows 95 may have nothing that tells.
void CCUIControl::TimeOut(long)
{
    if (!(m_nState & CUI_STATE_HOT))
        return;
    if (GetCapture() == m_hWnd || CUIIsMouseOver(m_hWnd))
        SetAlarm(CUI_MOUSE_LOOK);
    else
        SetHot(false);
}

// --- The keyboard ---

void CCUIControl::OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    if (nKey == VK_SPACE) {
        if (m_press == PressNone && !(nFlags & KF_REPEAT))
            BeginPress(PressKey);
    } else if (nKey == VK_RETURN) {
        Click();
    } else if (nKey == VK_ESCAPE && m_press != PressNone) {
        CancelPress();
    } else {
        CCUIControlWindow::OnKeyDown(nKey, nRepeat, nFlags);
    }
}

void CCUIControl::OnKeyUp(UINT nKey, UINT nRepeat, UINT nFlags)
{
    if (nKey == VK_SPACE && m_press == PressKey)
        EndPress(true);
    else
        CCUIControlWindow::OnKeyUp(nKey, nRepeat, nFlags);
}

void CCUIControl::OnSetFocus(HWND hOld)
{
    SetState(CUI_STATE_FOCUSED, true);
    CCUIControlWindow::OnSetFocus(hOld);
}

void CCUIControl::OnKillFocus(HWND hNew)
{
    CWatch watch(this);
    SetState(CUI_STATE_FOCUSED, false);
    CancelPress();
    if (!watch.IsGone() && m_hWnd)
        CCUIControlWindow::OnKillFocus(hNew);
}

int CCUIControl::PreTranslateMessage(MSG *pMsg)
{
    CWatch watch(this);
    if (pMsg->message == WM_SYSCHAR && !IsInDialog() &&
        (CUITranslateMnemonic(GetSafeOwner(nullptr), pMsg) || watch.IsGone()))
        return 1;
    return CCUIControlWindow::PreTranslateMessage(pMsg);
}
