#include <gtest/gtest.h>

#include <functional>

#include "CU/String.h"
#include "CUI/BmpLoad.h"
#include "Support/BmpBytes.h"
#include "Support/Fuzz.h"
#include "Support/GdiCount.h"
#include "Support/GuardedBuffer.h"
#include "Support/HeapWatch.h"
#include "Support/MemoryFile.h"
#include "Support/Reports.h"

namespace {

class BmpFile : public testing::Test
{
protected:
    void Write(const std::vector<BYTE> &bytes) { ASSERT_TRUE(WriteBytes(m_path, bytes)); }
    std::vector<DWORD> LoadPicture()
    {
        HPALETTE hPal = nullptr;
        const HBITMAP hBitmap = CUIBmpLoadBitmapFilePalette(m_sFile, hPal);
        std::vector<DWORD> picture = PixelsOf(hBitmap);
        DeleteObject(hBitmap);
        DeleteObject(hPal);
        return picture;
    }

    CReports m_reports;
    const std::string m_path = m_reports.Directory().Path() + "\\picture.bmp";
    const CCUString m_sFile = m_path.c_str();
};

std::vector<BYTE> Cut(std::vector<BYTE> bytes, size_t nSize)
{
    bytes.resize(nSize);
    return bytes;
}

}  // namespace

TEST_F(BmpFile, IsReadAsHeaderTableAndRowsOfWords)
{
    const struct
    {
        int m_nWidth, m_nHeight, m_nBits;
        size_t m_nImage;  // what the reader takes the pixels for
    } cases[] = {{32, 3, 1, 12}, {7, 3, 1, 0},   {1, 2, 4, 0},    {5, 3, 4, 6},
                 {3, 4, 8, 16},  {2, 3, 24, 18}, {3, -3, 24, 30}, {3, 3, 16, 18},
                 {3, 3, 32, 36}, {0, 5, 8, 0},   {9, 0, 24, 0},   {1, -1, 24, 4}};
    for (const auto &c : cases) {
        for (const DWORD nRowAlign : {4, 2}) {
            const CBmpBytes bmp(c.m_nWidth, c.m_nHeight, c.m_nBits, nRowAlign);
            Write(bmp.File());
            BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(m_sFile);
            ASSERT_TRUE(pbih) << c.m_nWidth << " " << c.m_nBits;
            const std::vector<BYTE> packed = bmp.Packed(bmp.m_table.size());
            const size_t nSize = packed.size() - bmp.m_pixels.size() + c.m_nImage;
            ASSERT_LE(nSize, packed.size());
            EXPECT_EQ(0, memcmp(pbih, packed.data(), nSize)) << c.m_nWidth << " " << c.m_nBits;
            free(pbih);
        }
    }
}

