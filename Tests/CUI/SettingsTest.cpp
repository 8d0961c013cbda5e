// Where settings lie, against the registry itself.
#include "CUI/Settings.h"

#include <gtest/gtest.h>

TEST(Settings, LieBelowTheKeyOfTheProgramOrTheOneItNames)
{
    EXPECT_STREQ("Software\\CUITests", CUIGetSettingsKey());
    CUISetSettingsKey("Software\\CUITests\\Settings Test");
    CCURegistry registry;
    EXPECT_FALSE(CUIOpenSettings(registry, "no such section"));
    ASSERT_TRUE(CUIOpenSettings(registry, "a\\b", false) && registry.SetInt("n", 5));
    EXPECT_TRUE(CUIOpenSettings(registry, nullptr));
    CUISetSettingsKey(nullptr);
    HKEY hKey = nullptr;
    EXPECT_EQ(0, RegOpenKeyA(HKEY_CURRENT_USER, "Software\\CUITests\\Settings Test\\a\\b", &hKey));
    RegCloseKey(hKey);
    ASSERT_TRUE(registry.Open(HKEY_CURRENT_USER, "Software\\CUITests", false));
    EXPECT_TRUE(registry.DeleteKey("Settings Test"));
}
