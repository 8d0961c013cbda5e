#include "Layout/Splitter.h"

#include "Base/GdiGuards.h"
#include "CUI/Draw.h"
#include "Drawing/Look.h"
#include "Window/Mirrored.h"

namespace {

// Pixels at 96 dots per inch.
const int WIDTH = 6;
const int KEY_STEP = 8;
// Further than any splitter can go.
const int ALL_THE_WAY = 0x7FFF;

}  // namespace

CCUISplitter::CCUISplitter(CCUILayoutWindow &layout, HWND hChild)
    : m_pNext(nullptr),
      m_layout(layout),
      m_hChild(hChild),
      m_hFocusBefore(nullptr),
      m_state(Idle),
      m_nFrom(0)
{
}

int CCUISplitter::Width()
{
    return CUIScale(WIDTH);
}

bool CCUISplitter::Make()
{
    const DWORD nStyle = WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_CLIPSIBLINGS;
    return CreateEx(WS_EX_NOPARENTNOTIFY, nullptr, "", nStyle, 0, 0, 0, 0, m_layout, nullptr) != 0;
}

void CCUISplitter::FollowChild()
{
    if (GetWindow(m_hChild, GW_HWNDNEXT) != m_hWnd)
        SetWindowPos(m_hWnd, m_hChild, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// A dialog leaves to a control what this asks for.
long CCUISplitter::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_GETDLGCODE)
        return CCUIWindow::OnMessage(message, wParam, lParam);
    const bool bEscape = wParam == VK_ESCAPE && m_state != Idle;
    return DLGC_WANTARROWS | (bEscape ? DLGC_WANTMESSAGE : 0);
}

void CCUISplitter::OnDestroy()
{
    m_state = Idle;
    CCUIWindow::OnDestroy();
}

// --- Looks ---

int CCUISplitter::OnEraseBkgnd(HDC)
{
    return 1;
}

void CCUISplitter::OnPaint(HDC)
{
    PAINTSTRUCT paint;
    const HDC hDC = BeginPaint(m_hWnd, &paint);
    if (!hDC)
        return;
    RECT rect;
    GetClientRect(m_hWnd, &rect);
    const bool bActive = m_state == Dragged || GetFocus() == m_hWnd;
    CUIDCFillSolidRect(hDC, &rect, CUISystemColor(bActive ? COLOR_HIGHLIGHT : COLOR_BTNFACE));
    CUIDCDraw3dRect(hDC, &rect, CUISystemColor(COLOR_BTNHIGHLIGHT), CUISystemColor(COLOR_BTNSHADOW),
                    0, 0);
    EndPaint(m_hWnd, &paint);
}

int CCUISplitter::OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage)
{
    // The system has one instance of each, which is never given back.
    static HCURSOR s_cursors[2];
    if (nHitTest != HTCLIENT)
        return CCUIWindow::OnSetCursor(hWnd, nHitTest, nMessage);
    HCURSOR &hCursor = s_cursors[m_layout.IsRow()];
    if (!hCursor)
        hCursor = LoadCursorA(nullptr, m_layout.IsRow() ? IDC_SIZEWE : IDC_SIZENS);
    SetCursor(hCursor);
    return 1;
}

// --- The mouse ---

// Along the layout: the splitter itself moves under the mouse.
int CCUISplitter::Position(POINT point) const
{
    MapWindowPoints(m_hWnd, m_layout, &point, 1);
    return m_layout.IsRow() ? point.x : point.y;
}

void CCUISplitter::OnLButtonDown(UINT, POINT &point)
{
    CWatch watch(this);
    const HWND hFocus = GetFocus();
    // With the focus it hears of Escape.
    if (hFocus != m_hWnd)
        SetFocus(m_hWnd);
    if (watch.IsGone() || !m_hWnd)
        return;
    End(true);
    if (watch.IsGone() || !m_layout.BeginSplit(m_hChild) || watch.IsGone())
        return;
    m_state = Dragged;
    m_nFrom = Position(point);
    m_hFocusBefore = hFocus == m_hWnd ? nullptr : hFocus;
    SetCapture(m_hWnd);
}

void CCUISplitter::OnMouseMove(UINT, POINT &point)
{
    if (m_state == Dragged)
        m_layout.DragSplit(Position(point) - m_nFrom);
}

void CCUISplitter::OnLButtonUp(UINT, POINT &)
{
    if (m_state == Dragged)
        End(true);
}

void CCUISplitter::OnCaptureChanged(HWND)
{
    if (m_state == Dragged)
        End(false);
}

// Each step may delete the splitter.
void CCUISplitter::End(bool bKeep)
{
    const State state = m_state;
    const HWND hFocus = m_hFocusBefore;
    m_state = Idle;
    m_hFocusBefore = nullptr;
    if (state == Idle)
        return;
    CWatch watch(this);
    if (state == Dragged && GetCapture() == m_hWnd)
        ReleaseCapture();
    if (!watch.IsGone())
        m_layout.EndSplit(bKeep);
    if (watch.IsGone() || !m_hWnd)
        return;
    InvalidateRect(m_hWnd, nullptr, FALSE);
    if (hFocus && IsWindow(hFocus) && GetFocus() == m_hWnd)
        SetFocus(hFocus);
}

// --- The keyboard ---

void CCUISplitter::OnSetFocus(HWND hOld)
{
    InvalidateRect(m_hWnd, nullptr, FALSE);
    CWatch watch(this);
    m_layout.ScrollIntoView(m_hWnd);
    if (!watch.IsGone())
        CCUIWindow::OnSetFocus(hOld);
}

void CCUISplitter::OnKillFocus(HWND hNew)
{
    InvalidateRect(m_hWnd, nullptr, FALSE);
    CWatch watch(this);
    // Another window has taken the focus in the middle of a drag.
    m_hFocusBefore = nullptr;
    End(m_state == Moved);
    if (!watch.IsGone())
        CCUIWindow::OnKillFocus(hNew);
}

void CCUISplitter::OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    const bool bRow = m_layout.IsRow();
    const bool bMirrored = bRow && CUIIsMirrored(m_layout);
    const int nStep = GetKeyState(VK_CONTROL) < 0 ? 1 : CUIScale(KEY_STEP);
    if (nKey == VK_ESCAPE && m_state != Idle)
        End(false);
    else if (nKey == (bRow ? VK_LEFT : VK_UP))
        MoveByKey(bMirrored ? nStep : -nStep);
    else if (nKey == (bRow ? VK_RIGHT : VK_DOWN))
        MoveByKey(bMirrored ? -nStep : nStep);
    else if (nKey == VK_HOME)
        MoveByKey(-ALL_THE_WAY);
    else if (nKey == VK_END)
        MoveByKey(ALL_THE_WAY);
    else
        CCUIWindow::OnKeyDown(nKey, nRepeat, nFlags);
}

void CCUISplitter::MoveByKey(int nBy)
{
    CWatch watch(this);
    if (m_state == Dragged || !m_layout.BeginSplit(m_hChild) || watch.IsGone())
        return;
    m_state = Moved;
    m_layout.MoveSplit(nBy);
}
