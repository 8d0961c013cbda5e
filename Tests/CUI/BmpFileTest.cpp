#include <gtest/gtest.h>

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

// A file with the bytes that a test likes, and everything that reads it.
class BmpFile : public testing::Test
{
protected:
    BITMAPINFOHEADER *Dib(const std::vector<BYTE> &bytes)
    {
        EXPECT_TRUE(WriteBytes(m_path, bytes));
        return CUIBmpDIBFromFile(m_path.c_str());
    }
    CPixelMap Picture(const std::vector<BYTE> &bytes)
    {
        EXPECT_TRUE(WriteBytes(m_path, bytes));
        HPALETTE hPal = nullptr;
        CPixelMap picture = TakePixels(CUIBmpLoadBitmapFilePalette(m_path.c_str(), hPal));
        m_colors = TakeEntries(hPal);
        return picture;
    }
    CPixelMap Load() const
    {
        return TakePixels(CUIBmpLoad(nullptr, m_path.c_str(), nullptr, true, nullptr, nullptr, 0));
    }

    CReports m_reports;
    CDumped m_trace;
    const std::string m_path = m_reports.Directory().Path() + "\\test.bmp";
    std::vector<COLORREF> m_colors;  // of the last picture's palette
    const CPixelMap m_none;
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
    } cases[] = {{32, 3, 1, 12}, {7, 3, 1, 0},    {1, 2, 4, 0},       {5, 3, 4, 6},   {3, 4, 8, 16},
                 {2, 3, 24, 18}, {3, -3, 24, 30}, {3, 3, 16, 18},     {3, 3, 32, 36}, {0, 5, 8, 0},
                 {9, 0, 24, 0},  {1, -1, 24, 4},  {1 << 26, 0, 24, 0}};
    for (const auto &c : cases) {
        for (const int nRowAlign : {4, 2}) {
            const CBmpBytes bmp(c.m_nWidth, c.m_nHeight, c.m_nBits, nRowAlign);
            BITMAPINFOHEADER *pbih = Dib(bmp.File());
            ASSERT_TRUE(pbih) << &c - cases;
            const std::vector<BYTE> packed = bmp.Packed(bmp.m_table.size());
            const size_t nSize = packed.size() - bmp.m_pixels.size() + c.m_nImage;
            EXPECT_EQ(0, memcmp(pbih, packed.data(), nSize)) << &c - cases;
            free(pbih);
        }
    }
}

TEST_F(BmpFile, ThatIsNoneOrClaimsTooMuchIsRefused)
{
    const CBmpBytes bmp(5, 4, 8);
    const std::vector<BYTE> bytes = bmp.File();
    const size_t nNeeded = bytes.size() - 4 * 8 + 4 * 6;
    EXPECT_FALSE(Picture(Cut(bytes, nNeeded)) == m_none);
    std::string traced;
    const auto expectNone = [&](const std::vector<BYTE> &wrong, const std::string &line = "") {
        traced += line;
        const CHeapWatch heap;
        EXPECT_FALSE(Dib(wrong));
        EXPECT_LE(CHeapWatch::TakeLargest(), 4096 + 2 * bytes.size());
        EXPECT_EQ(traced, m_trace.m_text);
    };
    expectNone(Cut(bytes, 13), "CUIBmpDIBFromFile: error reading header for " + m_path + ".\n");
    for (const size_t nSize : {size_t(14), size_t(53), size_t(54 + 1023), nNeeded - 1})
        expectNone(Cut(bytes, nSize));
    // Where 32 bits are changed, and to what: pixel offset, header size, width, height, depth,
    // number of colours.
    const std::pair<size_t, DWORD> lies[] = {{10, 0xFFFFFFF0}, {10, bmp.m_file.bfOffBits + 9},
                                             {14, 12},         {14, 124},
                                             {18, ~4U},        {18, 0x7FFFFFFF},
                                             {18, 1U << 30},   {22, 1U << 31},
                                             {22, 1U << 30},   {26, 0xFFFF0001},
                                             {46, ~0U},        {46, (1U << 30) + 1}};
    std::vector<BYTE> wrong;
    for (const auto &lie : lies) {
        SCOPED_TRACE(&lie - lies);
        wrong = bytes;
        memcpy(&wrong[lie.first], &lie.second, 4);
        expectNone(wrong);
    }
    wrong[0] = 'C';
    expectNone(wrong, "CUIBmpDIBFromFile: " + m_path + " is not a bitmap.\n");
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_FALSE(CUIBmpLoadBitmapFilePalette("no such", hPal) || hPal);
    EXPECT_EQ(traced + "CUIBmpDIBFromFile: error opening no such.\n", m_trace.m_text);
    EXPECT_EQ(0, m_reports.Total());
}

