#include "Frame/BarItems.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CUI/BmpState.h"
#include "CUI/CommandHandler.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Drawing/Look.h"

namespace {

// Pixels at 96 dots an inch.
const int MARGIN = 2;        // around the items, across the bar
const int PADDING = 7;       // a button's edges and what is free inside of them, both sides
const int TEXT_PADDING = 6;  // more beside a text
const int GAP = 4;           // between picture and text
const int SEPARATOR = 8;
const int GRIP = 8;
const int ARROW = 12;
const int OVERFLOW_BUTTON = 13;

const RECT NOWHERE = {0, 0, 0, 0};

// Whether a pattern of both is a tint of the face, and not what makes a text unreadable, as in the
// schemes of high contrast.
bool IsTint(COLORREF crHilite, COLORREF crFace)
{
    const int nDifference = GetGValue(crHilite) - GetGValue(crFace);
    return nDifference > -96 && nDifference < 96;
}

LONG &Along(SIZE &size, bool bVertical)
{
    return bVertical ? size.cy : size.cx;
}

void DrawEdge(HDC hDC, const RECT &rc, bool bSunken)
{
    CUIDCDraw3dRect(hDC, &rc, CUISystemColor(bSunken ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT),
                    CUISystemColor(bSunken ? COLOR_BTNHIGHLIGHT : COLOR_BTNSHADOW), 0, 0);
}

}  // namespace

CCUIBarItems::~CCUIBarItems()
{
    while (Count() > 0)
        Remove(Count() - 1);
}

void CCUIBarItems::Remove(int nItem)
{
    const CCUIBarItem *const pItem = m_items[nItem];
    m_items.Remove(nItem, 1);
    delete pItem;
}

bool CCUIBarItems::Has(const CCUIBarItem *pItem, unsigned int nID) const
{
    for (int i = 0; i < Count(); ++i) {
        if (m_items[i] == pItem)
            return pItem->GetCommand() == nID;
    }
    return false;
}

void CCUIBarItems::SetPictures(const CCUIBitmap &strip, int cx, int nDpi)
{
    m_given = strip;
    m_cxGiven = cx;
    m_nDpi = nDpi;
    RefreshPictures();
}

void CCUIBarItems::RefreshPictures()
{
    CUIReloadSystemColors(m_given);
    m_cxPicture = m_cxGiven;
    m_strip = CUIScaledPictures(m_given, m_cxPicture, m_nDpi);
}

bool CCUIBarItems::HasPicture(const CCUIBarItem &item) const
{
    return item.IsButton() && item.nPicture >= 0 && m_cxPicture > 0 &&
           m_strip.Width() / m_cxPicture > item.nPicture;
}

bool CCUIBarItems::HasText(const CCUIBarItem &item) const
{
    return item.IsButton() && (m_bTexts || !HasPicture(item));
}

int CCUIBarItems::Grip() const
{
    return m_bGrip ? CUIScale(GRIP) : CUIScale(MARGIN);
}

bool CCUIBarItems::HasMoved(int nItem) const
{
    return !EqualRect(&Place(nItem), &PlaceBefore(nItem));
}

RECT CCUIBarItems::Arrow(const CCUIBarItem &item)
{
    RECT rc = item.rc;
    if (!item.pMenu || IsRectEmpty(&rc))
        return NOWHERE;
    rc.left = rc.right - CUIScale(ARROW);
    return rc;
}

// --- Sizes and places ---

static bool IsMeasured(const CCUIBarItem &item)
{
    return item.hControl || item.size.cx;
}

void CCUIBarItems::Measure(CCUIBarItem &item, HDC hDC) const
{
    if (IsMeasured(item))
        return;
    if (item.IsSeparator()) {
        item.size.cx = item.size.cy = CUIScale(SEPARATOR);
        return;
    }
    SIZE text = {0, 0};
    if (HasText(item)) {
        GetTextExtentPoint32A(hDC, item.sText, item.sText.GetLength(), &text);
        text.cx += CUIScale(TEXT_PADDING);
    }
    const int cyPicture = HasPicture(item) ? m_strip.Height() : 0;
    item.size.cx = text.cx + CUIScale(PADDING);
    if (cyPicture)
        item.size.cx += m_cxPicture;
    if (cyPicture && text.cx)
        item.size.cx += CUIScale(GAP) - CUIScale(TEXT_PADDING) / 2;
    if (item.pMenu)
        item.size.cx += CUIScale(ARROW);
    item.size.cy = CUILarger(text.cy, cyPicture) + CUIScale(PADDING);
}

void CCUIBarItems::ForgetSizes()
{
    m_cyText = 0;
    for (int i = 0; i < Count(); ++i) {
        if (!(*this)[i].hControl)
            (*this)[i].size.cx = 0;
    }
}

