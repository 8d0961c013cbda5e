#include "CU/Language.h"

#include <gtest/gtest.h>

#include <string>
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
class LanguageOffset : public testing::TestWithParam<std::pair<const char *, unsigned int>>
{
};

TEST_P(LanguageOffset, IsTheOneOfTheFirstLookUp)
{
    CUSetCurrentLanguage(GetParam().first);
    EXPECT_EQ(CUGetLocalizedID(120), 120 + GetParam().second);
    CUSetCurrentLanguage("french");
    EXPECT_EQ(CUGetLocalizedID(0xFFFFFFFF), 0xFFFFFFFF + GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Language, LanguageOffset,
    testing::Values(std::make_pair("FRENCH", 1000U), std::make_pair("spanish", 2000U),
                    std::make_pair("German", 3000U), std::make_pair("italian", 4000U),
                    std::make_pair("dutch", 5000U), std::make_pair("portuguese", 6000U),
                    std::make_pair("portuguese-brazilian", 0U)),
    [](const auto &language) { return std::to_string(language.param.second); });
