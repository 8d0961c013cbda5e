// The bar goes to another side, by the mouse or by its menu.

#include "CUI/ControlBar.h"
#include "CUI/Menu.h"
#include "Dialog/FrameworkText.h"
#include "Drawing/Look.h"
#include "Frame/BarItems.h"
#include "Window/Input.h"

namespace {

// How near to a side of its parent a bar docks there, in pixels at 96 dots an inch.
const int DOCK_DISTANCE = 40;

// In the order of CUIBarSide.
const char *const SIDES[] = {"&Top", "&Bottom", "&Left", "&Right"};
const UINT SIDE_COUNT = 4;

}  // namespace

// The side that the mouse is near to; the present one if it is near to that, or to none.
CUIBarSide CCUIControlBar::SideAt(const POINT &screen) const
{
    const HWND hParent = GetParent(m_hWnd);
    RECT rc;
    GetClientRect(hParent, &rc);
    POINT at = screen;
    MapWindowPoints(nullptr, hParent, &at, 1);
    const LONG distances[] = {at.y, rc.bottom - at.y, at.x, rc.right - at.x};
    const LONG nNear = CUIScale(DOCK_DISTANCE);
    CUIBarSide best = m_side;
    for (int i = CUI_BAR_TOP; i <= CUI_BAR_RIGHT; ++i) {
        if (distances[i] < nNear && distances[m_side] >= nNear && distances[i] < distances[best])
            best = static_cast<CUIBarSide>(i);
    }
    return best;
}

// A message loop of its own until the button is up, as the system has one when it moves a window.
// Escape ends it and takes the bar back; other keys are ignored. OnMouseMove moves the bar.
void CCUIControlBar::Drag()
{
    CWatch watch(this);
    const CUIBarSide before = m_side;
    SetHot(-1);
    if (watch.IsGone() || !m_hWnd)
        return;
    m_bDragging = true;
    SetCapture(m_hWnd);
    while (!watch.IsGone() && m_bDragging && GetCapture() == m_hWnd) {
        MSG msg;
        if (!GetMessageA(&msg, nullptr, 0, 0)) {
            PostQuitMessage(static_cast<int>(msg.wParam));
            break;
        }
        if (!CUIIsKeyMessage(msg.message)) {
            TranslateMessage(&msg);
            DispatchMessageA(&msg);
        } else if (msg.message == WM_KEYDOWN && msg.wParam == VK_ESCAPE) {
            SetSide(before);
            break;
        }
    }
    if (watch.IsGone())
        return;
    m_bDragging = false;
    EndPress();
    if (!watch.IsGone() && m_side != before)
        SaveState();
}

bool CCUIControlBar::ShowDragCursor() const
{
    POINT point;
    if (!m_pItems->m_bGrip || !GetCursorPos(&point))
        return false;
    MapWindowPoints(nullptr, m_hWnd, &point, 1);
    if ((IsVertical() ? point.y : point.x) >= m_pItems->Grip())
        return false;
    SetCursor(LoadCursorA(nullptr, MAKEINTRESOURCEA(32646)));  // IDC_SIZEALL
    return true;
}

void CCUIControlBar::OnContextMenu(HWND hWnd, POINT &point)
{
    if (GetContextMenu() || !m_pItems->m_bGrip) {
        CCUIControlWindow::OnContextMenu(hWnd, point);
        return;
    }
    CCUIMenu menu;
    for (UINT i = 0; i < SIDE_COUNT; ++i)
        menu.Append(i + 1, CUIFrameworkText(CUI_TEXT_BAR_SIDE + i, SIDES[i]));
    menu.CheckRadio(1, SIDE_COUNT, static_cast<UINT>(m_side) + 1);
    POINT at = point;
    if (at.x == -1 && at.y == -1) {
        // Asked for by the keyboard: below the button that is lit.
        const RECT rc = m_nHot < 0 ? RECT{0, 0, 0, 0} : m_pItems->Place(m_nHot);
        at = {rc.left, rc.bottom};
        ClientToScreen(m_hWnd, &at);
    }
    CWatch watch(this);
    const int nSide = DisplayPopupMenu(&menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, at, nullptr);
    if (nSide > 0 && !watch.IsGone())
        SetSide(static_cast<CUIBarSide>(nSide - 1));
}