// A DC of the screen costs more than all else here: a bar is laid out far more often than measured.
void CCUIBarItems::MeasureAll()
{
    bool bMeasured = m_cyText != 0;
    for (int i = 0; i < Count(); ++i)
        bMeasured = bMeasured && IsMeasured(*m_items[i]);
    if (bMeasured)
        return;
    const CCUIWindowDC screen(nullptr);
    const CCUISelect font(screen, CUIGetWinData()->hMenuFont);
    TEXTMETRICA metrics = {};
    GetTextMetricsA(screen, &metrics);
    m_cyText = metrics.tmHeight;
    for (int i = 0; i < Count(); ++i)
        Measure(*m_items[i], screen);
}

int CCUIBarItems::Thickness(bool bVertical)
{
    MeasureAll();
    // An empty bar is as thick as one with texts.
    m_nAcross = m_cyText + CUIScale(PADDING);
    for (int i = 0; i < Count(); ++i) {
        const CCUIBarItem &item = (*this)[i];
        if (item.IsButton() || !bVertical)
            m_nAcross = CUILarger(m_nAcross, bVertical ? item.size.cx : item.size.cy);
    }
    return m_nAcross + 2 * CUIScale(MARGIN);
}

// What stands upright has no room for it.
bool CCUIBarItems::IsTooWide(const CCUIBarItem &item, bool bVertical) const
{
    return bVertical && item.hControl && item.size.cx > m_nAcross;
}

int CCUIBarItems::Length(bool bVertical) const
{
    int nLength = Grip() + CUIScale(MARGIN);
    for (int i = 0; i < Count(); ++i) {
        if (!IsTooWide(*m_items[i], bVertical))
            nLength += Along(m_items[i]->size, bVertical);
    }
    return nLength;
}

void CCUIBarItems::Layout(bool bVertical, int cx, int cy)
{
    m_bVertical = bVertical;
    const int nMargin = CUIScale(MARGIN);
    int nEnd = (bVertical ? cy : cx) - nMargin;
    bool bOverflow = Length(bVertical) - nMargin > nEnd;
    for (int i = 0; i < Count(); ++i)
        bOverflow = bOverflow || (m_items[i]->GetCommand() && IsTooWide(*m_items[i], bVertical));
    if (bOverflow)
        nEnd -= CUIScale(OVERFLOW_BUTTON);
    int nAt = Grip();
    bool bFull = false;
    for (int i = 0; i < Count(); ++i) {
        CCUIBarItem &item = (*this)[i];
        const bool bTooWide = IsTooWide(item, bVertical);
        const int nLength = Along(item.size, bVertical);
        bFull = bFull || (!bTooWide && nAt + nLength > nEnd);
        item.rcBefore = item.rc;
        item.rc = NOWHERE;
        if (bTooWide || bFull)
            continue;
        // Windows keep their size, in the middle; buttons are as large as the largest across.
        const int nAcross = !item.hControl ? m_nAcross : bVertical ? item.size.cx : item.size.cy;
        const int nOther = nMargin + (m_nAcross - nAcross) / 2;
        SetRect(&item.rc, bVertical ? nOther : nAt, bVertical ? nAt : nOther, 0, 0);
        item.rc.right = item.rc.left + (bVertical ? nAcross : nLength);
        item.rc.bottom = item.rc.top + (bVertical ? nLength : nAcross);
        nAt += nLength;
    }
    m_rcOverflowBefore = m_rcOverflow;
    m_rcOverflow = NOWHERE;
    if (bOverflow && bVertical)
        SetRect(&m_rcOverflow, nMargin, nEnd, cx - nMargin, nEnd + CUIScale(OVERFLOW_BUTTON));
    else if (bOverflow)
        SetRect(&m_rcOverflow, nEnd, nMargin, nEnd + CUIScale(OVERFLOW_BUTTON), cy - nMargin);
}

// --- Drawing ---

void CCUIBarItems::DrawGrip(HDC hDC, bool bVertical, int cx, int cy) const
{
    if (!m_bGrip)
        return;
    const int nAt = CUIScale(3);
    const int nMargin = CUIScale(MARGIN) + 1;
    RECT rc = {nAt, nMargin, nAt + 3, cy - nMargin};
    if (bVertical)
        SetRect(&rc, nMargin, nAt, cx - nMargin, nAt + 3);
    DrawEdge(hDC, rc, false);
}

void CCUIBarItems::Draw(HDC hDC, int nItem, CCUIBarLook look, bool bEnabled) const
{
    const RECT &rc = Place(nItem);
    if (nItem == Count()) {
        DrawOverflow(hDC, look);
        return;
    }
    const CCUIBarItem &item = (*this)[nItem];
    if (item.IsSeparator()) {
        // The line is two pixels wide.
        RECT rcLine = rc;
        InflateRect(&rcLine, m_bVertical ? -CUIScale(MARGIN) : 0,
                    m_bVertical ? 0 : -CUIScale(MARGIN));
        if (m_bVertical)
            rcLine.top = (rc.top + rc.bottom) / 2 - 1;
        else
            rcLine.left = (rc.left + rc.right) / 2 - 1;
        ::DrawEdge(hDC, &rcLine, EDGE_ETCHED, m_bVertical ? BF_TOP : BF_LEFT);
    } else if (!item.hControl) {
        DrawButton(hDC, item, look, bEnabled && (item.nState & CUI_COMMAND_ACTIVE));
    }
}

