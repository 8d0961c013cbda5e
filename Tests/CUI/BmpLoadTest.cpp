#include "CUI/BmpLoad.h"

#include <gtest/gtest.h>

#include "CU/String.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
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
const CPixelMap none;

class BmpLoad : public testing::Test
{
protected:
    void Write(const std::vector<BYTE> &bytes) { EXPECT_TRUE(WriteBytes(m_path, bytes)); }
    // A file's picture with its palette.
    CPixelMap FilePicture()
    {
        HPALETTE hPal = nullptr;
        CPixelMap picture = TakePixels(CUIBmpLoadBitmapFilePalette(m_path.c_str(), hPal));
        m_palette = TakeEntries(hPal);
        return picture;
    }
    CPixelMap File() const
    {
        return TakePixels(CUIBmpLoad(nullptr, m_path.c_str(), nullptr, false, nullptr, nullptr, 0));
    }
    static CPixelMap Resource(const char *pszName, bool bMap = false, DWORD *pFrom = nullptr,
                              DWORD *pTo = nullptr, int nCount = 0)
    {
        return TakePixels(CUIBmpLoad(hModule, pszName, nullptr, bMap, pFrom, pTo, nCount));
    }

    CReports m_reports;
    CDumped m_trace;
    const std::string m_path = m_reports.Directory().Path() + "\\test.bmp";
    std::vector<COLORREF> m_palette;
};

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

CPixelMap Replaced(CPixelMap map, const COLORREF *pFrom, const COLORREF *pTo, int nCount)
{
    for (COLORREF &cr : map.pixels) {
        const COLORREF *pFound = std::find(pFrom, pFrom + nCount, cr);
        cr = pFound == pFrom + nCount ? cr : pTo[pFound - pFrom];
    }
    return OnScreen(map);
}

// Resource 200, on a screen of any depth.
CPixelMap Colors()
{
    CPixelMap map(8, 2);
    map.pixels = {0x000080, 0x008000, 0x800000, 0x008080, 0x302010, 0x605040, 0x908070, 0xD0B0A0,
                  0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF, 0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF};
    return map;
}

// A bitmap as a packed DIB again, and its corner.
void ExpectCopies(const CBmpBytes &bmp)
{
    const std::vector<BYTE> packed = bmp.Packed(bmp.m_table.size());
    void *pBits = nullptr;
    const HBITMAP hSection =
        CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO *>(packed.data()),
                         DIB_RGB_COLORS, &pBits, nullptr, 0);
    memcpy(pBits, bmp.m_pixels.data(), bmp.m_pixels.size());
    DWORD dwHeaderSize = 0;
    BITMAPINFOHEADER *pbih = CUIBitmapToDib(hSection, nullptr, dwHeaderSize);
    EXPECT_EQ(packed.size() - bmp.m_pixels.size(), dwHeaderSize);
    EXPECT_TRUE(pbih->biBitCount == bmp.m_info.biBitCount);
    EXPECT_EQ(0, memcmp(pbih + 1, &packed[sizeof *pbih], packed.size() - sizeof *pbih));
    free(pbih);
    const CPixelMap corner = TakePixels(CUICopyBitmap(hSection, 1, 2, nullptr));
    EXPECT_EQ(1, corner.cx);
    EXPECT_EQ(OnScreen(bmp.Picture()).At(0, 1), corner.At(0, 1));
    DeleteObject(hSection);
}

}  // namespace

TEST_F(BmpLoad, GivesThePictureThatTheBytesShow)
{
    const struct
    {
        int m_nWidth, m_nHeight, m_nBits;
        DWORD m_nHeader, m_nCompression;
        size_t m_nImage;  // what the file's reader takes the pixels for
    } cases[] = {{33, 5, 1, 40, BI_RGB, 20},       {7, -5, 1, 40, BI_RGB, 0},
                 {1, 5, 4, 40, BI_RGB, 0},         {9, -5, 4, 40, BI_RGB, 20},
                 {6, 5, 8, 40, BI_RGB, 30},        {3, 5, 24, 40, BI_RGB, 50},
                 {6, -5, 24, 40, BI_RGB, 90},      {7, 5, 32, 40, BI_RGB, 140},
                 {7, 1, 8, 124, BI_RGB, 0},        {1, 1, 32, 40, BI_BITFIELDS, 0},
                 {1, 1, 32, 108, BI_BITFIELDS, 0}, {3, 3, 8, 40, BI_RGB, 12}};
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        CBmpBytes bmp(c.m_nWidth, c.m_nHeight, c.m_nBits);
        bmp.SetHeader(c.m_nHeader, c.m_nCompression);
        Write(bmp.File());
        const CPixelMap shown = OnScreen(bmp.Picture());
        if (c.m_nHeight > 0) {  // what LoadImage makes of others differs between systems
            EXPECT_EQ(shown, File());
        }
        const bool bPlain = c.m_nHeader == 40 && c.m_nCompression == BI_RGB;
        EXPECT_EQ(bPlain ? shown : none, FilePicture());
        EXPECT_EQ(bPlain ? bmp.m_table.size() : 0, m_palette.size());
        // 2^24 colours do not precede the pixels.
        EXPECT_EQ(bPlain && c.m_nBits <= 8 ? shown : none,
                  TakePixels(CUIBmpLoadBitmapFile(m_path.c_str(), FALSE)));
        BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(m_path.c_str());
        ASSERT_EQ(c.m_nHeader == 40, pbih != nullptr);
        if (bPlain) {
            EXPECT_EQ(0, memcmp(pbih, &bmp.File()[14], 40 + 4 * bmp.m_table.size() + c.m_nImage));
        }
        free(pbih);
        if (!bPlain)
            continue;
        EXPECT_EQ(shown, CGuardedDib(bmp.Packed(256)).Create());
        if (c.m_nHeight > 0)
            ExpectCopies(bmp);
    }
    EXPECT_EQ("", m_trace.m_text);
    DWORD dwHeaderSize = 0;
    for (const HGDIOBJ hNone : {HGDIOBJ(nullptr), GetStockObject(WHITE_BRUSH)})
        EXPECT_FALSE(CUIBitmapToDib(static_cast<HBITMAP>(hNone), nullptr, dwHeaderSize));
}

