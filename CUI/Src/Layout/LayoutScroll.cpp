// How a layout scrolls: along its direction, by laying out its children at other places.

#include "CUI/Data.h"
#include "CUI/LayoutWindow.h"
#include "Layout/LayoutItems.h"
#include "Layout/WheelStep.h"
#include "Window/Mirrored.h"

namespace {

// Windows 95 and NT 3.51 do not say how many lines a notch of the wheel is.
const UINT LINES = 3;
const UINT LINES_SETTING = 0x0068;  // SPI_GETWHEELSCROLLLINES
const UINT WHOLE_PAGE = 0xFFFFFFFF;

}  // namespace

int CUIWheelStep(int nPage)
{
    UINT nLines = LINES;
    SystemParametersInfoA(LINES_SETTING, 0, &nLines, 0);
    const int nLine = CUIGetWinData()->cyChar;
    const bool bPage = nLines == WHOLE_PAGE || nLines > static_cast<UINT>(nPage / (nLine + 1));
    return bPage ? nPage : static_cast<int>(nLines) * nLine;
}

void CCUILayoutWindow::SetScrolling(bool bScrolls)
{
    if (bScrolls == m_bScrolls)
        return;
    m_bScrolls = bScrolls;
    CWatch watch(this);
    HideScrollBars();
    if (!watch.IsGone())
        Layout();
}

// The next layout shows the right one.
void CCUILayoutWindow::HideScrollBars()
{
    m_nScrollLength = m_nScrollPage = m_nScrollBarPos = 0;
    if (m_hWnd)
        ShowScrollBar(m_hWnd, SB_BOTH, FALSE);
}

// Tells the scroll bar what changed. The system shows it when the content is longer than the page.
bool CCUILayoutWindow::UpdateScrollBar()
{
    if (!m_bScrolls) {
        m_nScrollPos = 0;
        return true;
    }
    RECT rcClient;
    GetClientRect(m_hWnd, &rcClient);
    const int nMargins =
        IsRow() ? m_rcMargins.left + m_rcMargins.right : m_rcMargins.top + m_rcMargins.bottom;
    const int nPage = CUIAlong(IsRow(), CUISizeOf(rcClient));
    const int nLength = m_pItems->m_size.cx + nMargins;
    if (m_nScrollPos > nLength - nPage)
        m_nScrollPos = nLength - nPage;
    if (m_nScrollPos < 0)
        m_nScrollPos = 0;
    if (nLength == m_nScrollLength && nPage == m_nScrollPage && m_nScrollPos == m_nScrollBarPos)
        return true;
    m_nScrollLength = nLength;
    m_nScrollPage = nPage;
    m_nScrollBarPos = m_nScrollPos;
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = nLength > 0 ? nLength - 1 : 0;
    info.nPage = static_cast<UINT>(nPage);
    info.nPos = m_nScrollPos;
    CWatch watch(this);
    SetScrollInfo(m_hWnd, IsRow() ? SB_HORZ : SB_VERT, &info, TRUE);
    return !watch.IsGone() && m_hWnd;
}

void CCUILayoutWindow::ScrollTo(int nPos)
{
    Put(m_nScrollPos, nPos < 0 ? 0 : nPos);
}

void CCUILayoutWindow::ScrollIntoView(HWND hWnd)
{
    const HWND hChild = ChildAround(hWnd);
    if (!m_bScrolls || !hChild)
        return;
    RECT rect = {}, rcChild = {};
    GetWindowRect(hWnd, &rect);
    GetWindowRect(hChild, &rcChild);
    MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT *>(&rect), 2);
    MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT *>(&rcChild), 2);
    // Children far out do not stand where they belong.
    const CCUILayoutItem *const pItem = m_pItems->Find(hChild);
    const int nStands = IsRow() ? rcChild.left : rcChild.top;
    const int nInside = IsRow() ? rect.left - rcChild.left : rect.top - rcChild.top;
    const int nFrom = nInside + (pItem ? pItem->nPos : nStands + m_nScrollPos);
    const int nTo = nFrom + CUIAlong(IsRow(), CUISizeOf(rect));
    int nPos = m_nScrollPos;
    if (nTo > nPos + m_nScrollPage)
        nPos = nTo - m_nScrollPage;
    if (nFrom < nPos)
        nPos = nFrom;
    ScrollTo(nPos);
}

void CCUILayoutWindow::Scroll(UINT nCode)
{
    const int nLine = CUIGetWinData()->cyChar;
    SCROLLINFO info = {};
    switch (nCode) {
    case SB_LINEUP: ScrollTo(m_nScrollPos - nLine); break;
    case SB_LINEDOWN: ScrollTo(m_nScrollPos + nLine); break;
    case SB_PAGEUP: ScrollTo(m_nScrollPos - m_nScrollPage); break;
    case SB_PAGEDOWN: ScrollTo(m_nScrollPos + m_nScrollPage); break;
    case SB_TOP: ScrollTo(0); break;
    case SB_BOTTOM: ScrollTo(m_nScrollLength); break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        info.cbSize = sizeof info;
        info.fMask = SIF_TRACKPOS;
        if (GetScrollInfo(m_hWnd, IsRow() ? SB_HORZ : SB_VERT, &info))
            ScrollTo(info.nTrackPos);
        break;
    default: break;
    }
}

void CCUILayoutWindow::OnHScroll(UINT nCode, UINT nPos, HWND hScrollBar)
{
    if (hScrollBar || !IsRow() || !m_bScrolls)
        CCUIControlWindow::OnHScroll(nCode, nPos, hScrollBar);
    else
        Scroll(nCode);
}

void CCUILayoutWindow::OnVScroll(UINT nCode, UINT nPos, HWND hScrollBar)
{
    if (hScrollBar || IsRow() || !m_bScrolls)
        CCUIControlWindow::OnVScroll(nCode, nPos, hScrollBar);
    else
        Scroll(nCode);
}

// False: there is nothing to scroll, and the wheel is for the window around this one.
bool CCUILayoutWindow::Wheel(int nDelta)
{
    if (!m_bScrolls || m_nScrollLength <= m_nScrollPage)
        return false;
    m_nWheel += nDelta * CUIWheelStep(m_nScrollPage);
    const int nPixels = m_nWheel / WHEEL_DELTA;
    m_nWheel %= WHEEL_DELTA;
    if (nPixels)
        ScrollTo(m_nScrollPos + nPixels);
    return true;
}

// A wheel turns what can be scrolled, also a row.
void CCUILayoutWindow::OnMouseWheel(UINT nFlags, int nDelta, POINT &point)
{
    if (!Wheel(-nDelta))
        CCUIControlWindow::OnMouseWheel(nFlags, nDelta, point);
}

void CCUILayoutWindow::OnMouseHWheel(UINT nFlags, int nDelta, POINT &point)
{
    if (!IsRow() || !Wheel(CUIIsMirrored(m_hWnd) ? -nDelta : nDelta))
        CCUIControlWindow::OnMouseHWheel(nFlags, nDelta, point);
}
