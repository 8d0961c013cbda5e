// Small pictures of up to 8 bits, such as those on buttons, in the system's button colours.

#include "CUI/BmpLoad.h"

#include <stdlib.h>
#include <string.h>

#include "Base/GdiGuards.h"
#include "Bitmap/Dib.h"
#include "Bitmap/DibSource.h"
#include "CU/String.h"
#include "CUI/BmpBlt.h"
#include "Drawing/BmpSharedDC.h"

namespace {

// Pictures of this many colours are what the replacing is for; later colours stay.
const DWORD MAPPED_COLORS = 16;

// Button colours of the usual scheme become the present ones.
void MapSysColors(CUIDibHead &head)
{
    const DWORD buttons[CUI_BUTTON_COLORS] = {
        GetSysColor(COLOR_BTNTEXT), GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNFACE),
        GetSysColor(COLOR_BTNHIGHLIGHT)};
    CUIReplaceColors(head.m_colors, MAPPED_COLORS, {CUI_BUTTON_GREYS, buttons, CUI_BUTTON_COLORS});
}

// Whether the pixels of a DIB of nSize bytes stand nPixels bytes from its start, right after a full
// table. With room for more colours than the depth has, they stand after those.
bool HasPixelsAt(ULONGLONG nPixels, const BITMAPINFOHEADER &header, DWORD nSize)
{
    if (CUIDibExtent(header, nPixels) > nSize)
        return false;
    const ULONGLONG nClaimed = sizeof header + CUIDibTableSize(header.biClrUsed);
    return nClaimed <= nPixels || CUIDibExtent(header, nClaimed) > nSize;
}

// False when the system cannot draw it.
bool DrawDib(HDC hScreen, HBITMAP hBitmap, const CUIDibHead &head, const void *pPixels)
{
    const int cx = head.m_header.biWidth;
    const int cy = abs(head.m_header.biHeight);
    const HDC hMemory = g_bmpImageDC.For(hScreen);
    const CCUISelect select(hMemory, hBitmap);
    return StretchDIBits(hMemory, 0, 0, cx, cy, 0, 0, cx, cy, pPixels, head.Info(), DIB_RGB_COLORS,
                         SRCCOPY) > 0;
}

HBITMAP SysColorBitmap(const BITMAPINFOHEADER *pbih, DWORD nSize, bool bMapColors)
{
    // The pixels are looked for after a header of 40 bytes and a full table, however many colours
    // the header says are in use.
    if (CUIDibHeaderSize(*pbih) != sizeof *pbih || pbih->biBitCount > 8)
        return CUIBmpFail(ERROR_INVALID_DATA);
    const ULONGLONG nPixels = sizeof *pbih + CUIDibTableSize(1U << pbih->biBitCount);
    if (!HasPixelsAt(nPixels, *pbih, nSize))
        return CUIBmpFail(ERROR_INVALID_DATA);
    CUIDibHead head = {};  // a copy: the DIB's own colours stay
    memcpy(&head, pbih, nSize < sizeof head ? nSize : sizeof head);
    if (bMapColors)
        MapSysColors(head);

    const CCUIWindowDC hScreen(nullptr);
    HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, pbih->biWidth, abs(pbih->biHeight));
    const void *pPixels = reinterpret_cast<const char *>(pbih) + nPixels;
    if (hBitmap && !DrawDib(hScreen, hBitmap, head, pPixels))
        CUIBmpDeleteObject(&hBitmap);
    return hBitmap ? hBitmap : CUIBmpFail(ERROR_NOT_ENOUGH_MEMORY);
}

}  // namespace

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
    const CCUIBitmapResource resource(hInst, hRsrc);
    const BITMAPINFOHEADER *pbih = resource.Dib();
    return pbih ? SysColorBitmap(pbih, resource.Size(), true) : CUIBmpFail(ERROR_INVALID_DATA);
}

HBITMAP CUIBmpLoadBitmap(HINSTANCE hInst, const char *pszName)
{
    const HRSRC hRsrcImage = CUIFindBitmap(hInst, pszName);
    return hRsrcImage ? CUIBmpLoadSysColorBitmap(hInst, hRsrcImage) : nullptr;
}
