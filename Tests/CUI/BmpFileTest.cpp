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

const CCUString sMemory = CMemoryFile::Name();

CPixels LoadPicture(const CCUString &sFile)
{
    HPALETTE hPal = nullptr;
    CPixels picture = TakePixels(CUIBmpLoadBitmapFilePalette(sFile, hPal));
    DeleteObject(hPal);
    return picture;
}

std::vector<BYTE> Cut(std::vector<BYTE> bytes, size_t nSize)
{
    bytes.resize(nSize);
    return bytes;
}

}  // namespace

TEST(BmpFile, IsReadAsHeaderTableAndRowsOfWords)
{
    const struct
    {
        int m_nWidth, m_nHeight, m_nBits;
        size_t m_nImage;  // what the reader takes the pixels for
    } cases[] = {{32, 3, 1, 12}, {7, 3, 1, 0},    {1, 2, 4, 0},       {5, 3, 4, 6},   {3, 4, 8, 16},
                 {2, 3, 24, 18}, {3, -3, 24, 30}, {3, 3, 16, 18},     {3, 3, 32, 36}, {0, 5, 8, 0},
                 {9, 0, 24, 0},  {1, -1, 24, 4},  {1 << 26, 0, 24, 0}};
    CMemoryFile file;
    for (const auto &c : cases) {
        for (const int nRowAlign : {4, 2}) {
            const CBmpBytes bmp(c.m_nWidth, c.m_nHeight, c.m_nBits, nRowAlign);
            file.m_bytes = bmp.File();
            BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(sMemory);
            ASSERT_TRUE(pbih) << &c - cases;
            const std::vector<BYTE> packed = bmp.Packed(bmp.m_table.size());
            const size_t nSize = packed.size() - bmp.m_pixels.size() + c.m_nImage;
            EXPECT_EQ(0, memcmp(pbih, packed.data(), nSize)) << &c - cases;
            free(pbih);
        }
    }
}

TEST(BmpFile, ThatIsNoneOrClaimsTooMuchIsRefused)
{
    CReports reports;
    CDumped trace;
    CMemoryFile file;
    const CBmpBytes bmp(5, 4, 8);
    const std::vector<BYTE> bytes = bmp.File();
    const size_t nNeeded = bytes.size() - 4 * 8 + 4 * 6;
    file.m_bytes = Cut(bytes, nNeeded);
    EXPECT_FALSE(LoadPicture(sMemory).empty());
    const std::string name = CMemoryFile::Name();
    const std::string noHeader = "CUIBmpDIBFromFile: error reading header for " + name + ".\n";
    std::string traced;
    const auto expectNone = [&](const std::vector<BYTE> &wrong, const std::string &line) {
        file.m_bytes = wrong;
        traced += line;
        const CHeapWatch heap;
        EXPECT_FALSE(CUIBmpDIBFromFile(sMemory));
        EXPECT_LE(CHeapWatch::TakeLargest(), 2 * bytes.size());
        EXPECT_EQ(traced, trace.m_text);
    };
    expectNone({}, noHeader);
    expectNone(Cut(bytes, 13), noHeader);
    for (const size_t nSize : {size_t(14), size_t(53), size_t(54 + 1023), nNeeded - 1})
        expectNone(Cut(bytes, nSize), "");
    CBmpBytes liar = bmp;
    liar.m_file.bfType = 0x4D43;
    expectNone(liar.File(), "CUIBmpDIBFromFile: " + name + " is not a bitmap.\n");
    // Where 32 bits are changed, and to what: pixel offset, header size, width, height, depth,
    // number of colours.
    const std::pair<size_t, DWORD> lies[] = {{10, 0xFFFFFFF0}, {10, bmp.m_file.bfOffBits + 9},
                                             {14, 12},         {14, 124},
                                             {18, ~4U},        {18, 0x7FFFFFFF},
                                             {18, 1U << 30},   {22, 1U << 31},
                                             {22, 1U << 30},   {26, 0xFFFF0001},
                                             {46, ~0U},        {46, (1U << 30) + 1}};
    for (const auto &lie : lies) {
        SCOPED_TRACE(&lie - lies);
        std::vector<BYTE> wrong = bytes;
        memcpy(&wrong[lie.first], &lie.second, 4);
        expectNone(wrong, "");
    }
    EXPECT_FALSE(CUIBmpDIBFromFile("no such"));
    EXPECT_EQ(traced + "CUIBmpDIBFromFile: error opening no such.\n", trace.m_text);
    EXPECT_TRUE(reports.Asserts().empty());
}

