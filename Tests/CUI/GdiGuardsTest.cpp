#include "../../CUI/Src/GdiGuards.h"

#include <gtest/gtest.h>

#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"

namespace {

// The windows and DCs that ReleaseDC was called with, and the palettes that SelectPalette was.
std::vector<std::pair<HWND, HDC>> s_released;
int WINAPI RecordRelease(HWND hWnd, HDC hDC)
{
    s_released.push_back({hWnd, hDC});
    return 1;
}
int s_nRealized;
UINT WINAPI CountRealize(HDC)
{
    return static_cast<UINT>(++s_nRealized);
}

}  // namespace

TEST(GdiGuards, GiveBackWhatADCHadBefore)
{
    CTestSurface surface(32, CPixelMap(4, 4));
    const CDCState before(surface);
    LOGPALETTE logical = {0x300, 1, {{1, 2, 3, 0}}};
    const CCUIOwned<HPALETTE> palette(CreatePalette(&logical));
    const CImportHook realize("RealizePalette", CountRealize);
    {
        const CCUISelect brush(surface, GetStockObject(GRAY_BRUSH));
        EXPECT_TRUE(brush);
        EXPECT_FALSE(CCUISelect(surface, nullptr));
        EXPECT_EQ(GetStockObject(GRAY_BRUSH), GetCurrentObject(surface, OBJ_BRUSH));
    }
    EXPECT_TRUE(before == CDCState(surface));
    {
        const CCUIBkColor bkgnd(surface, 0x123456);
        EXPECT_EQ(0x123456U, GetBkColor(surface));
    }
    EXPECT_TRUE(before == CDCState(surface));
    {
        const CCUITextColor text(surface, 0x123456);
        EXPECT_EQ(0x123456U, GetTextColor(surface));
    }
    EXPECT_TRUE(before == CDCState(surface));
    {
        const CCUISelectPalette none(surface, nullptr, 0);
        const CCUISelectPalette selected(surface, palette, 0);
        EXPECT_EQ(1, s_nRealized);
        EXPECT_EQ(palette, GetCurrentObject(surface, OBJ_PAL));
    }
    EXPECT_EQ(2, s_nRealized);
    EXPECT_TRUE(before == CDCState(surface));
    {
        const CCUISavedDC saved(surface);
        SetBkMode(surface, TRANSPARENT);
        SetROP2(surface, R2_NOT);
    }
    EXPECT_TRUE(before == CDCState(surface));
}

TEST(GdiGuards, ReleaseToTheSameWindowAndDeleteWhatTheyOwn)
{
    const HWND hWnd =
        CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    HDC hDC;
    {
        const CImportHook release("ReleaseDC", RecordRelease);
        const CCUIWindowDC window(hWnd);
        hDC = window;
        EXPECT_EQ(hWnd, WindowFromDC(hDC));
    }
    ASSERT_EQ(1U, s_released.size());
    EXPECT_EQ(std::make_pair(hWnd, hDC), s_released[0]);
    ReleaseDC(hWnd, hDC);
    DestroyWindow(hWnd);

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
