#include "Layout/LayoutItems.h"

#include "Control/ControlProperty.h"
#include "Layout/Splitter.h"

namespace {

const int LARGEST_SUM = 0x3FFFFFFF;
// Of a child that is to get its part of the room.
const int NO_SIZE = -1;

int Sum(int a, int b)
{
    return a > LARGEST_SUM - b ? LARGEST_SUM : a + b;
}

int Rest(int nRoom, int nTaken)
{
    return nRoom - nTaken < -LARGEST_SUM ? -LARGEST_SUM : nRoom - nTaken;
}

unsigned ShareOf(unsigned long nFlags)
{
    return nFlags & CUIPlaceWeight(255);
}

// Null when the window has none that can be read: the address is one of its own process.
CCUIControlWindow::PropData *PropDataOf(HWND hWnd)
{
    DWORD nProcess = 0;
    GetWindowThreadProcessId(hWnd, &nProcess);
    if (nProcess != GetCurrentProcessId())
        return nullptr;
    return static_cast<CCUIControlWindow::PropData *>(GetPropA(hWnd, CUI_CONTROL_PROPERTY));
}

CCUILayoutItem *FindIn(CCUArray<CCUILayoutItem> &items, HWND hWnd)
{
    for (int i = 0; i < items.Count(); ++i) {
        if (items[i].hWnd == hWnd)
            return &items[i];
    }
    return nullptr;
}

// How large a child is across that does not fill.
int OwnSizeAcross(const CCUILayoutItem &item, bool bRow)
{
    if (item.Has(CUI_PLACE_FIT))
        return CUIInRange(CUIAcross(bRow, item.natural));
    RECT rect = {};
    GetWindowRect(item.hWnd, &rect);
    return CUIAcross(bRow, CUISizeOf(rect));
}

}  // namespace

CCUILayoutItem *CCUILayoutItems::Find(HWND hWnd)
{
    return FindIn(m_items, hWnd);
}

CCUILayoutItem *CCUILayoutItems::NextShown(const CCUILayoutItem &item)
{
    for (int i = static_cast<int>(&item - &m_items[0]) + 1; i < Count(); ++i) {
        if (m_items[i].bShown)
            return &m_items[i];
    }
    return nullptr;
}

void CCUILayoutItems::Abandon(CCUISplitter *&pSplitter)
{
    if (!pSplitter)
        return;
    if (m_split.first.pSplitter == pSplitter)
        m_split = {};
    pSplitter->m_pNext = m_pOrphan;
    m_pOrphan = pSplitter;
    pSplitter = nullptr;
}

void CCUILayoutItems::Load(HWND hParent)
{
    // Those that have more to them than can be read.
    CCUArray<CCUILayoutItem> kept;
    for (int i = 0; i < Count(); ++i) {
        if (m_items[i].pSplitter || m_items[i].nShare != ShareOf(m_items[i].nFlags))
            kept.Add(m_items[i]);
    }
    m_items.Empty();
    for (HWND hWnd = GetWindow(hParent, GW_CHILD); hWnd; hWnd = GetWindow(hWnd, GW_HWNDNEXT)) {
        CCUILayoutItem item = {};
        item.hWnd = hWnd;
        if (CCUILayoutItem *const pKept = FindIn(kept, hWnd)) {
            item = *pKept;
            pKept->pSplitter = nullptr;
        }
        const bool bCounts = PropDataOf(hWnd) != nullptr;
        if (!bCounts) {
            Abandon(item.pSplitter);
            continue;
        }
        Reload(item);
        m_items.Add(item);
    }
    for (int i = 0; i < kept.Count(); ++i)
        Abandon(kept[i].pSplitter);
}

bool CCUILayoutItems::Reload(CCUILayoutItem &item)
{
    const CCUIControlWindow::PropData *const pData = PropDataOf(item.hWnd);
    if (!pData)
        return false;
    const int nFixedSize = CUIInRange(pData->nFixedSize);
    const unsigned long nFlags = pData->nLayoutFlags;
    if (ShareOf(nFlags) != ShareOf(item.nFlags))
        item.nShare = ShareOf(nFlags);
    item.bAsk = (nFlags & CUI_PLACE_FIT) != 0;
    const bool bChanged = item.bAsk || nFixedSize != item.nFixedSize || nFlags != item.nFlags;
    item.nFixedSize = nFixedSize;
    item.nFlags = nFlags;
    return bChanged;
}

