#include "CUI/BmpLoad.h"

#include <stdlib.h>
#include <string.h>

#include "Base/GdiGuards.h"
#include "Bitmap/Dib.h"
#include "Bitmap/DibSource.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/Data.h"

#define CU_SOURCE "Bmp"

namespace {

// The room for colours in the DIBs of CUIBmpLoad and CUIBmpCreateBitmap: a full table, whatever
// the depth.
const DWORD FULL_TABLE = CUI_DIB_MAX_COLORS * sizeof(RGBQUAD);

const WORD PALETTE_VERSION = 0x300;

// A palette that a display can have.
struct CPalette256 : LOGPALETTE
{
    PALETTEENTRY m_more[CUI_DIB_MAX_COLORS - 1];
};

// A palette of nColors entries; null for none, and for more than a palette can have.
HPALETTE PaletteFromTable(const RGBQUAD *pTable, DWORD nColors)
{
    if (nColors == 0 || nColors > 0xFFFF)
        return nullptr;
    CPalette256 usual;
    LOGPALETTE *pPalette = &usual;
    if (nColors > CUI_DIB_MAX_COLORS)
        pPalette = static_cast<LOGPALETTE *>(
            malloc(sizeof(LOGPALETTE) + (nColors - 1) * sizeof(PALETTEENTRY)));
    if (!pPalette)
        return nullptr;
    pPalette->palVersion = PALETTE_VERSION;
    pPalette->palNumEntries = static_cast<WORD>(nColors);
    PALETTEENTRY *pEntry = pPalette->palPalEntry;
    for (const RGBQUAD *pColor = pTable; pColor < pTable + nColors; ++pColor)
        *pEntry++ = {pColor->rgbRed, pColor->rgbGreen, pColor->rgbBlue, 0};
    const HPALETTE hPal = CreatePalette(pPalette);
    if (pPalette != &usual)
        free(pPalette);
    return hPal;
}

// Selects and realises the palette, if any, for the picture that is made next on this DC, and
// leaves it selected.
void RealizeForLoad(HDC hDC, HPALETTE hPal)
{
    if (!hPal)
        return;
    SelectPalette(hDC, hPal, FALSE);
    RealizePalette(hDC);
}

// The DDB of a DIB that is known to be all there.
HBITMAP DibToBitmap(HDC hDC, const BITMAPINFOHEADER *pbih, const void *pPixels)
{
    const HBITMAP hBitmap = CreateDIBitmap(
        hDC, pbih, CBM_INIT, pPixels, reinterpret_cast<const BITMAPINFO *>(pbih), DIB_RGB_COLORS);
    return hBitmap ? hBitmap : CUIBmpFail(ERROR_NOT_ENOUGH_MEMORY);
}

// --- DIBs with a full table ---

RGBQUAD *TableOf(BITMAPINFOHEADER *pbih)
{
    return reinterpret_cast<RGBQUAD *>(reinterpret_cast<char *>(pbih) + pbih->biSize);
}

// Colour masks that follow the header are no colours.
DWORD ColorsInTable(const BITMAPINFOHEADER &header)
{
    return CUIDibHeaderSize(header) == header.biSize ? CUIDibTableColors(header) : 0;
}

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
    CUIReplaceColors(pTable, nColors, {CUI_BUTTON_GREYS, buttons, CUI_BUTTON_COLORS});
}

// Replaces the colours, makes the palette, then the bitmap. phPal and pMap may be null.
HBITMAP Convert(HDC hScreen, BITMAPINFOHEADER *pbih, const void *pPixels, HPALETTE *phPal,
                const CUIColorMap *pMap)
{
    const DWORD nColors = ColorsInTable(*pbih);
    if (pMap)
        MapColors(TableOf(pbih), nColors, *pMap);
    if (phPal) {
        // 40 bytes from the header's start, even if the header is longer, as CUIBmpCreateDIBPalette
        // takes them. Then they are no colours of the picture and would spoil it when realised.
        *phPal = PaletteFromTable(reinterpret_cast<BITMAPINFO *>(pbih)->bmiColors, nColors);
        if (pbih->biSize == sizeof *pbih)
            RealizeForLoad(hScreen, *phPal);
    }
    return DibToBitmap(hScreen, pbih, pPixels);
}

// --- What LoadImage read ---

BITMAPINFOHEADER PlainHeader(const BITMAP &bm)
{
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
    return header;
}

// The rows of a DIB section, if they are as a plain DIB has them; the section must have them from
// the bottom up.
const void *PlainRows(HBITMAP hSection)
{
    DIBSECTION section = {};
    const bool bPlain = GetObjectA(hSection, sizeof section, &section) == sizeof section &&
                        section.dsBmih.biCompression == BI_RGB;
    return bPlain ? section.dsBm.bmBits : nullptr;
}

