#include <gtest/gtest.h>

#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/BmpLoad.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"
#include "Support/Threads.h"

namespace {

HINSTANCE Module()
{
    return GetModuleHandleA(nullptr);
}

HBITMAP NewBitmap(int cx, int cy)
{
    return CreateBitmap(cx, cy, 1, 1, nullptr);
}

HPALETTE NewPalette()
{
    return CUICopyPalette(static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)));
}

bool Lives(HGDIOBJ hObject)
{
    return GetObjectType(hObject) != 0;
}

void ExpectEmpty(const CCUIBitmap &bitmap)
{
    EXPECT_TRUE(bitmap.IsNull());
    EXPECT_EQ(0, bitmap.Width());
    EXPECT_EQ(0, bitmap.Height());
    EXPECT_EQ(0, bitmap.Depth());
    EXPECT_EQ(nullptr, static_cast<HBITMAP>(bitmap));
    EXPECT_EQ(nullptr, static_cast<HPALETTE>(bitmap));
}

}  // namespace

TEST(Bitmap, ThatIsEmptySharesARecordThatIsNeverCounted)
{
    CCUIBitmap empty;
    CCUIBitmap copy(empty);
    CCUIBitmap assigned(NewBitmap(3, 2), nullptr);
    assigned = copy;
    const CCUIBitmap adopted(static_cast<HBITMAP>(nullptr), nullptr);
    copy.ReLoad(nullptr, nullptr, 0);
    empty.Empty();
    const CCUIBitmap *const all[] = {&empty, &copy, &assigned, &adopted};
    for (const CCUIBitmap *p : all) {
        ExpectEmpty(*p);
        EXPECT_EQ(empty.GetData(), p->GetData());
        EXPECT_EQ(-1, p->GetData()->m_nRefs);
    }
}

TEST(Bitmap, LivesAsLongAsItsLastCopy)
{
    const HBITMAP hBitmap = NewBitmap(3, 2);
    const HPALETTE hPalette = NewPalette();
    CCUIBitmap last;
    {
        CCUIBitmap first(hBitmap, hPalette);
        CCUIBitmap copy(first);
        CCUIBitmap *pSame = &copy;
        copy = *pSame;
        copy = first;
        EXPECT_EQ(2, first.GetData()->m_nRefs);
        last = copy;
        EXPECT_EQ(3, first.GetData()->m_nRefs);
        first = NewBitmap(1, 1);
        EXPECT_EQ(nullptr, static_cast<HPALETTE>(first));
        EXPECT_EQ(nullptr, first.GetData()->m_pSource);
    }
    EXPECT_EQ(1, last.GetData()->m_nRefs);
    EXPECT_EQ(hPalette, static_cast<HPALETTE>(last));
    last = hBitmap;  // its own: taken over long ago
    EXPECT_EQ(3, last.Width());
    EXPECT_EQ(2, last.Height());
    EXPECT_EQ(1, last.Depth());
    EXPECT_TRUE(Lives(hBitmap) && Lives(hPalette));
    last = static_cast<HBITMAP>(nullptr);
    ExpectEmpty(last);
    EXPECT_FALSE(Lives(hBitmap) || Lives(hPalette));

    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, 7, 5, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    last = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
    EXPECT_EQ(7, last.Width());
    EXPECT_EQ(5, last.Height());
    EXPECT_EQ(24, last.Depth());
}

TEST(Bitmap, MayBeCopiedOnManyThreads)
{
    static CCUIBitmap s_bitmap;
    s_bitmap = NewBitmap(3, 2);
    CThreads::Run(4, [](int) {
        for (int i = 0; i < 200000; ++i) {
            const CCUIBitmap copy(s_bitmap);
            CCUIBitmap assigned;
            assigned = copy;
        }
    });
    EXPECT_EQ(1, s_bitmap.GetData()->m_nRefs);
}

