#pragma once

#include <vector>

#include "CUI/Platform.h"

// Wider or higher ones are no pictures of a launcher, and their pixels would not fit into memory.
const int MAX_PICTURE_SIDE = 8192;
const ULONGLONG MAX_PICTURE_PIXELS = 1ULL << 24;

// A picture as all that works with pixels takes it.
struct CPixels
{
    int m_cx = 0;
    int m_cy = 0;
    std::vector<DWORD> m_pixels;    // 0xAARRGGBB, not premultiplied, the top row first
    std::vector<RGBQUAD> m_colors;  // of a picture with a table, in its order; else empty

    // Makes room for that size, in which nothing is drawn; false when no picture may be so large.
    bool Create(LONGLONG cx, LONGLONG cy);
    DWORD *Row(int y) { return m_pixels.data() + RowStart(y); }
    const DWORD *Row(int y) const { return m_pixels.data() + RowStart(y); }
    // What GDI is told of such pixels.
    BITMAPINFO Info() const;

private:
    size_t RowStart(int y) const { return static_cast<size_t>(y) * static_cast<size_t>(m_cx); }
};

const DWORD OPAQUE_PIXEL = 0xFF000000;

inline DWORD MakePixel(UINT nRed, UINT nGreen, UINT nBlue)
{
    return OPAQUE_PIXEL | nRed << 16 | nGreen << 8 | nBlue;
}
inline UINT RedOf(DWORD nPixel)
{
    return nPixel >> 16 & 0xFF;
}
inline UINT GreenOf(DWORD nPixel)
{
    return nPixel >> 8 & 0xFF;
}
inline UINT BlueOf(DWORD nPixel)
{
    return nPixel & 0xFF;
}
inline UINT AlphaOf(DWORD nPixel)
{
    return nPixel >> 24;
}
