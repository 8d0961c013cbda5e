#include <gtest/gtest.h>

#include "CU/String.h"
#include "CUI/BmpLoad.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
#include "Support/GdiCount.h"
#include "Support/GuardedBuffer.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"

namespace {

const char *const pszColors = MAKEINTRESOURCEA(200);  // 16 colours, each once
const char *const pszShort = MAKEINTRESOURCEA(201);
const char *const pszNoHeader = MAKEINTRESOURCEA(202);

HINSTANCE Module()
{
    return GetModuleHandleA(nullptr);
}

DWORD Rgb(DWORD cr)
{
    return (cr >> 16 & 0xFF) | (cr & 0xFF00) | (cr & 0xFF) << 16;
}

// The pixels of a bitmap that is deleted then.
std::vector<DWORD> Taken(HBITMAP hBitmap)
{
    std::vector<DWORD> pixels = PixelsOf(hBitmap);
    DeleteObject(hBitmap);
    return pixels;
}

std::vector<DWORD> Replaced(std::vector<DWORD> pixels, const std::vector<DWORD> &from,
                            const std::vector<DWORD> &to)
{
    for (DWORD &pixel : pixels) {
        for (size_t i = 0; i < from.size(); ++i) {
            if (pixel == from[i]) {
                pixel = to[i];
                break;
            }
        }
    }
    return pixels;
}

const std::vector<DWORD> greys = {0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF};

// A packed DIB that ends where nobody may read.
class CGuardedDib
{
public:
    explicit CGuardedDib(const std::vector<BYTE> &bytes) : m_buffer(bytes.size())
    {
        memcpy(m_buffer.Data(), bytes.data(), bytes.size());
    }
    BITMAPINFOHEADER *Header() { return reinterpret_cast<BITMAPINFOHEADER *>(m_buffer.Data()); }
    BITMAPINFO *Info() { return reinterpret_cast<BITMAPINFO *>(m_buffer.Data()); }

private:
    CGuardedBuffer m_buffer;
};

HBITMAP Create(BITMAPINFOHEADER *pbih)
{
    return CUIBmpCreateBitmap(pbih, nullptr, false, nullptr, nullptr, 0);
}

}  // namespace

TEST(BmpLoad, ReplacesColoursOnlyWhenAsked)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    const std::vector<DWORD> plain = Taken(LoadBitmapA(Module(), pszColors));
    ASSERT_EQ(16u, plain.size());
    DWORD from[] = {RGB(0, 0, 0xFF), RGB(0xFF, 0, 0), RGB(0, 0, 0xFF),
                    0xFF000000 | RGB(0, 0xFF, 0)};
    DWORD to[] = {RGB(1, 2, 3), RGB(4, 5, 6), RGB(7, 8, 9), 0x0A000000 | RGB(10, 11, 12)};
    const auto load = [&](bool bMap, int nCount) {
        return Taken(CUIBmpLoad(Module(), pszColors, nullptr, bMap, from, to, nCount));
    };
    EXPECT_EQ(plain, load(false, 4));
    // The first match counts, and values are not resolved.
    EXPECT_EQ(Replaced(plain, {0x0000FF, 0xFF0000, 0x00FF00}, {0x010203, 0x040506, 0x0A0B0C}),
              load(true, 4));
    EXPECT_EQ(plain, load(true, -1));
    EXPECT_EQ(Replaced(plain, greys, colors.Buttons()), load(true, 0));
    // The colours of now, not CUIData's of its last update; always, and from the file when asked.
    const CSysColors others(0x10);
    EXPECT_EQ(Replaced(plain, greys, colors.Buttons()), load(true, 0));
    EXPECT_EQ(Replaced(plain, greys, others.Buttons()),
              Taken(CUIBmpLoadBitmap(Module(), pszColors)));
    EXPECT_EQ(Replaced(plain, greys, others.Buttons()),
              Taken(CUIBmpLoadSysColorBitmap(
                  Module(),
                  FindResourceA(Module(), pszColors, reinterpret_cast<const char *>(RT_BITMAP)))));
}

