#include "Frame/FrameDocks.h"

namespace {

// Whether the object still has that window. It may have been deleted; the window then has another
// object, or none.
bool IsBound(const CCUIWindow *pWindow, HWND hWnd)
{
    return hWnd && CCUIWindow::FromHandle(hWnd) == pWindow;
}

bool IsShown(HWND hWnd)
{
    return (GetWindowLongA(hWnd, GWL_STYLE) & WS_VISIBLE) != 0;
}

// Cuts a strip off a side of the room, at most as much as there is.
RECT Cut(RECT &room, CUIBarSide side, LONG nThickness)
{
    const bool bAcross = side < CUI_BAR_LEFT;
    const LONG nMost = bAcross ? room.bottom - room.top : room.right - room.left;
    const LONG n = nThickness < 0 ? 0 : nThickness > nMost ? nMost : nThickness;
    RECT strip = room;
    switch (side) {
    case CUI_BAR_TOP: strip.bottom = room.top += n; break;
    case CUI_BAR_BOTTOM: strip.top = room.bottom -= n; break;
    case CUI_BAR_LEFT: strip.right = room.left += n; break;
    case CUI_BAR_RIGHT: strip.left = room.right -= n; break;
    }
    return strip;
}

void Move(HWND hChild, const RECT &place, CCUIMoveBatch &moves)
{
    RECT now;
    if (moves.Find(hChild, now))
        moves.Add(hChild, now, place);
}

}  // namespace

bool CCUIFrameDocks::IsIn(HWND hFrame, HWND hWnd)
{
    return hFrame && hWnd && (GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD) &&
           GetParent(hWnd) == hFrame;
}

int CCUIFrameDocks::FindBar(HWND hWnd) const
{
    for (int i = 0; i < m_bars.Count(); ++i) {
        if (m_bars[i].hWnd == hWnd)
            return i;
    }
    return -1;
}

void CCUIFrameDocks::AddBar(CCUIControlWindow *pBar, CUIBarSide side,
                            CCUIFrameWindow::SideOf *pSideOf)
{
    const CBar bar = {*pBar, pBar, side, pSideOf, false};
    const int nIndex = FindBar(bar.hWnd);
    if (nIndex >= 0)
        m_bars[nIndex] = bar;
    else
        m_bars.Add(bar);
}

void CCUIFrameDocks::SetStatusBar(CCUIControlWindow *pBar, CCUIHelpText *pHelp)
{
    m_statusBar.pBar = pBar;
    m_statusBar.hWnd = pBar ? pBar->GetHandle() : nullptr;
    m_statusBar.bHidden = false;
    m_pHelp = pHelp;
}

void CCUIFrameDocks::SetClient(CCUIWindow *pClient)
{
    m_pClient = pClient;
    m_hClient = pClient ? pClient->GetHandle() : nullptr;
}

bool CCUIFrameDocks::Remove(HWND hChild)
{
    const int nIndex = FindBar(hChild);
    const bool bStatusBar = hChild == m_statusBar.hWnd;
    const bool bClient = hChild == m_hClient;
    if (nIndex >= 0)
        m_bars.Remove(nIndex, 1);
    if (bStatusBar)
        SetStatusBar(nullptr, nullptr);
    if (bClient)
        SetClient(nullptr);
    return nIndex >= 0 || bStatusBar || bClient;
}

HWND CCUIFrameDocks::GetClient() const
{
    return IsBound(m_pClient, m_hClient) ? m_hClient : nullptr;
}

CCUIHelpText *CCUIFrameDocks::GetHelp() const
{
    return IsBound(m_statusBar.pBar, m_statusBar.hWnd) ? m_pHelp : nullptr;
}

bool CCUIFrameDocks::TakesRoom(HWND hFrame, const CBar &bar)
{
    return IsBound(bar.pBar, bar.hWnd) && IsIn(hFrame, bar.hWnd) && IsShown(bar.hWnd);
}

// By value: what it asks a bar may add another.
void CCUIFrameDocks::Place(HWND hFrame, CBar bar, RECT &room, CCUIMoveBatch &moves)
{
    if (!TakesRoom(hFrame, bar))
        return;
    const CUIBarSide side = bar.pSideOf ? bar.pSideOf(bar.pBar) : bar.side;
    Move(bar.hWnd, Cut(room, side, bar.pBar->GetFixedSize()), moves);
}

void CCUIFrameDocks::Plan(HWND hFrame, CCUIMoveBatch &moves)
{
    RECT room;
    GetClientRect(hFrame, &room);
    Place(hFrame, m_statusBar, room, moves);
    for (int i = 0; i < m_bars.Count(); ++i)
        Place(hFrame, m_bars[i], room, moves);
    const HWND hClient = GetClient();
    if (IsIn(hFrame, hClient))
        Move(hClient, room, moves);
}

void CCUIFrameDocks::ShowBars(bool bShow)
{
    CCUArray<HWND> windows;
    const auto note = [&](CBar &bar) {
        if (!IsBound(bar.pBar, bar.hWnd) || (bShow ? !bar.bHidden : !IsShown(bar.hWnd)))
            return;
        bar.bHidden = !bShow;
        windows.Add(bar.hWnd);
    };
    note(m_statusBar);
    for (int i = 0; i < m_bars.Count(); ++i)
        note(m_bars[i]);
    for (int i = 0; i < windows.Count(); ++i)
        ShowWindow(windows[i], bShow ? SW_SHOWNA : SW_HIDE);
}
