#include <stdlib.h>

#include "CU/Dump.h"
#include "CUI/BmpLoad.h"
#include "Bitmap/Dib.h"

namespace {

// A palette that a display can have.
struct CPalette256 : LOGPALETTE
{
    PALETTEENTRY m_more[CUI_DIB_MAX_COLORS - 1];
};

}  // namespace

HPALETTE CUIPaletteFromTable(const RGBQUAD *pTable, DWORD nColors)
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
    pPalette->palVersion = 0x300;
    pPalette->palNumEntries = static_cast<WORD>(nColors);
    PALETTEENTRY *pEntry = pPalette->palPalEntry;
    for (const RGBQUAD *pColor = pTable; pColor < pTable + nColors; ++pColor)
        *pEntry++ = {pColor->rgbRed, pColor->rgbGreen, pColor->rgbBlue, 0};
    const HPALETTE hPal = CreatePalette(pPalette);
    if (pPalette != &usual)
        free(pPalette);
    return hPal;
}

HPALETTE CUIBmpCreateDIBPalette(BITMAPINFO *pbmi, int *pnColors)
{
    *pnColors = static_cast<int>(CUIDibColorCount(pbmi->bmiHeader));
    const DWORD nColors = CUIDibTableColors(pbmi->bmiHeader);
    if (!CUIMemoryHolds(pbmi->bmiColors, CUIDibTableSize(nColors), false))
        return nullptr;
    return CUIPaletteFromTable(pbmi->bmiColors, nColors);
}

HPALETTE CUICopyPalette(HPALETTE hPal)
{
    if (!hPal)
        return nullptr;
    CPalette256 palette;
    palette.palVersion = 0x300;
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