TEST_F(BmpFile, ThatIsNoneOrClaimsTooMuchIsRefused)
{
    const CBmpBytes bmp(5, 4, 8);
    const std::vector<BYTE> file = bmp.File();
    const size_t nNeeded = file.size() - 4 * 8 + 4 * 6;
    Write(Cut(file, nNeeded));
    BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(m_sFile);
    EXPECT_TRUE(pbih);
    free(pbih);

    const std::string name = m_path;
    const std::string noHeader = "CUIBmpDIBFromFile: error reading header for " + name + ".\n";
    const std::string noBitmap = "CUIBmpDIBFromFile: " + name + " is not a bitmap.\n";
    const auto with = [&](const std::function<void(CBmpBytes &)> &lie) {
        CBmpBytes liar = bmp;
        lie(liar);
        return liar.File();
    };
    const struct
    {
        std::vector<BYTE> m_file;
        std::string m_trace;
    } cases[] = {
        {{}, noHeader},
        {Cut(file, 13), noHeader},
        {with([](CBmpBytes &b) { b.m_file.bfType = 0x4D43; }), noBitmap},
        {Cut(file, 14), ""},
        {Cut(file, 53), ""},
        {Cut(file, 54 + 1023), ""},
        {Cut(file, nNeeded - 1), ""},
        {with([](CBmpBytes &b) { b.m_info.biSize = 12; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biSize = 124; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biWidth = -5; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biWidth = 0x7FFFFFFF; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biWidth = 0x40000000; }), ""},  // 2^33 bits a row
        {with([](CBmpBytes &b) { b.m_info.biHeight = LONG_MIN; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biHeight = 0x40000000; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biBitCount = 0xFFFF; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biClrUsed = 0xFFFFFFFF; }), ""},
        {with([](CBmpBytes &b) { b.m_info.biClrUsed = 0x40000001; }), ""},
        {with([](CBmpBytes &b) { b.m_file.bfOffBits = 0xFFFFFFF0; }), ""},
        {with([](CBmpBytes &b) { b.m_file.bfOffBits += 9; }), ""},
    };
    CTraceListener trace;
    size_t nSeen = 0;
    for (const auto &c : cases) {
        Write(c.m_file);
        const CHeapWatch heap;
        EXPECT_FALSE(CUIBmpDIBFromFile(m_sFile)) << &c - cases;
        EXPECT_LE(CHeapWatch::TakeLargest(), 2 * file.size()) << &c - cases;
        EXPECT_EQ(c.m_trace, trace.Text().substr(nSeen)) << &c - cases;
        nSeen = trace.Text().size();
    }
    DeleteFileA(m_path.c_str());
    EXPECT_FALSE(CUIBmpDIBFromFile(m_sFile));
    EXPECT_EQ("CUIBmpDIBFromFile: error opening " + name + ".\n", trace.Text().substr(nSeen));
    EXPECT_TRUE(m_reports.Asserts().empty());
}

TEST_F(BmpFile, BecomesThePictureThatItShows)
{
    for (const int nBits : {1, 4, 8, 16, 24, 32}) {
        for (const int nHeight : {5, -5}) {
            for (int nWidth = 1; nWidth <= 33; nWidth += nWidth < 9 ? 1 : 6) {
                const CBmpBytes bmp(nWidth, nHeight, nBits);
                Write(bmp.File());
                EXPECT_EQ(bmp.Picture(), LoadPicture()) << nWidth << "x" << nHeight << "x" << nBits;
            }
        }
    }
    // Rows that are really aligned to words run into each other; all but the last bytes are there.
    const CBmpBytes words(2, 2, 24, 2);
    Write(words.File());
    const std::vector<DWORD> picture = LoadPicture();
    ASSERT_EQ(4u, picture.size());
    EXPECT_EQ(words.ColorAt(0, 1), picture[2]);
    EXPECT_EQ(words.ColorAt(1, 1), picture[3]);
    // Seven bits a row are no bytes: nothing is made up for as many rows as the header likes.
    CBmpBytes hollow(7, 3, 1);
    hollow.m_info.biHeight = 1000000;
    Write(hollow.File());
    EXPECT_TRUE(LoadPicture().empty());
}

TEST_F(BmpFile, HasAPaletteOfAllItsColours)
{
    for (const DWORD nColors : {1, 16, 256, 300}) {
        CBmpBytes bmp(4, 4, nColors > 256 ? 24 : 8);
        bmp.m_table.clear();
        for (DWORD i = 0; i < nColors; ++i)
            bmp.m_table.push_back({static_cast<BYTE>(i), static_cast<BYTE>(i * 3), 200, 0});
        bmp.m_info.biClrUsed = nColors;
        bmp.m_file.bfOffBits = 54 + nColors * 4;
        Write(bmp.File());
        HPALETTE hPal = nullptr;
        const HBITMAP hBitmap = CUIBmpLoadBitmapFilePalette(m_sFile, hPal);
        EXPECT_TRUE(hBitmap);
        std::vector<PALETTEENTRY> entries(nColors + 1);
        ASSERT_EQ(nColors, GetPaletteEntries(hPal, 0, nColors + 1, entries.data()));
        for (DWORD i = 0; i < nColors; ++i) {
            EXPECT_EQ(bmp.m_table[i].rgbBlue, entries[i].peBlue);
            EXPECT_EQ(bmp.m_table[i].rgbGreen, entries[i].peGreen);
            EXPECT_EQ(200, entries[i].peRed);
        }
        DeleteObject(hBitmap);
        DeleteObject(hPal);
    }
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_FALSE(CUIBmpLoadBitmapFilePalette("no such file", hPal));
    EXPECT_FALSE(hPal);
}