TEST(BmpLoad, OfFilesTakesWhatTheSystemTakes)
{
    CReports reports;
    CTraceListener trace;
    const std::string path = reports.Directory().Path() + "\\load.bmp";
    for (const int nBits : {1, 4, 8, 24, 32}) {
        const CBmpBytes bmp(7, 5, nBits);
        ASSERT_TRUE(WriteBytes(path, bmp.File()));
        HPALETTE hPal = nullptr;
        EXPECT_EQ(bmp.Picture(),
                  Taken(CUIBmpLoad(nullptr, path.c_str(), &hPal, false, nullptr, nullptr, 0)));
        PALETTEENTRY last = {};
        EXPECT_EQ(bmp.m_table.size(), GetPaletteEntries(hPal, 0, 0, nullptr));
        if (nBits <= 8) {
            GetPaletteEntries(hPal, static_cast<UINT>(bmp.m_table.size() - 1), 1, &last);
            EXPECT_EQ(bmp.m_table.back().rgbGreen, last.peGreen);
        }
        DeleteObject(hPal);
        EXPECT_EQ(nBits > 8 ? std::vector<DWORD>() : bmp.Picture(),
                  Taken(CUIBmpLoadBitmapFile(path.c_str(), FALSE)))
            << nBits;
    }
    EXPECT_EQ("", trace.Text());
    // A byte short, LoadImage would read beyond the end.
    std::vector<BYTE> bytes = CBmpBytes(7, 5, 32).File();
    bytes.pop_back();
    ASSERT_TRUE(WriteBytes(path, bytes));
    EXPECT_FALSE(CUIBmpLoad(nullptr, path.c_str(), nullptr, false, nullptr, nullptr, 0));
    EXPECT_EQ("Error loading bitmap " + path + ".\n", trace.Text());
    EXPECT_FALSE(CUIBmpLoad(Module(), "none", nullptr, false, nullptr, nullptr, 0));
    EXPECT_FALSE(CUIBmpLoad(Module(), pszShort, nullptr, false, nullptr, nullptr, 0));
    EXPECT_EQ("Error loading bitmap " + path + ".\n", trace.Text());
    EXPECT_TRUE(reports.Asserts().empty());
}

TEST(BmpLoad, OfPackedDibsRewritesTheTableInPlace)
{
    for (const int nBits : {1, 4, 8, 24}) {
        CBmpBytes bmp(9, -3, nBits);
        CGuardedDib dib(bmp.Packed(256));
        EXPECT_EQ(bmp.Picture(), Taken(Create(dib.Header())));
        if (nBits > 8)
            continue;
        const RGBQUAD first = bmp.m_table[0];
        dib.Info()->bmiColors[1].rgbReserved = 1;
        DWORD from[] = {
            RGB(first.rgbRed, first.rgbGreen, first.rgbBlue),
            RGB(bmp.m_table[1].rgbRed, bmp.m_table[1].rgbGreen, bmp.m_table[1].rgbBlue)};
        DWORD to[] = {RGB(1, 2, 3), RGB(4, 5, 6)};
        HPALETTE hPal = nullptr;
        const std::vector<DWORD> picture =
            Taken(CUIBmpCreateBitmap(dib.Header(), &hPal, true, from, to, 2));
        EXPECT_EQ(Replaced(bmp.Picture(), {Rgb(from[0])}, {Rgb(to[0])}), picture);
        EXPECT_EQ(1, dib.Info()->bmiColors[0].rgbRed);
        EXPECT_EQ(0, dib.Info()->bmiColors[0].rgbReserved);
        EXPECT_EQ(bmp.m_table[1].rgbRed, dib.Info()->bmiColors[1].rgbRed);
        PALETTEENTRY entry = {};
        GetPaletteEntries(hPal, 0, 1, &entry);
        EXPECT_EQ(3, entry.peBlue);
        DeleteObject(hPal);
    }
}

