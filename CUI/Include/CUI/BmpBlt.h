#pragma once

/// @file
/// Puts device-dependent bitmaps onto a device context. None of these functions takes ownership of
/// its arguments; a null bitmap draws nothing. What is drawn of a bitmap that is selected into a DC
/// elsewhere, or that is given as image and mask at once, is undefined. All work in the user's
/// logical coordinates of `hDC`. A form without source rectangle draws the whole bitmap; in the
/// forms that have one, a width or height of 0 means the bitmap's own width and height, both of
/// them. For the user-interface thread only: the memory DCs in use are shared by all calls. The
/// depth of a target is remembered for 100 ms, as long as the same bitmap is selected into it;
/// drawing between depths converts.
///
/// Coordinates may be negative, the unsigned types notwithstanding: a picture is drawn as far as it
/// reaches into the target. Each function that has some also takes them as int, LONG and so on, -1
/// too, so that nothing need be cast.

#include "CUI/Platform.h"

/// A coordinate as the functions here take it.
template <typename Number>
inline UINT CUIBmpCoordinate(Number n)
{
    return static_cast<UINT>(static_cast<int>(n));
}

/// Copies the rectangle at (xSrc, ySrc) to (x, y). A palette is selected into the memory DC (never
/// into hDC) for the time of the copy, in the background when bForceBkgd is not 0.
/// @{
CUI_API void CUIBmpBitBlt(HDC hDC, UINT x, UINT y, HBITMAP hBmp, UINT xSrc, UINT ySrc, UINT cx,
                          UINT cy, HPALETTE hPal, int bForceBkgd);
template <typename X, typename Y, typename XSrc, typename YSrc, typename Cx, typename Cy>
inline void CUIBmpBitBlt(HDC hDC, X x, Y y, HBITMAP hBmp, XSrc xSrc, YSrc ySrc, Cx cx, Cy cy,
                         HPALETTE hPal, int bForceBkgd)
{
    CUIBmpBitBlt(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hBmp, CUIBmpCoordinate(xSrc),
                 CUIBmpCoordinate(ySrc), CUIBmpCoordinate(cx), CUIBmpCoordinate(cy), hPal,
                 bForceBkgd);
}
/// @}

/// The same, stretched from cxSrc by cySrc to cx by cy in hDC's stretching mode. Only the source's
/// size has a default. A failure is traced.
/// @{
CUI_API void CUIBmpStretchBlt(HDC hDC, UINT x, UINT y, UINT cx, UINT cy, HBITMAP hBmp, UINT xSrc,
                              UINT ySrc, UINT cxSrc, UINT cySrc, HPALETTE hPal, int bForceBkgd);
template <typename X, typename Y, typename Cx, typename Cy, typename XSrc, typename YSrc,
          typename CxSrc, typename CySrc>
inline void CUIBmpStretchBlt(HDC hDC, X x, Y y, Cx cx, Cy cy, HBITMAP hBmp, XSrc xSrc, YSrc ySrc,
                             CxSrc cxSrc, CySrc cySrc, HPALETTE hPal, int bForceBkgd)
{
    CUIBmpStretchBlt(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), CUIBmpCoordinate(cx),
                     CUIBmpCoordinate(cy), hBmp, CUIBmpCoordinate(xSrc), CUIBmpCoordinate(ySrc),
                     CUIBmpCoordinate(cxSrc), CUIBmpCoordinate(cySrc), hPal, bForceBkgd);
}
/// @}

/// Copies the bitmap with every pixel of colour crKey replaced by hDC's background colour.
/// @{
CUI_API void CUIBmpBgBlt(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey);
template <typename X, typename Y>
inline void CUIBmpBgBlt(HDC hDC, X x, Y y, HBITMAP hBmp, DWORD crKey)
{
    CUIBmpBgBlt(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hBmp, crKey);
}
CUI_API void CUIBmpBgBltFull(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey, UINT xSrc,
                             UINT ySrc, UINT cx, UINT cy);
template <typename X, typename Y, typename XSrc, typename YSrc, typename Cx, typename Cy>
inline void CUIBmpBgBltFull(HDC hDC, X x, Y y, HBITMAP hBmp, DWORD crKey, XSrc xSrc, YSrc ySrc,
                            Cx cx, Cy cy)
{
    CUIBmpBgBltFull(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hBmp, crKey,
                    CUIBmpCoordinate(xSrc), CUIBmpCoordinate(ySrc), CUIBmpCoordinate(cx),
                    CUIBmpCoordinate(cy));
}
/// @}

