// Where settings lie, against the registry itself.
#include "CUI/Settings.h"

#include <gtest/gtest.h>

namespace {

int ReadFromRegistry(const char *key)
{
    DWORD value = 0;
    DWORD size = sizeof value;
    HKEY hKey = nullptr;
    RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_READ, &hKey);
    RegQueryValueExA(hKey, "n", nullptr, nullptr, reinterpret_cast<BYTE *>(&value), &size);
    RegCloseKey(hKey);
    return static_cast<int>(value);
}

}  // namespace

TEST(Settings, LieBelowTheKeyOfTheProgramOrTheOneItNames)
{
    EXPECT_STREQ("Software\\CUITests", CUIGetSettingsKey());
    CUISetSettingsKey("Software\\CUITests\\Settings Test");
    CCURegistry registry;
    EXPECT_FALSE(CUIOpenSettings(registry, "no such section"));
    ASSERT_TRUE(CUIOpenSettings(registry, "a\\b", false));
    EXPECT_TRUE(registry.SetInt("n", 5));
    EXPECT_EQ(5, ReadFromRegistry("Software\\CUITests\\Settings Test\\a\\b"));
    ASSERT_TRUE(CUIOpenSettings(registry, nullptr));
    CUISetSettingsKey(nullptr);
    EXPECT_STREQ("Software\\CUITests", CUIGetSettingsKey());
    ASSERT_TRUE(registry.Open(HKEY_CURRENT_USER, "Software\\CUITests", false));
    EXPECT_TRUE(registry.DeleteKey("Settings Test"));
}
