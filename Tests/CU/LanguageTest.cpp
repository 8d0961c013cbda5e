#include "CU/Language.h"

#include <gtest/gtest.h>

// Each case is a process of its own; what was looked up first holds in it.
struct Language : testing::TestWithParam<const char *>
{
};

TEST_P(Language, HasTheOffsetOfTheFirstLookUp)
{
    const CCUString sName = CCUString(GetParam()).SpanExcluding(" ");
    const unsigned int nOffset = strtoul(GetParam() + sName.GetLength(), nullptr, 10);
    EXPECT_STREQ(CUGetCurrentLanguage(), "english");
    CUSetCurrentLanguage(sName);
    EXPECT_EQ(CUGetLocalizedID(120), 120 + nOffset);
    CUSetCurrentLanguage("FRENCH");
    EXPECT_STREQ(CUGetCurrentLanguage(), "french");
    EXPECT_EQ(CUGetLocalizedID(120), 120 + nOffset);
    CUSetCurrentLanguage("");
    EXPECT_STREQ(CUGetCurrentLanguage(), "english");
}

INSTANTIATE_TEST_SUITE_P(, Language,
                         testing::Values("English 0", "FRENCH 1000", "spanish 2000", "German 3000",
                                         "italian 4000", "dutch 5000", "portuguese 6000",
                                         "portuguese-brazilian 0"));
