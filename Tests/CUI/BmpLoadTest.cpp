// All that loads bitmaps: the right picture or none, whatever the bytes; and the object that holds
// one.
#include "CUI/BmpLoad.h"

#include "CUI/Bitmap.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
#include "Support/FakeResource.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"
#include "Support/Threads.h"

namespace {

const HINSTANCE hModule = GetModuleHandleA(nullptr);
const char *const pszColors = MAKEINTRESOURCEA(200);  // 16 colours, each once
const CPixelMap none;

class BmpLoad : public testing::Test
{
protected:
    CReports m_reports;
    CDumped m_trace;
    const std::string m_path = m_reports.Directory().Path() + "\\test.bmp";
};

// As much of each colour as a picture of 5 bits a channel keeps.
CPixelMap Coarse(CPixelMap map)
{
    for (COLORREF &cr : map.pixels)
        cr &= 0xF8F8F8;
    return map;
}

// A bitmap resource in colours that the screen need not have.
CPixelMap Exact(const char *pszName)
{
    const UINT nFlags = LR_CREATEDIBSECTION;
    return TakePixels(HBITMAP(LoadImageA(hModule, pszName, IMAGE_BITMAP, 0, 0, nFlags)));
}

// The picture in the colours that the screen has.
CPixelMap Shown(const CPixelMap &map)
{
    return CTestSurface(map).Read();
}

// The colours of a palette that nobody needs any more.
std::vector<COLORREF> TakeEntries(HPALETTE hPal)
{
    std::vector<COLORREF> colors(GetPaletteEntries(hPal, 0, 0, nullptr));
    GetPaletteEntries(hPal, 0, colors.size(), reinterpret_cast<PALETTEENTRY *>(colors.data()));
    DeleteObject(hPal);
    return colors;
}

COLORREF ColorOf(const RGBQUAD &color)
{
    return RGB(color.rgbRed, color.rgbGreen, color.rgbBlue);
}

// A packed DIB that under a CHeapWatch ends where nobody may read.
struct CDib
{
    explicit CDib(const std::vector<BYTE> &bytes) : m_bytes(bytes) {}
    BITMAPINFO *Info() { return reinterpret_cast<BITMAPINFO *>(m_bytes.data()); }
    HBITMAP Create(HPALETTE *phPal, DWORD *pFrom, DWORD *pTo, int nCount)
    {
        return CUIBmpCreateBitmap(&Info()->bmiHeader, phPal, true, pFrom, pTo, nCount);
    }
    std::vector<BYTE> m_bytes;
};

CPixelMap Replaced(CPixelMap map, const COLORREF *pFrom, const COLORREF *pTo)
{
    for (COLORREF &cr : map.pixels) {
        const COLORREF *const pFound = std::find(pFrom, pFrom + 4, cr);
        cr = pFound == pFrom + 4 ? cr : pTo[pFound - pFrom];
    }
    return Shown(map);
}

HBITMAP NewBitmap()
{
    return CreateBitmap(3, 2, 1, 1, nullptr);
}

}  // namespace

