#include "Picture/Pixels.h"

bool CPixels::Create(LONGLONG cx, LONGLONG cy)
{
    if (cx <= 0 || cy <= 0 || cx > MAX_PICTURE_SIDE || cy > MAX_PICTURE_SIDE ||
        static_cast<ULONGLONG>(cx * cy) > MAX_PICTURE_PIXELS)
        return false;
    m_cx = static_cast<int>(cx);
    m_cy = static_cast<int>(cy);
    m_pixels.assign(static_cast<size_t>(cx * cy), OPAQUE_PIXEL);
    m_colors.clear();
    return true;
}

BITMAPINFO CPixels::Info() const
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = m_cx;
    info.bmiHeader.biHeight = -m_cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    return info;
}
