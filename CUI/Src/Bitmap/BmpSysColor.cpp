// Bitmaps of packed DIBs whose size is known: whole files, whole resources.

#include <stdlib.h>
#include <string.h>

#include "Base/GdiGuards.h"
#include "CU/Assert.h"
#include "CU/String.h"
#include "CUI/BmpBlt.h"
#include "CUI/BmpLoad.h"
#include "Drawing/BmpSharedDC.h"
#include "Bitmap/Dib.h"

#define CU_SOURCE "Bmp"

namespace {

// A bitmap resource in memory, until the end of the block.
class CResource
{
public:
    CResource(HINSTANCE hInst, HRSRC hRsrc)
        : m_hGlobal(LoadResource(hInst, hRsrc)),
          m_nSize(m_hGlobal ? SizeofResource(hInst, hRsrc) : 0)
    {
    }
    ~CResource() { FreeResource(m_hGlobal); }
    CResource(const CResource &) = delete;
    CResource &operator=(const CResource &) = delete;

    // Null when there is not even a header.
    const BITMAPINFOHEADER *Dib() const
    {
        return m_nSize < sizeof(BITMAPINFOHEADER)
                   ? nullptr
                   : static_cast<const BITMAPINFOHEADER *>(LockResource(m_hGlobal));
    }
    DWORD Size() const { return m_nSize; }

private:
    HGLOBAL m_hGlobal;
    DWORD m_nSize;
};

HRSRC FindBitmap(HINSTANCE hInst, const char *pszName)
{
    const HRSRC hRsrcImage =
        FindResourceA(hInst, pszName, reinterpret_cast<const char *>(RT_BITMAP));
    CU_ASSERT(hRsrcImage);
    return hRsrcImage;
}

// nTable: where what counts as the colours starts.
HBITMAP PaletteBitmap(const BITMAPINFOHEADER *pbih, DWORD nSize, ULONGLONG nTable, HPALETTE &hPal)
{
    const CCUIWindowDC hScreen(nullptr);
    const DWORD nColors = CUIDibColorCount(*pbih);
    const ULONGLONG nHeader = CUIDibHeaderSize(*pbih);
    const ULONGLONG nPixels = nTable + CUIDibTableSize(nColors);
    if (nPixels < nHeader || CUIDibExtent(*pbih, nPixels) > nSize)
        return nullptr;
    // Palettes are made of what is 40 bytes from the header's start: here that may be none of it.
    if (nHeader == sizeof *pbih)
        hPal = CUIPaletteFromTable(reinterpret_cast<const RGBQUAD *>(pbih + 1), nColors);
    CUIRealizeForLoad(hScreen, hPal);
    return CUIDibToBitmap(hScreen, pbih, reinterpret_cast<const char *>(pbih) + nPixels);
}

// The header of a DIB with its colours, to be changed without the DIB.
struct CDibHead
{
    CDibHead(const BITMAPINFOHEADER *pbih, DWORD nSize) : m_bytes()
    {
        memcpy(m_bytes, pbih, nSize < sizeof m_bytes ? nSize : sizeof m_bytes);
    }
    BITMAPINFOHEADER *Header() { return reinterpret_cast<BITMAPINFOHEADER *>(m_bytes); }
    // Those of the first 16 colours that are a button's in the usual scheme become the present
    // ones. Colours beyond them stay: pictures of 16 colours are what this is for.
    void MapSysColors();

    alignas(4) char m_bytes[sizeof(BITMAPV5HEADER) + CUI_DIB_MAX_COLORS * sizeof(RGBQUAD)];
};

void CDibHead::MapSysColors()
{
    const DWORD buttons[CUI_BUTTON_COLORS] = {
        GetSysColor(COLOR_BTNTEXT), GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNFACE),
        GetSysColor(COLOR_BTNHIGHLIGHT)};
    CUIReplaceColors(reinterpret_cast<RGBQUAD *>(m_bytes + Header()->biSize), 16,
                     {CUIButtonGreys, buttons, CUI_BUTTON_COLORS});
}

