// What the moves of a splitter do to the two children beside it.

#include "CUI/LayoutWindow.h"
#include "Layout/LayoutItems.h"

namespace {

int Least(const CCUILayoutItem &item, bool bRow)
{
    if (item.IsElastic())
        return item.nMin;
    return item.Has(CUI_PLACE_FIT) ? CUIAlong(bRow, item.natural) : 0;
}

// Of two that share by weights the parts; else the fixed sizes of those that have one.
void GiveSizes(CCUILayoutItem &first, CCUILayoutItem &second, int nFirst, int nTotal)
{
    if (first.IsElastic() && second.IsElastic()) {
        const unsigned nShares = first.nShare + second.nShare;
        const auto nShare =
            static_cast<unsigned>(MulDiv(static_cast<int>(nShares), nFirst, nTotal));
        // Without any part it would count as one of fixed size.
        first.nShare = nShare < 1 ? 1 : nShare >= nShares ? nShares - 1 : nShare;
        second.nShare = nShares - first.nShare;
        return;
    }
    if (!first.IsElastic())
        CCUILayoutItems::SetFixedSize(first, nFirst);
    if (!second.IsElastic())
        CCUILayoutItems::SetFixedSize(second, nTotal - nFirst);
}

void PutBack(CCUILayoutItem &item, const CCUILayoutItem &before)
{
    item.nShare = before.nShare;
    if (item.nFixedSize != before.nFixedSize)
        CCUILayoutItems::SetFixedSize(item, before.nFixedSize);
}

}  // namespace

int CCUILayoutWindow::GetSplit(HWND hChild) const
{
    const CCUILayoutItem *const pItem = m_pItems->Find(hChild);
    return pItem && pItem->pSplitter && pItem->bPlaced ? pItem->nSize : -1;
}

bool CCUILayoutWindow::SetSplit(HWND hChild, int nSize)
{
    CWatch watch(this);
    const CCUISplit &split = m_pItems->m_split;
    const bool bUnderWay = split.first.hWnd == hChild;
    if (GetSplit(hChild) < 0 || !BeginSplit(hChild))
        return false;
    DragSplit(CUIInRange(nSize) - split.first.nSize);
    if (!bUnderWay && !watch.IsGone())
        EndSplit(true);
    return true;
}

void CCUILayoutWindow::OnSplitting(HWND, int &) {}

void CCUILayoutWindow::OnSplit(HWND, int) {}

// One that is under way goes on; that of another child ends, and stays.
bool CCUILayoutWindow::BeginSplit(HWND hChild)
{
    if (hChild && m_pItems->m_split.first.hWnd == hChild)
        return true;
    CWatch watch(this);
    EndSplit(true);
    if (watch.IsGone())
        return false;
    CCUILayoutItem *const pFirst = m_pItems->Find(hChild);
    const CCUILayoutItem *const pSecond = pFirst ? m_pItems->NextShown(*pFirst) : nullptr;
    if (!pSecond || !pFirst->bPlaced || !pSecond->bPlaced)
        return false;
    m_pItems->m_split = {*pFirst, *pSecond, pFirst->nSize, false};
    return true;
}

// From where it stands now.
void CCUILayoutWindow::MoveSplit(int nBy)
{
    const CCUISplit &split = m_pItems->m_split;
    DragSplit(split.nSize - split.first.nSize + nBy);
}

// From where it stood at the beginning.
void CCUILayoutWindow::DragSplit(int nBy)
{
    const CCUISplit split = m_pItems->m_split;
    const int nLeast = Least(split.first, IsRow());
    const int nMost = split.first.nSize + split.second.nSize - Least(split.second, IsRow());
    const auto inRange = [=](int n) { return n > nMost ? nMost : n < nLeast ? nLeast : n; };
    int nSize = inRange(split.first.nSize + nBy);
    if (!split.first.hWnd || nMost < nLeast)
        return;
    if (!split.bAsking) {
        CWatch watch(this);
        m_pItems->m_split.bAsking = true;
        OnSplitting(split.first.hWnd, nSize);
        if (watch.IsGone())
            return;
        m_pItems->m_split.bAsking = false;
    }
    PlaceSplit(inRange(nSize));
}

void CCUILayoutWindow::PlaceSplit(int nSize)
{
    CCUISplit &split = m_pItems->m_split;
    CCUILayoutItem *const pFirst = m_pItems->Find(split.first.hWnd);
    CCUILayoutItem *const pSecond = m_pItems->Find(split.second.hWnd);
    if (nSize == split.nSize || !pFirst || !pSecond)
        return;
    split.nSize = nSize;
    PutBack(*pFirst, split.first);
    PutBack(*pSecond, split.second);
    if (nSize != split.first.nSize)
        GiveSizes(*pFirst, *pSecond, nSize, split.first.nSize + split.second.nSize);
    Layout();
}

void CCUILayoutWindow::EndSplit(bool bKeep)
{
    const CCUISplit split = m_pItems->m_split;
    if (!split.first.hWnd)
        return;
    CWatch watch(this);
    if (!bKeep)
        PlaceSplit(split.first.nSize);
    if (watch.IsGone())
        return;
    m_pItems->m_split = {};
    if (bKeep && split.nSize != split.first.nSize)
        OnSplit(split.first.hWnd, split.nSize);
}
