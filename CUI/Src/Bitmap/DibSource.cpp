#include "Bitmap/DibSource.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include "Bitmap/Dib.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CUI/BmpLoad.h"

#define CU_SOURCE "Bmp"

namespace {

const DWORD HEADERS_SIZE = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
const WORD BMP_TYPE = 0x4D42;  // "BM"
const UINT READ_MODE = CCUFile::modeRead | CCUFile::shareDenyWrite | CCUFile::modeNoInherit;

// The parts of a file that follow its headers, in bytes.
struct CFileParts
{
    DWORD m_nTable;
    DWORD m_nPixels;      // that the file must have
    DWORD m_nPixelsRead;  // that are read: some more where there are more
    DWORD m_nPixelRoom;   // that the block has for them
};

// The bytes of a row in a file: here rows are taken for aligned to words. Negative for a negative
// width.
LONGLONG WordAlignedRow(const BITMAPINFOHEADER &header)
{
    return ((static_cast<LONGLONG>(header.biBitCount) * header.biWidth >> 3) + 1) & ~1;
}

// GDI reads rows aligned to double words, and most files have them so. The block gets room for
// those if the file has that many bytes, or if at least half of them are sure to be there: the rest
// is black then.
void AddRoomForGdi(CFileParts &parts, const BITMAPINFOHEADER &header, ULONGLONG nAvailable)
{
    const ULONGLONG nWanted = CUIDibImageSize(header);
    const bool bMostlyThere = nWanted <= nAvailable || nWanted / 2 <= parts.m_nPixels;
    parts.m_nPixelRoom = parts.m_nPixels;
    if (nWanted > parts.m_nPixels && bMostlyThere)
        parts.m_nPixelRoom = static_cast<DWORD>(nWanted);
    parts.m_nPixelsRead =
        parts.m_nPixelRoom < nAvailable ? parts.m_nPixelRoom : static_cast<DWORD>(nAvailable);
}

// False when the file does not have what its headers claim.
bool FindParts(CFileParts &parts, const BITMAPINFOHEADER &header, DWORD nOffset, DWORD nFile)
{
    // Both headers were read: a length that says otherwise is none.
    if (nFile < HEADERS_SIZE || nFile == INVALID_FILE_SIZE)
        return false;
    const ULONGLONG nTable = CUIDibTableSize(CUIDibColorCount(header));
    if (nTable > nFile - HEADERS_SIZE)
        return false;
    const LONGLONG nRow = WordAlignedRow(header);
    const LONGLONG nHeight = header.biHeight;
    // With longer rows the product could overflow.
    if (nRow < 0 || (nRow > nFile && nHeight != 0))
        return false;
    const ULONGLONG nPixels = static_cast<ULONGLONG>(nRow * (nHeight < 0 ? -nHeight : nHeight));
    // Files are not sought beyond what a long holds.
    const DWORD nAvailable = nOffset < nFile && nOffset <= LONG_MAX ? nFile - nOffset : 0;
    if (nPixels > nAvailable || nPixels > LONG_MAX)
        return false;
    parts.m_nTable = static_cast<DWORD>(nTable);
    parts.m_nPixels = static_cast<DWORD>(nPixels);
    AddRoomForGdi(parts, header, nAvailable);
    return true;
}

bool ReadParts(CCUFile &file, const CFileParts &parts, DWORD nOffset, char *pAt)
{
    if (file.Read(pAt, parts.m_nTable) != parts.m_nTable)
        return false;
    if (parts.m_nPixelRoom == 0)
        return true;
    file.Seek(static_cast<long>(nOffset), CCUFile::begin);
    pAt += parts.m_nTable;
    const DWORD nRead = file.Read(pAt, parts.m_nPixelsRead);
    if (nRead < parts.m_nPixels)
        return false;
    memset(pAt + nRead, 0, parts.m_nPixelRoom - nRead);
    return true;
}

BITMAPINFOHEADER *ReadDib(CCUFile &file, const char *pszFile, DWORD &nSize)
{
    BITMAPFILEHEADER fileHeader;
    if (file.Read(&fileHeader, sizeof fileHeader) != sizeof fileHeader) {
        CUDump("CUIBmpDIBFromFile: error reading header for %s.\n", pszFile);
        return CUIBmpFail(ERROR_INVALID_DATA);
    }
    if (fileHeader.bfType != BMP_TYPE) {
        CUDump("CUIBmpDIBFromFile: %s is not a bitmap.\n", pszFile);
        return CUIBmpFail(ERROR_INVALID_DATA);
    }
    BITMAPINFOHEADER header;
    if (file.Read(&header, sizeof header) != sizeof header || header.biSize != sizeof header)
        return CUIBmpFail(ERROR_INVALID_DATA);

    CFileParts parts;
    if (!FindParts(parts, header, fileHeader.bfOffBits, file.GetLength()))
        return CUIBmpFail(ERROR_INVALID_DATA);
    const ULONGLONG nBlock =
        static_cast<ULONGLONG>(sizeof header) + parts.m_nTable + parts.m_nPixelRoom;
    if (nBlock > static_cast<size_t>(-1))
        return CUIBmpFail(ERROR_NOT_ENOUGH_MEMORY);
    nSize = static_cast<DWORD>(nBlock);
    char *pBlock = static_cast<char *>(malloc(nSize));
    if (!pBlock)
        return CUIBmpFail(ERROR_NOT_ENOUGH_MEMORY);
    memcpy(pBlock, &header, sizeof header);
    if (!ReadParts(file, parts, fileHeader.bfOffBits, pBlock + sizeof header)) {
        free(pBlock);
        return CUIBmpFail(ERROR_INVALID_DATA);
    }
    return reinterpret_cast<BITMAPINFOHEADER *>(pBlock);
}

// The start of a DIB. Every kind of header begins with its size; the OS/2 one has nothing else in
// common with the others.
union CDibStart
{
    BITMAPINFOHEADER m_info;
    BITMAPCOREHEADER m_core;
};

// Turns any header into one of 40 bytes or more. Returns the bytes before pixels that follow the
// colours.
ULONGLONG ReadHeader(const CDibStart &start, BITMAPINFOHEADER &header)
{
    const BITMAPCOREHEADER &core = start.m_core;
    if (core.bcSize != sizeof core) {
        header = start.m_info;
        return CUIDibHeaderSize(header) + CUIDibTableSize(CUIDibTableColors(header));
    }
    header = {};
    header.biSize = sizeof header;
    header.biPlanes = core.bcPlanes;
    header.biWidth = core.bcWidth;
    header.biHeight = core.bcHeight;
    header.biBitCount = core.bcBitCount;
    return sizeof core + CUIDibColorCount(header) * static_cast<ULONGLONG>(sizeof(RGBTRIPLE));
}

// Whether all that the header claims lies within the nSize bytes that begin with it. nPixels is
// where the pixels are said to start; 0: right after the colours.
bool IsSound(const CDibStart &start, ULONGLONG nPixels, ULONGLONG nSize, bool &bBottomUp)
{
    BITMAPINFOHEADER header;
    const ULONGLONG nHead = ReadHeader(start, header);
    const ULONGLONG nImage = CUIDibImageSize(header);
    bBottomUp = header.biHeight > 0;
    // In a file, which tells where its pixels are, colours may be claimed that are not there.
    // Reading them is safe: LoadImage maps the file, and no header with its colours reaches beyond
    // the first page.
    if (nPixels != 0)
        return nPixels + nImage <= nSize;
    // Even for a picture without pixels LoadImage (Wine 8) looks at the first byte after the
    // colours.
    return nHead < nSize && nHead + nImage <= nSize;
}

HRSRC FindBitmap(HINSTANCE hInst, const char *pszName)
{
    return FindResourceA(hInst, pszName, reinterpret_cast<const char *>(RT_BITMAP));
}

}  // namespace

