#include "../../CUI/Src/GdiGuards.h"

#include <gtest/gtest.h>

#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"

namespace {

HWND s_hReleasedWnd;
HDC s_hReleasedDC;
int WINAPI RecordRelease(HWND hWnd, HDC hDC)
{
    s_hReleasedWnd = hWnd;
    s_hReleasedDC = hDC;
    return 1;
}
int s_nRealized;
UINT WINAPI CountRealize(HDC)
{
    return static_cast<UINT>(++s_nRealized);
}

// What a guard sets is there while it lives, and nothing of it afterwards.
template <typename Set, typename Check>
void ExpectGivenBack(HDC hDC, Set set, Check check)
{
    const CDCState before(hDC);
    {
        const auto guard = set();
        EXPECT_TRUE(check());
    }
    EXPECT_TRUE(before == CDCState(hDC));
}

}  // namespace

TEST(GdiGuards, GiveBackWhatADCHadBefore)
{
    CTestSurface s(32, CPixelMap(4, 4));
    LOGPALETTE logical = {0x300, 1, {{1, 2, 3, 0}}};
    const CCUIOwned<HPALETTE> palette(CreatePalette(&logical));
    const CImportHook realize("RealizePalette", CountRealize);
    const HGDIOBJ hBrush = GetStockObject(GRAY_BRUSH);
    ExpectGivenBack(
        s, [&] { return CCUISelect(s, hBrush); },
        [&] { return GetCurrentObject(s, OBJ_BRUSH) == hBrush; });
    EXPECT_FALSE(CCUISelect(s, nullptr));
    ExpectGivenBack(
        s, [&] { return CCUIBkColor(s, 0x123456); }, [&] { return GetBkColor(s) == 0x123456; });
    ExpectGivenBack(
        s, [&] { return CCUITextColor(s, 0x123456); }, [&] { return GetTextColor(s) == 0x123456; });
    ExpectGivenBack(
        s, [&] { return CCUISelectPalette(s, palette, 0); },
        [&] { return GetCurrentObject(s, OBJ_PAL) == palette && s_nRealized == 1; });
    EXPECT_EQ(2, s_nRealized);
    ExpectGivenBack(
        s, [&] { return CCUISelectPalette(s, nullptr, 0); }, [] { return true; });
    EXPECT_EQ(2, s_nRealized);
    ExpectGivenBack(
        s, [&] { return CCUISavedDC(s); },
        [&] { return SetBkMode(s, TRANSPARENT) == OPAQUE && SetROP2(s, R2_NOT); });
}

TEST(GdiGuards, ReleaseToTheSameWindowAndDeleteWhatTheyOwn)
{
    {
        const CImportHook release("ReleaseDC", RecordRelease);
        const CCUIWindowDC window(GetDesktopWindow());
        EXPECT_EQ(GetDesktopWindow(), WindowFromDC(window));
        EXPECT_EQ(nullptr, s_hReleasedDC);
        s_hReleasedDC = window;
    }
    EXPECT_EQ(GetDesktopWindow(), s_hReleasedWnd);
    EXPECT_EQ(1, ReleaseDC(s_hReleasedWnd, s_hReleasedDC));

    const int nBefore = GdiCount();
    HBRUSH hKept = nullptr;
    {
        const CCUIMemoryDC memory(nullptr);
        EXPECT_EQ(static_cast<DWORD>(OBJ_MEMDC), GetObjectType(memory));
        const CCUIOwned<HBITMAP> bitmap(CreateBitmap(9, 9, 1, 1, nullptr));
        CCUIOwned<HBRUSH> brush(CreateSolidBrush(0x123456));
        EXPECT_EQ(nBefore + 3, GdiCount());
        hKept = brush.Detach();
    }
    EXPECT_EQ(nBefore + 1, GdiCount());
    EXPECT_TRUE(DeleteObject(hKept));
}