TEST(BmpLoad, OfLyingDibsStaysInTheMemoryThatThereIs)
{
    // More colours than the table has room for: the rest of the block is not colours.
    CBmpBytes bmp(4, 4, 8);
    bmp.m_info.biClrUsed = 1000;
    bmp.m_pixels.assign(bmp.m_pixels.size(), 0);
    CGuardedDib many(bmp.Packed(256));
    DWORD black[] = {0};
    DWORD white[] = {0xFFFFFF};
    HPALETTE hPal = nullptr;
    DeleteObject(CUIBmpCreateBitmap(many.Header(), &hPal, true, black, white, 1));
    EXPECT_EQ(256u, GetPaletteEntries(hPal, 0, 0, nullptr));
    DeleteObject(hPal);
    EXPECT_EQ(0, many.Info()->bmiColors[256].rgbRed);
    int nColors = 0;
    hPal = CUIBmpCreateDIBPalette(many.Info(), &nColors);
    EXPECT_EQ(1000, nColors);
    EXPECT_EQ(256u, GetPaletteEntries(hPal, 0, 0, nullptr));
    DeleteObject(hPal);
    // A table that ends early, and none.
    std::vector<BYTE> bytes = CBmpBytes(4, 4, 8).Packed(256);
    bytes.resize(sizeof(BITMAPINFOHEADER) + 255 * 4);
    CGuardedDib cut(bytes);
    EXPECT_FALSE(CUIBmpCreateDIBPalette(cut.Info(), &nColors));
    EXPECT_EQ(256, nColors);
    EXPECT_FALSE(Create(cut.Header()));
    CGuardedDib deep(CBmpBytes(4, 4, 24).Packed(0));
    EXPECT_FALSE(CUIBmpCreateDIBPalette(deep.Info(), &nColors));
    EXPECT_EQ(0, nColors);

    const CBmpBytes good(4, 4, 8);
    CGuardedDib dib(good.Packed(256));
    BITMAPINFOHEADER &header = *dib.Header();
    const BITMAPINFOHEADER kept = header;
    const struct
    {
        void (*m_lie)(BITMAPINFOHEADER &);
    } lies[] = {{[](BITMAPINFOHEADER &h) { h.biHeight = 5; }},
                {[](BITMAPINFOHEADER &h) { h.biHeight = LONG_MIN; }},
                {[](BITMAPINFOHEADER &h) { h.biWidth = 5; }},
                {[](BITMAPINFOHEADER &h) { h.biWidth = -4; }},
                {[](BITMAPINFOHEADER &h) { h.biWidth = h.biHeight = 0x10000; }},
                {[](BITMAPINFOHEADER &h) { h.biBitCount = 32; }},
                {[](BITMAPINFOHEADER &h) { h.biBitCount = 0xFFFF; }},
                {[](BITMAPINFOHEADER &h) { h.biSize = 44; }},
                {[](BITMAPINFOHEADER &h) { h.biSize = 0; }},
                {[](BITMAPINFOHEADER &h) { h.biSize = 0xFFFFFFFC; }},
                {[](BITMAPINFOHEADER &h) {
                    h.biCompression = BI_RLE8;
                    h.biSizeImage = 17;
                }}};
    for (const auto &lie : lies) {
        header = kept;
        lie.m_lie(header);
        EXPECT_FALSE(Create(&header)) << &lie - lies;
    }
    header = kept;
    EXPECT_EQ(good.Picture(), Taken(Create(&header)));
    EXPECT_FALSE(Create(nullptr));
    // A table that cannot be written to.
    DWORD old = 0;
    VirtualProtect(&header, sizeof header + 1024, PAGE_READONLY, &old);
    EXPECT_FALSE(CUIBmpCreateBitmap(&header, nullptr, true, nullptr, nullptr, 0));
    EXPECT_EQ(good.Picture(), Taken(Create(&header)));
}

TEST(BmpLoad, ReportsMissingResourcesAndRefusesBrokenOnes)
{
    CReports reports;
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_FALSE(CUIBmpLoadBitmapPalette(Module(), "none", hPal));
    EXPECT_FALSE(hPal);
    EXPECT_FALSE(CUIBmpLoadBitmap(Module(), "none"));
    EXPECT_EQ((std::vector<std::string>{"Bmp: hRsrcImage", "Bmp: hRsrcImage"}), reports.Asserts());
    for (const char *pszBroken : {pszShort, pszNoHeader}) {
        EXPECT_FALSE(CUIBmpLoadBitmap(Module(), pszBroken));
        EXPECT_FALSE(CUIBmpLoadBitmapPalette(Module(), pszBroken, hPal));
        DeleteObject(hPal);
    }
    EXPECT_FALSE(CUIBmpLoadSysColorBitmap(Module(), nullptr));
    const HBITMAP hBitmap = CUIBmpLoadBitmapPalette(Module(), pszColors, hPal);
    EXPECT_EQ(Taken(LoadBitmapA(Module(), pszColors)), Taken(hBitmap));
    EXPECT_EQ(16u, GetPaletteEntries(hPal, 0, 0, nullptr));
    DeleteObject(hPal);
    EXPECT_TRUE(reports.Asserts().empty());
}

TEST(BmpCopy, OfABitmapIsItsTopLeftPart)
{
    const CBmpBytes bmp(5, 4, 32);
    CGuardedDib dib(bmp.Packed(256));
    const HBITMAP hBitmap = Create(dib.Header());
    const HBITMAP hCopy = CUICopyBitmap(hBitmap, 3, 2, nullptr);
    EXPECT_EQ((std::vector<DWORD>{bmp.ColorAt(0, 0), bmp.ColorAt(1, 0), bmp.ColorAt(2, 0),
                                  bmp.ColorAt(0, 1), bmp.ColorAt(1, 1), bmp.ColorAt(2, 1)}),
              Taken(hCopy));
    DeleteObject(hBitmap);
}

