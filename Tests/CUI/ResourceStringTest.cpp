#include "CUI/ResourceString.h"

#include <gtest/gtest.h>

#include "CU/Language.h"
#include "CUI/ResourceCommands.h"

TEST(ResourceString, LoadsTextsOfEveryLengthWhole)
{
    for (const UINT nID : {1U, 253U, 254U, 255U, 256U, 300U, 509U, 510U, 511U, 512U, 4000U}) {
        std::string text;
        for (UINT i = 0; i < nID; ++i)
            text += static_cast<char>('0' + i % 10);
        EXPECT_EQ(text, static_cast<const char *>(CUIResourceString(nullptr, nID, false)));
    }
    EXPECT_STREQ("", CUIResourceString(nullptr, 2, false));
    CUSetCurrentLanguage("German");
    EXPECT_STREQ("short", CUIResourceString(nullptr, 20, false));
    EXPECT_STREQ("kurz", CUIResourceString(nullptr, 20, true));
}

TEST(ResourceString, HasTheShortAndTheLongTextOfACommand)
{
    CCUIResourceCommands commands(5000, 3);
    const char *const texts[][2] = {{"Open", "Opens it."}, {"Close", ""}, {"", ""}};
    for (UINT i = 0; i < 3; ++i) {
        EXPECT_STREQ(texts[i][0], commands.GetShortTT(5000 + i));
        EXPECT_STREQ(texts[i][1], commands.GetLongTT(5000 + i));
    }
}