void CCUILayoutItems::SetFixedSize(CCUILayoutItem &item, int nSize)
{
    item.nFixedSize = CUIInRange(nSize);
    if (CCUIControlWindow::PropData *const pData = PropDataOf(item.hWnd))
        pData->nFixedSize = item.nFixedSize;
}

void CCUILayoutItems::Clear()
{
    for (int i = 0; i < Count(); ++i)
        Abandon(m_items[i].pSplitter);
    m_items.Empty();
    m_split = {};
}

void CCUILayoutItems::Measure(HWND hParent, bool bRow, int nGap, int nSplitter)
{
    m_size = {};
    const CCUILayoutItem *pBefore = nullptr;
    for (int i = 0; i < Count(); ++i) {
        CCUILayoutItem &item = m_items[i];
        const bool bVisible =
            item.Has(CUI_PLACE_KEEP) || (GetWindowLongA(item.hWnd, GWL_STYLE) & WS_VISIBLE);
        // It may be gone without a word, or have the screen.
        item.bShown = bVisible && GetParent(item.hWnd) == hParent;
        if (!item.bShown)
            continue;
        const int nBetween = pBefore && pBefore->Has(CUI_PLACE_SPLITTER) ? nSplitter : nGap;
        item.nGap = pBefore ? nBetween : 0;
        item.nMin = item.nFixedSize;
        const bool bFits = item.Has(CUI_PLACE_FIT);
        const int nNatural = bFits ? CUIInRange(CUIAlong(bRow, item.natural)) : 0;
        if (nNatural > item.nMin)
            item.nMin = nNatural;
        m_size.cx = Sum(Sum(m_size.cx, item.nGap), item.nMin);
        if (bFits || !item.Has(CUI_PLACE_FILL)) {
            const int nAcross = OwnSizeAcross(item, bRow);
            if (nAcross > m_size.cy)
                m_size.cy = nAcross;
        }
        pBefore = &item;
    }
}

// Gives their least size to those whose part would be less, and takes it from the room. Answers the
// sum of the others' shares.
unsigned long long CCUILayoutItems::Freeze(int &nRoom)
{
    for (;;) {
        unsigned long long nShares = 0;
        for (int i = 0; i < Count(); ++i) {
            if (m_items[i].bShown && m_items[i].nSize == NO_SIZE)
                nShares += m_items[i].nShare;
        }
        const auto nShared = static_cast<unsigned long long>(CUIInRange(nRoom));
        bool bFrozen = false;
        for (int i = 0; i < Count(); ++i) {
            CCUILayoutItem &item = m_items[i];
            if (!item.bShown || item.nSize != NO_SIZE ||
                nShared * item.nShare >= nShares * static_cast<unsigned>(item.nMin))
                continue;
            item.nSize = item.nMin;
            nRoom = Rest(nRoom, item.nMin);
            bFrozen = true;
        }
        if (!bFrozen)
            return nShares;
    }
}

void CCUILayoutItems::Distribute(int nPos, int nRoom)
{
    for (int i = 0; i < Count(); ++i) {
        CCUILayoutItem &item = m_items[i];
        item.bPlaced = item.bShown;
        if (!item.bShown)
            continue;
        const bool bIts = item.IsElastic();
        item.nSize = bIts ? NO_SIZE : item.nMin;
        nRoom = Rest(nRoom, item.nGap + (bIts ? 0 : item.nMin));
    }
    const unsigned long long nShares = Freeze(nRoom);
    // Of the sums rather than of the single parts, so that no pixel is left over.
    unsigned long long nShare = 0;
    int nGiven = 0;
    for (int i = 0; i < Count(); ++i) {
        CCUILayoutItem &item = m_items[i];
        if (!item.bShown)
            continue;
        if (nShares && item.nSize == NO_SIZE) {
            nShare += item.nShare;
            const auto nUpTo = static_cast<int>(
                (nShare * static_cast<unsigned>(CUIInRange(nRoom)) + nShares / 2) / nShares);
            item.nSize = nUpTo - nGiven;
            nGiven = nUpTo;
        }
        nPos = Sum(nPos, item.nGap);
        item.nPos = nPos;
        nPos = Sum(nPos, item.nSize);
    }
}