TEST_F(BmpLoad, OfFilesWithoutAllRowsShowsWhatThereIs)
{
    // Aligned to words, the rows run into each other; all but the last bytes are there.
    const CHeapWatch heap;
    const CBmpBytes words(2, 2, 24, 2);
    CPixelMap expected = words.Picture();
    // Its red as blue, then nothing.
    expected.Set(1, 0, RGB(0, 0, GetRValue(expected.At(1, 0))));
    Write(words.File());
    const CPixelMap picture = FilePicture();
    ASSERT_EQ(2, picture.cy);
    for (const int y : {0, 1})
        EXPECT_EQ(OnScreen(expected).At(1, y), picture.At(1, y));
    // No rows; rows of no pixels; rows of no bytes, as many as the header likes.
    CBmpBytes hollow(7, 3, 1);
    hollow.m_info.biHeight = 1000000;
    for (const CBmpBytes &empty : {CBmpBytes(1 << 26, 0, 24), CBmpBytes(0, 5, 8), hollow}) {
        Write(empty.File());
        BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(m_path.c_str());
        EXPECT_TRUE(pbih);
        free(pbih);
    }
    EXPECT_EQ(none, FilePicture());
    // More colours claimed than the depth can use and the file has.
    const std::pair<int, DWORD> claims[] = {{1, 200}, {4, 256}, {24, 16}, {24, 1 << 24}};
    for (const auto &claim : claims) {
        CBmpBytes claiming(3, 2, claim.first);
        claiming.m_info.biClrUsed = claim.second;
        Write(claiming.File());
        EXPECT_EQ(OnScreen(claiming.Picture()), File()) << claim.second;
    }
    // A byte short, LoadImage would read beyond the end.
    std::vector<BYTE> cut = CBmpBytes(7, 5, 32).File();
    cut.pop_back();
    Write(cut);
    EXPECT_EQ(none, File());
    EXPECT_EQ("Error loading bitmap " + m_path + ".\n", m_trace.m_text);
}

TEST_F(BmpLoad, ReplacesColoursOnlyWhenAsked)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    // The first match counts, and the caller's values are not resolved.
    DWORD from[] = {0xFF0000, 0x0000FF, 0xFF0000, 0x00FF00};
    DWORD to[] = {RGB(1, 2, 3), RGB(94, 5, 6), RGB(7, 88, 9), 0x0A000000 | RGB(10, 11, 112)};
    const CPixelMap plain = OnScreen(Colors());
    EXPECT_EQ(plain, Resource(pszColors, false, from, to, 4));
    EXPECT_EQ(plain, Resource(pszColors, true, from, to, -1));
    EXPECT_EQ(plain, Resource(pszColors, true, nullptr, nullptr, 1));
    const CPixelMap replaced = Resource(pszColors, true, from, to, 4);
    to[3] &= 0xFFFFFF;
    EXPECT_EQ(Replaced(Colors(), from, to, 4), replaced);
    // CUIData's colours here, the system's present ones there.
    const COLORREF greys[] = {0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF};
    const CSysColors others(0x10);
    EXPECT_EQ(Replaced(Colors(), greys, colors.m_new, 4), Resource(pszColors, true));
    EXPECT_EQ(Replaced(Colors(), greys, others.m_new, 4),
              TakePixels(CUIBmpLoadBitmap(hModule, pszColors)));

    // In a packed DIB the table itself is rewritten.
    for (const DWORD nHeader : {40U, 108U, 124U}) {
        CBmpBytes bmp(9, -3, 4);
        bmp.SetHeader(nHeader, BI_RGB);
        CGuardedDib dib(bmp.Packed(256));
        RGBQUAD *pTable = dib->bmiColors + (nHeader - 40) / 4;
        pTable[1].rgbReserved = 1;  // no plain colour
        DWORD first[] = {bmp.TableColor(0), bmp.TableColor(1)};
        HPALETTE hPal = nullptr;
        EXPECT_EQ(Replaced(bmp.Picture(), first, to, 1), dib.Create(&hPal, first, to, 2));
        EXPECT_EQ(nHeader == 40 ? to[0] : 0, TakeEntries(hPal)[0]);
        EXPECT_EQ(1, pTable[0].rgbRed);
    }
}

