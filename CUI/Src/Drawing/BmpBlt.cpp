#include "CUI/BmpBlt.h"

#include "Base/GdiGuards.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "Drawing/BmpSharedDC.h"
#include "Drawing/RasterOps.h"

namespace {

// The arguments are unsigned in the interface; GDI takes them signed.
int Int(UINT n)
{
    return static_cast<int>(n);
}

// When either size is 0, both become the bitmap's own. They stay for a handle that is no bitmap.
void DefaultSize(HBITMAP hBmp, UINT &cx, UINT &cy)
{
    BITMAP bm;
    if ((cx != 0 && cy != 0) || GetObjectA(hBmp, sizeof bm, &bm) != sizeof bm)
        return;
    cx = static_cast<UINT>(bm.bmWidth);
    cy = static_cast<UINT>(bm.bmHeight);
}

}  // namespace

void CUIBmpDeleteObject(void **ph)
{
    if (!*ph)
        return;
    DeleteObject(*ph);
    *ph = nullptr;
}

// --- Plain copies ---

namespace {

// Copies the bitmap, of which a part that has no size is all. The blit, one of the two below, is
// called with the DC to copy from.
template <typename Blit>
void DrawPlain(HDC hDC, HBITMAP hBmp, UINT &cxSrc, UINT &cySrc, HPALETTE hPal, int bForceBkgd,
               Blit blit)
{
    if (!hBmp)
        return;
    DefaultSize(hBmp, cxSrc, cySrc);
    HDC &hImageDC = g_bmpImageDC.For(hDC);
    const CCUISelectPalette palette(hImageDC, hPal, bForceBkgd);
    const CCUISelectKept bitmap(hImageDC, hBmp);
    blit(hImageDC);
}

}  // namespace

void CUIBmpBitBlt(HDC hDC, UINT x, UINT y, HBITMAP hBmp, UINT xSrc, UINT ySrc, UINT cx, UINT cy,
                  HPALETTE hPal, int bForceBkgd)
{
    DrawPlain(hDC, hBmp, cx, cy, hPal, bForceBkgd, [&](HDC hImageDC) {
        BitBlt(hDC, Int(x), Int(y), Int(cx), Int(cy), hImageDC, Int(xSrc), Int(ySrc), SRCCOPY);
    });
}

void CUIBmpStretchBlt(HDC hDC, UINT x, UINT y, UINT cx, UINT cy, HBITMAP hBmp, UINT xSrc, UINT ySrc,
                      UINT cxSrc, UINT cySrc, HPALETTE hPal, int bForceBkgd)
{
    DrawPlain(hDC, hBmp, cxSrc, cySrc, hPal, bForceBkgd, [&](HDC hImageDC) {
        if (!StretchBlt(hDC, Int(x), Int(y), Int(cx), Int(cy), hImageDC, Int(xSrc), Int(ySrc),
                        Int(cxSrc), Int(cySrc), SRCCOPY))
            CUDump("StretchBlt failed - gle: %d\n", static_cast<int>(GetLastError()));
    });
}

// --- Transparent copies ---

namespace {

// Draws the image where the mask is 0. The blit, one of the two below, is called with the DC to
// copy from and the raster operation.
template <typename Blit>
void DrawThroughMask(HDC hDC, HBITMAP hImage, HBITMAP hMask, Blit blit)
{
    // With these colours the mask's ones become all ones and its zeros all zeros.
    SetBkColor(hDC, CUIGetWinData()->crMonoBkgnd);
    SetTextColor(hDC, CUIGetWinData()->crMonoText);
    HDC &hImageDC = g_bmpImageDC.For(hDC);
    HDC &hMaskDC = g_bmpMaskDC.For(hDC);
    const CCUISelectKept image(hImageDC, hImage);
    const CCUISelectKept mask(hMaskDC, hMask);
    // Inverting with the image twice leaves what was there. Where the mask is 0, it is made black
    // in between, and the image remains.
    blit(hImageDC, SRCINVERT);
    blit(hMaskDC, SRCAND);
    blit(hImageDC, SRCINVERT);
}

}  // namespace

void CUIBmpTransparentBlt(HDC hDC, UINT x, UINT y, HBITMAP hImage, HBITMAP hMask)
{
    CUIBmpTransparentBltFull(hDC, x, y, hImage, hMask, 0, 0, 0, 0);
}

void CUIBmpTransparentBltFull(HDC hDC, UINT x, UINT y, HBITMAP hImage, HBITMAP hMask, UINT xSrc,
                              UINT ySrc, UINT cx, UINT cy)
{
    if (!hImage || !hMask)
        return;
    DefaultSize(hImage, cx, cy);
    DrawThroughMask(hDC, hImage, hMask, [=](HDC hSourceDC, DWORD dwRop) {
        BitBlt(hDC, Int(x), Int(y), Int(cx), Int(cy), hSourceDC, Int(xSrc), Int(ySrc), dwRop);
    });
}