TEST(BmpCopy, OfABitmapIsAPackedDibAgain)
{
    for (const int nBits : {1, 4, 8, 24, 32}) {
        CBmpBytes bmp(5, 3, nBits);
        const std::vector<BYTE> packed = bmp.Packed(bmp.m_table.size());
        void *pBits = nullptr;
        const HBITMAP hSection =
            CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO *>(packed.data()),
                             DIB_RGB_COLORS, &pBits, nullptr, 0);
        memcpy(pBits, bmp.m_pixels.data(), bmp.m_pixels.size());
        DWORD dwHeaderSize = 0;
        BITMAPINFOHEADER *pbih = CUIBitmapToDib(hSection, nullptr, dwHeaderSize);
        ASSERT_TRUE(pbih);
        EXPECT_EQ(40 + bmp.m_table.size() * 4, dwHeaderSize);
        EXPECT_EQ(nBits, pbih->biBitCount);
        EXPECT_EQ(3, pbih->biHeight);
        const RGBQUAD *pTable = reinterpret_cast<const BITMAPINFO *>(pbih)->bmiColors;
        EXPECT_EQ(0, memcmp(pTable, bmp.m_table.data(), bmp.m_table.size() * 4));
        EXPECT_EQ(0, memcmp(reinterpret_cast<const char *>(pbih) + dwHeaderSize,
                            bmp.m_pixels.data(), bmp.m_pixels.size()));
        free(pbih);
        DeleteObject(hSection);
    }
    DWORD dwHeaderSize = 0;
    EXPECT_FALSE(CUIBitmapToDib(nullptr, nullptr, dwHeaderSize));
}

TEST(BmpCopy, OfAPaletteHasItsEntriesAndIsTraced)
{
    CReports reports;
    CTraceListener trace;
    CBmpBytes bmp(1, 1, 4);
    CGuardedDib dib(bmp.Packed(16));
    int nColors = 0;
    const HPALETTE hPal = CUIBmpCreateDIBPalette(dib.Info(), &nColors);
    const HPALETTE hCopy = CUICopyPalette(hPal);
    DeleteObject(hPal);
    CUIDumpPalette(hCopy);
    DeleteObject(hCopy);
    std::string expected = "Palette (16 entries)\n";
    for (int i = 0; i < 16; ++i) {
        char szLine[64];
        const RGBQUAD &color = bmp.m_table[static_cast<size_t>(i)];
        sprintf(szLine, "%03d: (%d, %d, %d)\n", i, color.rgbRed, color.rgbGreen, color.rgbBlue);
        expected += szLine;
    }
    EXPECT_EQ(expected + "\n", trace.Text());
    EXPECT_FALSE(CUICopyPalette(nullptr));
}

namespace {

template <typename F>
struct CFail;
template <typename R, typename... A>
struct CFail<R(WINAPI *)(A...)>
{
    static R WINAPI Call(A...) { return R(); }
};

void CallEverything(const std::string &path)
{
    HPALETTE hPal = nullptr;
    const HBITMAP hBitmap = CUIBmpLoad(Module(), pszColors, &hPal, true, nullptr, nullptr, 0);
    const HPALETTE hPalCopy = CUICopyPalette(hPal);
    DeleteObject(CUICopyBitmap(hBitmap, 8, 2, hPal));
    DWORD dwHeaderSize = 0;
    free(CUIBitmapToDib(hBitmap, hPal, dwHeaderSize));
    DeleteObject(hBitmap);
    DeleteObject(hPal);
    DeleteObject(hPalCopy);
    hPal = nullptr;
    DeleteObject(CUIBmpLoadBitmapPalette(Module(), pszColors, hPal));
    DeleteObject(hPal);
    DeleteObject(CUIBmpLoadBitmapFilePalette(path.c_str(), hPal));
    DeleteObject(hPal);
    DeleteObject(CUIBmpLoadBitmap(Module(), pszColors));
    DeleteObject(CUIBmpLoadBitmapFile(path.c_str(), TRUE));
}

}  // namespace

TEST(BmpLoad, LeaksNothingAlsoWhereACallFails)
{
    CReports reports;
    const std::string path = reports.Directory().Path() + "\\leak.bmp";
    ASSERT_TRUE(WriteBytes(path, CBmpBytes(8, 2, 4).File()));
    CallEverything(path);
    const int nGdi = GdiCount();
    const auto rounds = [&] {
        for (int i = 0; i < 200; ++i)
            CallEverything(path);
        EXPECT_NEAR(nGdi, GdiCount(), 2);
    };
    rounds();
#define FAIL_AND_COUNT(name)                                            \
    {                                                                   \
        SCOPED_TRACE(#name);                                            \
        const CImportHook fail(#name, &CFail<decltype(&(name))>::Call); \
        rounds();                                                       \
    }
    FAIL_AND_COUNT(LoadImageA)
    FAIL_AND_COUNT(GetDIBits)
    FAIL_AND_COUNT(CreateDIBitmap)
    FAIL_AND_COUNT(CreatePalette)
    FAIL_AND_COUNT(CreateCompatibleBitmap)
    FAIL_AND_COUNT(CreateCompatibleDC)
    FAIL_AND_COUNT(StretchDIBits)
    FAIL_AND_COUNT(LoadResource)
#undef FAIL_AND_COUNT
}