TEST(Bitmap, IsLoadedByIdNameAndDecimalText)
{
    CReports reports;
    const std::vector<DWORD> colors = TakePixels(LoadBitmapA(Module(), MAKEINTRESOURCEA(200)));
    const std::vector<DWORD> named = TakePixels(LoadBitmapA(Module(), "NAMED"));
    ASSERT_EQ(16u, colors.size());
    ASSERT_EQ(8u, named.size());
    const HDC hScreen = GetDC(nullptr);
    const int nDepth = GetDeviceCaps(hScreen, BITSPIXEL);
    ReleaseDC(nullptr, hScreen);

    const CCUIBitmap byId(0x10000 + 200, 0, Module());
    EXPECT_EQ(colors, PixelsOf(byId));
    EXPECT_EQ(8, byId.Width());
    EXPECT_EQ(2, byId.Height());
    EXPECT_EQ(nDepth, byId.Depth());
    EXPECT_EQ(nullptr, static_cast<HPALETTE>(byId));
    EXPECT_EQ(CUIBMP_RESOURCE, byId.GetData()->m_pSource->m_wFlags);
    EXPECT_EQ(CUIGetWinData()->dwColorStamp, byId.GetData()->m_pSource->m_dwColorStamp);
    EXPECT_EQ(named, PixelsOf(CCUIBitmap("NAMED", 0, Module())));
    const CCUIBitmap withPalette(CCUString("NAMED"), CUIBMP_RESOURCE | CUIBMP_PALETTE, Module());
    EXPECT_EQ(named, PixelsOf(withPalette));
    EXPECT_EQ(2u, GetPaletteEntries(withPalette, 0, 0, nullptr));

    CCUIBitmap bitmap;
    for (const char *pszNumber : {"200", "65736"}) {
        bitmap.Load(CCUString(pszNumber), CUIBMP_RESOURCE, Module());
        EXPECT_EQ(colors, PixelsOf(bitmap)) << pszNumber;
    }
    bitmap.Load(bitmap.GetData()->m_pSource->m_sBitmap, CUIBMP_RESOURCE, Module());
    EXPECT_FALSE(bitmap.IsNull());
    for (const char *pszNone : {"200x", "x", "201"}) {
        bitmap.Load(CCUString(pszNone), CUIBMP_RESOURCE, Module());
        ExpectEmpty(bitmap);
        EXPECT_TRUE(bitmap.GetData()->m_pSource);
    }
    // Nothing says what the name is.
    bitmap.Load(CCUString("200"), CUIBMP_PALETTE, Module());
    ExpectEmpty(bitmap);
    bitmap.Load("200", 0, Module());  // a name in the caller's memory is no number
    ExpectEmpty(bitmap);

    const std::string path = reports.Directory().Path() + "\\load.bmp";
    const CBmpBytes bmp(5, 4, 8);
    ASSERT_TRUE(WriteBytes(path, bmp.File()));
    bitmap.Load(CCUString(path.c_str()), CUIBMP_FILE | CUIBMP_PALETTE, Module());
    EXPECT_EQ(bmp.Picture(), PixelsOf(bitmap));
    EXPECT_EQ(256u, GetPaletteEntries(bitmap, 0, 0, nullptr));
    EXPECT_TRUE(reports.Asserts().empty());
    bitmap.Load(CCUString(), CUIBMP_FILE, nullptr);
    bitmap.Load(0u, 0, Module());
    bitmap = reinterpret_cast<HBITMAP>(GetStockObject(WHITE_BRUSH));
    EXPECT_EQ((std::vector<std::string>{"Bitmap: m_sBitmap.GetLength() > 0",
                                        "Bitmap: m_sBitmap.GetLength() > 0 || m_pszID != 0",
                                        "Bitmap: m_nWidth > 0 && m_nHeight > 0 && m_nDepth > 0"}),
              reports.Asserts());
}

