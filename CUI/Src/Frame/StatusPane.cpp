#include "Frame/StatusPane.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CUI/BmpBlt.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Drawing/Look.h"

namespace {

// Pixels at 96 dots an inch.
const int GAP = 2;      // between panes, and above them
const int PADDING = 3;  // between a pane's border and what is in it
const int BORDER = 1;

// The text behind the tabs that align it, and how it is aligned.
const char *Aligned(const CCUString &sText, UINT &nAlign)
{
    const char *pszText = sText;
    nAlign = DT_LEFT;
    if (*pszText == '\t') {
        nAlign = DT_CENTER;
        if (*++pszText == '\t') {
            nAlign = DT_RIGHT;
            ++pszText;
        }
    }
    return pszText;
}

void DrawLine(HDC hDC, const CCUString &sText, RECT rc)
{
    UINT nAlign = 0;
    const char *const pszText = Aligned(sText, nAlign);
    DrawTextA(hDC, pszText, -1, &rc, nAlign | DT_NOPREFIX | CUI_TEXT_LINE);
}

int TextWidth(HDC hDC, const CCUString &sText)
{
    UINT nAlign = 0;
    const char *const pszText = Aligned(sText, nAlign);
    SIZE size = {0, 0};
    GetTextExtentPoint32A(hDC, pszText, lstrlenA(pszText), &size);
    return size.cx;
}

}  // namespace

RECT CCUIStatusPane::Inside() const
{
    RECT rcInside = rc;
    InflateRect(&rcInside, -BORDER, -BORDER);
    return rcInside;
}

int CCUIStatusPane::ProgressWidth() const
{
    const int cx = CUIWidth(rc) - 2 * BORDER;
    return nMost > 0 && cx > 0 ? MulDiv(cx, nProgress, nMost) : 0;
}

RECT CCUIStatusPane::ProgressRect() const
{
    RECT rcDone = Inside();
    rcDone.right = rcDone.left + ProgressWidth();
    return rcDone;
}

void CCUIStatusPane::RefreshPicture()
{
    CUIReloadSystemColors(given);
    int cx = given.Width();
    picture = CUIScaledPictures(given, cx, nDpi);
}

void CCUIStatusPane::Draw(HDC hDC, const CCUString *psHelp, COLORREF crText) const
{
    CUIDCDraw3dRect(hDC, &rc, CUISystemColor(COLOR_BTNSHADOW), CUISystemColor(COLOR_BTNHIGHLIGHT),
                    0, 0);
    const CCUISavedDC saved(hDC);
    const RECT rcInside = Inside();
    IntersectClipRect(hDC, rcInside.left, rcInside.top, rcInside.right, rcInside.bottom);
    RECT rcContent = rcInside;
    InflateRect(&rcContent, -CUIScale(PADDING), 0);
    if (psHelp) {
        SetTextColor(hDC, crText);
        DrawLine(hDC, *psHelp, rcContent);
        return;
    }
    DrawContent(hDC, rcContent, crText);
    if (ProgressWidth() == 0)
        return;
    // The same once more in the colours of what is done, as far as that goes.
    const RECT rcDone = ProgressRect();
    IntersectClipRect(hDC, rcDone.left, rcDone.top, rcDone.right, rcDone.bottom);
    CUIDCFillSolidRect(hDC, &rcDone, CUISystemColor(COLOR_HIGHLIGHT));
    DrawContent(hDC, rcContent, CUISystemColor(COLOR_HIGHLIGHTTEXT));
}

void CCUIStatusPane::DrawContent(HDC hDC, RECT rcContent, COLORREF crText) const
{
    if (picture) {
        const int y = (rcContent.top + rcContent.bottom - picture.Height()) / 2;
        CUIBmpBitBlt(hDC, rcContent.left, y, picture, 0, 0, 0, 0, picture, 1);
        rcContent.left += picture.Width() + CUIScale(PADDING);
    }
    SetTextColor(hDC, crText);
    DrawLine(hDC, sText, rcContent);
}

int CCUIStatusPanes::NaturalHeight() const
{
    const CCUIWindowDC screen(nullptr);
    const CCUISelect font(screen, CUIGetWinData()->hStatusFont);
    TEXTMETRICA metrics = {};
    GetTextMetricsA(screen, &metrics);
    int cyContent = metrics.tmHeight + CUIScale(1);
    for (int i = 0; i < Count(); ++i)
        cyContent = CUILarger(cyContent, (*this)[i].picture.Height());
    return CUIScale(GAP) + 2 * BORDER + cyContent + CUIScale(PADDING);
}

void CCUIStatusPanes::ForgetWidths()
{
    for (int i = 0; i < Count(); ++i)
        (*this)[i].cxContent = -1;
}

// Without what is stretched.
int CCUIStatusPanes::Width(CCUIStatusPane &pane, HDC hDC) const
{
    if (pane.width == CUI_PANE_STRETCH)
        return 0;
    if (pane.width == CUI_PANE_FIXED)
        return pane.nSize;
    if (pane.cxContent < 0) {
        pane.cxContent = 2 * BORDER + 2 * CUIScale(PADDING) + TextWidth(hDC, pane.sText);
        if (pane.picture) {
            pane.cxContent += pane.picture.Width();
            if (!pane.sText.IsEmpty())
                pane.cxContent += CUIScale(PADDING);
        }
    }
    return CUILarger(pane.cxContent, pane.nSize);
}

void CCUIStatusPanes::Layout(int cx, int cy)
{
    const CCUIWindowDC screen(nullptr);
    const CCUISelect font(screen, CUIGetWinData()->hStatusFont);
    const int nGap = CUIScale(GAP);
    int nFree = cx + nGap;
    int nWeight = 0;
    for (int i = 0; i < Count(); ++i) {
        CCUIStatusPane &pane = (*this)[i];
        nFree -= Width(pane, screen) + nGap;
        nWeight += pane.width == CUI_PANE_STRETCH ? pane.nSize : 0;
    }
    int x = 0;
    for (int i = 0; i < Count(); ++i) {
        CCUIStatusPane &pane = (*this)[i];
        int cxPane = Width(pane, screen);
        if (pane.width == CUI_PANE_STRETCH && nFree > 0) {
            // Of what is left to those that come: so the last one takes the rest of the rounding.
            cxPane = MulDiv(nFree, pane.nSize, nWeight);
            nFree -= cxPane;
            nWeight -= pane.nSize;
        }
        const bool bRoom = cxPane > 2 * BORDER && x < cx;
        pane.rcBefore = pane.rc;
        SetRect(&pane.rc, x, nGap, bRoom ? x + cxPane : x, bRoom ? cy : nGap);
        if (cxPane > 0)
            x += cxPane + nGap;
    }
}
