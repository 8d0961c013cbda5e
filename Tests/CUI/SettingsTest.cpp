// Where settings lie when nobody has said.
#include "CUI/Settings.h"

#include <gtest/gtest.h>

TEST(Settings, LieBelowTheKeyOfTheProgramOrTheOneItNames)
{
    CCURegistry registry;
    EXPECT_STREQ("Software\\CUITests", CUIGetSettingsKey());
    CUISetSettingsKey("Software\\CUITests\\Settings");
    EXPECT_FALSE(CUIOpenSettings(registry, "a\\b"));
    ASSERT_TRUE(CUIOpenSettings(registry, "a\\b", false));
    EXPECT_TRUE(registry.Open(HKEY_CURRENT_USER, "Software\\CUITests\\Settings\\a\\b"));
    CUISetSettingsKey(nullptr);
    ASSERT_TRUE(CUIOpenSettings(registry, nullptr, false));
    EXPECT_TRUE(registry.DeleteKey("Settings"));
}
