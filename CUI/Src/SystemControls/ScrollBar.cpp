#include "CUI/ScrollBar.h"

// Whether the bar is at another position afterwards.
bool CCUIScrollBar::Follow(UINT nCode)
{
    SCROLLINFO info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    if (!GetScrollInfo(m_hWnd, SB_CTL, &info))
        return false;
    const int nPage = static_cast<int>(info.nPage);
    // Wider than the bar's own numbers, so that no step goes around.
    const long long nLast = nPage > 1 ? info.nMax - (nPage - 1LL) : info.nMax;
    const int nPageStep = nPage > 1 ? nPage : m_nLine;
    long long nPos = info.nPos;
    switch (nCode) {
    case SB_LINEUP: nPos -= m_nLine; break;
    case SB_LINEDOWN: nPos += m_nLine; break;
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
    SetPos(static_cast<int>(nPos));
    return true;
}