TEST_F(BmpLoad, GivesThePictureThatTheBytesShow)
{
    // Who shows it: a resource with Palette and in System colours; the same of a file, p and s;
    // Load; Create. The others give nothing.
    const struct
    {
        const char *pszWho;
        int cx, cy, nBits;
        DWORD nHeader, nCompression, nUsed;
    } kinds[] = {{"PSpsLC", 33, 5, 1, 40, BI_RGB, 0},      {"PSpsC", 7, -5, 1, 40, BI_RGB, 0},
                 {"PSpsLC", 1, 5, 4, 40, BI_RGB, 0},       {"PSpsLC", 6, 5, 8, 40, BI_RGB, 0},
                 {"PpLC", 13, 6, 8, 40, BI_RGB, 100},      {"PpLC", 13, 6, 8, 40, BI_RGB, 300},
                 {"PpLC", 13, 6, 16, 40, BI_RGB, 0},       {"PpLC", 3, 5, 24, 40, BI_RGB, 0},
                 {"PpC", 6, -5, 24, 40, BI_RGB, 0},        {"PpLC", 13, 6, 24, 40, BI_RGB, 5},
                 {"PpLC", 7, 5, 32, 40, BI_RGB, 0},        {"PLC", 13, 6, 16, 40, BI_BITFIELDS, 0},
                 {"PpLC", 13, 6, 16, 40, BI_BITFIELDS, 3}, {"PpLC", 13, 6, 32, 40, BI_BITFIELDS, 3},
                 {"PLC", 13, 6, 32, 40, BI_BITFIELDS, 0},  {"PSpsLC", 13, 6, 8, 40, BI_RLE8, 0},
                 {"PLC", 13, 6, 1, 108, BI_RGB, 0},        {"PLC", 13, 6, 8, 124, BI_RGB, 0},
                 {"PLC", 13, 6, 24, 124, BI_RGB, 0},       {"PLC", 13, 6, 8, 124, BI_RLE8, 0},
                 {"PLC", 13, 6, 16, 108, BI_BITFIELDS, 0}, {"PLC", 13, 6, 32, 124, BI_BITFIELDS, 0},
                 {"", 13, 6, 8, 40, BI_BITFIELDS, 0},      {"", 13, 6, 24, 40, BI_BITFIELDS, 0},
                 {"", 13, 6, 4, 40, BI_RLE8, 0},           {"", 13, 6, 8, 40, 4, 0}};
    for (const auto &kind : kinds) {
        const CBmpBytes bmp(kind.cx, kind.cy, kind.nBits, kind.nHeader, kind.nCompression,
                            kind.nUsed);
        const CPixelMap picture = Coarse(bmp.Picture());
        WriteBytes(m_path, bmp.File());
        HPALETTE hPal = nullptr, hFilePal = nullptr;
        DWORD from[] = {0x0000FF}, to[] = {0x123456};  // that are not there
        const CHeapWatch heap;
        const CFakeResource resource(bmp.Packed(0));
        const std::pair<char, HBITMAP> loaded[] = {
            {'P', CUIBmpLoadBitmapPalette(nullptr, "", hPal)},
            {'S', CUIBmpLoadBitmap(nullptr, "")},
            {'s', CUIBmpLoadBitmapFile(m_path.c_str(), FALSE)},
            {'L', CUIBmpLoad(nullptr, m_path.c_str(), nullptr, false, nullptr, nullptr, 0)},
            {'C', CDib(bmp.Packed(256)).Create(nullptr, from, to, 1)},
            {'p', CUIBmpLoadBitmapFilePalette(m_path.c_str(), hFilePal)}};
        for (const auto &[who, hBitmap] : loaded) {
            const CPixelMap shown = Coarse(TakePixels(hBitmap));
            if (who == 'L' && kind.cy < 0)
                continue;  // what LoadImage makes of these differs between systems
            EXPECT_EQ(strchr(kind.pszWho, who) ? picture : none, shown) << &kind - kinds << who;
        }
        std::vector<COLORREF> colors;
        for (const RGBQUAD &color : bmp.m_table)
            colors.push_back(ColorOf(color));
        // Behind masks and longer headers are none.
        const bool bColors =
            *kind.pszWho && kind.nHeader == 40 && kind.nCompression != BI_BITFIELDS;
        colors.resize(bColors ? colors.size() : 0);
        EXPECT_EQ(colors, TakeEntries(hPal)) << &kind - kinds;
        colors.resize(strchr(kind.pszWho, 'p') ? colors.size() : 0);
        EXPECT_EQ(colors, TakeEntries(hFilePal)) << &kind - kinds;
    }
}

TEST_F(BmpLoad, ReplacesColoursOnlyWhenAsked)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    const auto load = [](bool bMap, DWORD *pFrom, DWORD *pTo, int nCount) {
        return TakePixels(CUIBmpLoad(hModule, pszColors, nullptr, bMap, pFrom, pTo, nCount));
    };
    // The first match counts, and the caller's values are not resolved.
    DWORD from[] = {0xFF0000, 0x0000FF, 0xFF0000, 0x00FF00};
    DWORD to[] = {0x030201, 0x06055E, 0x095807, 0x0A700B0A};
    const CPixelMap plain = Exact(pszColors);
    EXPECT_EQ(Shown(plain), load(false, from, to, 4));
    const CPixelMap replaced = load(true, from, to, 4);
    to[3] &= 0xFFFFFF;
    EXPECT_EQ(Replaced(plain, from, to), replaced);
    // CUIData's colours here, the system's present ones there.
    const COLORREF greys[] = {0x000000, 0x808080, 0xC0C0C0, 0xFFFFFF};
    const CSysColors others(0x10);
    EXPECT_EQ(Replaced(plain, greys, colors.m_new), load(true, nullptr, nullptr, 0));
    EXPECT_EQ(Replaced(plain, greys, others.m_new),
              TakePixels(CUIBmpLoadBitmap(hModule, pszColors)));
    // In a packed DIB the table itself is rewritten, and the palette made of it.
    CDib dib(CBmpBytes(9, -3, 4).Packed(256));
    from[0] = ColorOf(dib.Info()->bmiColors[5]);
    HPALETTE hPal = nullptr;
    DeleteObject(dib.Create(&hPal, from, to, 1));
    EXPECT_EQ(to[0], ColorOf(dib.Info()->bmiColors[5]));
    EXPECT_EQ(to[0], TakeEntries(hPal)[5]);
}

