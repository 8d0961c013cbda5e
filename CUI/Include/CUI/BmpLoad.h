#pragma once

/// @file
/// Makes device-dependent bitmaps (DDBs) and palettes of bitmap resources, files and packed DIBs.
///
/// A packed DIB is one block: a BITMAPINFOHEADER, the colour table (RGBQUADs), the pixel rows. One
/// that is returned came from malloc and is freed with free; one that is given stays the caller's.
/// Bitmaps and palettes that are returned are the caller's, to be deleted with DeleteObject. The
/// number of colours is biClrUsed, or 2^biBitCount when that is 0 and the depth 8 bits or less, or
/// 0. Failures return null; nothing is reported unless said so. Headers and files are not trusted:
/// what they claim but do not have leads to null. For the user-interface thread.
///
/// Where a bitmap or DIB is null, the thread's last error tells why: what the system said of a file
/// that it did not open or a resource that it did not find; ERROR_INVALID_DATA, no bitmap, not all
/// of one or none of those below; ERROR_NOT_ENOUGH_MEMORY; ERROR_INVALID_PARAMETER for a null DIB.
///
/// A resource's name may be wide text, as UNICODE makes it, or an id of MAKEINTRESOURCE.
///
/// The functions with "Palette" in their names make palettes of all colours that the file or
/// resource claims and has, and none of more than 65,535 colours. The palette of CUIBmpLoad has as
/// many as the depth allows, that of a DIB whose size is not known the first 256, since nobody
/// vouches for more.
///
/// Where a palette is made, it is selected into the screen's DC as a foreground palette and
/// realised before the bitmap is made.
///
/// Headers are of 40 bytes, or longer (V4, V5; the pixels of resources and packed DIBs follow their
/// tables). The loaders differ in what they can show; of the rest they return null:
///
///                                  headers    depths, layout
///     CUIBmpLoad, CCUIBitmap       all        all that LoadImage knows
///     CUIBmpLoadBitmapPalette      not OS/2   all; longer headers and masks get no palette
///     CUIBmpLoadBitmapFilePalette  40 bytes   all; with masks (BI_BITFIELDS) if biClrUsed is 3 or
///                                             more, and no palette then
///     CUIBmpLoadBitmap, ...SysColorBitmap, ...BitmapFile
///                                  40 bytes   1, 4 and 8 bits with a full colour table
///     CUIBmpCreateBitmap           not OS/2   all, in a layout of its own (see there)
///
/// Runs (BI_RLE4, BI_RLE8) must tell their size. Of files with runs, all functions but CUIBmpLoad
/// want as many bytes as the picture would take without runs.
///
/// Rows from the top down (a negative biHeight) are shown as they are meant, except by CUIBmpLoad
/// and so CCUIBitmap::Load, which show what the system's LoadImage makes of them: in Wine 8 an
/// empty picture of their size.

#include "CUI/Platform.h"
#include "CUI/ResourceName.h"

/// A BMP file as a packed DIB, or null. Headers other than the 40-byte one are refused. The block
/// holds the file's bytes as they stand, but of the masks of BI_BITFIELDS, which come first, only
/// what has room among the colours in use: without any, what looks at the header alone would take
/// the first pixels for masks. The file must have as many bytes as rows aligned to words take, of
/// (depth x width) / 8 bytes rounded up to even. A file that cannot be opened, is too short for its
/// file header or no bitmap is traced.
CUI_API BITMAPINFOHEADER *CUIBmpDIBFromFile(const CCUString &sFile);

/// A palette of the first 256 colours of the table. The table is taken to start 40 bytes after the
/// header's start, so this is for headers of 40 bytes without masks. *pnColors is the number of
/// colours that the header claims. Null for no colours. Neither pointer may be null.
CUI_API HPALETTE CUIBmpCreateDIBPalette(BITMAPINFO *pbmi, int *pnColors);

/// A DDB of a BMP file, read as CUIBmpDIBFromFile does, and in hPal its palette, or null. The
/// palette is the caller's, also when the system could make no bitmap and null is returned.
CUI_API HBITMAP CUIBmpLoadBitmapFilePalette(const CCUString &sFile, HPALETTE &hPal);