namespace {

class CRandom
{
public:
    size_t Next(size_t nBelow)
    {
        m_n = m_n * 1664525 + 1013904223;
        return static_cast<size_t>((static_cast<ULONGLONG>(m_n) * nBelow) >> 32);
    }

private:
    DWORD m_n = 1;
};

std::vector<BYTE> Compressed(int nBits, DWORD nCompression, const std::vector<BYTE> &front,
                             size_t nTotal)
{
    CBmpBytes bmp(8, 2, nBits);
    bmp.m_info.biCompression = nCompression;
    if (nCompression == BI_BITFIELDS) {
        bmp.m_file.bfOffBits += 12;
        bmp.m_pixels.insert(bmp.m_pixels.begin(), front.begin(), front.end());
    } else {
        bmp.m_pixels = front;
        bmp.m_pixels.resize(nTotal, 1);
        bmp.m_info.biSizeImage = static_cast<DWORD>(front.size());
    }
    return bmp.File();
}

std::vector<std::vector<BYTE>> Seeds()
{
    std::vector<std::vector<BYTE>> seeds;
    for (const int nBits : {1, 4, 8, 16, 24, 32})
        seeds.push_back(CBmpBytes(13, nBits == 16 ? -5 : 5, nBits).File());
    seeds.push_back(CBmpBytes(6, 4, 24, 2).File());
    seeds.push_back(CBmpBytes(7, 7, 1).File());
    const std::vector<BYTE> rle8 = {8, 3, 0, 0, 2, 7, 0, 2, 1, 0, 0, 5, 1, 2, 3, 4, 5, 0, 0, 1};
    const std::vector<BYTE> rle4 = {8, 0x35, 0, 0, 2, 7, 0, 2, 1, 0, 0, 5, 1, 2, 3, 4, 0, 1};
    seeds.push_back(Compressed(8, BI_RLE8, rle8, rle8.size()));
    seeds.push_back(Compressed(8, BI_RLE8, rle8, 64));
    seeds.push_back(Compressed(4, BI_RLE4, rle4, 64));
    seeds.push_back(Compressed(16, BI_BITFIELDS, {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 31, 0, 0, 0}, 0));
    seeds.push_back(Compressed(32, BI_BITFIELDS, {0, 255, 0, 0, 0, 0, 255, 0, 0, 0, 0, 255}, 0));
    for (const DWORD nHeader : {108, 124}) {
        CBmpBytes bmp(5, 5, 8);
        bmp.m_info.biSize = nHeader;
        bmp.m_pixels.insert(bmp.m_pixels.begin(), nHeader - 40, 0);
        bmp.m_file.bfOffBits += nHeader - 40;
        seeds.push_back(bmp.File());
    }
    std::vector<BYTE> old = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0,   0, 12,
                             0,   0,   0, 9, 0, 3, 0, 1, 0, 1, 0,  9, 200, 7};
    old.resize(44, 0x5A);
    seeds.push_back(old);
    return seeds;
}

