#pragma once

/// @file
/// Rectangles made of one-pixel fills, in hDC's logical coordinates. The RECT forms stand for width
/// = right - left, height = bottom - top; their rectangle must not be null. hDC's colours are the
/// same afterwards. Colours are COLORREFs.

#include "CUI/Platform.h"

/// Fills a rectangle. A negative width or height fills to the other side of x or y: x - 1 is the
/// first column then.
/// @{
CUI_API void CUIDCFillSolidRect(HDC hDC, const RECT *prc, DWORD cr);
CUI_API void CUIDCFillSolidRect(HDC hDC, int x, int y, int cx, int cy, DWORD cr);
/// @}

/// A frame in two colours, inside the rectangle. bTrim leaves the top-left and bottom-right corners
/// out; bTrimBoth, which counts with bTrim only, changes who owns the other two. T is the top-left
/// colour, B the bottom-right one, a dot what stays:
///
///     no bTrim    bTrim and bTrimBoth    bTrim alone
///      TTTTB            .TTTT               .TTTB
///      T...B            T...B               T...B
///      BBBBB            BBBB.               TBBB.
///
/// In a rectangle that is too small for that, later fills cover earlier ones, in the order left and
/// top, right, bottom; with both trims left, right, top, bottom.
/// @{
CUI_API void CUIDCDraw3dRect(HDC hDC, const RECT *prc, DWORD crTopLeft, DWORD crBottomRight,
                             int bTrim, int bTrimBoth);
CUI_API void CUIDCDraw3dRect(HDC hDC, int x, int y, int cx, int cy, DWORD crTopLeft,
                             DWORD crBottomRight, int bTrim, int bTrimBoth);
/// @}

/// A frame in one colour, inside the rectangle.
/// @{
CUI_API void CUIDCDrawRect(HDC hDC, const RECT *prc, DWORD cr);
CUI_API void CUIDCDrawRect(HDC hDC, int x, int y, int cx, int cy, DWORD cr);
/// @}

/// Inverts a frame at the old place, which erases it, and one at the new place. Either may be null;
/// reversed edges are put in order.
CUI_API void CUIDCRubberRect(HDC hDC, const RECT *prcOld, const RECT *prcNew);
