#include "../../CUI/Src/GdiGuards.h"

#include <gtest/gtest.h>

#include "Support/PixelMap.h"

TEST(GdiGuards, GiveBackWhatADCHadBefore)
{
    CTestSurface s(32, CPixelMap(4, 4));
    const HGDIOBJ hBrush = GetStockObject(GRAY_BRUSH);
    const std::vector<DWORD> before = DCState(s);
    {
        const CCUISelect select(s, hBrush), nothing(s, nullptr);
        EXPECT_TRUE(select && !nothing);
        EXPECT_EQ(hBrush, GetCurrentObject(s, OBJ_BRUSH));
        const CCUIBkColor bkgnd(s, 0x123456);
        EXPECT_EQ(0x123456U, GetBkColor(s));
        const CCUITextColor text(s, 0x654321);
        EXPECT_EQ(0x654321U, GetTextColor(s));
    }
    EXPECT_EQ(before, DCState(s));
    {
        const CCUISavedDC saved(s);
        SetBkMode(s, TRANSPARENT);
    }
    EXPECT_EQ(before, DCState(s));
}
