#include "CUI/BmpLoad.h"

#include <gtest/gtest.h>
#include <map>

#include "CU/String.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
#include "Support/GuardedBuffer.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"

namespace {

const HINSTANCE hModule = GetModuleHandleA(nullptr);
const char *const pszColors = MAKEINTRESOURCEA(200);  // 16 colours, each once
const char *const pszShort = MAKEINTRESOURCEA(201);
const char *const pszNoHeader = MAKEINTRESOURCEA(202);
const char *const pszLongHeader = MAKEINTRESOURCEA(203);
const CPixelMap none;

CPixelMap Load(const char *pszName, bool bMap = false, DWORD *pFrom = nullptr, DWORD *pTo = nullptr,
               int nCount = 0)
{
    return TakePixels(CUIBmpLoad(hModule, pszName, nullptr, bMap, pFrom, pTo, nCount));
}

CPixelMap Replaced(CPixelMap map, const std::map<COLORREF, COLORREF> &colors)
{
    for (COLORREF &cr : map.pixels)
        cr = colors.count(cr) ? colors.at(cr) : cr;
    return OnScreen(map);
}

CPixelMap WithButtons(const CPixelMap &map, const CSysColors &colors)
{
    const COLORREF *pTo = colors.m_new;
    return Replaced(map, {{0, pTo[0]}, {0x808080, pTo[1]}, {0xC0C0C0, pTo[2]}, {0xFFFFFF, pTo[3]}});
}

// Resource 200 as it is, on a screen of any depth.
CPixelMap Colors()
{
    CPixelMap map(8, 2);
    map.pixels = {0x000080, 0x008000, 0x800000, 0x008080, 0x302010, 0x605040, 0x908070, 0xD0B0A0,
                  0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF};
    return map;
}

// A packed DIB that ends where nobody may read.
class CGuardedDib
{
public:
    explicit CGuardedDib(const std::vector<BYTE> &bytes) : m_buffer(bytes.size())
    {
        memcpy(m_buffer.Data(), bytes.data(), bytes.size());
    }
    BITMAPINFO *operator->() { return reinterpret_cast<BITMAPINFO *>(m_buffer.Data()); }
    HPALETTE Palette(int &nColors) { return CUIBmpCreateDIBPalette(operator->(), &nColors); }
    CPixelMap Create(HPALETTE *phPal = nullptr, DWORD *pFrom = nullptr, DWORD *pTo = nullptr,
                     int nCount = 0)
    {
        return TakePixels(
            CUIBmpCreateBitmap(&operator->()->bmiHeader, phPal, nCount > 0, pFrom, pTo, nCount));
    }

private:
    CGuardedBuffer m_buffer;
};

}  // namespace

TEST(BmpLoad, ReplacesColoursOnlyWhenAsked)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    DWORD from[] = {RGB(0, 0, 0xFF), RGB(0xFF, 0, 0), RGB(0, 0, 0xFF), 0xFF00FF00};
    DWORD to[] = {RGB(1, 2, 3), RGB(94, 5, 6), RGB(7, 88, 9), 0x0A000000 | RGB(10, 11, 112)};
    EXPECT_EQ(OnScreen(Colors()), Load(pszColors, false, from, to, 4));
    EXPECT_EQ(OnScreen(Colors()), Load(pszColors, true, from, to, -1));
    EXPECT_EQ(OnScreen(Colors()), Load(pszColors, true, nullptr, nullptr, 1));
    // The first match counts, and the caller's values are not resolved.
    EXPECT_EQ(
        Replaced(Colors(), {{from[0], to[0]}, {from[1], to[1]}, {0x00FF00, RGB(10, 11, 112)}}),
        Load(pszColors, true, from, to, 4));
    // CUIData's colours here, the system's present ones there.
    const CSysColors others(0x10);
    EXPECT_EQ(WithButtons(Colors(), colors), Load(pszColors, true));
    EXPECT_EQ(WithButtons(Colors(), others), TakePixels(CUIBmpLoadBitmap(hModule, pszColors)));
}

