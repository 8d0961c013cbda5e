#pragma once

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "CU/Platform.h"

// A picture, as a test computes it or as a DC shows it.
struct CPixelMap
{
    explicit CPixelMap(int width = 0, int height = 0, COLORREF cr = 0)
        : cx(width), cy(height), pixels(static_cast<size_t>(width * height), cr)
    {
    }
    bool Has(int x, int y) const { return x >= 0 && y >= 0 && x < cx && y < cy; }
    COLORREF At(int x, int y) const { return pixels[static_cast<size_t>(y * cx + x)]; }
    // Outside the picture nothing is set.
    void Set(int x, int y, COLORREF cr)
    {
        if (Has(x, y))
            pixels[static_cast<size_t>(y * cx + x)] = cr;
    }
    bool operator==(const CPixelMap &other) const
    {
        return cx == other.cx && cy == other.cy && pixels == other.pixels;
    }

    int cx, cy;
    std::vector<COLORREF> pixels;
};

// What a failing comparison shows.
inline void PrintTo(const CPixelMap &map, std::ostream *pOut)
{
    for (size_t i = 0; i < map.pixels.size(); ++i)
        *pOut << (i % static_cast<size_t>(map.cx) ? " " : "\n") << std::hex << map.pixels[i];
}

inline CPixelMap ReadPixels(HDC hDC, int cx, int cy)
{
    CPixelMap map(cx, cy);
    for (int i = 0; i < cx * cy; ++i)
        map.pixels[static_cast<size_t>(i)] = GetPixel(hDC, i % cx, i / cx);
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

// What a bitmap of the screen's depth keeps of a picture: at 16 bits, the high 5 of each channel.
inline CPixelMap OnScreen(CPixelMap map)
{
    const HDC hScreen = GetDC(nullptr);
    const bool bAll = GetDeviceCaps(hScreen, BITSPIXEL) != 16;
    ReleaseDC(nullptr, hScreen);
    for (COLORREF &cr : map.pixels)
        cr = bAll ? cr : (cr & 0xF8F8F8) | (cr >> 5 & 0x070707);
    return map;
}

// Colours that every depth from 8 bits on holds without loss; black first, white last.
const COLORREF TEST_COLORS[] = {0x000000, 0x0000FF, 0x00FF00, 0x00FFFF,
                                0xFF0000, 0xFF00FF, 0xFFFF00, 0xFFFFFF};

inline CPixelMap TestPicture(int cx, int cy, int nSeed)
{
    CPixelMap map(cx, cy);
    for (int i = 0; i < cx * cy; ++i)
        map.pixels[static_cast<size_t>(i)] = TEST_COLORS[(i * i / 3 + i * nSeed + i / cx) % 8];
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
        } info = {{40, m_cx, m_cy, 1, static_cast<WORD>(nBits), BI_RGB, 0, 0, 0, 0, 0}, {}};
        // White is the last of all, so that XOR and AND of indexes work as they do on colours.
        for (int i = 0; i < 256; ++i) {
            const COLORREF cr = TEST_COLORS[i % 8];
            info.colors[i] = {GetBValue(cr), GetGValue(cr), GetRValue(cr), 0};
        }
        const HDC hScreen = GetDC(nullptr);
        m_hBitmap = nBits == 0   ? CreateCompatibleBitmap(hScreen, m_cx, m_cy)
                    : nBits == 1 ? CreateBitmap(m_cx, m_cy, 1, 1, nullptr)
                                 : CreateDIBSection(hScreen, reinterpret_cast<BITMAPINFO *>(&info),
                                                    DIB_RGB_COLORS, nullptr, nullptr, 0);
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
        return ReadPixels(m_hDC, m_cx, m_cy);
    }

private:
    int m_cx, m_cy;
    HDC m_hDC;
    HBITMAP m_hBitmap;
    HGDIOBJ m_hOld;
};

// All that a DC remembers, to be compared before and after: background and text colour first.
inline std::vector<DWORD> DCState(HDC hDC)
{
    std::vector<DWORD> values = {GetBkColor(hDC),
                                 GetTextColor(hDC),
                                 static_cast<DWORD>(GetBkMode(hDC)),
                                 static_cast<DWORD>(GetROP2(hDC)),
                                 static_cast<DWORD>(GetStretchBltMode(hDC)),
                                 GetTextAlign(hDC)};
    for (const int nType : {OBJ_BITMAP, OBJ_BRUSH, OBJ_PEN, OBJ_FONT, OBJ_PAL})
        values.push_back(reinterpret_cast<DWORD>(GetCurrentObject(hDC, static_cast<UINT>(nType))));
    return values;
}

struct CUnchanged
{
    void operator()(const CPixelMap &) const {}
};

// Draws on a DC of that depth with a picture, and finds there what the rule makes of it. Nothing
// that is set on the DC changes, but for the background and text colour, when given.
template <typename Draw, typename Rule = CUnchanged>
void ExpectDrawn(int nBits, const CPixelMap &picture, Draw draw, Rule rule = {},
                 std::vector<DWORD> colors = {})
{
    CTestSurface target(nBits, picture);
    SetBkColor(target, nBits == 1 ? 0xFFFFFF : 0xFFFF00);
    SetTextColor(target, 0x0000FF);
    std::vector<DWORD> state = DCState(target);
    std::copy(colors.begin(), colors.end(), state.begin());
    CPixelMap expected = target.Read();
    rule(expected);
    draw(target);
    EXPECT_EQ(expected, target.Read());
    EXPECT_EQ(state, DCState(target));
}