TEST_F(BmpFile, BecomesThePictureThatItShows)
{
    const struct
    {
        int m_nWidth, m_nHeight, m_nBits;
        DWORD m_nHeader, m_nCompression;
    } cases[] = {{33, 5, 1, 40, BI_RGB},       {7, -5, 1, 40, BI_RGB},       {1, 5, 4, 40, BI_RGB},
                 {9, -5, 4, 40, BI_RGB},       {6, 5, 8, 40, BI_RGB},        {3, 5, 24, 40, BI_RGB},
                 {6, -5, 24, 40, BI_RGB},      {7, 5, 32, 40, BI_RGB},       {7, 1, 8, 124, BI_RGB},
                 {1, 1, 32, 40, BI_BITFIELDS}, {1, 1, 32, 108, BI_BITFIELDS}};
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        CBmpBytes bmp(c.m_nWidth, c.m_nHeight, c.m_nBits);
        bmp.SetHeader(c.m_nHeader, c.m_nCompression);
        const CPixelMap expected = OnScreen(bmp.Picture());
        const bool bPlain = c.m_nHeader == 40 && c.m_nCompression == BI_RGB;
        EXPECT_EQ(bPlain ? expected : m_none, Picture(bmp.File()));
        if (c.m_nHeight > 0) {  // what LoadImage makes of others differs between systems
            EXPECT_EQ(expected, Load());
        }
        // 2^24 colours do not precede the pixels.
        EXPECT_EQ(bPlain && c.m_nBits <= 8 ? expected : m_none,
                  TakePixels(CUIBmpLoadBitmapFile(m_path.c_str(), FALSE)));
    }
    EXPECT_EQ("", m_trace.m_text);
    // A byte short, LoadImage would read beyond the end.
    EXPECT_EQ(m_none, Picture(Cut(CBmpBytes(7, 5, 32).File(), 54 + 7 * 5 * 4 - 1)));
    EXPECT_EQ(m_none, Load());
    EXPECT_EQ("Error loading bitmap " + m_path + ".\n", m_trace.m_text);
}

TEST_F(BmpFile, OfRowsOfWordsShowsWhatThereIsAndHasAPaletteOfAllItsColours)
{
    const CHeapWatch heap;
    // The rows run into each other; all but the last bytes are there.
    const CBmpBytes words(2, 2, 24, 2);
    CPixelMap expected = words.Picture();
    // Its red as blue, then nothing.
    expected.Set(1, 0, RGB(0, 0, GetRValue(expected.At(1, 0))));
    expected = OnScreen(expected);
    const CPixelMap picture = Picture(words.File());
    ASSERT_EQ(2, picture.cy);
    EXPECT_EQ(expected.At(1, 1), picture.At(1, 1));
    EXPECT_EQ(expected.At(1, 0), picture.At(1, 0));
    // Seven bits a row are no bytes: nothing is made up for as many rows as the header likes.
    CBmpBytes hollow(7, 3, 1);
    hollow.m_info.biHeight = 1000000;
    EXPECT_EQ(m_none, Picture(hollow.File()));

    for (const DWORD nColors : {1UL, 256UL, 300UL}) {
        CBmpBytes bmp(4, 4, nColors > 256 ? 24 : 8);
        bmp.m_table.resize(nColors, {1, 2, 3, 0});
        bmp.m_info.biClrUsed = nColors;
        bmp.m_file.bfOffBits = 54 + nColors * 4;
        Picture(bmp.File());
        ASSERT_EQ(nColors, m_colors.size());
        EXPECT_EQ(bmp.TableColor(nColors - 1), m_colors.back());
    }
}

