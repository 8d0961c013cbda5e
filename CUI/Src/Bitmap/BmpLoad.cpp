#include "CUI/BmpLoad.h"

#include <stdlib.h>
#include <string.h>

#include "Base/GdiGuards.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "Bitmap/DibCheck.h"
#include "Bitmap/Dib.h"

#define CU_SOURCE "Bmp"

namespace {

// The layout of the DIBs that are converted here: a full table, whatever the depth.
const DWORD nFullTable = CUI_DIB_MAX_COLORS * sizeof(RGBQUAD);

void MapColors(RGBQUAD *pTable, DWORD nColors, const CUIColorMap &map)
{
    if (map.m_nCount != 0) {
        if (map.m_pFrom && map.m_pTo)
            CUIReplaceColors(pTable, nColors, map);
        return;
    }
    const CUIData &data = *CUIGetWinData();
    const DWORD buttons[CUI_BUTTON_COLORS] = {data.ResolveColor(data.crSys[COLOR_BTNTEXT]),
                                              data.ResolveColor(data.crSys[COLOR_BTNSHADOW]),
                                              data.ResolveColor(data.crSys[COLOR_BTNFACE]),
                                              data.ResolveColor(data.crSys[COLOR_BTNHIGHLIGHT])};
    CUIReplaceColors(pTable, nColors, {CUIButtonGreys, buttons, CUI_BUTTON_COLORS});
}

// Colours, palette and bitmap of a DIB with a full table. Without pPixels they follow the table,
// and nothing but the header is known to be there. After a longer header too the palette is made of
// what is 40 bytes from its start, as CUIBmpCreateDIBPalette makes it.
HBITMAP Convert(HDC hScreen, BITMAPINFOHEADER *pbih, const void *pPixels, HPALETTE *phPal,
                const CUIColorMap *pMap)
{
    // Colour masks that follow the header are no colours.
    const DWORD nColors = CUIDibHeaderSize(*pbih) == pbih->biSize ? CUIDibTableColors(*pbih) : 0;
    const ULONGLONG nPixels = static_cast<ULONGLONG>(pbih->biSize) + nFullTable;
    if (!pPixels && !CUIMemoryHolds(pbih, CUIDibExtent(*pbih, nPixels), false))
        return nullptr;
    char *pTable = reinterpret_cast<char *>(pbih) + pbih->biSize;
    if (pMap) {
        if (!pPixels && !CUIMemoryHolds(pTable, CUIDibTableSize(nColors), true))
            return nullptr;
        MapColors(reinterpret_cast<RGBQUAD *>(pTable), nColors, *pMap);
    }
    if (phPal) {
        *phPal = CUIPaletteFromTable(reinterpret_cast<BITMAPINFO *>(pbih)->bmiColors, nColors);
        // What is no palette of the picture would spoil it.
        if (pbih->biSize == sizeof *pbih)
            CUIRealizeForLoad(hScreen, *phPal);
    }
    return CUIDibToBitmap(hScreen, pbih, pPixels ? pPixels : pTable + nFullTable);
}

// The rows of a section that has them from the bottom up, if a plain DIB of its size has the same.
const void *PlainRows(HBITMAP hDIB)
{
    DIBSECTION section = {};
    const bool bPlain = GetObjectA(hDIB, sizeof section, &section) == sizeof section &&
                        section.dsBmih.biCompression == BI_RGB;
    return bPlain ? section.dsBm.bmBits : nullptr;
}

// The picture of a DIB section of any layout, by way of a plain DIB with a full table. The section
// goes as soon as its rows are copied.
HBITMAP ConvertSection(HDC hScreen, CCUIOwned<HBITMAP> &hDIB, bool bBottomUp, HPALETTE *phPal,
                       const CUIColorMap *pMap)
{
    BITMAP bm = {};
    const int nGot = GetObjectA(hDIB, sizeof(bm), &bm);
    CU_ASSERT_TEXT(nGot == sizeof(bm), "GetObject(hDIB, sizeof(bm), &bm) == sizeof(bm)");

    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = bm.bmWidth;
    header.biHeight = bm.bmHeight;
    header.biPlanes = 1;
    header.biBitCount = bm.bmBitsPixel;
    header.biCompression = BI_RGB;
    // Not the 3780 of a 96 dpi screen: what was meant as dots per inch has always been written
    // here.
    header.biXPelsPerMeter = 96;
    header.biYPelsPerMeter = 96;
    const ULONGLONG nImage = CUIDibImageSize(header);
    const DWORD nHeaders = sizeof header + nFullTable;
    if (nImage > static_cast<size_t>(-1) - nHeaders)
        return nullptr;
    header.biSizeImage = static_cast<DWORD>(nImage);

    // One row brings the colours along; the others need no copy when they are as they should be.
    const void *pRows = bBottomUp ? PlainRows(hDIB) : nullptr;
    const DWORD nHeight = static_cast<DWORD>(labs(bm.bmHeight));
    const DWORD nCopied = pRows && nHeight ? 1 : nHeight;
    char *pBlock = static_cast<char *>(
        malloc(nHeaders + (nHeight ? header.biSizeImage / nHeight : 0) * nCopied));
    if (!pBlock)
        return nullptr;
    BITMAPINFO *pInfo = reinterpret_cast<BITMAPINFO *>(pBlock);
    memset(pBlock, 0, nHeaders);
    pInfo->bmiHeader = header;
    HBITMAP hBitmap = nullptr;
    if (GetDIBits(hScreen, hDIB, 0, nCopied, pBlock + nHeaders, pInfo, DIB_RGB_COLORS)) {
        if (!pRows)
            hDIB.Delete();
        hBitmap =
            Convert(hScreen, &pInfo->bmiHeader, pRows ? pRows : pBlock + nHeaders, phPal, pMap);
    }
    free(pBlock);
    return hBitmap;
}

HBITMAP LoadFileSection(const char *pszName, UINT nFlags, bool &bBottomUp)
{
    CCUFile file;
    if (!CUIBmpFileIsSound(file, pszName, bBottomUp))
        return nullptr;
    return static_cast<HBITMAP>(
        LoadImageA(nullptr, pszName, IMAGE_BITMAP, 0, 0, nFlags | LR_LOADFROMFILE));
}

HBITMAP LoadResourceSection(HINSTANCE hInst, const char *pszName, UINT nFlags, bool &bBottomUp)
{
    // Without a module it is one of the system's own.
    if (hInst && !CUIBmpResourceIsSound(hInst, pszName, bBottomUp))
        return nullptr;
    return static_cast<HBITMAP>(LoadImageA(hInst, pszName, IMAGE_BITMAP, 0, 0, nFlags));
}

bool IsName(const char *pszName)
{
    return reinterpret_cast<ULONG_PTR>(pszName) >> 16 != 0;
}

}  // namespace