TEST(Bitmap, LoadedAgainTakesOtherColoursAndLeavesItsCopiesAlone)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    DWORD from[] = {RGB(0xFF, 0, 0)};
    DWORD to[] = {RGB(1, 2, 3)};
    const char *const pszName = "200";
    const CCUIBitmap sources[] = {
        CCUIBitmap(200, CUIBMP_SYSCOLORS | CUIBMP_PALETTE, Module()),
        CCUIBitmap(CCUString(pszName), CUIBMP_SYSCOLORS | CUIBMP_PALETTE | CUIBMP_RESOURCE,
                   Module())};
    const std::vector<DWORD> plain = TakePixels(LoadBitmapA(Module(), MAKEINTRESOURCEA(200)));
    for (const CCUIBitmap &source : sources) {
        const std::vector<DWORD> before = PixelsOf(source);
        EXPECT_EQ(colors.Buttons()[2], before[10]);
        CCUIBitmap copy(source);
        copy.ReLoad(from, to, 1);
        EXPECT_EQ(1, copy.GetData()->m_nRefs);
        EXPECT_EQ(before, PixelsOf(source));
        std::vector<DWORD> expected = plain;
        expected[12] = 0x010203;
        EXPECT_EQ(expected, PixelsOf(copy));
        EXPECT_NE(static_cast<HPALETTE>(source), static_cast<HPALETTE>(copy));
        copy.ReLoad(nullptr, nullptr, 0);
        EXPECT_EQ(before, PixelsOf(copy));
    }
    CCUIBitmap unmapped(200, 0, Module());
    unmapped.ReLoad(from, to, 1);
    EXPECT_EQ(plain, PixelsOf(unmapped));
}

TEST(Bitmap, WithoutASourceIsNotLoadedAgain)
{
    CBmpBytes bmp(6, 3, 4);
    std::vector<BYTE> packed = bmp.Packed(256);
    BITMAPINFOHEADER *pbih = reinterpret_cast<BITMAPINFOHEADER *>(packed.data());
    CCUIBitmap ofDib(pbih, CUIBMP_PALETTE);
    EXPECT_EQ(bmp.Picture(), PixelsOf(ofDib));
    EXPECT_EQ(16u, GetPaletteEntries(ofDib, 0, 0, nullptr));
    EXPECT_EQ(0, ofDib.GetData()->m_pSource->m_wFlags);
    const CCUIBitmap plain(pbih, 0);
    EXPECT_EQ(nullptr, static_cast<HPALETTE>(plain));
    ofDib.ReLoad(nullptr, nullptr, 0);
    ExpectEmpty(ofDib);

    CCUIBitmap adopted(NewBitmap(3, 2), NewPalette());
    const CCUIBitmap shared(adopted);
    adopted.ReLoad(nullptr, nullptr, 0);
    ExpectEmpty(adopted);
    EXPECT_TRUE(Lives(static_cast<HBITMAP>(shared)) && Lives(static_cast<HPALETTE>(shared)));

    const HBITMAP hBitmap = NewBitmap(3, 2);
    CCUIBitmap bare(hBitmap, nullptr);
    bare.ReLoad(nullptr, nullptr, 0);
    EXPECT_EQ(hBitmap, static_cast<HBITMAP>(bare));
    EXPECT_EQ(3, bare.Width());
}

TEST(Bitmap, LeaksNothingOverManyRounds)
{
    const auto round = [](const CCUIBitmap &kept) {
        CCUIBitmap bitmap(kept);
        CCUIBitmap copy(bitmap);
        copy.ReLoad(nullptr, nullptr, 0);
        copy = kept;
        bitmap = NewBitmap(2, 2);
        copy = CCUIBitmap(NewBitmap(1, 1), NewPalette());
        copy.ReLoad(nullptr, nullptr, 0);
        bitmap.Load("none", CUIBMP_PALETTE, Module());
        copy = CCUIBitmap();
    };
    const CCUIBitmap kept(200, CUIBMP_PALETTE, Module());
    round(kept);
    const CHeapWatch heap;
    const int nGdi = GdiCount();
    for (int i = 0; i < 20000; ++i)
        round(kept);
    EXPECT_NEAR(nGdi, GdiCount(), 2);
    EXPECT_EQ(0, CHeapWatch::Live());
    EXPECT_EQ(1, kept.GetData()->m_nRefs);
}
