#include "CUI/BmpLoad.h"

#include <stdlib.h>
#include <string.h>

#include "Base/GdiGuards.h"
#include "Bitmap/Dib.h"
#include "CUI/BmpBlt.h"

namespace {

// The bytes of header and table. Other depths than these have no table here.
DWORD SizeBeforePixels(const BITMAPINFOHEADER &header)
{
    DWORD nColors = header.biClrUsed;
    if (nColors == 0 &&
        (header.biBitCount == 1 || header.biBitCount == 4 || header.biBitCount == 8))
        nColors = 1U << header.biBitCount;
    return sizeof header + nColors * sizeof(RGBQUAD);
}

BITMAPINFOHEADER *ToDib(HDC hDC, HBITMAP hbm, DWORD &dwHeaderSize)
{
    BITMAP bm;
    if (GetObjectA(hbm, sizeof bm, &bm) != sizeof bm)
        return nullptr;
    CUIDibHead head = {};
    BITMAPINFOHEADER &header = head.m_header;
    header.biSize = sizeof header;
    header.biWidth = bm.bmWidth;
    header.biHeight = bm.bmHeight;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(bm.bmPlanes * bm.bmBitsPixel);
    header.biCompression = BI_RGB;
    const UINT nRows = static_cast<UINT>(bm.bmHeight);
    GetDIBits(hDC, hbm, 0, nRows, nullptr, head.Info(), DIB_RGB_COLORS);
    const ULONGLONG nImage = header.biSizeImage ? header.biSizeImage : CUIDibImageSize(header);
    dwHeaderSize = SizeBeforePixels(header);
    const ULONGLONG nBlock = dwHeaderSize + nImage;
    if (dwHeaderSize > sizeof head || nBlock > static_cast<size_t>(-1))
        return nullptr;
    header.biSizeImage = static_cast<DWORD>(nImage);
    // GDI may write a full table, however many colours there are.
    char *pBlock = static_cast<char *>(
        malloc(nBlock > sizeof head ? static_cast<size_t>(nBlock) : sizeof head));
    if (!pBlock)
        return nullptr;
    memcpy(pBlock, &head, dwHeaderSize);
    BITMAPINFO *pInfo = reinterpret_cast<BITMAPINFO *>(pBlock);
    if (!GetDIBits(hDC, hbm, 0, nRows, pBlock + dwHeaderSize, pInfo, DIB_RGB_COLORS)) {
        free(pBlock);
        return nullptr;
    }
    return &pInfo->bmiHeader;
}

}  // namespace

HBITMAP CUICopyBitmap(HBITMAP hbm, int cx, int cy, HPALETTE hPal)
{
    const CCUIWindowDC hScreen(nullptr);
    if (!hScreen)
        return nullptr;
    const CCUIMemoryDC hMemory(hScreen);
    if (!hMemory)
        return nullptr;
    const HBITMAP hCopy = CreateCompatibleBitmap(hScreen, cx, cy);
    const CCUISelect select(hMemory, hCopy);
    CUIBmpBitBlt(hMemory, 0, 0, hbm, 0, 0, static_cast<UINT>(cx), static_cast<UINT>(cy), hPal,
                 FALSE);
    return hCopy;
}

BITMAPINFOHEADER *CUIBitmapToDib(HBITMAP hbm, HPALETTE hPal, DWORD &dwHeaderSize)
{
    if (!hbm)
        return nullptr;
    if (!hPal)
        hPal = static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE));
    const CCUIWindowDC hScreen(nullptr);
    const CCUISelectPalette palette(hScreen, hPal, FALSE);
    return ToDib(hScreen, hbm, dwHeaderSize);
}
