#include "CUI/Draw.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"

namespace {

// Fills with the background colour. GDI puts reversed edges in order.
void Fill(HDC hDC, const RECT &rect)
{
    ExtTextOutA(hDC, 0, 0, ETO_OPAQUE, &rect, nullptr, 0, nullptr);
}

void Order(LONG &a, LONG &b)
{
    if (a <= b)
        return;
    const LONG old = a;
    a = b;
    b = old;
}

// A negative width or height goes back from x or y, without the pixel there. PatBlt of Wine 8 takes
// that one in and leaves out the last, so it gets positive sizes only.
void Invert(HDC hDC, int x, int y, int cx, int cy)
{
    if (cx < 0) {
        x = CUWrapAdd(x, cx);
        cx = CUWrapSub(0, cx);
    }
    if (cy < 0) {
        y = CUWrapAdd(y, cy);
        cy = CUWrapSub(0, cy);
    }
    PatBlt(hDC, x, y, cx, cy, DSTINVERT);
}

// Four strips, none of which touches a pixel of another: inverting twice would show the corners.
void InvertFrame(HDC hDC, RECT rect)
{
    Order(rect.left, rect.right);
    Order(rect.top, rect.bottom);
    const int x = rect.left;
    const int y = rect.top;
    const int w = CUIWidth(rect);
    const int h = CUIHeight(rect);
    Invert(hDC, x, y, CUWrapAdd(w, -1), 1);
    Invert(hDC, x, CUWrapAdd(y, 1), 1, CUWrapAdd(h, -1));
    Invert(hDC, CUWrapAdd(x, w), y, -1, CUWrapAdd(h, -1));
    Invert(hDC, CUWrapAdd(x, 1), CUWrapAdd(y, h), CUWrapAdd(w, -1), -1);
}

}  // namespace

void CUIDCFillSolidRect(HDC hDC, const RECT *prc, DWORD cr)
{
    CUIDCFillSolidRect(hDC, prc->left, prc->top, CUIWidth(*prc), CUIHeight(*prc), cr);
}

void CUIDCFillSolidRect(HDC hDC, int x, int y, int cx, int cy, DWORD cr)
{
    const CCUIBkColor color(hDC, cr);
    Fill(hDC, {x, y, CUWrapAdd(x, cx), CUWrapAdd(y, cy)});
}

void CUIDCDrawRect(HDC hDC, const RECT *prc, DWORD cr)
{
    CUIDCDrawRect(hDC, prc->left, prc->top, CUIWidth(*prc), CUIHeight(*prc), cr);
}

void CUIDCDrawRect(HDC hDC, int x, int y, int cx, int cy, DWORD cr)
{
    const int right = CUWrapAdd(x, cx);
    const int bottom = CUWrapAdd(y, cy);
    const CCUIBkColor color(hDC, cr);
    Fill(hDC, {x, y, right, CUWrapAdd(y, 1)});
    Fill(hDC, {x, y, CUWrapAdd(x, 1), bottom});
    Fill(hDC, {right, y, CUWrapAdd(right, -1), bottom});
    Fill(hDC, {x, bottom, right, CUWrapAdd(bottom, -1)});
}

void CUIDCDraw3dRect(HDC hDC, const RECT *prc, DWORD crTopLeft, DWORD crBottomRight, int bTrim,
                     int bTrimBoth)
{
    CUIDCDraw3dRect(hDC, prc->left, prc->top, CUIWidth(*prc), CUIHeight(*prc), crTopLeft,
                    crBottomRight, bTrim, bTrimBoth);
}

void CUIDCDraw3dRect(HDC hDC, int x, int y, int cx, int cy, DWORD crTopLeft, DWORD crBottomRight,
                     int bTrim, int bTrimBoth)
{
    const int x1 = CUWrapAdd(x, 1);
    const int y1 = CUWrapAdd(y, 1);
    const int right = CUWrapAdd(x, cx);
    const int bottom = CUWrapAdd(y, cy);
    const int right1 = CUWrapAdd(right, -1);
    const int bottom1 = CUWrapAdd(bottom, -1);
    // The rectangles of the right column and the bottom row have their edges reversed: they go back
    // from the far edge by one pixel.
    if (bTrim && bTrimBoth) {
        // Columns before rows, which shows where a rectangle is thinner than its lines.
        const CCUIBkColor color(hDC, crTopLeft);
        Fill(hDC, {x, y1, x1, bottom1});
        SetBkColor(hDC, crBottomRight);
        Fill(hDC, {right, y1, right1, bottom1});
        SetBkColor(hDC, crTopLeft);
        Fill(hDC, {x1, y, right, y1});
        SetBkColor(hDC, crBottomRight);
        Fill(hDC, {x, bottom, right1, bottom1});
        return;
    }
    const int xRows = bTrim ? x1 : x;
    const CCUIBkColor color(hDC, crTopLeft);
    Fill(hDC, {xRows, y, right1, y1});
    Fill(hDC, {x, y1, x1, bTrim ? bottom : bottom1});
    SetBkColor(hDC, crBottomRight);
    Fill(hDC, {right, y, right1, bTrim ? bottom1 : bottom});
    Fill(hDC, {xRows, bottom, right1, bottom1});
}

void CUIDCRubberRect(HDC hDC, const RECT *prcOld, const RECT *prcNew)
{
    if (prcOld)
        InvertFrame(hDC, *prcOld);
    if (prcNew)
        InvertFrame(hDC, *prcNew);
}
