#include "Bitmap/Dib.h"

#include <limits.h>

namespace {

// More than any block can have, and still far from the end of 64 bits.
const ULONGLONG nImpossible = 1ULL << 62;

RGBQUAD ToQuad(DWORD cr)
{
    return {GetBValue(cr), GetGValue(cr), GetRValue(cr), 0};
}

bool IsColor(const RGBQUAD &color, DWORD cr)
{
    return color.rgbBlue == GetBValue(cr) && color.rgbGreen == GetGValue(cr) &&
           color.rgbRed == GetRValue(cr) && color.rgbReserved == 0;
}

bool IsCompressed(const BITMAPINFOHEADER &header)
{
    return header.biCompression != BI_RGB && header.biCompression != BI_BITFIELDS;
}

// Whether there is a picture of runs, the lowest row first; of others not every system tells that
// it cannot read them.
bool HasRuns(const BITMAPINFOHEADER &header)
{
    return header.biCompression == (header.biBitCount == 8   ? BI_RLE8
                                    : header.biBitCount == 4 ? BI_RLE4
                                                             : BI_RGB) &&
           header.biHeight > 0 && header.biSizeImage != 0;
}

// The bytes in which GDI looks for colours.
ULONGLONG TableSize(const BITMAPINFOHEADER &header)
{
    if (header.biCompression == BI_BITFIELDS || header.biBitCount > 8)
        return 0;
    const DWORD nMost = 1U << header.biBitCount;
    const DWORD nColors = CUIDibColorCount(header);
    return CUIDibTableSize(nColors < nMost ? nColors : nMost);
}

}  // namespace

const DWORD CUIButtonGreys[CUI_BUTTON_COLORS] = {0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF};

void CUIReplaceColors(RGBQUAD *pTable, DWORD nColors, const CUIColorMap &map)
{
    for (RGBQUAD *pColor = pTable; pColor < pTable + nColors; ++pColor) {
        int i = 0;
        while (i < map.m_nCount && !IsColor(*pColor, map.m_pFrom[i]))
            ++i;
        if (i < map.m_nCount)
            *pColor = ToQuad(map.m_pTo[i]);
    }
}

DWORD CUIDibColorCount(const BITMAPINFOHEADER &header)
{
    if (header.biClrUsed)
        return header.biClrUsed;
    return header.biBitCount <= 8 ? 1U << header.biBitCount : 0;
}

DWORD CUIDibTableColors(const BITMAPINFOHEADER &header)
{
    const DWORD nColors = CUIDibColorCount(header);
    return nColors < CUI_DIB_MAX_COLORS ? nColors : CUI_DIB_MAX_COLORS;
}

ULONGLONG CUIDibHeaderSize(const BITMAPINFOHEADER &header)
{
    const DWORD nWithMasks = sizeof header + sizeof(DWORD[3]);
    return header.biCompression == BI_BITFIELDS && header.biSize < nWithMasks ? nWithMasks
                                                                              : header.biSize;
}

ULONGLONG CUIDibImageSize(const BITMAPINFOHEADER &header)
{
    if (header.biSize < sizeof(BITMAPINFOHEADER) || header.biSize > sizeof(BITMAPV5HEADER) ||
        header.biSize % sizeof(DWORD) != 0 || header.biPlanes != 1 || header.biWidth < 0 ||
        header.biHeight == LONG_MIN || header.biBitCount > 32 ||
        (header.biCompression == BI_BITFIELDS && header.biBitCount % 16 != 0))
        return nImpossible;
    if (IsCompressed(header))
        return HasRuns(header) ? header.biSizeImage : nImpossible;
    const ULONGLONG nWidth = static_cast<ULONGLONG>(header.biWidth);
    const LONGLONG nHeight = header.biHeight;
    const ULONGLONG nRow = ((header.biBitCount * nWidth + 31) >> 5) * 4;
    return nRow >= 1ULL << 31 ? nImpossible
                              : nRow * static_cast<ULONGLONG>(nHeight < 0 ? -nHeight : nHeight);
}

ULONGLONG CUIDibExtent(const BITMAPINFOHEADER &header, ULONGLONG nPixels)
{
    const ULONGLONG nTableEnd = CUIDibHeaderSize(header) + TableSize(header);
    const ULONGLONG nImageEnd = nPixels + CUIDibImageSize(header);
    return nTableEnd > nImageEnd ? nTableEnd : nImageEnd;
}

bool CUIMemoryHolds(const void *p, ULONGLONG nSize, bool bWrite)
{
    const DWORD nWritable =
        PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    const DWORD nReadable = nWritable | PAGE_READONLY | PAGE_EXECUTE_READ;
    const ULONGLONG nEnd = reinterpret_cast<ULONG_PTR>(p) + nSize;
    ULONGLONG nAt = reinterpret_cast<ULONG_PTR>(p);
    while (nAt < nEnd) {
        MEMORY_BASIC_INFORMATION region;
        if (nAt > ~static_cast<ULONG_PTR>(0) ||
            !VirtualQuery(reinterpret_cast<void *>(static_cast<ULONG_PTR>(nAt)), &region,
                          sizeof region) ||
            region.State != MEM_COMMIT || (region.Protect & PAGE_GUARD) ||
            !(region.Protect & (bWrite ? nWritable : nReadable)))
            return false;
        nAt = reinterpret_cast<ULONG_PTR>(region.BaseAddress) +
              static_cast<ULONGLONG>(region.RegionSize);
    }
    return true;
}

void CUIRealizeForLoad(HDC hDC, HPALETTE hPal)
{
    if (!hPal)
        return;
    SelectPalette(hDC, hPal, FALSE);
    RealizePalette(hDC);
}

HBITMAP CUIDibToBitmap(HDC hDC, const BITMAPINFOHEADER *pbih, const void *pPixels)
{
    return CreateDIBitmap(hDC, pbih, CBM_INIT, pPixels, reinterpret_cast<const BITMAPINFO *>(pbih),
                          DIB_RGB_COLORS);
}