TEST_F(BmpLoad, MakesDibsOfBitmapsAndCopiesPalettes)
{
    const HBITMAP hLoaded = LoadBitmapA(hModule, pszColors);
    DWORD dwHeaderSize = 0;
    BITMAPINFOHEADER *const pbih = CUIBitmapToDib(hLoaded, nullptr, dwHeaderSize);
    CTestSurface surface(CPixelMap(8, 2));
    StretchDIBits(surface, 0, 0, 8, 2, 0, 0, 8, 2, reinterpret_cast<char *>(pbih) + dwHeaderSize,
                  reinterpret_cast<BITMAPINFO *>(pbih), DIB_RGB_COLORS, SRCCOPY);
    free(pbih);
    EXPECT_EQ(TakePixels(hLoaded), surface.Read());
    const HPALETTE hPal = CreateHalftonePalette(nullptr), hCopy = CUICopyPalette(hPal);
    const std::vector<COLORREF> colors = TakeEntries(hPal);
    EXPECT_EQ(colors, TakeEntries(hCopy));
}

namespace {

// A file that lies in one to three bytes of its headers, or ends too early.
std::vector<BYTE> Mutant(std::mt19937 &random)
{
    const int depths[] = {1, 4, 8, 16, 24, 32};
    const CBmpBytes bmp(13, random() % 4 ? 5 : -5, depths[random() % 6], random() % 2 ? 40 : 124,
                        random() % 4);
    std::vector<BYTE> bytes = bmp.File();
    const BYTE values[] = {0, 1, 4, 12, 40, 0x7F, 0x80, 0xFF};
    for (unsigned n = random() % 3 + 1; n; --n)
        bytes[random() % 54] = values[random() % 8];
    bytes.resize(random() % 4 ? bytes.size() : random() % bytes.size());
    return bytes;
}

}  // namespace

TEST_F(BmpLoad, OfAnyBytesStaysWithinTheirBounds)
{
    std::mt19937 random(1);
    const CHeapWatch heap;
    int nRead = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::vector<BYTE> bytes = Mutant(random);
        WriteBytes(m_path, bytes);
        CHeapWatch::TakeLargest();
        BITMAPINFOHEADER *const pbih = CUIBmpDIBFromFile(m_path.c_str());
        nRead += pbih != nullptr;
        free(pbih);
        // Twice the pixels at most, and what a trace line takes.
        ASSERT_LE(CHeapWatch::TakeLargest(), 2 * bytes.size() + 4096) << i;
        HPALETTE hPal = nullptr;
        if (i % 8 == 0 && bytes.size() >= 54) {
            const std::vector<BYTE> dib(bytes.begin() + 14, bytes.end());
            int nColors = 0;
            CDib guarded(dib);
            DeleteObject(CUIBmpCreateDIBPalette(guarded.Info(), &nColors));
            DeleteObject(guarded.Create(&hPal, nullptr, nullptr, 0));
            DeleteObject(hPal);
            const CFakeResource resource(dib);
            DeleteObject(CUIBmpLoadBitmapPalette(nullptr, "", hPal));
            DeleteObject(hPal);
            DeleteObject(CUIBmpLoadBitmap(nullptr, ""));
        }
        if (i % 32 == 0)
            DeleteObject(CUIBmpLoad(nullptr, m_path.c_str(), nullptr, true, nullptr, nullptr, 0));
        m_trace.m_text.clear();
    }
    EXPECT_GT(nRead, 300);
}

