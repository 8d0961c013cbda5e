#include "Layout/LayoutMover.h"

#include "Base/Wrap.h"
#include "Layout/Splitter.h"

namespace {

// Children further out than this many pixels all wait there: scrolling moves those nearby alone,
// and no coordinate leaves the 16 bits that Windows 95 has for it.
const int FAR_OUT = 0x3000;

int Positive(int n)
{
    return n > 0 ? n : 0;
}

int PlaceInReach(int nPos, int nSize, int nClient)
{
    const int nFarthest = nClient > FAR_OUT ? nClient : FAR_OUT;
    if (nPos > nFarthest)
        return nFarthest;
    return nPos + nSize < -FAR_OUT ? -FAR_OUT - nSize : nPos;
}

}  // namespace

CCUILayoutMover::CCUILayoutMover(HWND hLayout, CCUILayoutItems &items, bool bRow,
                                 const RECT &rcMargins, int nScrollPos)
    : m_items(items), m_bRow(bRow), m_bBackwards(false), m_nScrollPos(nScrollPos), m_origin()
{
    ClientToScreen(hLayout, &m_origin);
    RECT rcClient = {};
    GetClientRect(hLayout, &rcClient);
    const SIZE client = CUISizeOf(rcClient);
    const int nBefore = bRow ? rcMargins.top : rcMargins.left;
    const int nBehind = bRow ? rcMargins.bottom : rcMargins.right;
    m_nClient = CUIAlong(bRow, client);
    m_across = {nBefore, Positive(CUIAcross(bRow, client) - nBefore - nBehind)};
}

// With the last ones first if they go outwards, so that none comes to lie on one that is still to
// be moved, whose pixels Wine 8 would lose.
bool CCUILayoutMover::Begin()
{
    CMove move;
    int i = Count() - 1;
    while (i >= 0 && !Get(i, move))
        --i;
    m_bBackwards = i >= 0 && move.rcNow.left + move.rcNow.top < move.rect.left + move.rect.top;
    return i >= 0;
}

bool CCUILayoutMover::MoveAll() const
{
    CMove move;
    HDWP hBatch = BeginDeferWindowPos(Count());
    for (int i = 0; hBatch && i < Count(); ++i) {
        if (Get(i, move))
            hBatch = DeferWindowPos(hBatch, move.hWnd, nullptr, move.rect.left, move.rect.top,
                                    CUIWidth(move.rect), CUIHeight(move.rect), move.nFlags);
    }
    return hBatch && EndDeferWindowPos(hBatch);
}

void CCUILayoutMover::Move(int nIndex) const
{
    CMove move;
    if (Get(nIndex, move))
        SetWindowPos(move.hWnd, nullptr, move.rect.left, move.rect.top, CUIWidth(move.rect),
                     CUIHeight(move.rect), move.nFlags);
}

// The window nIndex, a child or the splitter behind it. False: it is not to be moved.
bool CCUILayoutMover::Get(int nIndex, CMove &move) const
{
    if (m_bBackwards)
        nIndex = Count() - 1 - nIndex;
    const CCUILayoutItem &item = m_items[nIndex / 2];
    const bool bSplitter = nIndex % 2 != 0;
    if (!item.bPlaced || (bSplitter && !item.pSplitter))
        return false;
    move.hWnd = bSplitter ? item.pSplitter->GetHandle() : item.hWnd;
    RECT &now = move.rcNow, &then = move.rect;
    if (!GetWindowRect(move.hWnd, &now))
        return false;
    OffsetRect(&now, -m_origin.x, -m_origin.y);
    if (bSplitter) {
        const CCUILayoutItem *const pNext = m_items.NextShown(item);
        then = Place(item.nPos + item.nSize, pNext ? pNext->nGap : 0, m_across);
    } else {
        then = Place(item.nPos, item.nSize, Across(item, now));
    }
    const bool bMoved = now.left != then.left || now.top != then.top;
    const bool bSized = CUIWidth(now) != CUIWidth(then) || CUIHeight(now) != CUIHeight(then);
    move.nFlags = SWP_NOZORDER | SWP_NOOWNERZORDER | SWP_NOACTIVATE | (bMoved ? 0 : SWP_NOMOVE) |
                  (bSized ? 0 : SWP_NOSIZE);
    return bMoved || bSized;
}

CCUILayoutMover::CRange CCUILayoutMover::Across(const CCUILayoutItem &item, const RECT &rcNow) const
{
    if (item.Has(CUI_PLACE_FILL))
        return m_across;
    const SIZE size = item.Has(CUI_PLACE_FIT) ? item.natural : CUISizeOf(rcNow);
    const int nSize = CUIInRange(CUIAcross(m_bRow, size));
    // What is too large begins at the edge, so that its beginning is seen.
    const int nFree = Positive(m_across.nSize - nSize);
    const int nBefore = item.Has(CUI_PLACE_FAR)      ? nFree
                        : item.Has(CUI_PLACE_CENTER) ? nFree / 2
                                                     : 0;
    return {m_across.nFrom + nBefore, nSize};
}

RECT CCUILayoutMover::Place(int nPos, int nSize, const CRange &across) const
{
    nPos = PlaceInReach(nPos - m_nScrollPos, nSize, m_nClient);
    if (m_bRow)
        return {nPos, across.nFrom, nPos + nSize, across.nFrom + across.nSize};
    return {across.nFrom, nPos, across.nFrom + across.nSize, nPos + nSize};
}
