#include "CUI/ResourceString.h"

#include <gtest/gtest.h>

#include "CU/Language.h"
#include "Support/Reports.h"
#include "Support/FailingCall.h"

TEST(ResourceString, LoadsTextsOfEveryLengthWhole)
{
    const CDumped dumped;
    for (const UINT nID : {1U, 253U, 254U, 255U, 256U, 300U, 509U, 510U, 511U, 512U, 4000U}) {
        std::string text;
        for (UINT i = 0; i < nID; ++i)
            text += static_cast<char>('0' + i % 10);
        EXPECT_EQ(text, static_cast<const char *>(CUIResourceString(nullptr, nID, false)));
    }
    for (const UINT nID : {2U, 65534U, 65535U, 65536U + 255U, 0xFFFFFFFFU, 0U}) {
        char szText[999] = "";
        LoadStringA(nullptr, nID, szText, sizeof szText);
        EXPECT_STREQ(szText, CUIResourceString(nullptr, nID, false)) << nID;
    }
    CUSetCurrentLanguage("German");
    EXPECT_STREQ("short", CUIResourceString(nullptr, 20, false));
    EXPECT_STREQ("kurz", CUIResourceString(nullptr, 20, true));
    EXPECT_STREQ("", CUIResourceString(nullptr, 1, true));
    EXPECT_EQ("", dumped.m_text);
}

TEST(ResourceString, NamesALongTextThatIsGoneWhenItIsToBeReadWhole)
{
    const CDumped dumped;
    const CFailingCall<int(HINSTANCE, UINT, char *, int)> load("LoadStringA");
    CFailPlan::Start(2);
    // Its low word is the id that the system looks for.
    const CCUString sText = CUIResourceString(nullptr, 0xFFFF0000U + 4000, false);
    EXPECT_STREQ("Resource Not Found - ID = 4294905760", sText);
    EXPECT_EQ("Unable to load resource string - id = 4294905760", dumped.m_text);
}
