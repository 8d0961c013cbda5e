#include "CUI/Bitmap.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "CUI/BmpLoad.h"
#include "CUI/Data.h"
#include "Support/BmpBytes.h"
#include "Support/Reports.h"
#include "Support/SysColors.h"
#include "Support/Threads.h"

namespace {

const HINSTANCE hModule = GetModuleHandleA(nullptr);

HBITMAP NewBitmap()
{
    return CreateBitmap(3, 2, 1, 1, nullptr);
}

HPALETTE NewPalette()
{
    return CUICopyPalette(static_cast<HPALETTE>(GetStockObject(DEFAULT_PALETTE)));
}

bool Lives(HGDIOBJ hObject)
{
    return GetObjectType(hObject) != 0;
}

bool IsEmpty(const CCUIBitmap &bitmap)
{
    return bitmap.IsNull() && bitmap.Width() == 0 && bitmap.Height() == 0 && bitmap.Depth() == 0 &&
           !static_cast<HBITMAP>(bitmap) && !static_cast<HPALETTE>(bitmap);
}

// Does something at each trace, counted.
class COnTrace : public CCUDumpCallback
{
public:
    explicit COnTrace(std::function<void()> action) : m_action(std::move(action))
    {
        CUDumpRegister(this);
    }
    ~COnTrace() { CUDumpUnRegister(this); }
    void OnDump(const CCUString &) override
    {
        ++m_nTraces;
        m_action();
    }
    const std::function<void()> m_action;
    int m_nTraces = 0;
};

}  // namespace

TEST(Bitmap, LivesAsLongAsItsLastCopy)
{
    const HBITMAP hBitmap = NewBitmap();
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
        first = NewBitmap();
        EXPECT_EQ(nullptr, static_cast<HPALETTE>(first));
        EXPECT_EQ(nullptr, first.GetData()->m_pSource);
    }
    EXPECT_EQ(1, last.GetData()->m_nRefs);
    EXPECT_EQ(hPalette, static_cast<HPALETTE>(last));
    last = hBitmap;  // its own: taken over long ago
    EXPECT_TRUE(last.Width() == 3 && last.Height() == 2 && last.Depth() == 1);
    EXPECT_TRUE(Lives(hBitmap) && Lives(hPalette));
    last = static_cast<HBITMAP>(nullptr);
    EXPECT_FALSE(Lives(hBitmap) || Lives(hPalette));

    // The record of all that are empty is never counted.
    CCUIBitmap copy(last);
    copy.ReLoad(nullptr, nullptr, 0);
    CCUIBitmap assigned(NewBitmap(), nullptr);
    assigned = copy;
    copy.Empty();
    const CCUIBitmap adopted(static_cast<HBITMAP>(nullptr), nullptr);
    for (const CCUIBitmap *p : {&last, &copy, &assigned, const_cast<CCUIBitmap *>(&adopted)}) {
        EXPECT_TRUE(IsEmpty(*p));
        EXPECT_EQ(CCUIBitmap().GetData(), p->GetData());
        EXPECT_EQ(-1, p->GetData()->m_nRefs);
    }
    BITMAPINFO info = {{sizeof info.bmiHeader, 7, 5, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
    last = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, nullptr, nullptr, 0);
    EXPECT_TRUE(last.Width() == 7 && last.Height() == 5 && last.Depth() == 24);
}

TEST(Bitmap, MayBeCopiedOnManyThreads)
{
    static CCUIBitmap s_bitmap;
    s_bitmap = NewBitmap();
    CThreads::Run(4, [](int) {
        for (int i = 0; i < 200000; ++i) {
            const CCUIBitmap copy(s_bitmap);
            CCUIBitmap assigned;
            assigned = copy;
        }
    });
    EXPECT_EQ(1, s_bitmap.GetData()->m_nRefs);
}

