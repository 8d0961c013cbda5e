// The way of the focus through a layout.

#include "CUI/Control.h"
#include "CUI/LayoutWindow.h"

namespace {

const ATOM DIALOG_CLASS = 32770;

DWORD StyleOf(HWND hWnd)
{
    return static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE));
}

bool IsContainer(HWND hWnd)
{
    return (GetWindowLongA(hWnd, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0;
}

HWND Neighbour(HWND hWnd, bool bBack)
{
    return GetWindow(hWnd, bBack ? GW_HWNDPREV : GW_HWNDNEXT);
}

HWND EndOf(HWND hParent, bool bBack)
{
    const HWND hFirst = GetWindow(hParent, GW_CHILD);
    return bBack && hFirst ? GetWindow(hFirst, GW_HWNDLAST) : hFirst;
}

// The first window at which Tab stops, from this one on; null: none up to the last sibling.
HWND FindStop(HWND hWnd, bool bBack)
{
    for (; hWnd; hWnd = Neighbour(hWnd, bBack)) {
        const DWORD nStyle = StyleOf(hWnd);
        if ((nStyle & (WS_VISIBLE | WS_DISABLED)) != WS_VISIBLE)
            continue;
        if (IsContainer(hWnd)) {
            if (const HWND hInside = FindStop(EndOf(hWnd, bBack), bBack))
                return hInside;
        } else if (nStyle & WS_TABSTOP) {
            return hWnd;
        }
    }
    return nullptr;
}

// The same behind a window that is somewhere inside of hTop. What has windows of its own without
// being a container, such as a combo box, is one stop.
HWND FindStopBehind(HWND hWnd, HWND hTop, bool bBack)
{
    while (hWnd && hWnd != hTop) {
        const HWND hParent = GetParent(hWnd);
        if (hParent == hTop || IsContainer(hParent)) {
            if (const HWND hStop = FindStop(Neighbour(hWnd, bBack), bBack))
                return hStop;
        }
        hWnd = hParent;
    }
    return nullptr;
}

// Whether a dialog around the window moves the focus.
bool IsInsideDialog(HWND hWnd)
{
    while (hWnd && (StyleOf(hWnd) & WS_CHILD)) {
        hWnd = GetParent(hWnd);
        if (GetClassLongA(hWnd, GCW_ATOM) == DIALOG_CLASS)
            return true;
    }
    return false;
}

LRESULT DialogCode(HWND hWnd)
{
    return hWnd ? SendMessageA(hWnd, WM_GETDLGCODE, VK_TAB, 0) : 0;
}

}  // namespace

int CCUILayoutWindow::PreTranslateMessage(MSG *pMsg)
{
    CWatch watch(this);
    const bool bTab = pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_TAB;
    if (bTab && (MoveFocus(pMsg->hwnd) || watch.IsGone()))
        return 1;
    if (pMsg->message == WM_SYSCHAR && !IsInsideDialog(m_hWnd) &&
        (CUITranslateMnemonic(m_hWnd, pMsg) || watch.IsGone()))
        return 1;
    return CCUIControlWindow::PreTranslateMessage(pMsg);
}

// The child that the window is, or is inside of.
HWND CCUILayoutWindow::ChildAround(HWND hWnd) const
{
    while (hWnd && GetParent(hWnd) != m_hWnd)
        hWnd = GetParent(hWnd);
    return hWnd;
}

// From a window in the layout, or the layout itself, to the next one. False: nobody has moved it.
bool CCUILayoutWindow::MoveFocus(HWND hFrom)
{
    const HWND hFocus = GetFocus();
    CWatch watch(this);
    const bool bTheirs = GetKeyState(VK_CONTROL) < 0 || (DialogCode(hFocus) & DLGC_WANTTAB);
    if (bTheirs || watch.IsGone() || !m_hWnd)
        return false;
    const bool bBack = GetKeyState(VK_SHIFT) < 0;
    // The control with the focus may be deeper than the one that tells of the key.
    if (hFocus && IsChild(hFrom, hFocus))
        hFrom = hFocus;
    HWND hStop = hFrom == m_hWnd ? FindStop(EndOf(m_hWnd, bBack), bBack)
                                 : FindStopBehind(hFrom, m_hWnd, bBack);
    if (!hStop) {
        const LRESULT nTaken =
            SendMessageA(GetParent(m_hWnd), CUI_WM_TABKEY, reinterpret_cast<WPARAM>(m_hWnd), 0);
        if (nTaken || watch.IsGone() || !m_hWnd || IsInsideDialog(m_hWnd))
            return nTaken != 0;
        hStop = FindStop(EndOf(m_hWnd, bBack), bBack);
    }
    if (hStop)
        GiveFocus(hStop);
    return hStop != nullptr;
}

void CCUILayoutWindow::GiveFocus(HWND hWnd)
{
    CWatch watch(this);
    SetFocus(hWnd);
    // As in a dialog, the text of an edit field is selected.
    if (DialogCode(hWnd) & DLGC_HASSETSEL)
        SendMessageA(hWnd, EM_SETSEL, 0, -1);
    // A window that is no control window does not tell.
    if (!watch.IsGone() && m_hWnd && GetFocus() == hWnd)
        HearFocus(hWnd);
}

void CCUILayoutWindow::HearFocus(HWND hWnd)
{
    const HWND hParent = GetParent(m_hWnd);
    m_hLastFocus = hWnd;
    CWatch watch(this);
    ScrollIntoView(hWnd);
    // The layout around this one is to show it too.
    if (!watch.IsGone() && hParent)
        SendMessageA(hParent, CUI_WM_CHILDFOCUS, reinterpret_cast<WPARAM>(hWnd), 0);
}

// WM_NEXTDLGCTL, which an edit field of several lines sends when a dialog leaves Tab to it.
long CCUILayoutWindow::HandOnFocus(WPARAM wParam, LPARAM lParam)
{
    CWatch watch(this);
    if (LOWORD(lParam))
        SetFocus(reinterpret_cast<HWND>(wParam));
    else if (!MoveFocus(GetFocus()) && !watch.IsGone() && m_hWnd)
        SendMessageA(GetParent(m_hWnd), WM_NEXTDLGCTL, wParam, lParam);
    return 0;
}

void CCUILayoutWindow::OnSetFocus(HWND hOld)
{
    CWatch watch(this);
    CCUIControlWindow::OnSetFocus(hOld);
    if (watch.IsGone() || !m_hWnd || GetFocus() != m_hWnd)
        return;
    const bool bThere = m_hLastFocus && IsChild(m_hWnd, m_hLastFocus) &&
                        IsWindowVisible(m_hLastFocus) && IsWindowEnabled(m_hLastFocus);
    const HWND hStop = bThere ? m_hLastFocus : FindStop(EndOf(m_hWnd, false), false);
    if (hStop)
        SetFocus(hStop);
}
