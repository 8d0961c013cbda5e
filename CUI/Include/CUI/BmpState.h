#pragma once

/// @file
/// Pictures in the look of a control's state.

#include "CUI/Platform.h"

/// Where CUIBmpDrawState draws.
struct CUIBmpStateRects
{
    RECT rcArea;    ///< the area to draw into, in target coordinates
    RECT rcCenter;  ///< the rectangle in which the image is centred, in target coordinates
    RECT rcSource;  ///< the part of the bitmap to draw, in bitmap coordinates
};

/// @name dwFlags of CUIBmpDrawState
/// @{
const DWORD CUIBMPSTATE_OVERLAY = 0x01;   ///< a checkerboard of face and highlight colour behind
const DWORD CUIBMPSTATE_DISABLED = 0x02;  ///< embossed in highlight and shadow colour
/// @}

/// Draws a part of a bitmap, centred, in the look of a control's state. prc points to the first of
/// the three rectangles of a CUIBmpStateRects. Pixels of crFace and crHilite are the image's
/// background; all colours are plain ones (0x00BBGGRR). The plain image is not clipped to rcArea;
/// the embossed look leaves out what of it lies in the last two columns and rows there. hDC is left
/// as it was. When the bitmap cannot be selected (as null cannot) or the mask not be made, a line
/// is traced and nothing drawn. For the user-interface thread only.
CUI_API void CUIBmpDrawState(HDC hDC, RECT *prc, HBITMAP hBmp, DWORD dwFlags, DWORD crFace,
                             DWORD crHilite, DWORD crShadow);