TEST(Bitmap, LivesAsLongAsItsLastCopyOnWhateverThread)
{
    const HBITMAP hBitmap = NewBitmap();
    const HPALETTE hPalette = CreateHalftonePalette(nullptr);
    CCUIBitmap last;
    {
        CCUIBitmap first(hBitmap, hPalette), copy(first);
        copy = *&copy;
        copy = first;
        EXPECT_EQ(2, first.GetData()->m_nRefs);
        last = copy;
        first = NewBitmap();
        EXPECT_EQ(nullptr, static_cast<HPALETTE>(first));
    }
    CThreads::Run(4, [&](int) {
        for (int i = 0; i < 300000; ++i) {
            CCUIBitmap copy(last), assigned;
            assigned = copy;
            copy.Empty();
        }
    });
    EXPECT_EQ(1, last.GetData()->m_nRefs);
    EXPECT_EQ(hPalette, static_cast<HPALETTE>(last));
    EXPECT_EQ(3 * 2 * 1, last.Width() * last.Height() * last.Depth());
    last = static_cast<HBITMAP>(nullptr);
    EXPECT_FALSE(GetObjectType(hBitmap) || GetObjectType(hPalette));
}

TEST(Bitmap, IsLoadedByIdNameAndDecimalTextOrTellsWhyNot)
{
    CReports reports;
    const CPixelMap colors = Shown(Exact(pszColors)), named = Shown(Exact("NAMED"));
    const std::string path = reports.Directory().Path() + "\\load.bmp", cut = path + "cut";
    const CBmpBytes bmp(5, 4, 8);
    const CPixelMap picture = bmp.Picture();
    std::vector<BYTE> bytes = bmp.File();
    WriteBytes(path, bytes);
    bytes.resize(54 + 1024 + 4 * 6 - 1);  // rows aligned to words, but for a byte
    WriteBytes(cut, bytes);
    const struct
    {
        const char *name;
        int nFlags;
        const CPixelMap &pixels;
        DWORD n;  // of colours in the palette, or why there is no bitmap
    } rows[] = {{"NAMED", CUIBMP_RESOURCE | CUIBMP_PALETTE, named, 2},
                {"none", CUIBMP_RESOURCE, none, ERROR_RESOURCE_NAME_NOT_FOUND},
                {"200", CUIBMP_RESOURCE, colors, 0},
                {"200x", CUIBMP_RESOURCE, none, ERROR_RESOURCE_NAME_NOT_FOUND},
                {"201", CUIBMP_RESOURCE | CUIBMP_PALETTE, none, ERROR_INVALID_DATA},
                {path.c_str(), CUIBMP_FILE | CUIBMP_PALETTE, picture, 256},
                {"no such", CUIBMP_FILE, none, ERROR_FILE_NOT_FOUND},
                {cut.c_str(), CUIBMP_FILE, none, ERROR_INVALID_DATA}};
    CCUIBitmap bitmap;
    for (const auto &row : rows) {
        SetLastError(0);
        bitmap.Load(CCUString(row.name), static_cast<WORD>(row.nFlags), hModule);
        const DWORD dwError = GetLastError();
        EXPECT_EQ(row.pixels, PixelsOf(bitmap)) << row.name;
        EXPECT_EQ(row.pixels.cx, bitmap.Width()) << row.name;
        EXPECT_EQ(row.n, bitmap ? GetPaletteEntries(bitmap, 0, 0, nullptr) : dwError) << row.name;
    }
    EXPECT_EQ(colors, PixelsOf(CCUIBitmap(200, 0, hModule)));
    EXPECT_EQ(named, PixelsOf(CCUIBitmap(L"NAMED", CUIBMP_RESOURCE, hModule)));  // as with UNICODE
}

TEST(Bitmap, LoadedAgainTakesOtherColoursAndLeavesItsCopiesAlone)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    DWORD from[] = {0x0000FF}, to[] = {0x00FF00};
    const WORD wFlags = CUIBMP_SYSCOLORS | CUIBMP_PALETTE;
    const CCUIBitmap sources[] = {CCUIBitmap(200, wFlags, hModule),
                                  CCUIBitmap(CCUString("200"), wFlags | CUIBMP_RESOURCE, hModule)};
    CPixelMap expected = Exact(pszColors);
    const COLORREF crFace = Shown(CPixelMap(1, 1, colors.m_new[2])).At(0, 0);
    expected.Set(4, 1, to[0]);
    for (const CCUIBitmap &source : sources) {
        const CPixelMap before = PixelsOf(source);
        EXPECT_EQ(crFace, before.At(2, 1));
        CCUIBitmap copy(source);
        copy.ReLoad(from, to, 1);
        EXPECT_EQ(1, copy.GetData()->m_nRefs);
        EXPECT_EQ(before, PixelsOf(source));
        EXPECT_EQ(Shown(expected), PixelsOf(copy));
        EXPECT_NE(static_cast<HPALETTE>(source), static_cast<HPALETTE>(copy));
    }
}