// A DIB of the header, the section's colours and its first nRows rows, nRowBytes each. The caller
// frees it; null when there is no memory or the system does not give the rows.
CUIDibHead *ReadSection(HDC hScreen, HBITMAP hSection, const BITMAPINFOHEADER &header, DWORD nRows,
                        DWORD nRowBytes)
{
    CUIDibHead *pDib = static_cast<CUIDibHead *>(malloc(sizeof(CUIDibHead) + nRows * nRowBytes));
    if (!pDib)
        return CUIBmpFail(ERROR_NOT_ENOUGH_MEMORY);
    memset(pDib, 0, sizeof *pDib);
    pDib->m_header = header;
    if (GetDIBits(hScreen, hSection, 0, nRows, pDib + 1, pDib->Info(), DIB_RGB_COLORS))
        return pDib;
    free(pDib);
    return CUIBmpFail(ERROR_INVALID_DATA);
}

// The picture of a DIB section of any layout, by way of a plain DIB with a full table.
HBITMAP ConvertSection(HDC hScreen, CCUIOwned<HBITMAP> &section, bool bBottomUp, HPALETTE *phPal,
                       const CUIColorMap *pMap)
{
    BITMAP bm = {};
    const int nGot = GetObjectA(section, sizeof(bm), &bm);
    CU_ASSERT_TEXT(nGot == sizeof(bm), "GetObject(hDIB, sizeof(bm), &bm) == sizeof(bm)");

    BITMAPINFOHEADER header = PlainHeader(bm);
    const ULONGLONG nImage = CUIDibImageSize(header);
    if (nImage > static_cast<size_t>(-1) - sizeof(CUIDibHead))
        return CUIBmpFail(ERROR_NOT_ENOUGH_MEMORY);
    header.biSizeImage = static_cast<DWORD>(nImage);

    // Plain rows are used where they are, but for one, since colours are read with rows only.
    const void *pOwnRows = bBottomUp ? PlainRows(section) : nullptr;
    const DWORD nRows = static_cast<DWORD>(labs(bm.bmHeight));
    const DWORD nRowsRead = pOwnRows && nRows > 1 ? 1 : nRows;
    const DWORD nRowBytes = nRows ? header.biSizeImage / nRows : 0;
    CUIDibHead *pDib = ReadSection(hScreen, section, header, nRowsRead, nRowBytes);
    if (!pDib)
        return nullptr;
    // A large picture need not be in memory three times.
    if (!pOwnRows)
        section.Delete();
    const void *pRows = pOwnRows ? pOwnRows : pDib + 1;
    const HBITMAP hBitmap = Convert(hScreen, &pDib->m_header, pRows, phPal, pMap);
    free(pDib);
    return hBitmap;
}

HBITMAP LoadFileSection(const char *pszName, UINT nFlags, bool &bBottomUp)
{
    CCUFile file;
    const bool bSound = CUIBmpFileIsSound(file, pszName, bBottomUp);
    if (!file.isOpen())
        return nullptr;
    const HANDLE hSection =
        bSound ? LoadImageA(nullptr, pszName, IMAGE_BITMAP, 0, 0, nFlags | LR_LOADFROMFILE)
               : nullptr;
    return static_cast<HBITMAP>(hSection ? hSection : CUIBmpFail(ERROR_INVALID_DATA));
}

HBITMAP LoadResourceSection(HINSTANCE hInst, const char *pszName, UINT nFlags, bool &bBottomUp)
{
    // Without a module it is one of the system's own.
    if (hInst && !CUIBmpResourceIsSound(hInst, pszName, bBottomUp))
        return nullptr;
    const HANDLE hSection = LoadImageA(hInst, pszName, IMAGE_BITMAP, 0, 0, nFlags);
    if (!hSection && hInst)
        SetLastError(ERROR_INVALID_DATA);  // it is there
    return static_cast<HBITMAP>(hSection);
}

bool IsName(const char *pszName)
{
    return reinterpret_cast<ULONG_PTR>(pszName) >> 16 != 0;
}

// --- What is read here ---

// The palette and the bitmap of a DIB of nSize bytes. What counts as its colours starts nTable
// bytes from its start, and the pixels follow them.
HBITMAP PaletteBitmap(const BITMAPINFOHEADER *pbih, DWORD nSize, ULONGLONG nTable, HPALETTE &hPal)
{
    const CCUIWindowDC hScreen(nullptr);
    const DWORD nColors = CUIDibColorCount(*pbih);
    const ULONGLONG nHeader = CUIDibHeaderSize(*pbih);
    const ULONGLONG nPixels = nTable + CUIDibTableSize(nColors);
    if (nPixels < nHeader || CUIDibExtent(*pbih, nPixels) > nSize)
        return CUIBmpFail(ERROR_INVALID_DATA);
    // Palettes are made of what is 40 bytes from the header's start. With masks or a longer header
    // that is no colours.
    if (nHeader == sizeof *pbih)
        hPal = PaletteFromTable(reinterpret_cast<const RGBQUAD *>(pbih + 1), nColors);
    RealizeForLoad(hScreen, hPal);
    return DibToBitmap(hScreen, pbih, reinterpret_cast<const char *>(pbih) + nPixels);
}

}  // namespace

