#include "Canvas/PictureBitmap.h"

#include "Base/GdiGuards.h"
#include "CUI/BmpLoad.h"

namespace {

const int MOST_PIXELS = 0x4000;  // in a row or a column

// Colours and masks between the header and the bits, in bytes.
DWORD TableSize(const BITMAPINFOHEADER &header)
{
    const bool bMasks = header.biCompression == BI_BITFIELDS && header.biSize == sizeof header;
    const DWORD nAll = header.biBitCount <= 8 ? 1UL << header.biBitCount : 0;
    const DWORD nColors = header.biClrUsed ? header.biClrUsed : nAll;
    return nColors > 0x10000 ? MAXDWORD / 2 : nColors * sizeof(RGBQUAD) + (bMasks ? 12 : 0);
}

DWORD BitsSize(const BITMAPINFOHEADER &header)
{
    if (header.biCompression == BI_RLE4 || header.biCompression == BI_RLE8)
        return header.biSizeImage;
    const DWORD nRow = (static_cast<DWORD>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    return nRow * static_cast<DWORD>(header.biHeight < 0 ? -header.biHeight : header.biHeight);
}

bool IsDepth(WORD nBits)
{
    return nBits == 1 || nBits == 4 || nBits == 8 || nBits == 16 || nBits == 24 || nBits == 32;
}

const BITMAPINFOHEADER *SoundHeader(const CBytes &bytes)
{
    if (bytes.size() < sizeof(BITMAPINFOHEADER))
        return nullptr;
    const auto *const pHeader = reinterpret_cast<const BITMAPINFOHEADER *>(bytes.data());
    const LONG cy = pHeader->biHeight;
    if (pHeader->biSize < sizeof *pHeader || pHeader->biSize > bytes.size() ||
        pHeader->biWidth < 1 || pHeader->biWidth > MOST_PIXELS || cy == 0 || cy > MOST_PIXELS ||
        cy < -MOST_PIXELS || !IsDepth(pHeader->biBitCount) || pHeader->biPlanes != 1 ||
        pHeader->biCompression > BI_BITFIELDS)
        return nullptr;
    const unsigned long long nSize =
        0ULL + pHeader->biSize + TableSize(*pHeader) + BitsSize(*pHeader);
    return nSize <= bytes.size() ? pHeader : nullptr;
}

}  // namespace

const BITMAPINFOHEADER *HeaderOfPicture(const CBlob &picture)
{
    return picture ? SoundHeader(*picture) : nullptr;
}

CCUIBitmap BitmapOfPicture(const CBlob &picture)
{
    const BITMAPINFOHEADER *const pHeader = HeaderOfPicture(picture);
    if (!pHeader)
        return CCUIBitmap();
    const auto *const pInfo = reinterpret_cast<const BITMAPINFO *>(pHeader);
    int nColors = 0;
    // Palettes are made of tables 40 bytes behind the start.
    const HPALETTE hPalette =
        pHeader->biBitCount <= 8 && pHeader->biSize == sizeof *pHeader
            ? CUIBmpCreateDIBPalette(const_cast<BITMAPINFO *>(pInfo), &nColors)
            : nullptr;
    const CCUIWindowDC screen(nullptr);
    HBITMAP hBitmap;
    {
        const CCUISelectPalette realised(screen, hPalette, FALSE);
        hBitmap = CreateDIBitmap(screen, pHeader, CBM_INIT,
                                 picture->data() + pHeader->biSize + TableSize(*pHeader), pInfo,
                                 DIB_RGB_COLORS);
    }
    if (!hBitmap && hPalette)
        DeleteObject(hPalette);
    return hBitmap ? CCUIBitmap(hBitmap, hPalette) : CCUIBitmap();
}
