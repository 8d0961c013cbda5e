#include "CUI/ScrollBar.h"

bool CUIFollowScrollBar(HWND hWnd, int nBar, UINT nCode, int nLine)
{
    SCROLLINFO info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    if (!GetScrollInfo(hWnd, nBar, &info))
        return false;
    const int nPage = static_cast<int>(info.nPage);
    // Wider than the bar's own numbers, so that no step goes around.
    const long long nLast = nPage > 1 ? info.nMax - (nPage - 1LL) : info.nMax;
    const int nPageStep = nPage > 1 ? nPage : nLine;
    long long nPos = info.nPos;
    switch (nCode) {
    case SB_LINEUP: nPos -= nLine; break;
    case SB_LINEDOWN: nPos += nLine; break;
    case SB_PAGEUP: nPos -= nPageStep; break;
    case SB_PAGEDOWN: nPos += nPageStep; break;
    // The message has 16 bits of it only.
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: nPos = info.nTrackPos; break;
    case SB_TOP: nPos = info.nMin; break;
    case SB_BOTTOM: nPos = nLast; break;
    default: return false;
    }
    if (nPos > nLast)
        nPos = nLast;
    if (nPos < info.nMin)
        nPos = info.nMin;
    if (nPos == info.nPos)
        return false;
    SetScrollPos(hWnd, nBar, static_cast<int>(nPos), TRUE);
    return true;
}

bool CCUIScrollBar::Follow(UINT nCode)
{
    return CUIFollowScrollBar(m_hWnd, SB_CTL, nCode, m_nLine);
}
