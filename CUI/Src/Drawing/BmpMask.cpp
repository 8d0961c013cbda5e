#include "CUI/BmpBlt.h"

#include "CUI/Data.h"

#include "Base/GdiGuards.h"
#include "Drawing/BmpArgs.h"
#include "Drawing/BmpSharedDC.h"

namespace {

// A part of a bitmap and its key colour.
struct CKeyedBitmap
{
    HBITMAP hBmp;
    DWORD crKey;
    int xSrc, ySrc, cx, cy;
};

CKeyedBitmap Keyed(HBITMAP hBmp, DWORD crKey, UINT xSrc, UINT ySrc, UINT cx, UINT cy)
{
    CUIBmpDefaultSize(hBmp, cx, cy);
    return {hBmp, crKey, CUIBmpInt(xSrc), CUIBmpInt(ySrc), CUIBmpInt(cx), CUIBmpInt(cy)};
}

// Copies colours into a monochrome DC: 1 where they equal the key.
void BlitMask(HDC hMaskDC, int cx, int cy, HDC hSourceDC, int xSrc, int ySrc, DWORD crKey)
{
    const CCUIBkColor key(hSourceDC, crKey);
    BitBlt(hMaskDC, 0, 0, cx, cy, hSourceDC, xSrc, ySrc, SRCCOPY);
}

// Makes the mask, and beside it a copy of the bitmap with the background colour of hDC in the place
// of the key's, which goes onto hDC at *pAt, if given. The mask is the caller's, null when it could
// not be made, empty when the copy could not.
HBITMAP MakeMask(HDC hDC, const CKeyedBitmap &source, const POINT *pAt)
{
    const HDC hImageDC = g_bmpImageDC.For(hDC);
    const HDC hMaskDC = g_bmpMaskDC.For(hDC);
    const HDC hWorkDC = g_bmpWorkDC.For(hDC);
    const int cx = source.cx;
    const int cy = source.cy;
    const CCUISelect image(hImageDC, source.hBmp);
    // Between calls the mask DC holds a monochrome bitmap, and so monochrome is what fits it.
    const HBITMAP hMask = CreateCompatibleBitmap(hMaskDC, cx, cy);
    if (!hMask)
        return nullptr;
    const CCUISelect mask(hMaskDC, hMask);
    const CCUIOwned<HBITMAP> workBitmap(CreateCompatibleBitmap(hDC, cx, cy));
    if (!workBitmap)
        return hMask;
    const CCUISelect work(hWorkDC, workBitmap);

    BlitMask(hMaskDC, cx, cy, hImageDC, source.xSrc, source.ySrc, source.crKey);
    BitBlt(hWorkDC, 0, 0, cx, cy, hImageDC, source.xSrc, source.ySrc, SRCCOPY);
    const CCUIOwned<HBRUSH> background(CreateSolidBrush(GetBkColor(hDC)));
    const CCUISelect brush(hWorkDC, background);
    const CCUITextColor text(hWorkDC, CUIGetWinData()->crMonoText);
    const CCUIBkColor bkgnd(hWorkDC, CUIGetWinData()->crMonoBkgnd);
    BitBlt(hWorkDC, 0, 0, cx, cy, hMaskDC, 0, 0, CUI_ROP_DSPDXAX);
    if (pAt)
        BitBlt(hDC, pAt->x, pAt->y, cx, cy, hWorkDC, 0, 0, SRCCOPY);
    return hMask;
}

}  // namespace

void CUIBmpBgBlt(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey)
{
    CUIBmpBgBltFull(hDC, x, y, hBmp, crKey, 0, 0, 0, 0);
}

void CUIBmpBgBltFull(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey, UINT xSrc, UINT ySrc,
                     UINT cx, UINT cy)
{
    if (!hBmp)
        return;
    const POINT at = {CUIBmpInt(x), CUIBmpInt(y)};
    const CCUIOwned<HBITMAP> mask(MakeMask(hDC, Keyed(hBmp, crKey, xSrc, ySrc, cx, cy), &at));
}

HBITMAP CUIBmpMakeMask(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey)
{
    return CUIBmpMakeMaskFull(hDC, x, y, hBmp, crKey, 0, 0, 0, 0);
}

HBITMAP CUIBmpMakeMaskFull(HDC hDC, UINT, UINT, HBITMAP hBmp, DWORD crKey, UINT xSrc, UINT ySrc,
                           UINT cx, UINT cy)
{
    if (!hBmp)
        return nullptr;
    return MakeMask(hDC, Keyed(hBmp, crKey, xSrc, ySrc, cx, cy), nullptr);
}

int CUIBmpTransparentCreate(HBITMAP hBmp, HBITMAP *phResult, HDC hDC, DWORD crFill)
{
    *phResult = nullptr;
    BITMAP bm;
    if (GetObjectA(hBmp, sizeof bm, &bm) != sizeof bm)
        return TRUE;
    const int cx = bm.bmWidth;
    const int cy = bm.bmHeight;
    const HDC hKeyDC = g_bmpImageDC.For(hDC);
    const HDC hSourceDC = g_bmpMaskDC.For(hDC);
    const CCUIOwned<HBITMAP> keyBitmap(CreateBitmap(cx, cy, 1, 1, nullptr));
    const CCUISelect key(hKeyDC, keyBitmap);
    const CCUISelect source(hSourceDC, hBmp);
    BlitMask(hKeyDC, cx, cy, hSourceDC, 0, 0, GetPixel(hSourceDC, 0, 0));

    const HDC hResultDC = g_bmpWorkDC.For(hDC);
    *phResult = CreateBitmap(cx, cy, static_cast<BYTE>(GetDeviceCaps(hDC, PLANES)),
                             static_cast<BYTE>(GetDeviceCaps(hDC, BITSPIXEL)), nullptr);
    const CCUISelect result(hResultDC, *phResult);
    const CCUIOwned<HBRUSH> fill(CreateSolidBrush(crFill));
    const RECT rect = {0, 0, cx, cy};
    FillRect(hResultDC, &rect, fill);
    const CCUIBkColor bkgnd(hResultDC, CUIGetWinData()->crMonoBkgnd);
    BitBlt(hResultDC, 0, 0, cx, cy, hSourceDC, 0, 0, SRCINVERT);
    BitBlt(hResultDC, 0, 0, cx, cy, hKeyDC, 0, 0, SRCAND);
    BitBlt(hResultDC, 0, 0, cx, cy, hSourceDC, 0, 0, SRCINVERT);
    return TRUE;
}