/// Draws the image where the monochrome mask is 0 and leaves hDC as it is where the mask is 1;
/// image and mask are read at the same place. hDC keeps a white background colour and a black text
/// colour afterwards, unless one of the bitmaps is null.
/// @{
CUI_API void CUIBmpTransparentBlt(HDC hDC, UINT x, UINT y, HBITMAP hImage, HBITMAP hMask);
template <typename X, typename Y>
inline void CUIBmpTransparentBlt(HDC hDC, X x, Y y, HBITMAP hImage, HBITMAP hMask)
{
    CUIBmpTransparentBlt(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hImage, hMask);
}
CUI_API void CUIBmpTransparentBltFull(HDC hDC, UINT x, UINT y, HBITMAP hImage, HBITMAP hMask,
                                      UINT xSrc, UINT ySrc, UINT cx, UINT cy);
template <typename X, typename Y, typename XSrc, typename YSrc, typename Cx, typename Cy>
inline void CUIBmpTransparentBltFull(HDC hDC, X x, Y y, HBITMAP hImage, HBITMAP hMask, XSrc xSrc,
                                     YSrc ySrc, Cx cx, Cy cy)
{
    CUIBmpTransparentBltFull(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hImage, hMask,
                             CUIBmpCoordinate(xSrc), CUIBmpCoordinate(ySrc), CUIBmpCoordinate(cx),
                             CUIBmpCoordinate(cy));
}
CUI_API void CUIBmpTransparentStretchBltFull(HDC hDC, UINT x, UINT y, UINT cx, UINT cy,
                                             HBITMAP hImage, HBITMAP hMask, UINT xSrc, UINT ySrc,
                                             UINT cxSrc, UINT cySrc);
template <typename X, typename Y, typename Cx, typename Cy, typename XSrc, typename YSrc,
          typename CxSrc, typename CySrc>
inline void CUIBmpTransparentStretchBltFull(HDC hDC, X x, Y y, Cx cx, Cy cy, HBITMAP hImage,
                                            HBITMAP hMask, XSrc xSrc, YSrc ySrc, CxSrc cxSrc,
                                            CySrc cySrc)
{
    CUIBmpTransparentStretchBltFull(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y),
                                    CUIBmpCoordinate(cx), CUIBmpCoordinate(cy), hImage, hMask,
                                    CUIBmpCoordinate(xSrc), CUIBmpCoordinate(ySrc),
                                    CUIBmpCoordinate(cxSrc), CUIBmpCoordinate(cySrc));
}
/// @}

/// Makes a monochrome mask of the bitmap: 1 where a pixel equals crKey, else 0. The caller owns it.
/// Null for a null bitmap and when the mask cannot be made; a mask without its picture when only
/// the memory for the work in between is missing. x and y are not used.
/// @{
CUI_API HBITMAP CUIBmpMakeMask(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey);
template <typename X, typename Y>
inline HBITMAP CUIBmpMakeMask(HDC hDC, X x, Y y, HBITMAP hBmp, DWORD crKey)
{
    return CUIBmpMakeMask(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hBmp, crKey);
}
CUI_API HBITMAP CUIBmpMakeMaskFull(HDC hDC, UINT x, UINT y, HBITMAP hBmp, DWORD crKey, UINT xSrc,
                                   UINT ySrc, UINT cx, UINT cy);
template <typename X, typename Y, typename XSrc, typename YSrc, typename Cx, typename Cy>
inline HBITMAP CUIBmpMakeMaskFull(HDC hDC, X x, Y y, HBITMAP hBmp, DWORD crKey, XSrc xSrc,
                                  YSrc ySrc, Cx cx, Cy cy)
{
    return CUIBmpMakeMaskFull(hDC, CUIBmpCoordinate(x), CUIBmpCoordinate(y), hBmp, crKey,
                              CUIBmpCoordinate(xSrc), CUIBmpCoordinate(ySrc), CUIBmpCoordinate(cx),
                              CUIBmpCoordinate(cy));
}
/// @}

/// Stores into *phResult a new bitmap of hDC's depth, which the caller owns: hBmp with every pixel
/// of its top-left pixel's colour replaced by crFill. Always TRUE; *phResult is null when it could
/// not be made.
CUI_API int CUIBmpTransparentCreate(HBITMAP hBmp, HBITMAP *phResult, HDC hDC, DWORD crFill);

/// Deletes the GDI object that *ph holds, if any, and sets *ph to null.
CUI_API void CUIBmpDeleteObject(void **ph);

/// The same for a handle of its own type, such as HBITMAP.
template <typename Handle>
inline void CUIBmpDeleteObject(Handle **ph)
{
    void *object = *ph;
    CUIBmpDeleteObject(&object);
    *ph = nullptr;
}
