#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include "CU/Dump.h"
#include "CU/File.h"
#include "CUI/BmpLoad.h"
#include "Bitmap/Dib.h"

namespace {

const DWORD nHeaders = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
const WORD wBitmapType = 0x4D42;  // "BM"

// The parts of a file that follow its headers, in bytes.
struct CFileParts
{
    DWORD m_nTable;
    DWORD m_nPixels;      // that the file must have
    DWORD m_nPixelsRead;  // that are read: some more where there are more
    DWORD m_nPixelRoom;   // that the block has for them
};

// Rows are taken for word-aligned, but GDI reads them aligned to double words, as most files have
// them. So the block holds as many bytes as GDI reads where the file has them, or nearly: what is
// missing is black then. Rows of no bytes at all are not made up.
void AddRoomForGdi(CFileParts &parts, const BITMAPINFOHEADER &header, ULONGLONG nAvailable)
{
    const ULONGLONG nWanted = CUIDibImageSize(header);
    parts.m_nPixelRoom = parts.m_nPixels;
    if (nWanted > parts.m_nPixels && (nWanted <= nAvailable || nWanted / 2 <= parts.m_nPixels))
        parts.m_nPixelRoom = static_cast<DWORD>(nWanted);
    parts.m_nPixelsRead =
        parts.m_nPixelRoom < nAvailable ? parts.m_nPixelRoom : static_cast<DWORD>(nAvailable);
}

// False when the file does not have what its headers claim.
bool FindParts(CFileParts &parts, const BITMAPINFOHEADER &header, DWORD nOffset, DWORD nFile)
{
    const ULONGLONG nTable = CUIDibTableSize(CUIDibColorCount(header));
    const LONGLONG nRow =
        ((static_cast<LONGLONG>(header.biBitCount) * header.biWidth >> 3) + 1) & ~1;
    const LONGLONG nHeight = header.biHeight;
    // The headers were read, whatever a length that is no length says.
    if (nFile < nHeaders || nFile == INVALID_FILE_SIZE)
        return false;
    const DWORD nBehind = nFile - nHeaders;
    if (nTable > nBehind || nRow < 0 || (nRow > nFile && nHeight != 0))
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
        return nullptr;
    }
    if (fileHeader.bfType != wBitmapType) {
        CUDump("CUIBmpDIBFromFile: %s is not a bitmap.\n", pszFile);
        return nullptr;
    }
    BITMAPINFOHEADER header;
    if (file.Read(&header, sizeof header) != sizeof header || header.biSize != sizeof header)
        return nullptr;

    CFileParts parts;
    if (!FindParts(parts, header, fileHeader.bfOffBits, file.GetLength()))
        return nullptr;
    const ULONGLONG nBlock =
        static_cast<ULONGLONG>(sizeof header) + parts.m_nTable + parts.m_nPixelRoom;
    if (nBlock > static_cast<size_t>(-1))
        return nullptr;
    nSize = static_cast<DWORD>(nBlock);
    char *pBlock = static_cast<char *>(malloc(nSize));
    if (!pBlock)
        return nullptr;
    memcpy(pBlock, &header, sizeof header);
    if (!ReadParts(file, parts, fileHeader.bfOffBits, pBlock + sizeof header)) {
        free(pBlock);
        return nullptr;
    }
    return reinterpret_cast<BITMAPINFOHEADER *>(pBlock);
}

}  // namespace

BITMAPINFOHEADER *CUIReadDib(const CCUString &sFile, DWORD &nSize)
{
    const char *pszFile = sFile;
    CCUFile file;
    if (!file.Open(pszFile, CCUFile::modeRead | CCUFile::shareDenyWrite | CCUFile::modeNoInherit)) {
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