TEST(BmpFile, BecomesThePictureThatItShows)
{
    CReports reports;
    CDumped trace;
    const std::string path = reports.Directory().Path() + "\\load.bmp";
    const auto load = [&] {
        return TakePixels(CUIBmpLoad(nullptr, path.c_str(), nullptr, false, nullptr, nullptr, 0));
    };
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
        ASSERT_TRUE(WriteBytes(path, bmp.File()));
        if (c.m_nHeight > 0) {  // what LoadImage makes of others differs between systems
            EXPECT_EQ(bmp.Picture(), load());
        }
        const bool bPlain = c.m_nHeader == 40 && c.m_nCompression == BI_RGB;
        EXPECT_EQ(bPlain ? bmp.Picture() : CPixels(), LoadPicture(path.c_str()));
        // 2^24 colours do not precede the pixels.
        EXPECT_EQ(bPlain && c.m_nBits <= 8 ? bmp.Picture() : CPixels(),
                  TakePixels(CUIBmpLoadBitmapFile(path.c_str(), FALSE)));
    }
    EXPECT_EQ("", trace.m_text);
    // A byte short, LoadImage would read beyond the end.
    ASSERT_TRUE(WriteBytes(path, Cut(CBmpBytes(7, 5, 32).File(), 54 + 7 * 5 * 4 - 1)));
    EXPECT_EQ(CPixels(), load());
    EXPECT_EQ("Error loading bitmap " + path + ".\n", trace.m_text);
}

TEST(BmpFile, OfRowsOfWordsShowsWhatThereIs)
{
    CMemoryFile file;
    const CHeapWatch heap;
    // The rows run into each other; all but the last bytes are there.
    const CBmpBytes words(2, 2, 24, 2);
    file.m_bytes = words.File();
    const CPixels picture = LoadPicture(sMemory);
    ASSERT_EQ(4u, picture.size());
    EXPECT_EQ(words.ColorAt(1, 1), picture[3]);
    EXPECT_EQ(words.ColorAt(1, 0) >> 16, picture[1]);  // its red as blue, then nothing
    // Seven bits a row are no bytes: nothing is made up for as many rows as the header likes.
    CBmpBytes hollow(7, 3, 1);
    hollow.m_info.biHeight = 1000000;
    file.m_bytes = hollow.File();
    EXPECT_TRUE(LoadPicture(sMemory).empty());
}

TEST(BmpFile, HasAPaletteOfAllItsColours)
{
    CMemoryFile file;
    HPALETTE hPal = nullptr;
    for (const DWORD nColors : {1UL, 256UL, 300UL}) {
        CBmpBytes bmp(4, 4, nColors > 256 ? 24 : 8);
        bmp.m_table.resize(nColors, {1, 2, 3, 0});
        bmp.m_info.biClrUsed = nColors;
        bmp.m_file.bfOffBits = 54 + nColors * 4;
        file.m_bytes = bmp.File();
        DeleteObject(CUIBmpLoadBitmapFilePalette(sMemory, hPal));
        const std::vector<COLORREF> entries = TakeEntries(hPal);
        ASSERT_EQ(nColors, entries.size());
        EXPECT_EQ(bmp.TableRef(nColors - 1), entries.back());
    }
    EXPECT_FALSE(CUIBmpLoadBitmapFilePalette("no such", hPal));
    EXPECT_FALSE(hPal);
}

