#include "Bitmap/DibCheck.h"

#include <string.h>

#include "Bitmap/Dib.h"

namespace {

// All headers start with their size; the old one is not the start of the others.
union CAnyHeader
{
    BITMAPINFOHEADER m_info;
    BITMAPCOREHEADER m_core;
};

// The header in its usual form and what comes before the pixels when nothing says where they are.
ULONGLONG ReadHeader(const CAnyHeader &any, BITMAPINFOHEADER &header)
{
    if (any.m_core.bcSize == sizeof any.m_core) {
        header = {};
        header.biSize = sizeof header;
        header.biPlanes = any.m_core.bcPlanes;
        header.biWidth = any.m_core.bcWidth;
        header.biHeight = any.m_core.bcHeight;
        header.biBitCount = any.m_core.bcBitCount;
        const DWORD nColors = CUIDibColorCount(header);
        return sizeof any.m_core + nColors * static_cast<ULONGLONG>(sizeof(RGBTRIPLE));
    }
    header = any.m_info;
    return CUIDibHeaderSize(header) + CUIDibTableSize(CUIDibTableColors(header));
}

// nPixels: where the pixels are said to be, 0: after the colours. nSize: all bytes from the header.
// Where the pixels have a place of their own, in files, more colours may be claimed than there are:
// a file is mapped for loading, and header and colours cannot reach beyond its first page.
bool IsSound(const CAnyHeader &any, ULONGLONG nPixels, ULONGLONG nSize, bool &bBottomUp)
{
    BITMAPINFOHEADER header;
    const ULONGLONG nHead = ReadHeader(any, header);
    bBottomUp = header.biHeight > 0;
    // Without such a place the first byte after the colours is looked at in any case.
    return (nPixels || nHead < nSize) &&
           (nPixels ? nPixels : nHead) + CUIDibImageSize(header) <= nSize;
}

}  // namespace

bool CUIBmpFileIsSound(CCUFile &file, const char *pszName, bool &bBottomUp)
{
    BITMAPFILEHEADER fileHeader;
    CAnyHeader any = {};
    if (!file.Open(pszName, CCUFile::modeRead | CCUFile::shareDenyWrite | CCUFile::modeNoInherit) ||
        file.Read(&fileHeader, sizeof fileHeader) != sizeof fileHeader ||
        file.Read(&any, sizeof any) < sizeof any.m_core)
        return false;
    const ULONGLONG nSize = static_cast<ULONGLONG>(file.GetLength()) - sizeof fileHeader;
    return fileHeader.bfOffBits < sizeof fileHeader
               ? fileHeader.bfOffBits == 0 && IsSound(any, 0, nSize, bBottomUp)
               : IsSound(any, fileHeader.bfOffBits - sizeof fileHeader, nSize, bBottomUp);
}

bool CUIBmpResourceIsSound(HINSTANCE hInst, const char *pszName, bool &bBottomUp)
{
    const HRSRC hRsrc = FindResourceA(hInst, pszName, reinterpret_cast<const char *>(RT_BITMAP));
    const HGLOBAL hGlobal = hRsrc ? LoadResource(hInst, hRsrc) : nullptr;
    const void *pData = hGlobal ? LockResource(hGlobal) : nullptr;
    if (!pData)
        return false;
    const DWORD nSize = SizeofResource(hInst, hRsrc);
    CAnyHeader any = {};
    memcpy(&any, pData, nSize < sizeof any ? nSize : sizeof any);
    return IsSound(any, 0, nSize, bBottomUp);
}
