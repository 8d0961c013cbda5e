#pragma once

#include "CUI/Platform.h"

// What the two words of a message mean, one helper a meaning.

// A position: signed 16-bit halves, since a captured mouse leaves the window on the left and at the
// top too.
class CPointArg : public POINT
{
public:
    explicit CPointArg(LPARAM lParam)
    {
        x = static_cast<SHORT>(LOWORD(lParam));
        y = static_cast<SHORT>(HIWORD(lParam));
    }
};

inline UINT LowArg(WPARAM param)
{
    return LOWORD(param);
}

inline UINT LowArg(LPARAM param)
{
    return LOWORD(param);
}

inline UINT HighArg(WPARAM param)
{
    return HIWORD(param);
}

inline UINT HighArg(LPARAM param)
{
    return HIWORD(param);
}

template <typename T>
inline T HandleArg(WPARAM wParam)
{
    return reinterpret_cast<T>(wParam);
}

template <typename T>
inline T HandleArg(LPARAM lParam)
{
    return reinterpret_cast<T>(lParam);
}
