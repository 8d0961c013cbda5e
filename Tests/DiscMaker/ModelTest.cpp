#include <gtest/gtest.h>

#include "Model/SkinEntry.h"
#include "Model/WideText.h"

// What cannot be shown in a code page is told; what can be comes back.
TEST(WideText, TellsWhatACodePageLacks)
{
    const WCHAR text[] = {L'a', 0xE4, 0x20AC, 0x3B1};
    bool bLost = false;
    EXPECT_STREQ("a\xE4\x80", CWideText(text, 3).ToCodePage(1252, &bLost));
    EXPECT_FALSE(bLost);
    EXPECT_EQ(CWideText(text, 3), CWideText("a\xE4\x80", 1252));
    CWideText(text, 4).ToCodePage(1252, &bLost);
    EXPECT_TRUE(bLost);
}

TEST(SkinEntry, ReadsAsTheLauncherDoes)
{
    SkinFont font = {1, 2, 3, "Old"};
    EXPECT_TRUE(ParseFont("26,1,0,Times New Roman", font));
    EXPECT_STREQ("Times", font.m_sFace);
    EXPECT_STREQ("26,1,0,Times", FormatFont(font));
    EXPECT_FALSE(ParseFont("9,0,0,", font));
    EXPECT_EQ(9, font.m_nPoints);
    EXPECT_STREQ("Times", font.m_sFace);
}