HBITMAP CUIBmpLoad(HINSTANCE hInst, const char *pszName, HPALETTE *phPal, bool bMapColors,
                   DWORD *pFrom, DWORD *pTo, int nCount)
{
    const bool bFile = !hInst && IsName(pszName);
    const UINT nFlags = LR_CREATEDIBSECTION | LR_DEFAULTSIZE;
    bool bBottomUp = false;
    CCUIOwned<HBITMAP> hDIB(bFile ? LoadFileSection(pszName, nFlags, bBottomUp)
                                  : LoadResourceSection(hInst, pszName, nFlags, bBottomUp));
    if (!hDIB) {
        if (bFile)
            CUDump("Error loading bitmap %s.\n", pszName);
        return nullptr;
    }
    const CCUIWindowDC hScreen(nullptr);
    const CUIColorMap map = {pFrom, pTo, nCount};
    return ConvertSection(hScreen, hDIB, bBottomUp, phPal, bMapColors ? &map : nullptr);
}

HBITMAP CUIBmpCreateBitmap(BITMAPINFOHEADER *pbih, HPALETTE *phPal, bool bMapColors, DWORD *pFrom,
                           DWORD *pTo, int nCount)
{
    if (!pbih)
        return nullptr;
    const CCUIWindowDC hScreen(nullptr);
    const CUIColorMap map = {pFrom, pTo, nCount};
    return Convert(hScreen, pbih, nullptr, phPal, bMapColors ? &map : nullptr);
}
