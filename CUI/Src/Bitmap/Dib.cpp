#include "Bitmap/Dib.h"

#include <limits.h>

namespace {

// More than any block has. Sums with other sizes still fit into 64 bits.
const ULONGLONG IMPOSSIBLE_SIZE = 1ULL << 62;

const ULONGLONG MAX_ROW_SIZE = 1ULL << 31;

const DWORD WRITABLE_PAGE =
    PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
const DWORD READABLE_PAGE = WRITABLE_PAGE | PAGE_READONLY | PAGE_EXECUTE_READ;

bool IsColor(const RGBQUAD &color, DWORD cr)
{
    return color.rgbBlue == GetBValue(cr) && color.rgbGreen == GetGValue(cr) &&
           color.rgbRed == GetRValue(cr) && color.rgbReserved == 0;
}

bool IsTakenByGdi(const BITMAPINFOHEADER &header)
{
    const bool bHeaderSize = header.biSize >= sizeof(BITMAPINFOHEADER) &&
                             header.biSize <= sizeof(BITMAPV5HEADER) &&
                             header.biSize % sizeof(DWORD) == 0;
    const bool bMasks = header.biCompression != BI_BITFIELDS || header.biBitCount % 16 == 0;
    return bHeaderSize && bMasks && header.biPlanes == 1 && header.biBitCount <= 32 &&
           header.biWidth >= 0 && header.biHeight != LONG_MIN;
}

bool IsCompressed(const BITMAPINFOHEADER &header)
{
    return header.biCompression != BI_RGB && header.biCompression != BI_BITFIELDS;
}

// Of a compressed DIB: whether it has runs of its depth, tells their size and has the lowest row
// first. GDI can read no others; Wine 8 refuses them by itself, other systems are not trusted to.
bool HasRuns(const BITMAPINFOHEADER &header)
{
    const DWORD nDepth = header.biBitCount;
    const bool bOfDepth = (header.biCompression == BI_RLE8 && nDepth == 8) ||
                          (header.biCompression == BI_RLE4 && nDepth == 4);
    return bOfDepth && header.biSizeImage != 0 && header.biHeight > 0;
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

bool IsAccessible(const MEMORY_BASIC_INFORMATION &region, bool bWrite)
{
    return region.State == MEM_COMMIT && !(region.Protect & PAGE_GUARD) &&
           (region.Protect & (bWrite ? WRITABLE_PAGE : READABLE_PAGE));
}

}  // namespace

const DWORD CUI_BUTTON_GREYS[CUI_BUTTON_COLORS] = {0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF};

void CUIReplaceColors(RGBQUAD *pTable, DWORD nColors, const CUIColorMap &map)
{
    for (RGBQUAD *pColor = pTable; pColor < pTable + nColors; ++pColor) {
        int i = 0;
        while (i < map.m_nCount && !IsColor(*pColor, map.m_pFrom[i]))
            ++i;
        if (i < map.m_nCount)
            *pColor = CUIToQuad(map.m_pTo[i]);
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
    if (!IsTakenByGdi(header))
        return IMPOSSIBLE_SIZE;
    if (IsCompressed(header))
        return HasRuns(header) ? header.biSizeImage : IMPOSSIBLE_SIZE;
    const ULONGLONG nWidth = static_cast<ULONGLONG>(header.biWidth);
    const LONGLONG nHeight = header.biHeight;
    const ULONGLONG nRow = ((header.biBitCount * nWidth + 31) >> 5) * 4;
    return nRow >= MAX_ROW_SIZE ? IMPOSSIBLE_SIZE
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
    const ULONG_PTR nLastAddress = ~static_cast<ULONG_PTR>(0);
    ULONGLONG nAt = reinterpret_cast<ULONG_PTR>(p);
    const ULONGLONG nEnd = nAt + nSize;
    while (nAt < nEnd) {
        MEMORY_BASIC_INFORMATION region;
        if (nAt > nLastAddress ||
            !VirtualQuery(reinterpret_cast<void *>(static_cast<ULONG_PTR>(nAt)), &region,
                          sizeof region) ||
            !IsAccessible(region, bWrite))
            return false;
        nAt = reinterpret_cast<ULONG_PTR>(region.BaseAddress) +
              static_cast<ULONGLONG>(region.RegionSize);
    }
    return true;
}
