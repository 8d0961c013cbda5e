#pragma once

#include "CUI/Platform.h"

// Whether the window's x coordinates count from the right edge to the left (WS_EX_LAYOUTRTL, on
// Windows 98 and 2000).
inline bool CUIIsMirrored(HWND hWnd)
{
    const LONG LAYOUT_RTL_STYLE = 0x00400000;
    return (GetWindowLongA(hWnd, GWL_EXSTYLE) & LAYOUT_RTL_STYLE) != 0;
}