HBITMAP SysColorBitmap(const BITMAPINFOHEADER *pbih, DWORD nSize, bool bMapColors)
{
    // A full table after a header of 40 bytes is assumed, whatever the header says of the colours
    // in use. Where the pixels cannot be there, none are shown.
    if (CUIDibHeaderSize(*pbih) != sizeof *pbih || pbih->biBitCount > 8)
        return nullptr;
    const ULONGLONG nPixels = sizeof *pbih + CUIDibTableSize(1U << pbih->biBitCount);
    const ULONGLONG nClaimed = sizeof *pbih + CUIDibTableSize(pbih->biClrUsed);
    // With room for more colours than the depth has, the pixels come after those.
    if (CUIDibExtent(*pbih, nPixels) > nSize ||
        (nClaimed > nPixels && CUIDibExtent(*pbih, nClaimed) <= nSize))
        return nullptr;
    CDibHead head(pbih, nSize);
    if (bMapColors)
        head.MapSysColors();

    const int nWidth = pbih->biWidth;
    const int nHeight = abs(pbih->biHeight);
    const CCUIWindowDC hScreen(nullptr);
    HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, nWidth, nHeight);
    if (!hBitmap)
        return nullptr;
    const HDC hMemory = g_bmpImageDC.For(hScreen);
    const int nDrawn = [&] {
        const CCUISelect select(hMemory, hBitmap);
        return StretchDIBits(hMemory, 0, 0, nWidth, nHeight, 0, 0, nWidth, nHeight,
                             reinterpret_cast<const char *>(pbih) + nPixels,
                             reinterpret_cast<const BITMAPINFO *>(head.Header()), DIB_RGB_COLORS,
                             SRCCOPY);
    }();
    if (nDrawn <= 0)
        CUIBmpDeleteObject(&hBitmap);
    return hBitmap;
}

}  // namespace

HBITMAP CUIBmpLoadBitmapFilePalette(const CCUString &sFile, HPALETTE &hPal)
{
    hPal = nullptr;
    DWORD nSize = 0;
    BITMAPINFOHEADER *pbih = CUIReadDib(sFile, nSize);
    if (!pbih)
        return nullptr;
    // Nothing is read for colour masks: they are there when they were taken for colours.
    const HBITMAP hBitmap = PaletteBitmap(pbih, nSize, sizeof *pbih, hPal);
    free(pbih);
    return hBitmap;
}

HBITMAP CUIBmpLoadBitmapPalette(HINSTANCE hInst, const char *pszName, HPALETTE &hPal)
{
    hPal = nullptr;
    const HRSRC hRsrcImage = FindBitmap(hInst, pszName);
    if (!hRsrcImage)
        return nullptr;
    const CResource resource(hInst, hRsrcImage);
    const BITMAPINFOHEADER *pbih = resource.Dib();
    return pbih ? PaletteBitmap(pbih, resource.Size(), CUIDibHeaderSize(*pbih), hPal) : nullptr;
}

HBITMAP CUIBmpLoadBitmapFile(const CCUString &sFile, int bSysColors)
{
    DWORD nSize = 0;
    BITMAPINFOHEADER *pbih = CUIReadDib(sFile, nSize);
    if (!pbih)
        return nullptr;
    const HBITMAP hBitmap = SysColorBitmap(pbih, nSize, bSysColors != 0);
    free(pbih);
    return hBitmap;
}

HBITMAP CUIBmpLoadSysColorBitmap(HINSTANCE hInst, HRSRC hRsrc)
{
    const CResource resource(hInst, hRsrc);
    const BITMAPINFOHEADER *pbih = resource.Dib();
    return pbih ? SysColorBitmap(pbih, resource.Size(), true) : nullptr;
}

HBITMAP CUIBmpLoadBitmap(HINSTANCE hInst, const char *pszName)
{
    const HRSRC hRsrcImage = FindBitmap(hInst, pszName);
    return hRsrcImage ? CUIBmpLoadSysColorBitmap(hInst, hRsrcImage) : nullptr;
}