TEST(BmpLoad, OfPackedDibsRewritesTheTableInPlace)
{
    for (const int nBits : {1, 4, 8, 24}) {
        const CBmpBytes bmp(9, -3, nBits);
        CGuardedDib dib(bmp.Packed(256));
        EXPECT_EQ(OnScreen(bmp.Picture()), dib.Create());
        if (nBits > 8)
            continue;
        dib->bmiColors[1].rgbReserved = 1;  // no plain colour
        DWORD from[] = {bmp.TableColor(0), bmp.TableColor(1)};
        DWORD to[] = {RGB(91, 2, 3), RGB(4, 5, 6)};
        HPALETTE hPal = nullptr;
        EXPECT_EQ(Replaced(bmp.Picture(), {{from[0], to[0]}}), dib.Create(&hPal, from, to, 2));
        EXPECT_EQ(to[0], TakeEntries(hPal)[0]);
        EXPECT_EQ(91, dib->bmiColors[0].rgbRed);
    }
}

TEST(BmpLoad, OfLyingDibsStaysInTheMemoryThatThereIs)
{
    int nColors = 0;
    DWORD black[] = {0};
    DWORD white[] = {0xFFFFFF};
    // More colours than the table has room for: what follows is not colours.
    CBmpBytes bmp(4, 4, 8);
    bmp.m_info.biClrUsed = 1000;
    bmp.m_pixels.assign(bmp.m_pixels.size(), 0);
    CGuardedDib many(bmp.Packed(256));
    HPALETTE hPal = nullptr;
    many.Create(&hPal, black, white, 1);
    EXPECT_EQ(0, many->bmiColors[256].rgbRed);
    EXPECT_EQ(256u, TakeEntries(hPal).size());
    EXPECT_EQ(256u, TakeEntries(many.Palette(nColors)).size());
    EXPECT_EQ(1000, nColors);
    // A table that ends early, and none.
    std::vector<BYTE> bytes = CBmpBytes(4, 4, 8).Packed(256);
    bytes.resize(sizeof(BITMAPINFOHEADER) + 255 * 4);
    CGuardedDib cut(bytes);
    EXPECT_FALSE(cut.Palette(nColors));
    EXPECT_EQ(256, nColors);
    EXPECT_EQ(none, cut.Create());
    EXPECT_FALSE(CGuardedDib(CBmpBytes(4, 4, 24).Packed(0)).Palette(nColors));
    EXPECT_EQ(0, nColors);

    const CBmpBytes good(4, 4, 8);
    CGuardedDib dib(good.Packed(256));
    const BITMAPINFOHEADER lies[] = {{40, 4, 5, 1, 8, 0, 0, 0, 0, 0, 0},
                                     {40, 4, LONG_MIN, 1, 8, 0, 0, 0, 0, 0, 0},
                                     {40, 5, 4, 1, 8, 0, 0, 0, 0, 0, 0},
                                     {40, -4, 4, 1, 8, 0, 0, 0, 0, 0, 0},
                                     {40, 65536, 65536, 1, 8, 0, 0, 0, 0, 0, 0},
                                     {40, 4, 4, 1, 32, 0, 0, 0, 0, 0, 0},
                                     {44, 4, 4, 1, 8, 0, 0, 0, 0, 0, 0},
                                     {40, 4, 4, 1, 0xFFFF, 0, 0, 0, 0, 0, 0},
                                     {40, 4, 4, 1, 8, BI_RLE8, 17, 0, 0, 0, 0},
                                     {0xFFFFFFFC, 4, 4, 1, 8, 0, 0, 0, 0, 0, 0}};
    for (const BITMAPINFOHEADER &lie : lies) {
        dib->bmiHeader = lie;
        EXPECT_EQ(none, dib.Create()) << &lie - lies;
    }
    dib->bmiHeader = good.m_info;
    // A table that cannot be written to.
    DWORD old = 0;
    VirtualProtect(&dib->bmiHeader, sizeof(BITMAPINFOHEADER) + 1024, PAGE_READONLY, &old);
    EXPECT_EQ(none, dib.Create(nullptr, black, white, 1));
    EXPECT_EQ(OnScreen(good.Picture()), dib.Create());
    EXPECT_FALSE(CUIBmpCreateBitmap(nullptr, nullptr, false, nullptr, nullptr, 0));
}