namespace {

size_t Random(size_t nBelow)
{
    static DWORD s_n = 1;
    s_n = s_n * 1664525 + 1013904223;
    return static_cast<size_t>((static_cast<ULONGLONG>(s_n) * nBelow) >> 32);
}

// A file of some depth, header and compression that lies in one to three places: header fields get
// values that matter, bits flip, the end goes.
std::vector<BYTE> Mutant()
{
    static const DWORD values[] = {
        0,   1,   2,   3,   7,      8,      16,       24,       32,       40,
        54,  255, 256, 257, 1000,   12,     0xFFFF,   0x10000,  0x10001,  108,
        124, 100, ~0U, ~1U, 0x4000, 100000, 1U << 31, 1U << 30, 1U << 29, ~0U >> 1};
    static const size_t fields[] = {0, 10, 14, 18, 22, 26, 28, 30, 34, 46, 50};
    static const int depths[] = {1, 4, 8, 16, 24, 32};
    CBmpBytes bmp(13, Random(4) ? 5 : -5, depths[Random(6)], Random(4) ? 4 : 2);
    if (Random(3) == 0)
        bmp.SetHeader(Random(2) ? 40 : Random(2) ? 108 : 124, Random(4));  // up to BI_BITFIELDS
    std::vector<BYTE> bytes = bmp.File();
    for (size_t n = Random(3) + 1; n; --n) {
        const size_t nKind = Random(8);
        const size_t nAt = fields[Random(std::size(fields))];
        const size_t nField = nAt == 0 || nAt == 26 || nAt == 28 ? 2 : 4;
        if (nKind < 5 && nAt + nField <= bytes.size())
            memcpy(&bytes[nAt], &values[Random(std::size(values))], nField);
        else if (nKind == 5 && !bytes.empty())
            bytes.resize(Random(bytes.size()));
        else if (!bytes.empty())
            bytes[Random(bytes.size())] ^= static_cast<BYTE>(1 << Random(8));
    }
    return bytes;
}

// What follows the file header, as a packed DIB that ends at a page that nobody may touch.
void LoadPacked(const std::vector<BYTE> &bytes)
{
    if (bytes.size() < 54)
        return;
    const size_t nSize = (bytes.size() - 14) & ~static_cast<size_t>(3);
    CGuardedBuffer buffer(nSize);
    memcpy(buffer.Data(), bytes.data() + 14, nSize);
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
    CMemoryFile file;
    const CCUString sMemory = CMemoryFile::Name();
    const CHeapWatch heap;
    int nRead = 0;
    int nGdi = 0;
    const int nFiles = FuzzInputs(20000);
    for (int i = 0; i < nFiles; ++i) {
        file.m_bytes = Mutant();
        const int nLive = CHeapWatch::Live();
        CHeapWatch::TakeLargest();
        BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(sMemory);
        nRead += pbih != nullptr;
        free(pbih);
        ASSERT_TRUE(nLive == CHeapWatch::Live() || i < 1000) << i;
        // Twice the pixels at most, and what a trace line takes.
        ASSERT_LE(CHeapWatch::TakeLargest(), 2 * file.m_bytes.size() + 4096) << i;
        if (i % 16 == 0) {
            HPALETTE hPal = nullptr;
            DeleteObject(CUIBmpLoadBitmapFilePalette(sMemory, hPal));
            DeleteObject(hPal);
            DeleteObject(CUIBmpLoadBitmapFile(sMemory, TRUE));
            LoadPacked(file.m_bytes);
        }
        if (i % 100 == 0) {  // LoadImage looks at real files only
            ASSERT_TRUE(WriteBytes(m_path, file.m_bytes));
            Load();
            m_trace.m_text.clear();
        }
        if (i == 1000)
            nGdi = GdiCount();
    }
    EXPECT_GT(nRead, nFiles / 10);
    EXPECT_NEAR(nGdi, GdiCount(), 2);
}