TEST(Bitmap, IsLoadedByIdNameAndDecimalTextAndReportsWhatItIsNot)
{
    CReports reports;
    const CPixelMap colors = TakePixels(LoadBitmapA(hModule, MAKEINTRESOURCEA(200)));
    const CPixelMap named = TakePixels(LoadBitmapA(hModule, "NAMED")), none;
    ASSERT_TRUE(colors.cx == 8 && named.cx == 8);
    const std::string path = reports.Directory().Path() + "\\load.bmp";
    const CBmpBytes bmp(5, 4, 8);
    ASSERT_TRUE(WriteBytes(path, bmp.File()));
    const CPixelMap ofFile = OnScreen(bmp.Picture());
    const struct
    {
        std::string m_text;
        WORD m_wFlags;
        const CPixelMap &m_pixels;
        UINT m_nPalette;
    } names[] = {{"NAMED", CUIBMP_RESOURCE | CUIBMP_PALETTE, named, 2},
                 {"200", CUIBMP_RESOURCE, colors, 0},
                 {"65736", CUIBMP_RESOURCE, colors, 0},  // the low 16 bits
                 {"200x", CUIBMP_RESOURCE, none, 0},
                 {"201", CUIBMP_RESOURCE | CUIBMP_PALETTE, none, 0},  // broken
                 {"200", CUIBMP_PALETTE, none, 0},                    // nothing says what it names
                 {path, CUIBMP_FILE | CUIBMP_PALETTE, ofFile, 256}};
    CCUIBitmap bitmap;
    for (const auto &name : names) {
        bitmap.Load(CCUString(name.m_text.c_str()), name.m_wFlags, hModule);
        EXPECT_EQ(name.m_pixels, PixelsOf(bitmap)) << name.m_text;
        EXPECT_EQ(name.m_pixels == none, IsEmpty(bitmap)) << name.m_text;
        EXPECT_EQ(name.m_nPalette, GetPaletteEntries(bitmap, 0, 0, nullptr)) << name.m_text;
        EXPECT_EQ(name.m_wFlags, bitmap.GetData()->m_pSource->m_wFlags);
    }
    bitmap.Load(bitmap.GetData()->m_pSource->m_sBitmap, CUIBMP_FILE, nullptr);
    EXPECT_EQ(ofFile, PixelsOf(bitmap));
    EXPECT_EQ(named, PixelsOf(CCUIBitmap("NAMED", 0, hModule)));
    EXPECT_EQ(colors, PixelsOf(CCUIBitmap("#200", CUIBMP_FILE, hModule)));
    bitmap.Load("200", 0, hModule);  // a name in the caller's memory is no number
    EXPECT_TRUE(IsEmpty(bitmap));
    // Two tries, whatever the trace does to the bitmap meanwhile.
    {
        CCUIBitmap emptied;
        const auto empty = [&] {
            EXPECT_NE(1, emptied.GetData()->m_nRefs);  // held, or empty already
            emptied.Empty();
        };
        const COnTrace trace(empty);
        emptied.Load("no such", 0, nullptr);
        EXPECT_EQ(2, trace.m_nTraces);
    }
    {
        auto *deleted = new CCUIBitmap(CCUString("no such"), CUIBMP_FILE, nullptr);
        const CCUIBitmap copy(*deleted);
        const COnTrace trace([&] { delete std::exchange(deleted, nullptr); });
        deleted->ReLoad(nullptr, nullptr, 0);
        EXPECT_EQ(2, trace.m_nTraces);
    }

    const CCUIBitmap byId(0x10000 + 200, 0, hModule);
    EXPECT_EQ(colors, PixelsOf(byId));
    EXPECT_EQ(GetDeviceCaps(CTestSurface(0, colors), BITSPIXEL), byId.Depth());
    EXPECT_EQ(CUIBMP_RESOURCE, byId.GetData()->m_pSource->m_wFlags);
    EXPECT_EQ(CUIGetWinData()->dwColorStamp, byId.GetData()->m_pSource->m_dwColorStamp);

    // Nobody holds the record; nothing to load from; no bitmap.
    LONG &nRefs = const_cast<CUIBitmapData *>(bitmap.GetData())->m_nRefs;
    EXPECT_EQ(
        "bitmapSrc.m_pchData == &nilData; m_pchData->m_nRefs > 0; m_sBitmap.GetLength() > 0; "
        "m_sBitmap.GetLength() > 0 || m_pszID != 0; "
        "m_nWidth > 0 && m_nHeight > 0 && m_nDepth > 0",
        reports.Of("Bitmap", [&] {
            nRefs = 0;
            EXPECT_TRUE(IsEmpty(CCUIBitmap(bitmap)));
            bitmap.Load(CCUString(), CUIBMP_FILE, nullptr);
            bitmap.Load(0u, 0, hModule);
            bitmap = reinterpret_cast<HBITMAP>(GetStockObject(WHITE_BRUSH));
        }));
    EXPECT_EQ(5, reports.Total());
}