/// The same for a bitmap resource. One that is missing is reported with "hRsrcImage".
/// @{
CUI_API HBITMAP CUIBmpLoadBitmapPalette(HINSTANCE hInst, const char *pszName, HPALETTE &hPal);
template <typename Wide>
inline HBITMAP CUIBmpLoadBitmapPalette(HINSTANCE hInst, const Wide *pszName, HPALETTE &hPal)
{
    return CUIBmpLoadBitmapPalette(hInst, CUIResourceName(pszName), hPal);
}
/// @}

/// A DDB of a bitmap resource, or of a BMP file when hInst is null and pszName a string; a file
/// that cannot be loaded is traced. A file may claim more colours than it has. With bMapColors
/// every colour of the colour table that equals pFrom[i] becomes pTo[i], the first match counting;
/// with an nCount of 0 black, grey (808080), silver (C0C0C0) and white become CUIData's button
/// text, shadow, face and highlight. The colours are COLORREFs. phPal may be null; otherwise it
/// receives the palette of the (replaced) colours, which is the caller's also when no bitmap could
/// be made of them, and keeps its value before that.
/// @{
CUI_API HBITMAP CUIBmpLoad(HINSTANCE hInst, const char *pszName, HPALETTE *phPal, bool bMapColors,
                           DWORD *pFrom, DWORD *pTo, int nCount);
template <typename Wide>
inline HBITMAP CUIBmpLoad(HINSTANCE hInst, const Wide *pszName, HPALETTE *phPal, bool bMapColors,
                          DWORD *pFrom, DWORD *pTo, int nCount)
{
    return CUIBmpLoad(hInst, CUIResourceName(pszName), phPal, bMapColors, pFrom, pTo, nCount);
}
/// @}

/// The same of a packed DIB whose pixels start after room for 256 colours, whatever the depth, that
/// is, 1024 bytes after the end of the header. The room follows a header of any size (biSize); the
/// masks of BI_BITFIELDS after a header of 40 bytes stand at its start, and no colours then. The
/// palette is made of what is 40 bytes from the header's start: with longer headers, of no colours
/// of the picture, and it is not realised. The colours are replaced in the table itself; null when
/// they would be and it cannot be written.
CUI_API HBITMAP CUIBmpCreateBitmap(BITMAPINFOHEADER *pbih, HPALETTE *phPal, bool bMapColors,
                                   DWORD *pFrom, DWORD *pTo, int nCount);

/// DDBs of a BMP file or a bitmap resource. They are for 8 bits or less, where the pixels follow a
/// header of 40 bytes and a full colour table (2^biBitCount entries), however many biClrUsed says
/// are in use; null where there is room for more. Where bSysColors is not 0, and always for
/// resources, those of the first 16 colours that are black, grey, silver or white become the
/// system's present button colours: for pictures of 16 colours. CUIBmpLoadBitmap reports a missing
/// resource with "hRsrcImage".
/// @{
CUI_API HBITMAP CUIBmpLoadBitmapFile(const CCUString &sFile, int bSysColors);
CUI_API HBITMAP CUIBmpLoadSysColorBitmap(HINSTANCE hInst, HRSRC hRsrc);
CUI_API HBITMAP CUIBmpLoadBitmap(HINSTANCE hInst, const char *pszName);
template <typename Wide>
inline HBITMAP CUIBmpLoadBitmap(HINSTANCE hInst, const Wide *pszName)
{
    return CUIBmpLoadBitmap(hInst, CUIResourceName(pszName));
}
/// @}

/// A bitmap of the screen's depth, cx by cy pixels, that holds the top-left part of hbm. What lies
/// beyond hbm is undefined, and a cx or cy of 0 gives one monochrome pixel. The palette may be
/// null.
CUI_API HBITMAP CUICopyBitmap(HBITMAP hbm, int cx, int cy, HPALETTE hPal);

/// A palette with the same entries, the first 256. Null for null.
CUI_API HPALETTE CUICopyPalette(HPALETTE hPal);

/// The bitmap as a packed DIB of its own depth, its colours taken through the palette (null: the
/// default palette). dwHeaderSize receives the bytes before the pixels; with null it is
/// undefined. Null for a null bitmap.
CUI_API BITMAPINFOHEADER *CUIBitmapToDib(HBITMAP hbm, HPALETTE hPal, DWORD &dwHeaderSize);

/// Writes the entries of a palette, the first 256, to the debug trace.
CUI_API void CUIDumpPalette(HPALETTE hPal);
