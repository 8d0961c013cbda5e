#pragma once

#include "CU/File.h"
#include "CUI/Platform.h"

class CCUString;

// Where pictures come from: BMP files and bitmap resources.

// Why a picture cannot be made, for those who ask for the last error.
inline decltype(nullptr) CUIBmpFail(DWORD dwError)
{
    SetLastError(dwError);
    return nullptr;
}

// CUIBmpDIBFromFile with the size of the block: header, table and pixels.
BITMAPINFOHEADER *CUIReadDib(const CCUString &sFile, DWORD &nSize);

// The resource, or null; one that is missing is reported.
HRSRC CUIFindBitmap(HINSTANCE hInst, const char *pszName);

// A bitmap resource in memory, until the end of the block.
class CCUIBitmapResource
{
public:
    CCUIBitmapResource(HINSTANCE hInst, HRSRC hRsrc);
    ~CCUIBitmapResource() { FreeResource(m_hGlobal); }
    CCUIBitmapResource(const CCUIBitmapResource &) = delete;
    CCUIBitmapResource &operator=(const CCUIBitmapResource &) = delete;

    // Null when there is not even a header.
    const BITMAPINFOHEADER *Dib() const;
    DWORD Size() const { return m_nSize; }

private:
    HGLOBAL m_hGlobal;
    DWORD m_nSize;
};

// The next two tell whether LoadImage may be given the name: it believes what headers claim, and in
// Wine 8 it reads beyond the end of the data then. bBottomUp receives whether the lowest row comes
// first, which GetObject does not tell of the section that LoadImage makes.

// Opens the file and checks it. Nobody can change it as long as it stays open.
bool CUIBmpFileIsSound(CCUFile &file, const char *pszName, bool &bBottomUp);
// What it does not find or want, the last error tells.
bool CUIBmpResourceIsSound(HINSTANCE hInst, const char *pszName, bool &bBottomUp);
