#include <gtest/gtest.h>
#include <map>

#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/BmpLoad.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/GuardedBuffer.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"

namespace {

const HINSTANCE hModule = GetModuleHandleA(nullptr);
const char *const pszColors = MAKEINTRESOURCEA(200);  // 16 colours, each once
const char *const pszShort = MAKEINTRESOURCEA(201);
const char *const pszNoHeader = MAKEINTRESOURCEA(202);
const char *const pszLongHeader = MAKEINTRESOURCEA(203);

CPixels Load(const char *pszName)
{
    return TakePixels(CUIBmpLoad(hModule, pszName, nullptr, false, nullptr, nullptr, 0));
}

CPixels Replaced(CPixels pixels, const std::map<DWORD, DWORD> &map)
{
    for (DWORD &pixel : pixels)
        pixel = map.count(pixel) ? map.at(pixel) : pixel;
    return pixels;
}

CPixels WithButtons(const CPixels &pixels, const CSysColors &colors)
{
    const CPixels to = colors.Buttons();
    return Replaced(pixels, {{0, to[0]}, {0x808080, to[1]}, {0xC0C0C0, to[2]}, {0xFFFFFF, to[3]}});
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
    CPixels Create(HPALETTE *phPal = nullptr, DWORD *pFrom = nullptr, DWORD *pTo = nullptr,
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
    const CPixels plain = TakePixels(LoadBitmapA(hModule, pszColors));
    ASSERT_EQ(16u, plain.size());
    DWORD from[] = {RGB(0, 0, 0xFF), RGB(0xFF, 0, 0), RGB(0, 0, 0xFF), 0xFF00FF00};
    DWORD to[] = {RGB(1, 2, 3), RGB(4, 5, 6), RGB(7, 8, 9), 0x0A000000 | RGB(10, 11, 12)};
    const auto load = [&](bool bMap, int nCount) {
        return TakePixels(CUIBmpLoad(hModule, pszColors, nullptr, bMap, from, to, nCount));
    };
    EXPECT_EQ(plain, load(false, 4));
    EXPECT_EQ(plain, load(true, -1));
    // The first match counts, and the caller's values are not resolved.
    EXPECT_EQ(Replaced(plain, {{0x0000FF, 0x010203}, {0xFF0000, 0x040506}, {0x00FF00, 0x0A0B0C}}),
              load(true, 4));
    // CUIData's colours here, the system's present ones there.
    const CSysColors others(0x10);
    EXPECT_EQ(WithButtons(plain, colors), load(true, 0));
    EXPECT_EQ(WithButtons(plain, others), TakePixels(CUIBmpLoadBitmap(hModule, pszColors)));
}

TEST(BmpLoad, OfPackedDibsRewritesTheTableInPlace)
{
    for (const int nBits : {1, 4, 8, 24}) {
        const CBmpBytes bmp(9, -3, nBits);
        CGuardedDib dib(bmp.Packed(256));
        EXPECT_EQ(bmp.Picture(), dib.Create());
        if (nBits > 8)
            continue;
        dib->bmiColors[1].rgbReserved = 1;  // no plain colour
        DWORD from[] = {bmp.TableRef(0), bmp.TableRef(1)};
        DWORD to[] = {RGB(1, 2, 3), RGB(4, 5, 6)};
        HPALETTE hPal = nullptr;
        EXPECT_EQ(Replaced(bmp.Picture(), {{bmp.TableColor(0), 0x010203}}),
                  dib.Create(&hPal, from, to, 2));
        EXPECT_EQ(to[0], TakeEntries(hPal)[0]);
        EXPECT_EQ(1, dib->bmiColors[0].rgbRed);
        EXPECT_EQ(bmp.m_table[1].rgbRed, dib->bmiColors[1].rgbRed);
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
    EXPECT_EQ(CPixels(), cut.Create());
    EXPECT_FALSE(CGuardedDib(CBmpBytes(4, 4, 24).Packed(0)).Palette(nColors));
    EXPECT_EQ(0, nColors);

    const CBmpBytes good(4, 4, 8);
    CGuardedDib dib(good.Packed(256));
    const struct
    {
        DWORD m_nHeader;
        LONG m_nWidth, m_nHeight;
        WORD m_nBits;
        DWORD m_nCompression;
    } lies[] = {{40, 4, 5, 8, 0},  {40, 4, LONG_MIN, 8, 0},  {40, 5, 4, 8, 0},
                {40, -4, 4, 8, 0}, {40, 65536, 65536, 8, 0}, {40, 4, 4, 32, 0},
                {44, 4, 4, 8, 0},  {40, 4, 4, 0xFFFF, 0},    {40, 4, 4, 8, BI_RLE8},
                {0, 4, 4, 8, 0},   {0xFFFFFFFC, 4, 4, 8, 0}};
    for (const auto &lie : lies) {
        dib->bmiHeader = {lie.m_nHeader,
                          lie.m_nWidth,
                          lie.m_nHeight,
                          1,
                          lie.m_nBits,
                          lie.m_nCompression,
                          17,
                          0,
                          0,
                          0,
                          0};
        EXPECT_EQ(CPixels(), dib.Create()) << &lie - lies;
    }
    dib->bmiHeader = good.m_info;
    // A table that cannot be written to.
    DWORD old = 0;
    VirtualProtect(&dib->bmiHeader, sizeof(BITMAPINFOHEADER) + 1024, PAGE_READONLY, &old);
    EXPECT_EQ(CPixels(), dib.Create(nullptr, black, white, 1));
    EXPECT_EQ(good.Picture(), dib.Create());
    EXPECT_FALSE(CUIBmpCreateBitmap(nullptr, nullptr, false, nullptr, nullptr, 0));
}

TEST(BmpLoad, ReportsMissingResourcesAndRefusesBrokenOnes)
{
    CReports reports;
    CDumped trace;
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_FALSE(CUIBmpLoadBitmapPalette(hModule, "none", hPal));
    EXPECT_FALSE(hPal);
    EXPECT_FALSE(CUIBmpLoadBitmap(hModule, "none"));
    EXPECT_EQ((std::vector<std::string>{"Bmp: hRsrcImage", "Bmp: hRsrcImage"}), reports.Asserts());
    EXPECT_EQ(CPixels(), Load("none"));
    for (const char *pszBroken : {pszShort, pszNoHeader}) {
        EXPECT_FALSE(CUIBmpLoadBitmap(hModule, pszBroken));
        EXPECT_FALSE(CUIBmpLoadBitmapPalette(hModule, pszBroken, hPal));
        DeleteObject(hPal);
        EXPECT_EQ(CPixels(), Load(pszBroken));
    }
    EXPECT_FALSE(CUIBmpLoadSysColorBitmap(hModule, nullptr));
    EXPECT_EQ(TakePixels(LoadBitmapA(hModule, pszColors)),
              TakePixels(CUIBmpLoadBitmapPalette(hModule, pszColors, hPal)));
    EXPECT_EQ(16u, TakeEntries(hPal).size());
    EXPECT_EQ(CPixels{0x123456}, Load(pszLongHeader));
    EXPECT_EQ(CPixels{0x123456}, TakePixels(CUIBmpLoadBitmapPalette(hModule, pszLongHeader, hPal)));
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
        EXPECT_EQ(
            (CPixels{bmp.ColorAt(0, 0), bmp.ColorAt(1, 0), bmp.ColorAt(0, 1), bmp.ColorAt(1, 1)}),
            TakePixels(CUICopyBitmap(hSection, 2, 2, nullptr)));
        DeleteObject(hSection);
    }
    EXPECT_FALSE(CUIBitmapToDib(nullptr, nullptr, dwHeaderSize));
}

TEST(BmpCopy, OfAPaletteHasItsEntriesAndIsTraced)
{
    CReports reports;
    CDumped trace;
    int nColors = 0;
    const HPALETTE hPal = CGuardedDib(CBmpBytes(1, 1, 1).Packed(2)).Palette(nColors);
    const HPALETTE hCopy = CUICopyPalette(hPal);
    DeleteObject(hPal);
    CUIDumpPalette(hCopy);
    DeleteObject(hCopy);
    EXPECT_EQ("Palette (2 entries)\n000: (1, 5, 255)\n001: (92, 42, 0)\n\n", trace.m_text);
    EXPECT_FALSE(CUICopyPalette(nullptr));
}

TEST(BmpLoad, LeaksNothingWhicheverCallFails)
{
    CReports reports;
    const std::string path = reports.Directory().Path() + "\\leak.bmp";
    ASSERT_TRUE(WriteBytes(path, CBmpBytes(8, 2, 4).File()));
    const auto callEverything = [&] {
        HPALETTE hPals[4] = {};
        const CCUIBitmap bitmap(200, CUIBMP_PALETTE, hModule);
        DWORD dwHeaderSize = 0;
        const HBITMAP hBitmap =
            CUIBmpLoad(hModule, pszColors, &hPals[0], true, nullptr, nullptr, 0);
        hPals[1] = CUICopyPalette(hPals[0]);
        free(CUIBitmapToDib(hBitmap, hPals[0], dwHeaderSize));
        for (const HBITMAP h :
             {hBitmap, CUICopyBitmap(hBitmap, 8, 2, hPals[0]),
              CUIBmpLoadBitmapPalette(hModule, pszColors, hPals[2]),
              CUIBmpLoadBitmapFilePalette(path.c_str(), hPals[3]),
              CUIBmpLoadBitmap(hModule, pszColors), CUIBmpLoadBitmapFile(path.c_str(), TRUE)})
            DeleteObject(h);
        for (const HPALETTE hPal : hPals)
            DeleteObject(hPal);
    };
    const CFailingCall<HANDLE(HINSTANCE, const char *, UINT, int, int, UINT)> load("LoadImageA");
    const CFailingCall<int(HDC, HBITMAP, UINT, UINT, void *, BITMAPINFO *, UINT)> bits("GetDIBits");
    const CFailingCall<HBITMAP(HDC, const BITMAPINFOHEADER *, DWORD, const void *,
                               const BITMAPINFO *, UINT)>
        create("CreateDIBitmap");
    const CFailingCall<HPALETTE(const LOGPALETTE *)> palette("CreatePalette");
    const CFailingCall<HBITMAP(HDC, int, int)> empty("CreateCompatibleBitmap");
    const CFailingCall<HDC(HDC)> memory("CreateCompatibleDC");
    const CFailingCall<HGLOBAL(HINSTANCE, HRSRC)> resource("LoadResource");
    EXPECT_GT(CFailPlan::RunAll(callEverything), 15);
    const CHeapWatch heap;
    const int nGdi = GdiCount();
    for (int i = 0; i < 20; ++i)
        CFailPlan::RunAll(callEverything);
    EXPECT_NEAR(nGdi, GdiCount(), 2);
    EXPECT_EQ(0, CHeapWatch::Live());
}
