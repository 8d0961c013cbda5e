#pragma once

#include "CU/Platform.h"

// Signed 32-bit arithmetic that wraps, as GDI's own does, for values that callers may set to
// anything.

inline long CUWrapAdd(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) + static_cast<unsigned long>(b));
}

inline long CUWrapSub(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) - static_cast<unsigned long>(b));
}

inline long CUWrapMul(long a, long b)
{
    return static_cast<long>(static_cast<unsigned long>(a) * static_cast<unsigned long>(b));
}

inline int CUIWidth(const RECT &rect)
{
    return CUWrapSub(rect.right, rect.left);
}

inline int CUIHeight(const RECT &rect)
{
    return CUWrapSub(rect.bottom, rect.top);
}

constexpr long CUILarger(long a, long b)
{
    return a > b ? a : b;
}

constexpr long CUISmaller(long a, long b)
{
    return a < b ? a : b;
}