HBITMAP CUIBmpLoad(HINSTANCE hInst, const char *pszName, HPALETTE *phPal, bool bMapColors,
                   DWORD *pFrom, DWORD *pTo, int nCount)
{
    const bool bFile = !hInst && IsName(pszName);
    const UINT nFlags = LR_CREATEDIBSECTION | LR_DEFAULTSIZE;
    bool bBottomUp = false;
    CCUIOwned<HBITMAP> section(bFile ? LoadFileSection(pszName, nFlags, bBottomUp)
                                     : LoadResourceSection(hInst, pszName, nFlags, bBottomUp));
    if (!section) {
        if (bFile)
            CUDump("Error loading bitmap %s.\n", pszName);
        return nullptr;
    }
    const CCUIWindowDC hScreen(nullptr);
    const CUIColorMap map = {pFrom, pTo, nCount};
    return ConvertSection(hScreen, section, bBottomUp, phPal, bMapColors ? &map : nullptr);
}

HBITMAP CUIBmpCreateBitmap(BITMAPINFOHEADER *pbih, HPALETTE *phPal, bool bMapColors, DWORD *pFrom,
                           DWORD *pTo, int nCount)
{
    if (!pbih)
        return CUIBmpFail(ERROR_INVALID_PARAMETER);
    const CCUIWindowDC hScreen(nullptr);
    const ULONGLONG nPixels = static_cast<ULONGLONG>(pbih->biSize) + FULL_TABLE;
    if (!CUIMemoryHolds(pbih, CUIDibExtent(*pbih, nPixels), false))
        return CUIBmpFail(ERROR_INVALID_DATA);
    RGBQUAD *pTable = TableOf(pbih);
    if (bMapColors && !CUIMemoryHolds(pTable, CUIDibTableSize(ColorsInTable(*pbih)), true))
        return CUIBmpFail(ERROR_INVALID_DATA);
    const CUIColorMap map = {pFrom, pTo, nCount};
    return Convert(hScreen, pbih, pTable + CUI_DIB_MAX_COLORS, phPal, bMapColors ? &map : nullptr);
}

HBITMAP CUIBmpLoadBitmapFilePalette(const CCUString &sFile, HPALETTE &hPal)
{
    hPal = nullptr;
    DWORD nSize = 0;
    BITMAPINFOHEADER *pbih = CUIReadDib(sFile, nSize);
    if (!pbih)
        return nullptr;
    // The colours are said to follow the header even where masks do. No room was made for those in
    // the block: they are in it as far as biClrUsed counts them as colours.
    const HBITMAP hBitmap = PaletteBitmap(pbih, nSize, sizeof *pbih, hPal);
    free(pbih);
    return hBitmap;
}

HBITMAP CUIBmpLoadBitmapPalette(HINSTANCE hInst, const char *pszName, HPALETTE &hPal)
{
    hPal = nullptr;
    const HRSRC hRsrcImage = CUIFindBitmap(hInst, pszName);
    if (!hRsrcImage)
        return nullptr;
    const CCUIBitmapResource resource(hInst, hRsrcImage);
    const BITMAPINFOHEADER *pbih = resource.Dib();
    return pbih ? PaletteBitmap(pbih, resource.Size(), CUIDibHeaderSize(*pbih), hPal)
                : CUIBmpFail(ERROR_INVALID_DATA);
}

// --- Palettes ---

HPALETTE CUIBmpCreateDIBPalette(BITMAPINFO *pbmi, int *pnColors)
{
    *pnColors = static_cast<int>(CUIDibColorCount(pbmi->bmiHeader));
    const DWORD nColors = CUIDibTableColors(pbmi->bmiHeader);
    if (!CUIMemoryHolds(pbmi->bmiColors, CUIDibTableSize(nColors), false))
        return nullptr;
    return PaletteFromTable(pbmi->bmiColors, nColors);
}

HPALETTE CUICopyPalette(HPALETTE hPal)
{
    if (!hPal)
        return nullptr;
    CPalette256 palette;
    palette.palVersion = PALETTE_VERSION;
    palette.palNumEntries =
        static_cast<WORD>(GetPaletteEntries(hPal, 0, CUI_DIB_MAX_COLORS, palette.palPalEntry));
    return CreatePalette(&palette);
}

void CUIDumpPalette(HPALETTE hPal)
{
    PALETTEENTRY entries[CUI_DIB_MAX_COLORS];
    const int nEntries = static_cast<int>(GetPaletteEntries(hPal, 0, CUI_DIB_MAX_COLORS, entries));
    CUDump("Palette (%d entries)\n", nEntries);
    for (int i = 0; i < nEntries; ++i)
        CUDump("%03d: (%d, %d, %d)\n", i, entries[i].peRed, entries[i].peGreen, entries[i].peBlue);
    CUDump("\n");
}
