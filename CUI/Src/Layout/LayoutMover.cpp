#include "Layout/LayoutMover.h"

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
    : CCUIMoveBatch(hLayout), m_items(items), m_bRow(bRow), m_nScrollPos(nScrollPos)
{
    RECT rcClient = {};
    GetClientRect(hLayout, &rcClient);
    const SIZE client = CUISizeOf(rcClient);
    const int nBefore = bRow ? rcMargins.top : rcMargins.left;
    const int nBehind = bRow ? rcMargins.bottom : rcMargins.right;
    m_nClient = CUIAlong(bRow, client);
    m_across = {nBefore, Positive(CUIAcross(bRow, client) - nBefore - nBehind)};
    for (int i = 0; i < items.Count(); ++i) {
        if (!items[i].bPlaced)
            continue;
        PlaceChild(items[i]);
        if (items[i].pSplitter)
            PlaceSplitter(items[i]);
    }
}

void CCUILayoutMover::PlaceChild(const CCUILayoutItem &item)
{
    RECT now;
    if (Find(item.hWnd, now))
        Add(item.hWnd, now, Place(item.nPos, item.nSize, Across(item, now)));
}

void CCUILayoutMover::PlaceSplitter(const CCUILayoutItem &item)
{
    RECT now;
    const CCUILayoutItem *const pNext = m_items.NextShown(item);
    const HWND hSplitter = item.pSplitter->GetHandle();
    if (Find(hSplitter, now))
        Add(hSplitter, now, Place(item.nPos + item.nSize, pNext ? pNext->nGap : 0, m_across));
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