void CCUIBarItems::DrawButton(HDC hDC, const CCUIBarItem &item, CCUIBarLook look,
                              bool bEnabled) const
{
    const bool bSunken =
        (item.nState & CUI_COMMAND_CHECKED) || (look == CUI_LOOK_PRESSED && !item.bArrow);
    RECT rcFace = item.rc;
    if (item.pMenu)
        rcFace.right = Arrow(item).left;
    const int nPushed = bSunken ? 1 : 0;
    RECT rcText = rcFace;
    if (HasPicture(item)) {
        // Alone it stands in the middle, else in front of the text.
        const int xFree = HasText(item) ? CUIScale(PADDING) : CUIWidth(rcFace) - m_cxPicture;
        const int x = rcFace.left + xFree / 2;
        DrawPicture(hDC, rcFace, item, x + nPushed, bEnabled);
        rcText.left = x + m_cxPicture + CUIScale(GAP);
    }
    if (HasText(item)) {
        const UINT nAlign = HasPicture(item) ? DT_LEFT : DT_CENTER;
        OffsetRect(&rcText, nPushed, nPushed);
        CUIDrawStateText(hDC, item.sText, rcText, nAlign | DT_NOPREFIX | CUI_TEXT_LINE,
                         CUISystemColor(COLOR_BTNTEXT), !bEnabled);
    }
    const bool bRaised = bEnabled && look != CUI_LOOK_PLAIN;
    if (bSunken || bRaised)
        DrawEdge(hDC, rcFace, bSunken);
    if (!item.pMenu)
        return;
    const RECT rcArrow = Arrow(item);
    const int nSize = CUIScale(3);
    CUIDrawTriangle(hDC, (rcArrow.left + rcArrow.right) / 2 - nSize + 1,
                    (rcArrow.top + rcArrow.bottom - nSize) / 2 + nPushed, nSize, true,
                    CUISystemColor(bEnabled ? COLOR_BTNTEXT : COLOR_BTNSHADOW));
    if (bRaised)
        DrawEdge(hDC, rcArrow, look == CUI_LOOK_PRESSED);
}

void CCUIBarItems::DrawPicture(HDC hDC, const RECT &rc, const CCUIBarItem &item, int x,
                               bool bEnabled) const
{
    const COLORREF crFace = CUISystemColor(COLOR_BTNFACE);
    const COLORREF crHilite = CUISystemColor(COLOR_BTNHIGHLIGHT);
    const bool bTint = (item.nState & CUI_COMMAND_CHECKED) && IsTint(crHilite, crFace);
    const int cy = m_strip.Height();
    const int y = (rc.top + rc.bottom - cy) / 2;
    CUIBmpStateRects rects = {rc, {x, y, x + m_cxPicture + 1, y + cy}, {0, 0, 0, cy}};
    rects.rcSource.left = item.nPicture * m_cxPicture;
    rects.rcSource.right = rects.rcSource.left + m_cxPicture;
    CUIBmpDrawState(hDC, &rects.rcArea, m_strip,
                    (bTint ? CUIBMPSTATE_OVERLAY : 0) | (bEnabled ? 0 : CUIBMPSTATE_DISABLED),
                    crFace, crHilite, CUISystemColor(COLOR_BTNSHADOW));
}

// Two small arrow heads that lead on along the bar.
void CCUIBarItems::DrawOverflow(HDC hDC, CCUIBarLook look) const
{
    const int nSize = CUIScale(3);
    const COLORREF cr = CUISystemColor(COLOR_BTNTEXT);
    const int nPushed = look == CUI_LOOK_PRESSED;
    for (int nHead = 0; nHead < 2; ++nHead) {
        for (int i = 0; i < 2 * nSize - 1; ++i) {
            const int nIn = i < nSize ? i : 2 * nSize - 2 - i;
            const int nAlong = CUIScale(2) + nHead * (nSize + 1) + nIn + nPushed;
            const int nAcross = CUIScale(3) + i + nPushed;
            CUIDCFillSolidRect(hDC, m_rcOverflow.left + (m_bVertical ? nAcross : nAlong),
                               m_rcOverflow.top + (m_bVertical ? nAlong : nAcross),
                               m_bVertical ? 1 : 2, m_bVertical ? 2 : 1, cr);
        }
    }
    if (look != CUI_LOOK_PLAIN)
        DrawEdge(hDC, m_rcOverflow, look == CUI_LOOK_PRESSED);
}
