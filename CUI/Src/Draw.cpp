#include "CUI/Draw.h"

#include "GdiGuards.h"

namespace {

// Coordinates may be anything; they wrap around as GDI's do.
int Sum(int a, int b)
{
    return static_cast<int>(static_cast<UINT>(a) + static_cast<UINT>(b));
}

int Width(const RECT &rect)
{
    return static_cast<int>(static_cast<UINT>(rect.right) - static_cast<UINT>(rect.left));
}

int Height(const RECT &rect)
{
    return static_cast<int>(static_cast<UINT>(rect.bottom) - static_cast<UINT>(rect.top));
}

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

// Four strips, none of which touches a pixel of another: inverting twice would show the corners.
void InvertFrame(HDC hDC, RECT rect)
{
    Order(rect.left, rect.right);
    Order(rect.top, rect.bottom);
    const int x = rect.left;
    const int y = rect.top;
    const int w = Width(rect);
    const int h = Height(rect);
    PatBlt(hDC, x, y, Sum(w, -1), 1, DSTINVERT);
    PatBlt(hDC, x, Sum(y, 1), 1, Sum(h, -1), DSTINVERT);
    PatBlt(hDC, Sum(x, w), y, -1, Sum(h, -1), DSTINVERT);
    PatBlt(hDC, Sum(x, 1), Sum(y, h), Sum(w, -1), -1, DSTINVERT);
}

}  // namespace

void CUIDCFillSolidRect(HDC hDC, const RECT *prc, DWORD cr)
{
    CUIDCFillSolidRect(hDC, prc->left, prc->top, Width(*prc), Height(*prc), cr);
}

void CUIDCFillSolidRect(HDC hDC, int x, int y, int cx, int cy, DWORD cr)
{
    const CCUIBkColor color(hDC, cr);
    Fill(hDC, {x, y, Sum(x, cx), Sum(y, cy)});
}

void CUIDCDrawRect(HDC hDC, const RECT *prc, DWORD cr)
{
    CUIDCDrawRect(hDC, prc->left, prc->top, Width(*prc), Height(*prc), cr);
}

void CUIDCDrawRect(HDC hDC, int x, int y, int cx, int cy, DWORD cr)
{
    const int right = Sum(x, cx);
    const int bottom = Sum(y, cy);
    const CCUIBkColor color(hDC, cr);
    Fill(hDC, {x, y, right, Sum(y, 1)});
    Fill(hDC, {x, y, Sum(x, 1), bottom});
    Fill(hDC, {right, y, Sum(right, -1), bottom});
    Fill(hDC, {x, bottom, right, Sum(bottom, -1)});
}

void CUIDCDraw3dRect(HDC hDC, const RECT *prc, DWORD crTopLeft, DWORD crBottomRight, int bTrim,
                     int bTrimBoth)
{
    CUIDCDraw3dRect(hDC, prc->left, prc->top, Width(*prc), Height(*prc), crTopLeft, crBottomRight,
                    bTrim, bTrimBoth);
}

void CUIDCDraw3dRect(HDC hDC, int x, int y, int cx, int cy, DWORD crTopLeft, DWORD crBottomRight,
                     int bTrim, int bTrimBoth)
{
    const int x1 = Sum(x, 1);
    const int y1 = Sum(y, 1);
    const int right = Sum(x, cx);
    const int bottom = Sum(y, cy);
    const int right1 = Sum(right, -1);
    const int bottom1 = Sum(bottom, -1);
    // The column and the row at the far sides start at the edge and go back by one.
    if (!bTrim) {
        const CCUIBkColor color(hDC, crTopLeft);
        Fill(hDC, {x, y, right1, y1});
        Fill(hDC, {x, y1, x1, bottom1});
        SetBkColor(hDC, crBottomRight);
        Fill(hDC, {right, y, right1, bottom});
        Fill(hDC, {x, bottom, right1, bottom1});
    } else if (bTrimBoth) {
        const CCUIBkColor color(hDC, crTopLeft);
        Fill(hDC, {x, y1, x1, bottom1});
        SetBkColor(hDC, crBottomRight);
        Fill(hDC, {right, y1, right1, bottom1});
        SetBkColor(hDC, crTopLeft);
        Fill(hDC, {x1, y, right, y1});
        SetBkColor(hDC, crBottomRight);
        Fill(hDC, {x, bottom, right1, bottom1});
    } else {
        const CCUIBkColor color(hDC, crTopLeft);
        Fill(hDC, {x1, y, right1, y1});
        Fill(hDC, {x, y1, x1, bottom});
        SetBkColor(hDC, crBottomRight);
        Fill(hDC, {right, y, right1, bottom1});
        Fill(hDC, {x1, bottom, right1, bottom1});
    }
}

void CUIDCRubberRect(HDC hDC, const RECT *prcOld, const RECT *prcNew)
{
    if (prcOld)
        InvertFrame(hDC, *prcOld);
    if (prcNew)
        InvertFrame(hDC, *prcNew);
}