TEST(BmpLoad, ReportsMissingResourcesAndRefusesBrokenOnes)
{
    CReports reports;
    const CDumped trace;
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_FALSE(CUIBmpLoadBitmapPalette(hModule, "none", hPal) || hPal);
    EXPECT_FALSE(CUIBmpLoadBitmap(hModule, "none"));
    EXPECT_EQ((std::vector<std::string>{"Bmp: hRsrcImage", "Bmp: hRsrcImage"}), reports.Asserts());
    EXPECT_EQ(none, Load("none"));
    for (const char *pszBroken : {pszShort, pszNoHeader}) {
        EXPECT_FALSE(CUIBmpLoadBitmap(hModule, pszBroken));
        EXPECT_FALSE(CUIBmpLoadBitmapPalette(hModule, pszBroken, hPal));
        DeleteObject(hPal);
        EXPECT_EQ(none, Load(pszBroken));
    }
    EXPECT_FALSE(CUIBmpLoadSysColorBitmap(hModule, nullptr));
    EXPECT_EQ(OnScreen(Colors()), TakePixels(CUIBmpLoadBitmapPalette(hModule, pszColors, hPal)));
    EXPECT_EQ(16u, TakeEntries(hPal).size());
    const CPixelMap pixel = OnScreen(CPixelMap(1, 1, 0x563412));
    EXPECT_EQ(pixel, Load(pszLongHeader));
    EXPECT_EQ(pixel, TakePixels(CUIBmpLoadBitmapPalette(hModule, pszLongHeader, hPal)));
    EXPECT_TRUE(reports.Asserts().empty());
    EXPECT_EQ(std::string::npos, trace.m_text.find("Error loading"));
}

TEST(BmpCopy, OfABitmapIsItsTopLeftPartOrAPackedDibAgain)
{
    DWORD dwHeaderSize = 0;
    for (const int nBits : {1, 4, 8, 24, 32}) {
        const CBmpBytes bmp(5, 3, nBits);
        const std::vector<BYTE> packed = bmp.Packed(bmp.m_table.size());
        void *pBits = nullptr;
        const HBITMAP hSection =
            CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO *>(packed.data()),
                             DIB_RGB_COLORS, &pBits, nullptr, 0);
        memcpy(pBits, bmp.m_pixels.data(), bmp.m_pixels.size());
        BITMAPINFOHEADER *pbih = CUIBitmapToDib(hSection, nullptr, dwHeaderSize);
        ASSERT_TRUE(pbih);
        EXPECT_EQ(packed.size() - bmp.m_pixels.size(), dwHeaderSize);
        EXPECT_TRUE(pbih->biBitCount == nBits && pbih->biHeight == 3);
        EXPECT_EQ(0, memcmp(pbih + 1, &packed[sizeof *pbih], packed.size() - sizeof *pbih));
        free(pbih);
        CPixelMap corner(2, 2);
        for (int i = 0; i < 4; ++i)
            corner.Set(i % 2, i / 2, bmp.Picture().At(i % 2, i / 2));
        EXPECT_EQ(OnScreen(corner), TakePixels(CUICopyBitmap(hSection, 2, 2, nullptr)));
        DeleteObject(hSection);
    }
    EXPECT_FALSE(CUIBitmapToDib(nullptr, nullptr, dwHeaderSize));
}

TEST(BmpCopy, OfAPaletteHasItsEntriesAndIsTraced)
{
    const CDumped trace;
    int nColors = 0;
    const HPALETTE hPal = CGuardedDib(CBmpBytes(1, 1, 1).Packed(2)).Palette(nColors);
    const HPALETTE hCopy = CUICopyPalette(hPal);
    DeleteObject(hPal);
    CUIDumpPalette(hCopy);
    DeleteObject(hCopy);
    EXPECT_EQ("Palette (2 entries)\n000: (1, 5, 255)\n001: (92, 42, 0)\n\n", trace.m_text);
    EXPECT_FALSE(CUICopyPalette(nullptr));
}
