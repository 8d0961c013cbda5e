#include "CU/Language.h"

#include <gtest/gtest.h>

#include <utility>

// Each test is a process of its own; what was looked up first holds in it.

TEST(Language, IsEnglishUntilSetAndForAnEmptyName)
{
    EXPECT_STREQ(CUGetCurrentLanguage(), "english");
    EXPECT_EQ(CUGetLocalizedID(120), 120U);
    CUSetCurrentLanguage("Spanish");
    EXPECT_STREQ(CUGetCurrentLanguage(), "spanish");
    EXPECT_EQ(CUGetLocalizedID(120), 120U);
    CUSetCurrentLanguage("");
    EXPECT_STREQ(CUGetCurrentLanguage(), "english");
}

// One process for each language.
using LanguageOffset = testing::TestWithParam<std::pair<const char *, unsigned int>>;

TEST_P(LanguageOffset, IsTheOneOfTheFirstLookUp)
{
    CUSetCurrentLanguage(GetParam().first);
    EXPECT_EQ(CUGetLocalizedID(120), 120 + GetParam().second);
    CUSetCurrentLanguage("french");
    EXPECT_EQ(CUGetLocalizedID(0xFFFFFFFF), 0xFFFFFFFF + GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Language, LanguageOffset,
                         testing::ValuesIn<LanguageOffset::ParamType>({{"FRENCH", 1000},
                                                                       {"spanish", 2000},
                                                                       {"German", 3000},
                                                                       {"italian", 4000},
                                                                       {"dutch", 5000},
                                                                       {"portuguese", 6000},
                                                                       {"portuguese-brazilian",
                                                                        0}}));
