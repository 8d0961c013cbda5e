#include "CUI/BmpLoad.h"

#include <stdlib.h>
#include <string.h>

#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "DibCheck.h"
#include "GdiGuards.h"
#include "PackedDib.h"

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

// Colours, palette and bitmap of a DIB with a full table, of which nothing but the header is known
// to be there when bTrusted is false.
HBITMAP Convert(HDC hScreen, BITMAPINFOHEADER *pbih, bool bTrusted, HPALETTE *phPal,
                const CUIColorMap *pMap)
{
    char *pBlock = reinterpret_cast<char *>(pbih);
    RGBQUAD *pTable = reinterpret_cast<BITMAPINFO *>(pbih)->bmiColors;
    const DWORD nClaimed = CUIDibColorCount(*pbih);
    const DWORD nColors = nClaimed < CUI_DIB_MAX_COLORS ? nClaimed : CUI_DIB_MAX_COLORS;
    const ULONGLONG nPixels = static_cast<ULONGLONG>(pbih->biSize) + nFullTable;
    if (!bTrusted && !CUIMemoryHolds(pTable, CUIDibTableSize(nColors), pMap != nullptr))
        return nullptr;
    if (pMap)
        MapColors(pTable, nColors, *pMap);
    if (phPal) {
        *phPal = CUIPaletteFromTable(pTable, nColors);
        CUIRealizeForLoad(hScreen, *phPal);
    }
    if (!bTrusted && !CUIMemoryHolds(pbih, CUIDibExtent(*pbih, nPixels), false))
        return nullptr;
    return CUIDibToBitmap(hScreen, pbih, pBlock + nPixels);
}

// The picture of a DIB section of any layout as a plain DIB with a full table, from malloc.
BITMAPINFOHEADER *SectionToDib(HDC hScreen, HBITMAP hDIB)
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

    char *pBlock = static_cast<char *>(malloc(nHeaders + header.biSizeImage));
    if (!pBlock)
        return nullptr;
    BITMAPINFO *pInfo = reinterpret_cast<BITMAPINFO *>(pBlock);
    memset(pBlock, 0, nHeaders);
    pInfo->bmiHeader = header;
    if (!GetDIBits(hScreen, hDIB, 0, static_cast<UINT>(labs(bm.bmHeight)), pBlock + nHeaders, pInfo,
                   DIB_RGB_COLORS))
    {
        free(pBlock);
        return nullptr;
    }
    return &pInfo->bmiHeader;
}

HBITMAP LoadFileSection(const char *pszName, UINT nFlags)
{
    CCUFile file;
    if (!CUIBmpFileIsSound(file, pszName))
        return nullptr;
    return static_cast<HBITMAP>(
        LoadImageA(nullptr, pszName, IMAGE_BITMAP, 0, 0, nFlags | LR_LOADFROMFILE));
}

HBITMAP LoadResourceSection(HINSTANCE hInst, const char *pszName, UINT nFlags)
{
    // Without a module it is one of the system's own.
    if (hInst && !CUIBmpResourceIsSound(hInst, pszName))
        return nullptr;
    return static_cast<HBITMAP>(LoadImageA(hInst, pszName, IMAGE_BITMAP, 0, 0, nFlags));
}

bool IsName(const char *pszName)
{
    return reinterpret_cast<ULONG_PTR>(pszName) >> 16 != 0;
}

// The section is gone when the DDB is made: they would be the most memory that a load takes.
BITMAPINFOHEADER *LoadDib(HDC hScreen, HINSTANCE hInst, const char *pszName)
{
    const bool bFile = !hInst && IsName(pszName);
    const UINT nFlags = LR_CREATEDIBSECTION | LR_DEFAULTSIZE;
    const CCUIOwned<HBITMAP> hDIB(bFile ? LoadFileSection(pszName, nFlags)
                                        : LoadResourceSection(hInst, pszName, nFlags));
    if (hDIB)
        return SectionToDib(hScreen, hDIB);
    if (bFile)
        CUDump("Error loading bitmap %s.\n", pszName);
    return nullptr;
}

}  // namespace

HBITMAP CUIBmpLoad(HINSTANCE hInst, const char *pszName, HPALETTE *phPal, bool bMapColors,
                   DWORD *pFrom, DWORD *pTo, int nCount)
{
    const CCUIWindowDC hScreen(nullptr);
    BITMAPINFOHEADER *pbih = LoadDib(hScreen, hInst, pszName);
    if (!pbih)
        return nullptr;
    const CUIColorMap map = {pFrom, pTo, nCount};
    const HBITMAP hBitmap = Convert(hScreen, pbih, true, phPal, bMapColors ? &map : nullptr);
    free(pbih);
    return hBitmap;
}

HBITMAP CUIBmpCreateBitmap(BITMAPINFOHEADER *pbih, HPALETTE *phPal, bool bMapColors, DWORD *pFrom,
                           DWORD *pTo, int nCount)
{
    if (!pbih)
        return nullptr;
    const CCUIWindowDC hScreen(nullptr);
    const CUIColorMap map = {pFrom, pTo, nCount};
    return Convert(hScreen, pbih, false, phPal, bMapColors ? &map : nullptr);
}
