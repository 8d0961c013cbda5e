#pragma once

#include "CUI/Platform.h"

class CCUString;

// What the loaders of packed DIBs share. Headers are not believed: sizes are computed in 64 bits
// and held against the bytes that there are before GDI, which trusts a header, gets to see it.

// The room for a colour table that no depth outgrows.
const DWORD CUI_DIB_MAX_COLORS = 256;

// The number of colours that the header claims.
DWORD CUIDibColorCount(const BITMAPINFOHEADER &header);

// As many of them as are looked at where nothing says how long the table is: no depth has more.
DWORD CUIDibTableColors(const BITMAPINFOHEADER &header);

// The bytes of a table, without overflow.
inline ULONGLONG CUIDibTableSize(ULONGLONG nColors)
{
    return nColors * sizeof(RGBQUAD);
}

// The bytes of the header and, where they follow it, the colour masks: larger headers contain them.
ULONGLONG CUIDibHeaderSize(const BITMAPINFOHEADER &header);

// The bytes of the pixels as GDI reads them, rows aligned to double words; more than can exist for
// a header that GDI does not take.
ULONGLONG CUIDibImageSize(const BITMAPINFOHEADER &header);

// How far from the header's start GDI reads when the pixels are nPixels bytes from it.
ULONGLONG CUIDibExtent(const BITMAPINFOHEADER &header, ULONGLONG nPixels);

// Whether nSize bytes at p can be read, and written as well with bWrite: for DIBs that come
// without a size.
bool CUIMemoryHolds(const void *p, ULONGLONG nSize, bool bWrite);

// CUIBmpDIBFromFile with the size of the block: header, table and pixels.
BITMAPINFOHEADER *CUIReadDib(const CCUString &sFile, DWORD &nSize);

// Which COLORREFs are replaced by which, the first match counting.
struct CUIColorMap
{
    const DWORD *m_pFrom;
    const DWORD *m_pTo;
    int m_nCount;
};
void CUIReplaceColors(RGBQUAD *pTable, DWORD nColors, const CUIColorMap &map);

// The colours of buttons in the usual scheme: text, shadow, face, highlight.
const int CUI_BUTTON_COLORS = 4;
extern const DWORD CUIButtonGreys[CUI_BUTTON_COLORS];

// A palette of nColors entries; null for none, and for more than a palette can have.
HPALETTE CUIPaletteFromTable(const RGBQUAD *pTable, DWORD nColors);

// Selects and realises the palette, if any, for the picture that is made next on this DC, and
// leaves it selected.
void CUIRealizeForLoad(HDC hDC, HPALETTE hPal);

// The DDB of a DIB that CUIDibExtent found to be there.
HBITMAP CUIDibToBitmap(HDC hDC, const BITMAPINFOHEADER *pbih, const void *pPixels);