TEST(Bitmap, TellsWhyItIsNull)
{
    CReports reports;
    const std::string path = reports.Directory().Path() + "\\cut.bmp", missing = path + "x";
    std::vector<BYTE> file = CBmpBytes(5, 4, 8).File();
    file.resize(file.size() - 12);
    ASSERT_TRUE(WriteBytes(path, file));
    const struct
    {
        const char *m_pszName;
        bool m_bCopied;
        WORD m_wFlags;
        HINSTANCE m_hInst;
        DWORD m_dwError;
    } cases[] = {{missing.c_str(), true, CUIBMP_FILE, hModule, ERROR_FILE_NOT_FOUND},
                 {missing.c_str(), true, CUIBMP_RESOURCE, nullptr, ERROR_FILE_NOT_FOUND},
                 {missing.c_str(), false, 0, nullptr, ERROR_FILE_NOT_FOUND},
                 {path.c_str(), true, CUIBMP_FILE, nullptr, ERROR_INVALID_DATA},
                 {path.c_str(), false, CUIBMP_FILE, hModule, ERROR_RESOURCE_NAME_NOT_FOUND},
                 {"none", true, CUIBMP_RESOURCE, hModule, ERROR_RESOURCE_NAME_NOT_FOUND},
                 {"201", true, CUIBMP_RESOURCE, hModule, ERROR_INVALID_DATA},
                 {"#201", false, 0, hModule, ERROR_INVALID_DATA},
                 {"200", true, 0, hModule, ERROR_INVALID_PARAMETER}};
    for (const auto &c : cases) {
        CCUIBitmap bitmap;
        SetLastError(0);
        if (c.m_bCopied)
            bitmap.Load(CCUString(c.m_pszName), c.m_wFlags, c.m_hInst);
        else
            bitmap.Load(c.m_pszName, c.m_wFlags, c.m_hInst);
        EXPECT_EQ(c.m_dwError, GetLastError()) << c.m_pszName;
        EXPECT_FALSE(bitmap) << c.m_pszName;
    }
    // The functions of one picture each.
    HPALETTE hPal;
    DWORD nErrors = 0;
    const auto fails = [&](HANDLE hNone) {
        nErrors += !hNone && GetLastError() == ERROR_INVALID_DATA;
    };
    const auto ask = [&](auto load) { SetLastError(0), fails(load()); };
    const char *const pszBroken = MAKEINTRESOURCEA(201);
    ask([&] { return CUIBmpLoadBitmapFile(path.c_str(), 0); });
    ask([&] { return CUIBmpLoadBitmapFilePalette(path.c_str(), hPal); });
    ask([&] { return CUIBmpLoadBitmapPalette(hModule, pszBroken, hPal); });
    ask([&] { return CUIBmpLoadBitmap(hModule, pszBroken); });
    EXPECT_EQ(4u, nErrors);
}

