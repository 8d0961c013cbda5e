#pragma once

#include "CUI/Platform.h"

// The arithmetic of DIBs. Headers are not believed: sizes are computed in 64 bits and held against
// the bytes that there are before GDI, which trusts a header, gets to see it.

// The room for a colour table that no depth outgrows.
const DWORD CUI_DIB_MAX_COLORS = 256;

// A header of 40 bytes with a full table.
struct CUIDibHead
{
    BITMAPINFOHEADER m_header;
    RGBQUAD m_colors[CUI_DIB_MAX_COLORS];

    BITMAPINFO *Info() { return reinterpret_cast<BITMAPINFO *>(this); }
    const BITMAPINFO *Info() const { return reinterpret_cast<const BITMAPINFO *>(this); }
};

// A colour as tables have it.
inline RGBQUAD CUIToQuad(COLORREF cr)
{
    return {GetBValue(cr), GetGValue(cr), GetRValue(cr), 0};
}

// The number of colours that the header claims.
DWORD CUIDibColorCount(const BITMAPINFOHEADER &header);

// The same, but at most 256, which no depth exceeds: how many are looked at where nothing says how
// long the table is.
DWORD CUIDibTableColors(const BITMAPINFOHEADER &header);

// The bytes of a table, without overflow.
inline ULONGLONG CUIDibTableSize(ULONGLONG nColors)
{
    return nColors * sizeof(RGBQUAD);
}

// The bytes of the header and of the colour masks that follow one of 40 bytes. Larger headers
// contain their masks.
ULONGLONG CUIDibHeaderSize(const BITMAPINFOHEADER &header);

// The bytes of the pixels as GDI reads them, with rows aligned to double words. For a header that
// GDI does not take it is more than any block has.
ULONGLONG CUIDibImageSize(const BITMAPINFOHEADER &header);

// How many bytes GDI reads from the header's start on when the pixels stand nPixels bytes from it.
ULONGLONG CUIDibExtent(const BITMAPINFOHEADER &header, ULONGLONG nPixels);

// Whether nSize bytes at p can be read, and written as well with bWrite: for DIBs that come
// without a size.
bool CUIMemoryHolds(const void *p, ULONGLONG nSize, bool bWrite);

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
extern const DWORD CUI_BUTTON_GREYS[CUI_BUTTON_COLORS];