namespace {

size_t Random(size_t nBelow)
{
    static DWORD s_n = 1;
    s_n = s_n * 1664525 + 1013904223;
    return static_cast<size_t>((static_cast<ULONGLONG>(s_n) * nBelow) >> 32);
}

std::vector<std::vector<BYTE>> Seeds()
{
    std::vector<std::vector<BYTE>> seeds;
    for (const int nBits : {1, 4, 8, 16, 24, 32})
        seeds.push_back(CBmpBytes(13, nBits == 16 ? -5 : 5, nBits).File());
    seeds.push_back(CBmpBytes(6, 4, 24, 2).File());
    const struct
    {
        int m_nBits;
        DWORD m_nHeader, m_nCompression;
        std::vector<BYTE> m_runs;  // in front of the pixels
    } others[] = {{8, 108, BI_RGB, {}},
                  {8, 124, BI_RGB, {}},
                  {16, 40, BI_BITFIELDS, {}},
                  {32, 124, BI_BITFIELDS, {}},
                  {8, 40, BI_RLE8, {8, 3, 0, 0, 2, 7, 0, 2, 1, 0, 0, 5, 1, 2, 3, 4, 5, 0, 0, 1}},
                  {4, 40, BI_RLE4, {8, 0x35, 0, 0, 2, 7, 0, 2, 1, 0, 0, 5, 1, 2, 3, 4, 0, 1}}};
    for (const auto &other : others) {
        CBmpBytes bmp(8, 2, other.m_nBits);
        bmp.SetHeader(other.m_nHeader, other.m_nCompression);
        bmp.m_info.biSizeImage = static_cast<DWORD>(other.m_runs.size());
        bmp.m_pixels.insert(bmp.m_pixels.begin(), other.m_runs.begin(), other.m_runs.end());
        seeds.push_back(bmp.File());
    }
    std::vector<BYTE> old = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 32, 0, 0, 0,
                             12,  0,   0, 0, 9, 0, 3, 0, 1, 0, 1,  0, 9, 200};
    seeds.push_back(Cut(old, 44));
    return seeds;
}

// Lies in one to three places: header fields get values that matter, bits flip, the end goes.
void Mutate(std::vector<BYTE> &bytes)
{
    static const DWORD values[] = {
        0,   1,   2,   3,   7,      8,      16,       24,       32,       40,
        54,  255, 256, 257, 1000,   12,     0xFFFF,   0x10000,  0x10001,  108,
        124, 100, ~0U, ~1U, 0x4000, 100000, 1U << 31, 1U << 30, 1U << 29, ~0U >> 1};
    static const size_t fields[] = {0, 10, 14, 18, 22, 26, 28, 30, 34, 46, 50};
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

TEST(BmpFile, OfAnyBytesIsReadWithinItsBounds)
{
    CReports reports;
    const std::string path = reports.Directory().Path() + "\\fuzz.bmp";
    const std::vector<std::vector<BYTE>> seeds = Seeds();
    CMemoryFile file;
    const CHeapWatch heap;
    int nRead = 0;
    int nGdi = 0;
    const int nFiles = FuzzInputs(20000);
    for (int i = 0; i < nFiles; ++i) {
        std::vector<BYTE> &bytes = file.m_bytes;
        bytes = seeds[Random(seeds.size())];
        Mutate(bytes);
        const int nLive = CHeapWatch::Live();
        CHeapWatch::TakeLargest();
        BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile(sMemory);
        nRead += pbih != nullptr;
        free(pbih);
        ASSERT_TRUE(nLive == CHeapWatch::Live() || i < 1000) << i;
        // Twice the pixels at most, and what a trace line takes.
        ASSERT_LE(CHeapWatch::TakeLargest(), 2 * bytes.size() + 4096) << i;
        if (i % 16 == 0) {
            LoadPicture(sMemory);
            DeleteObject(CUIBmpLoadBitmapFile(sMemory, TRUE));
            LoadPacked(bytes);
        }
        if (i % 100 == 0) {  // LoadImage looks at real files only
            ASSERT_TRUE(WriteBytes(path, bytes));
            DeleteObject(CUIBmpLoad(nullptr, path.c_str(), nullptr, true, nullptr, nullptr, 0));
        }
        if (i == 1000)
            nGdi = GdiCount();
    }
    EXPECT_GT(nRead, nFiles / 10);
    EXPECT_NEAR(nGdi, GdiCount(), 2);
}
