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

}  // namespace

TEST(GdiGuards, GiveBackWhatADCHadBefore)
{
    CTestSurface s(32, CPixelMap(4, 4));
    LOGPALETTE logical = {0x300, 1, {{1, 2, 3, 0}}};
    const CCUIOwned<HPALETTE> palette(CreatePalette(&logical));
    const CImportHook realize("RealizePalette", CountRealize);
    const HGDIOBJ hBrush = GetStockObject(GRAY_BRUSH);
    const CDCState before(s);
    {
        const CCUISelect select(s, hBrush), nothing(s, nullptr);
        EXPECT_TRUE(select && !nothing);
        EXPECT_EQ(hBrush, GetCurrentObject(s, OBJ_BRUSH));
        const CCUIBkColor bkgnd(s, 0x123456);
        EXPECT_EQ(0x123456U, GetBkColor(s));
        const CCUITextColor text(s, 0x654321);
        EXPECT_EQ(0x654321U, GetTextColor(s));
        const CCUISelectPalette select2(s, palette, 0), none(s, nullptr, 0);
        EXPECT_EQ(palette, GetCurrentObject(s, OBJ_PAL));
        EXPECT_EQ(1, s_nRealized);
    }
    EXPECT_EQ(2, s_nRealized);
    EXPECT_TRUE(before == CDCState(s));
    {
        const CCUISavedDC saved(s);
        SetBkMode(s, TRANSPARENT);
    }
    EXPECT_TRUE(before == CDCState(s));
}

TEST(GdiGuards, ReleaseToTheSameWindowAndDeleteWhatTheyOwn)
{
    HDC hWindowDC;
    {
        const CImportHook release("ReleaseDC", RecordRelease);
        const CCUIWindowDC window(GetDesktopWindow());
        hWindowDC = window;
        EXPECT_EQ(GetDesktopWindow(), WindowFromDC(window));
        EXPECT_EQ(nullptr, s_hReleasedDC);
    }
    EXPECT_EQ(GetDesktopWindow(), s_hReleasedWnd);
    EXPECT_EQ(hWindowDC, s_hReleasedDC);
    EXPECT_EQ(1, ReleaseDC(s_hReleasedWnd, s_hReleasedDC));

    const int nBefore = GdiCount();
    HBRUSH hKept = nullptr;
    {
        const CCUIMemoryDC memory(nullptr);
        const CCUIOwned<HBITMAP> bitmap(CreateBitmap(9, 9, 1, 1, nullptr));
        CCUIOwned<HBRUSH> brush(CreateSolidBrush(0x123456));
        EXPECT_EQ(nBefore + 3, GdiCount());
        hKept = brush.Detach();
    }
    EXPECT_EQ(nBefore + 1, GdiCount());
    EXPECT_TRUE(DeleteObject(hKept));
}