// Lies in one to three places: header fields get values that matter, bits flip, the end goes.
void Mutate(std::vector<BYTE> &bytes, CRandom &random)
{
    static const DWORD values[] = {
        0,   1,   2,      3,          4,          7,      8,       16,      24,       32,
        40,  54,  255,    256,        257,        0xFFFF, 0x10000, 0x10001, 12,       108,
        124, 100, 100000, 0x7FFFFFFF, 0x80000000, ~0U,    ~1U,     0x4000,  1U << 30, 1U << 29};
    static const size_t fields[] = {0, 10, 14, 18, 22, 26, 28, 30, 34, 46, 50};
    for (size_t n = random.Next(3) + 1; n; --n) {
        const size_t nKind = random.Next(8);
        const size_t nAt = fields[random.Next(std::size(fields))];
        const size_t nField = nAt == 0 || nAt == 26 || nAt == 28 ? 2 : 4;
        if (nKind < 5 && nAt + nField <= bytes.size())
            memcpy(bytes.data() + nAt, &values[random.Next(std::size(values))], nField);
        else if (nKind == 5 && !bytes.empty())
            bytes.resize(random.Next(bytes.size()));
        else if (!bytes.empty())
            bytes[random.Next(bytes.size())] ^= static_cast<BYTE>(1 << random.Next(8));
    }
}

void LoadFile(const char *pszFile)
{
    HPALETTE hPal = nullptr;
    DeleteObject(CUIBmpLoadBitmapFilePalette(pszFile, hPal));
    DeleteObject(hPal);
    DeleteObject(CUIBmpLoadBitmapFile(pszFile, TRUE));
}

// LoadImage looks at real files only.
void LoadImageFile(const std::string &path, const std::vector<BYTE> &bytes)
{
    HPALETTE hPal = nullptr;
    ASSERT_TRUE(WriteBytes(path, bytes));
    DeleteObject(CUIBmpLoad(nullptr, path.c_str(), &hPal, true, nullptr, nullptr, 0));
    DeleteObject(hPal);
}

// What follows the file header, as a packed DIB that ends at a page that nobody may touch.
void LoadPacked(const std::vector<BYTE> &bytes)
{
    const size_t nHeader = sizeof(BITMAPFILEHEADER);
    if (bytes.size() < nHeader + sizeof(BITMAPINFOHEADER))
        return;
    const size_t nSize = (bytes.size() - nHeader) & ~static_cast<size_t>(3);
    CGuardedBuffer buffer(nSize);
    memcpy(buffer.Data(), bytes.data() + nHeader, nSize);
    BITMAPINFO *pInfo = reinterpret_cast<BITMAPINFO *>(buffer.Data());
    int nColors = 0;
    HPALETTE hPal = nullptr;
    DeleteObject(CUIBmpCreateDIBPalette(pInfo, &nColors));
    DeleteObject(CUIBmpCreateBitmap(&pInfo->bmiHeader, &hPal, true, nullptr, nullptr, 0));
    DeleteObject(hPal);
}

}  // namespace

TEST_F(BmpFile, OfAnyBytesIsReadWithinItsBounds)
{
    const std::vector<std::vector<BYTE>> seeds = Seeds();
    CRandom random;
    CMemoryFile file;
    file.m_bytes = seeds[0];
    LoadFile(file.Name());
    LoadImageFile(m_path, seeds[0]);
    const CCUString sFile = CMemoryFile::Name();
    const CHeapWatch heap;
    const int nGdi = GdiCount();
    int nRead = 0;
    const int nFiles = 2 * FuzzInputs();
    for (int i = 0; i < nFiles; ++i) {
        std::vector<BYTE> &bytes = file.m_bytes;
        bytes = seeds[random.Next(seeds.size())];
        Mutate(bytes, random);
        const int nLive = CHeapWatch::Live();
        CHeapWatch::TakeLargest();
        BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(sFile);
        nRead += pbih != nullptr;
        free(pbih);
        ASSERT_EQ(nLive, CHeapWatch::Live()) << i;
        // Twice the pixels at most, and what a trace line takes.
        ASSERT_LE(CHeapWatch::TakeLargest(), 2 * bytes.size() + 4096) << i;
        if (i % 16 == 0) {
            LoadFile(file.Name());
            LoadPacked(bytes);
        }
        if (i % 100 == 0)
            LoadImageFile(m_path, bytes);
    }
    EXPECT_GT(nRead, nFiles / 10);
    EXPECT_NEAR(nGdi, GdiCount(), 8);
}
