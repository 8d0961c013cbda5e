#pragma once

#include "CUI/Platform.h"

// Sums of coordinates, which callers may set to anything: they wrap around as GDI's own do.
inline int CUISum(int a, int b)
{
    return static_cast<int>(static_cast<UINT>(a) + static_cast<UINT>(b));
}

inline int CUIDifference(int a, int b)
{
    return static_cast<int>(static_cast<UINT>(a) - static_cast<UINT>(b));
}

inline int CUIWidth(const RECT &rect)
{
    return CUIDifference(rect.right, rect.left);
}

inline int CUIHeight(const RECT &rect)
{
    return CUIDifference(rect.bottom, rect.top);
}
