#include "CUI/BmpBlt.h"

#include "CU/Dump.h"

#include "Base/GdiGuards.h"
#include "Drawing/BmpArgs.h"
#include "Drawing/BmpSharedDC.h"

void CUIBmpBitBlt(HDC hDC, UINT x, UINT y, HBITMAP hBmp, UINT xSrc, UINT ySrc, UINT cx, UINT cy,
                  HPALETTE hPal, int bForceBkgd)
{
    if (!hBmp)
        return;
    CUIBmpDefaultSize(hBmp, cx, cy);
    const HDC hImageDC = g_bmpImageDC.For(hDC);
    const CCUISelectPalette palette(hImageDC, hPal, bForceBkgd);
    const CCUISelect bitmap(hImageDC, hBmp);
    BitBlt(hDC, CUIBmpInt(x), CUIBmpInt(y), CUIBmpInt(cx), CUIBmpInt(cy), hImageDC, CUIBmpInt(xSrc),
           CUIBmpInt(ySrc), SRCCOPY);
}

void CUIBmpStretchBlt(HDC hDC, UINT x, UINT y, UINT cx, UINT cy, HBITMAP hBmp, UINT xSrc, UINT ySrc,
                      UINT cxSrc, UINT cySrc, HPALETTE hPal, int bForceBkgd)
{
    if (!hBmp)
        return;
    CUIBmpDefaultSize(hBmp, cxSrc, cySrc);
    const HDC hImageDC = g_bmpImageDC.For(hDC);
    const CCUISelectPalette palette(hImageDC, hPal, bForceBkgd);
    const CCUISelect bitmap(hImageDC, hBmp);
    if (!StretchBlt(hDC, CUIBmpInt(x), CUIBmpInt(y), CUIBmpInt(cx), CUIBmpInt(cy), hImageDC,
                    CUIBmpInt(xSrc), CUIBmpInt(ySrc), CUIBmpInt(cxSrc), CUIBmpInt(cySrc), SRCCOPY))
        CUDump("StretchBlt failed - gle: %d\n", static_cast<int>(GetLastError()));
}

void CUIBmpDeleteObject(void **ph)
{
    if (!*ph)
        return;
    DeleteObject(*ph);
    *ph = nullptr;
}
