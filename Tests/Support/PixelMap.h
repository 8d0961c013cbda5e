#pragma once

#include <gtest/gtest.h>
#include <algorithm>
#include <vector>

#include "CU/Platform.h"

// A picture, as a test computes it or as a DC shows it.
struct CPixelMap
{
    explicit CPixelMap(int width = 0, int height = 0, COLORREF cr = 0)
        : cx(width), cy(height), pixels(static_cast<size_t>(width * height), cr)
    {
    }
    COLORREF At(int x, int y) const { return pixels[static_cast<size_t>(y * cx + x)]; }
    // Outside the picture nothing is set.
    void Set(int x, int y, COLORREF cr)
    {
        if (x >= 0 && y >= 0 && x < cx && y < cy)
            pixels[static_cast<size_t>(y * cx + x)] = cr;
    }
    int Count(COLORREF cr) const
    {
        return static_cast<int>(std::count(pixels.begin(), pixels.end(), cr));
    }
    bool operator==(const CPixelMap &map) const { return cx == map.cx && pixels == map.pixels; }

    int cx, cy;
    std::vector<COLORREF> pixels;
};

inline CPixelMap ReadPixels(HDC hDC, int cx, int cy)
{
    CPixelMap map(cx, cy);
    for (int i = 0; i < cx * cy; ++i)
        map.Set(i % cx, i / cx, GetPixel(hDC, i % cx, i / cx));
    return map;
}

// The picture of a bitmap; an empty one for what is no bitmap.
inline CPixelMap PixelsOf(HBITMAP hBitmap)
{
    BITMAP bm = {};
    GetObjectA(hBitmap, sizeof bm, &bm);
    const HDC hDC = CreateCompatibleDC(nullptr);
    SelectObject(hDC, hBitmap);
    CPixelMap map = ReadPixels(hDC, bm.bmWidth, bm.bmHeight);
    DeleteDC(hDC);
    return map;
}

// The same of one that nobody needs any more.
inline CPixelMap TakePixels(HBITMAP hBitmap)
{
    CPixelMap map = PixelsOf(hBitmap);
    DeleteObject(hBitmap);
    return map;
}

// Of colours that every depth holds without loss.
inline CPixelMap TestPicture(int cx, int cy, int nSeed)
{
    const COLORREF colors[] = {0, 0xFF, 0xFF00, 0xFFFF, 0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    CPixelMap map(cx, cy);
    for (int i = 0; i < cx * cy; ++i)
        map.Set(i % cx, i / cx, colors[(i * i / 3 + i * nSeed + i / cx) % 8]);
    return map;
}

// A memory DC with a bitmap of the screen's depth, or a monochrome one.
class CTestSurface
{
public:
    explicit CTestSurface(const CPixelMap &picture, bool bMono = false)
        : m_cx(picture.cx), m_cy(picture.cy), m_hDC(CreateCompatibleDC(nullptr))
    {
        const HDC hScreen = GetDC(nullptr);
        // A new memory DC holds a monochrome bitmap, and so monochrome is what fits it.
        m_hBitmap = CreateCompatibleBitmap(bMono ? m_hDC : hScreen, m_cx, m_cy);
        ReleaseDC(nullptr, hScreen);
        m_hOld = SelectObject(m_hDC, m_hBitmap);
        for (int i = 0; i < m_cx * m_cy; ++i)
            SetPixelV(m_hDC, i % m_cx, i / m_cx, picture.At(i % m_cx, i / m_cx));
    }
    ~CTestSurface()
    {
        DeleteDC(m_hDC);
        DeleteObject(m_hBitmap);
    }
    CTestSurface(const CTestSurface &) = delete;
    CTestSurface &operator=(const CTestSurface &) = delete;

    operator HDC() const { return m_hDC; }
    // For others to select.
    HBITMAP Bitmap()
    {
        SelectObject(m_hDC, m_hOld);
        return m_hBitmap;
    }
    CPixelMap Read()
    {
        SelectObject(m_hDC, m_hBitmap);
        return ReadPixels(m_hDC, m_cx, m_cy);
    }

private:
    int m_cx, m_cy;
    HDC m_hDC;
    HBITMAP m_hBitmap;
    HGDIOBJ m_hOld;
};

// What a window shows, there or everywhere, after what was asked of it: in the colours that a
// bitmap of the screen's depth has for it, as pictures that a test draws beside.
inline CPixelMap WindowPixels(HWND hWnd, RECT rc = {})
{
    UpdateWindow(hWnd);
    if (IsRectEmpty(&rc))
        GetClientRect(hWnd, &rc);
    const HDC hDC = GetDC(hWnd);
    CTestSurface surface(CPixelMap(rc.right - rc.left, rc.bottom - rc.top));
    BitBlt(surface, 0, 0, rc.right - rc.left, rc.bottom - rc.top, hDC, rc.left, rc.top, SRCCOPY);
    return ReleaseDC(hWnd, hDC), surface.Read();
}

// The colour that the screen has for one.
inline COLORREF OnScreen(COLORREF cr)
{
    return CTestSurface(CPixelMap(1, 1, cr)).Read().At(0, 0);
}
