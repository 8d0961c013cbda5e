#include "CUI/ResourceString.h"

#include <gtest/gtest.h>

#include "CU/Language.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"

namespace {

int s_nCall;
int WINAPI LoadOnce(HINSTANCE, UINT, char *psz, int nSize)
{
    memset(psz, 'x', static_cast<size_t>(nSize));
    psz[nSize - 1] = '\0';
    return ++s_nCall == 1 ? nSize - 1 : 0;
}

}  // namespace

TEST(ResourceString, LoadsTextsOfEveryLengthWhole)
{
    const CDumped dumped;
    for (const UINT nID : {1U, 253U, 254U, 255U, 256U, 300U, 509U, 510U, 511U, 512U, 4000U}) {
        std::string text;
        for (UINT i = 0; i < nID; ++i)
            text += static_cast<char>('0' + i % 10);
        const CCUString sText = CUIResourceString(GetModuleHandleA(nullptr), nID, false);
        EXPECT_EQ(static_cast<int>(nID), sText.GetLength());
        EXPECT_EQ(text, static_cast<const char *>(sText));
    }
    for (const UINT nID : {2U, 65534U, 65535U, 65536U + 255U, 0xFFFFFFFFU, 0U}) {
        char szText[999] = "";
        LoadStringA(nullptr, nID, szText, sizeof szText);
        EXPECT_STREQ(szText, CUIResourceString(nullptr, nID, false)) << nID;
    }
    EXPECT_EQ("", dumped.m_text);
}

TEST(ResourceString, TakesTheLanguagesTextWhenAsked)
{
    CUSetCurrentLanguage("German");
    EXPECT_STREQ("short", CUIResourceString(nullptr, 20, false));
    EXPECT_STREQ("kurz", CUIResourceString(nullptr, 20, true));
    EXPECT_STREQ("", CUIResourceString(nullptr, 1, true));
}

TEST(ResourceString, NamesALongTextThatIsGoneWhenItIsToBeReadWhole)
{
    const CDumped dumped;
    const CImportHook load("LoadStringA", LoadOnce);
    EXPECT_STREQ("Resource Not Found - ID = 4000000000",
                 CUIResourceString(nullptr, 4000000000U, false));
    EXPECT_EQ("Unable to load resource string - id = 4000000000", dumped.m_text);
}