TEST(Bitmap, IsTakenForAnyObjectInConditionsAndByWideNames)
{
    const CCUIBitmap bitmap(MAKEINTRESOURCEW(200), 0, hModule), none;
    EXPECT_TRUE(bitmap ? !none : false);
    const HDC hDC = CreateCompatibleDC(nullptr);
    const HGDIOBJ hOld = SelectObject(hDC, bitmap);
    EXPECT_EQ(static_cast<HBITMAP>(bitmap), GetCurrentObject(hDC, OBJ_BITMAP));
    SelectObject(hDC, hOld);
    DeleteDC(hDC);
    EXPECT_EQ(1, CCUIBitmap(CCUString("NAMED"), CUIBMP_RESOURCE, hModule).Height());
    EXPECT_EQ(1, CCUIBitmap(L"NAMED", CUIBMP_RESOURCE, hModule).Height());
    for (const wchar_t *pszName : {L"NAMED", const_cast<const wchar_t *>(MAKEINTRESOURCEW(200))}) {
        CCUIBitmap owned;
        owned = CUIBmpLoad(hModule, pszName, nullptr, false, nullptr, nullptr, 0);
        EXPECT_EQ(8, owned.Width());
        owned = CUIBmpLoadBitmap(hModule, MAKEINTRESOURCEW(200));
        EXPECT_EQ(8, owned.Width());
    }
}

TEST(Bitmap, LoadedAgainTakesOtherColoursAndLeavesItsCopiesAlone)
{
    const CSysColors colors;
    CUIGetWinData()->UpdateSysColors();
    DWORD from[] = {RGB(0xFF, 0, 0)};
    DWORD to[] = {RGB(0, 0xFF, 0)};
    const WORD wFlags = CUIBMP_SYSCOLORS | CUIBMP_PALETTE;
    const CCUIBitmap sources[] = {CCUIBitmap(200, wFlags, hModule),
                                  CCUIBitmap(CCUString("200"), wFlags | CUIBMP_RESOURCE, hModule)};
    const CPixelMap plain = TakePixels(LoadBitmapA(hModule, MAKEINTRESOURCEA(200)));
    CPixelMap expected = plain;
    expected.Set(4, 1, to[0]);
    for (const CCUIBitmap &source : sources) {
        const CPixelMap before = PixelsOf(source);
        EXPECT_EQ(OnScreen(CPixelMap(1, 1, colors.m_new[2])).At(0, 0), before.At(2, 1));
        CCUIBitmap copy(source);
        copy.ReLoad(from, to, 1);
        EXPECT_EQ(1, copy.GetData()->m_nRefs);
        EXPECT_EQ(before, PixelsOf(source));
        EXPECT_EQ(expected, PixelsOf(copy));
        EXPECT_NE(static_cast<HPALETTE>(source), static_cast<HPALETTE>(copy));
        copy.ReLoad(nullptr, nullptr, 0);
        EXPECT_EQ(before, PixelsOf(copy));
    }
    CCUIBitmap unmapped(200, 0, hModule);
    unmapped.ReLoad(from, to, 1);
    EXPECT_EQ(plain, PixelsOf(unmapped));
}

TEST(Bitmap, WithoutASourceIsNotLoadedAgain)
{
    const CBmpBytes bmp(6, 3, 4);
    std::vector<BYTE> packed = bmp.Packed(256);
    BITMAPINFOHEADER *pbih = reinterpret_cast<BITMAPINFOHEADER *>(packed.data());
    CCUIBitmap ofDib(pbih, CUIBMP_PALETTE);
    EXPECT_EQ(OnScreen(bmp.Picture()), PixelsOf(ofDib));
    EXPECT_EQ(16u, GetPaletteEntries(ofDib, 0, 0, nullptr));
    EXPECT_EQ(0, ofDib.GetData()->m_pSource->m_wFlags);
    EXPECT_EQ(nullptr, static_cast<HPALETTE>(CCUIBitmap(pbih, 0)));
    ofDib.ReLoad(nullptr, nullptr, 0);
    EXPECT_TRUE(IsEmpty(ofDib));

    CCUIBitmap adopted(NewBitmap(), NewPalette());
    const CCUIBitmap shared(adopted);
    adopted.ReLoad(nullptr, nullptr, 0);
    EXPECT_TRUE(IsEmpty(adopted));
    EXPECT_TRUE(Lives(static_cast<HBITMAP>(shared)) && Lives(static_cast<HPALETTE>(shared)));

    const HBITMAP hBitmap = NewBitmap();
    CCUIBitmap bare(hBitmap, nullptr);
    bare.ReLoad(nullptr, nullptr, 0);
    EXPECT_EQ(hBitmap, static_cast<HBITMAP>(bare));
    EXPECT_EQ(3, bare.Width());
}
