#pragma once

#include <stdio.h>
#include <string>
#include <vector>

#include "CU/Platform.h"

// A picture, as a test computes it or as a DC shows it.
struct CPixelMap
{
    CPixelMap(int width, int height, COLORREF cr = 0)
        : cx(width), cy(height), pixels(static_cast<size_t>(width * height), cr)
    {
    }
    bool Has(int x, int y) const { return x >= 0 && y >= 0 && x < cx && y < cy; }
    COLORREF &At(int x, int y) { return pixels[static_cast<size_t>(y * cx + x)]; }
    COLORREF At(int x, int y) const { return pixels[static_cast<size_t>(y * cx + x)]; }
    // Outside the picture nothing is set.
    void Set(int x, int y, COLORREF cr)
    {
        if (Has(x, y))
            At(x, y) = cr;
    }
    // Reversed edges are taken in order.
    void Fill(int left, int top, int right, int bottom, COLORREF cr)
    {
        for (int y = top < bottom ? top : bottom; y < (top < bottom ? bottom : top); ++y)
            for (int x = left < right ? left : right; x < (left < right ? right : left); ++x)
                Set(x, y, cr);
    }

    int cx, cy;
    std::vector<COLORREF> pixels;
};

// Empty for equal pictures, else where they begin to differ.
inline std::string Difference(const CPixelMap &expected, const CPixelMap &actual)
{
    char szText[99] = "";
    for (int y = 0; y < expected.cy; ++y) {
        for (int x = 0; x < expected.cx; ++x) {
            if (expected.At(x, y) == actual.At(x, y))
                continue;
            sprintf(szText, "(%d, %d) is %06lX, expected %06lX", x, y, actual.At(x, y),
                    expected.At(x, y));
            return szText;
        }
    }
    return szText;
}

// Colours that a DIB of 5 bits a channel, and the colour table of one with 8 bits a pixel, hold
// without loss; black first, white last.
const COLORREF TEST_COLORS[] = {0x000000, 0x0000FF, 0x00FF00, 0xFF0000, 0x848484,
                                0xC6C6C6, 0x42C684, 0x00FFFF, 0xFFFFFF};
const int TEST_COLOR_COUNT = 9;

inline CPixelMap TestPicture(int cx, int cy, int nSeed)
{
    CPixelMap map(cx, cy);
    for (int i = 0; i < cx * cy; ++i)
        map.pixels[static_cast<size_t>(i)] =
            TEST_COLORS[(i * i / 3 + i * nSeed + i / cx) % TEST_COLOR_COUNT];
    return map;
}

// A memory DC with a bitmap of that depth: 1 is a monochrome device-dependent bitmap, 8 to 32 a DIB
// section, 0 a device-dependent bitmap of the screen's depth.
class CTestSurface
{
public:
    CTestSurface(int nBits, const CPixelMap &picture)
        : m_cx(picture.cx), m_cy(picture.cy), m_hDC(CreateCompatibleDC(nullptr))
    {
        struct
        {
            BITMAPINFOHEADER header;
            RGBQUAD colors[256];
        } info = {{sizeof(BITMAPINFOHEADER), m_cx, m_cy, 1, static_cast<WORD>(nBits), BI_RGB, 0, 0,
                   0, 0, 0},
                  {}};
        // White is the last of all, so that XOR and AND of indexes work as they do on colours.
        for (int i = 0; i < 256; ++i) {
            const COLORREF cr =
                TEST_COLORS[i == 255 ? TEST_COLOR_COUNT - 1 : i % (TEST_COLOR_COUNT - 1)];
            info.colors[i] = {GetBValue(cr), GetGValue(cr), GetRValue(cr), 0};
        }
        const HDC hScreen = GetDC(nullptr);
        void *pBits;
        m_hBitmap = nBits == 0   ? CreateCompatibleBitmap(hScreen, m_cx, m_cy)
                    : nBits == 1 ? CreateBitmap(m_cx, m_cy, 1, 1, nullptr)
                                 : CreateDIBSection(hScreen, reinterpret_cast<BITMAPINFO *>(&info),
                                                    DIB_RGB_COLORS, &pBits, nullptr, 0);
        ReleaseDC(nullptr, hScreen);
        m_hOld = SelectObject(m_hDC, m_hBitmap);
        for (int i = 0; i < m_cx * m_cy; ++i)
            SetPixelV(m_hDC, i % m_cx, i / m_cx, picture.pixels[static_cast<size_t>(i)]);
    }
    ~CTestSurface()
    {
        DeleteDC(m_hDC);
        DeleteObject(m_hBitmap);
    }
    CTestSurface(const CTestSurface &) = delete;
    CTestSurface &operator=(const CTestSurface &) = delete;

    operator HDC() const { return m_hDC; }
    // For others to select; null when somebody did not let go of it.
    HBITMAP Bitmap()
    {
        SelectObject(m_hDC, m_hOld);
        return m_hBitmap;
    }
    CPixelMap Read()
    {
        SelectObject(m_hDC, m_hBitmap);
        CPixelMap map(m_cx, m_cy);
        for (int i = 0; i < m_cx * m_cy; ++i)
            map.pixels[static_cast<size_t>(i)] = GetPixel(m_hDC, i % m_cx, i / m_cx);
        return map;
    }

private:
    int m_cx, m_cy;
    HDC m_hDC;
    HBITMAP m_hBitmap;
    HGDIOBJ m_hOld;
};

// All that a DC remembers, to be compared before and after.
struct CDCState
{
    explicit CDCState(HDC hDC)
        : values{GetBkColor(hDC),
                 GetTextColor(hDC),
                 static_cast<DWORD>(GetBkMode(hDC)),
                 static_cast<DWORD>(GetROP2(hDC)),
                 static_cast<DWORD>(GetStretchBltMode(hDC)),
                 GetTextAlign(hDC),
                 Object(hDC, OBJ_BITMAP),
                 Object(hDC, OBJ_BRUSH),
                 Object(hDC, OBJ_PEN),
                 Object(hDC, OBJ_FONT),
                 Object(hDC, OBJ_PAL)}
    {
    }
    static DWORD Object(HDC hDC, UINT nType)
    {
        return reinterpret_cast<DWORD>(GetCurrentObject(hDC, nType));
    }
    bool operator==(const CDCState &other) const { return values == other.values; }

    std::vector<DWORD> values;  // background and text colour first
};
