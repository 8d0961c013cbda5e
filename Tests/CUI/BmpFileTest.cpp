#include <gtest/gtest.h>

#include "CU/String.h"
#include "CUI/BmpLoad.h"
#include "Support/BmpBytes.h"
#include "Support/FakeResource.h"
#include "Support/Fuzz.h"
#include "Support/GdiCount.h"
#include "Support/GuardedBuffer.h"
#include "Support/HeapWatch.h"
#include "Support/MemoryFile.h"
#include "Support/Reports.h"

namespace {

std::vector<BYTE> Cut(std::vector<BYTE> bytes, size_t nSize)
{
    bytes.resize(nSize);
    return bytes;
}

}  // namespace

TEST(BmpFile, ThatIsNoneOrClaimsTooMuchIsRefused)
{
    CReports reports;
    const CDumped trace;
    const std::string path = reports.Directory().Path() + "\\lie.bmp";
    const CBmpBytes bmp(5, 4, 8);
    const std::vector<BYTE> bytes = bmp.File();
    const size_t nNeeded = bytes.size() - 4 * 8 + 4 * 6;
    std::string traced;
    const auto expectNone = [&](const std::vector<BYTE> &wrong, const std::string &line = "") {
        traced += line;
        EXPECT_TRUE(WriteBytes(path, wrong));
        const CHeapWatch heap;
        EXPECT_FALSE(CUIBmpDIBFromFile(path.c_str()));
        EXPECT_LE(CHeapWatch::TakeLargest(), 4096 + 2 * bytes.size());
        EXPECT_EQ(traced, trace.m_text);
    };
    expectNone(Cut(bytes, 13), "CUIBmpDIBFromFile: error reading header for " + path + ".\n");
    for (const size_t nSize : {size_t(14), size_t(53), size_t(54 + 1023), nNeeded - 1})
        expectNone(Cut(bytes, nSize));
    // Where 32 bits are changed, and to what: pixel offset, header size, width, height, depth,
    // number of colours.
    const std::pair<size_t, DWORD> lies[] = {{10, 0xFFFFFFF0}, {10, bmp.m_file.bfOffBits + 9},
                                             {14, 124},        {18, ~4U},
                                             {18, 0x7FFFFFFF}, {22, 1U << 31},
                                             {22, 1U << 30},   {46, (1U << 30) + 1}};
    std::vector<BYTE> wrong;
    for (const auto &lie : lies) {
        SCOPED_TRACE(&lie - lies);
        wrong = bytes;
        memcpy(&wrong[lie.first], &lie.second, 4);
        expectNone(wrong);
    }
    wrong[0] = 'C';
    expectNone(wrong, "CUIBmpDIBFromFile: " + path + " is not a bitmap.\n");
    HPALETTE hPal = reinterpret_cast<HPALETTE>(1);
    EXPECT_FALSE(CUIBmpLoadBitmapFilePalette("no such", hPal) || hPal);
    EXPECT_EQ(traced + "CUIBmpDIBFromFile: error opening no such.\n", trace.m_text);
    EXPECT_EQ(0, reports.Total());
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
    static const DWORD values[] = {0,      1,       7,        12,       24,       32,       40,
                                   54,     124,     255,      256,      257,      1000,     0xFFFF,
                                   100000, 0x10001, 1U << 29, 1U << 30, 1U << 31, ~0U >> 1, ~0U};
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
    const CFakeResource resource(std::vector<BYTE>(buffer.Data(), buffer.Data() + nSize));
    DeleteObject(CUIBmpLoadBitmapPalette(nullptr, "", hPal));
    DeleteObject(hPal);
    DeleteObject(CUIBmpLoadBitmap(nullptr, ""));
}

}  // namespace

TEST(BmpFile, OfAnyBytesIsReadWithinItsBounds)
{
    CReports reports;
    CDumped trace;
    const std::string path = reports.Directory().Path() + "\\fuzz.bmp";
    const CHeapWatch heap;
    int nRead = 0;
    int nGdi = 0;
    const int nFiles = FuzzInputs(20000);
    for (int i = 0; i < nFiles; ++i) {
        const std::vector<BYTE> bytes = Mutant();
        const int nLive = CHeapWatch::Live();
        CHeapWatch::TakeLargest();
        {
            const CMemoryFile file(bytes);
            BITMAPINFOHEADER *pbih = CUIBmpDIBFromFile("");
            nRead += pbih != nullptr;
            free(pbih);
        }
        ASSERT_TRUE(nLive == CHeapWatch::Live() || i < 1000) << i;
        // Twice the pixels at most, and what a trace line takes.
        ASSERT_LE(CHeapWatch::TakeLargest(), 2 * bytes.size() + 4096) << i;
        if (i % 16 == 0)
            LoadPacked(bytes);
        if (i % 100 == 0) {  // LoadImage looks at real files only
            ASSERT_TRUE(WriteBytes(path, bytes));
            HPALETTE hPal = nullptr;
            DeleteObject(CUIBmpLoadBitmapFilePalette(path.c_str(), hPal));
            DeleteObject(hPal);
            DeleteObject(CUIBmpLoadBitmapFile(path.c_str(), TRUE));
            DeleteObject(CUIBmpLoad(nullptr, path.c_str(), nullptr, true, nullptr, nullptr, 0));
            trace.m_text.clear();
        }
        if (i == 1000)
            nGdi = GdiCount();
    }
    EXPECT_GT(nRead, nFiles / 10);
    EXPECT_NEAR(nGdi, GdiCount(), 2);
}