void CUIBmpTransparentStretchBltFull(HDC hDC, UINT x, UINT y, UINT cx, UINT cy, HBITMAP hImage,
                                     HBITMAP hMask, UINT xSrc, UINT ySrc, UINT cxSrc, UINT cySrc)
{
    if (!hImage || !hMask)
        return;
    DefaultSize(hImage, cxSrc, cySrc);
    DrawThroughMask(hDC, hImage, hMask, [=](HDC hSourceDC, DWORD dwRop) {
        StretchBlt(hDC, Int(x), Int(y), Int(cx), Int(cy), hSourceDC, Int(xSrc), Int(ySrc),
                   Int(cxSrc), Int(cySrc), dwRop);
    });
}

// --- Key colours ---

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
    DefaultSize(hBmp, cx, cy);
    return {hBmp, crKey, Int(xSrc), Int(ySrc), Int(cx), Int(cy)};
}

// Copies colours into a monochrome DC: 1 where they equal the key.
void BlitMask(HDC hMaskDC, int cx, int cy, HDC hSourceDC, int xSrc, int ySrc, DWORD crKey)
{
    const CCUIBkColor key(hSourceDC, crKey);
    BitBlt(hMaskDC, 0, 0, cx, cy, hSourceDC, xSrc, ySrc, SRCCOPY);
}

// Makes the mask, which is the caller's, and a copy of the source with the background colour of hDC
// in the place of the key colour. With pAt the copy is drawn there on hDC. Null when the mask
// cannot be made; unfilled when the copy cannot.
HBITMAP MakeMask(HDC hDC, const CKeyedBitmap &source, const POINT *pAt)
{
    HDC &hImageDC = g_bmpImageDC.For(hDC);
    HDC &hMaskDC = g_bmpMaskDC.For(hDC);
    HDC &hWorkDC = g_bmpWorkDC.For(hDC);
    const int cx = source.cx;
    const int cy = source.cy;
    const CCUISelectKept image(hImageDC, source.hBmp);
    // The mask DC holds the monochrome bitmap of every new DC: what is compatible is monochrome.
    const HBITMAP hMask = CreateCompatibleBitmap(hMaskDC, cx, cy);
    if (!hMask)
        return nullptr;
    const CCUISelectKept mask(hMaskDC, hMask);
    const CCUIOwned<HBITMAP> workBitmap(CreateCompatibleBitmap(hDC, cx, cy));
    if (!workBitmap)
        return hMask;
    const CCUISelectKept work(hWorkDC, workBitmap);

    BlitMask(hMaskDC, cx, cy, hImageDC, source.xSrc, source.ySrc, source.crKey);
    BitBlt(hWorkDC, 0, 0, cx, cy, hImageDC, source.xSrc, source.ySrc, SRCCOPY);
    const CCUIOwned<HBRUSH> background(CreateSolidBrush(GetBkColor(hDC)));
    const CCUISelectKept brush(hWorkDC, background);
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
    const POINT at = {Int(x), Int(y)};
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
    HDC &hKeyDC = g_bmpImageDC.For(hDC);
    HDC &hSourceDC = g_bmpMaskDC.For(hDC);
    const CCUIOwned<HBITMAP> keyBitmap(CreateBitmap(cx, cy, 1, 1, nullptr));
    const CCUISelectKept key(hKeyDC, keyBitmap);
    const CCUISelectKept source(hSourceDC, hBmp);
    BlitMask(hKeyDC, cx, cy, hSourceDC, 0, 0, GetPixel(hSourceDC, 0, 0));

    HDC &hResultDC = g_bmpWorkDC.For(hDC);
    *phResult = CreateBitmap(cx, cy, static_cast<BYTE>(GetDeviceCaps(hDC, PLANES)),
                             static_cast<BYTE>(GetDeviceCaps(hDC, BITSPIXEL)), nullptr);
    const CCUISelectKept result(hResultDC, *phResult);
    const CCUIOwned<HBRUSH> fill(CreateSolidBrush(crFill));
    const RECT rect = {0, 0, cx, cy};
    FillRect(hResultDC, &rect, fill);
    const CCUIBkColor bkgnd(hResultDC, CUIGetWinData()->crMonoBkgnd);
    BitBlt(hResultDC, 0, 0, cx, cy, hSourceDC, 0, 0, SRCINVERT);
    BitBlt(hResultDC, 0, 0, cx, cy, hKeyDC, 0, 0, SRCAND);
    BitBlt(hResultDC, 0, 0, cx, cy, hSourceDC, 0, 0, SRCINVERT);
    return TRUE;
}
