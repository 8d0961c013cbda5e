#pragma once

#include "CUI/Platform.h"

// Raster operations that the system's headers have no names for.
const DWORD CUI_ROP_DSPDXAX = 0x00E20746;  // the brush where the source is 1, else the destination
const DWORD CUI_ROP_PSDPXAX = 0x00B8074A;  // the brush where the source is 0, else the destination

// The arguments of the blitting functions, unsigned in their interfaces, as GDI takes them.
inline int CUIBmpInt(UINT n)
{
    return static_cast<int>(n);
}

// When either size is 0, both become the bitmap's own. They stay for a handle that is no bitmap.
inline void CUIBmpDefaultSize(HBITMAP hBmp, UINT &cx, UINT &cy)
{
    BITMAP bm;
    if ((cx != 0 && cy != 0) || GetObjectA(hBmp, sizeof bm, &bm) != sizeof bm)
        return;
    cx = static_cast<UINT>(bm.bmWidth);
    cy = static_cast<UINT>(bm.bmHeight);
}