// --- Files ---

BITMAPINFOHEADER *CUIReadDib(const CCUString &sFile, DWORD &nSize)
{
    const char *pszFile = sFile;
    CCUFile file;
    if (!file.Open(pszFile, READ_MODE)) {
        CUDump("CUIBmpDIBFromFile: error opening %s.\n", pszFile);
        return nullptr;
    }
    return ReadDib(file, pszFile, nSize);
}

BITMAPINFOHEADER *CUIBmpDIBFromFile(const CCUString &sFile)
{
    DWORD nSize = 0;
    return CUIReadDib(sFile, nSize);
}

bool CUIBmpFileIsSound(CCUFile &file, const char *pszName, bool &bBottomUp)
{
    BITMAPFILEHEADER fileHeader;
    CDibStart start = {};
    if (!file.Open(pszName, READ_MODE) ||
        file.Read(&fileHeader, sizeof fileHeader) != sizeof fileHeader ||
        file.Read(&start, sizeof start) < sizeof start.m_core)
        return false;
    const DWORD nOffset = fileHeader.bfOffBits;
    if (nOffset != 0 && nOffset < sizeof fileHeader)
        return false;
    const DWORD nPixels = nOffset != 0 ? nOffset - sizeof fileHeader : 0;
    const ULONGLONG nSize = static_cast<ULONGLONG>(file.GetLength()) - sizeof fileHeader;
    return IsSound(start, nPixels, nSize, bBottomUp);
}

// --- Resources ---

HRSRC CUIFindBitmap(HINSTANCE hInst, const char *pszName)
{
    const HRSRC hRsrcImage = FindBitmap(hInst, pszName);
    CU_ASSERT(hRsrcImage);
    return hRsrcImage;
}

CCUIBitmapResource::CCUIBitmapResource(HINSTANCE hInst, HRSRC hRsrc)
    : m_hGlobal(LoadResource(hInst, hRsrc)), m_nSize(m_hGlobal ? SizeofResource(hInst, hRsrc) : 0)
{
}

const BITMAPINFOHEADER *CCUIBitmapResource::Dib() const
{
    return m_nSize < sizeof(BITMAPINFOHEADER)
               ? nullptr
               : static_cast<const BITMAPINFOHEADER *>(LockResource(m_hGlobal));
}

bool CUIBmpResourceIsSound(HINSTANCE hInst, const char *pszName, bool &bBottomUp)
{
    const HRSRC hRsrc = FindBitmap(hInst, pszName);
    const HGLOBAL hGlobal = hRsrc ? LoadResource(hInst, hRsrc) : nullptr;
    const void *pData = hGlobal ? LockResource(hGlobal) : nullptr;
    if (!pData)
        return false;
    const DWORD nSize = SizeofResource(hInst, hRsrc);
    CDibStart start = {};
    memcpy(&start, pData, nSize < sizeof start ? nSize : sizeof start);
    if (IsSound(start, 0, nSize, bBottomUp))
        return true;
    SetLastError(ERROR_INVALID_DATA);
    return false;
}