TEST_F(BmpLoad, OfLyingDibsStaysInTheMemoryThatThereIs)
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
    const CBmpBytes good(4, 4, 8);
    std::vector<BYTE> bytes = good.Packed(255);
    bytes.resize(sizeof(BITMAPINFOHEADER) + 255 * 4);
    CGuardedDib cut(bytes);
    EXPECT_FALSE(cut.Palette(nColors));
    EXPECT_EQ(256, nColors);
    EXPECT_EQ(none, cut.Create());
    EXPECT_FALSE(CGuardedDib(CBmpBytes(4, 4, 24).Packed(0)).Palette(nColors));
    EXPECT_EQ(0, nColors);

    CGuardedDib dib(good.Packed(256));
    // Header size, width, height, depth, compression.
    const long lies[][5] = {{40, 4, 5, 8, 0},  {40, 4, LONG_MIN, 8, 0},  {40, 5, 4, 8, 0},
                            {40, -4, 4, 8, 0}, {40, 65536, 65536, 8, 0}, {40, 4, 4, 32, 0},
                            {44, 4, 4, 8, 0},  {40, 4, 4, 0xFFFF, 0},    {40, 4, 4, 8, BI_RLE8},
                            {-4, 4, 4, 8, 0}};
    for (const auto &lie : lies) {
        dib->bmiHeader = {static_cast<DWORD>(lie[0]),
                          lie[1],
                          lie[2],
                          1,
                          static_cast<WORD>(lie[3]),
                          static_cast<DWORD>(lie[4]),
                          17,
                          0,
                          0,
                          0,
                          0};
        EXPECT_EQ(none, dib.Create()) << &lie - lies;
    }
    dib->bmiHeader = good.m_info;
    dib->bmiHeader.biPlanes = 2;
    EXPECT_EQ(none, dib.Create());
    dib->bmiHeader.biPlanes = 1;
    // A table that cannot be written to.
    DWORD old = 0;
    VirtualProtect(&dib->bmiHeader, sizeof(BITMAPINFOHEADER) + 1024, PAGE_READONLY, &old);
    EXPECT_EQ(none, dib.Create(nullptr, black, white, 1));
    EXPECT_EQ(OnScreen(good.Picture()), dib.Create());
    EXPECT_FALSE(CUIBmpCreateBitmap(nullptr, nullptr, false, nullptr, nullptr, 0));
}

TEST_F(BmpLoad, ReportsMissingResourcesAndRefusesBrokenOnes)
{
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_EQ("hRsrcImage; hRsrcImage", m_reports.Of("Bmp", [&] {
        EXPECT_FALSE(CUIBmpLoadBitmapPalette(hModule, "none", hPal) || hPal);
        EXPECT_FALSE(CUIBmpLoadBitmap(hModule, "none"));
    }));
    EXPECT_EQ(none, Resource("none"));
    for (const char *pszBroken : {pszShort, pszNoHeader}) {
        EXPECT_FALSE(CUIBmpLoadBitmap(hModule, pszBroken));
        EXPECT_FALSE(CUIBmpLoadBitmapPalette(hModule, pszBroken, hPal));
        EXPECT_EQ(none, Resource(pszBroken));
    }
    EXPECT_FALSE(CUIBmpLoadSysColorBitmap(hModule, nullptr));
    EXPECT_EQ(OnScreen(Colors()), TakePixels(CUIBmpLoadBitmapPalette(hModule, pszColors, hPal)));
    EXPECT_EQ(16u, TakeEntries(hPal).size());
    const CPixelMap pixel = OnScreen(CPixelMap(1, 1, 0x563412));
    EXPECT_EQ(pixel, Resource(pszLongHeader));
    EXPECT_EQ(pixel, TakePixels(CUIBmpLoadBitmapPalette(hModule, pszLongHeader, hPal)));
    EXPECT_EQ(2, m_reports.Total());
    EXPECT_EQ(std::string::npos, m_trace.m_text.find("Error loading"));
}

TEST_F(BmpLoad, CopiesPalettesAndTracesThem)
{
    int nColors = 0;
    const HPALETTE hPal = CGuardedDib(CBmpBytes(1, 1, 1).Packed(2)).Palette(nColors);
    const HPALETTE hCopy = CUICopyPalette(hPal);
    DeleteObject(hPal);
    CUIDumpPalette(hCopy);
    DeleteObject(hCopy);
    EXPECT_EQ("Palette (2 entries)\n000: (1, 5, 255)\n001: (92, 42, 0)\n\n", m_trace.m_text);
    EXPECT_FALSE(CUICopyPalette(nullptr));
}
