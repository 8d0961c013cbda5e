#include <gtest/gtest.h>

#include "CU/Registry.h"
#include "Support/FailingCall.h"

namespace {

// Keys of the test alone, without what a run that did not come to its end has left.
struct Registry : testing::Test
{
    Registry() { CCURegistry(HKEY_CURRENT_USER, nullptr, false).DeleteKey(m_root); }
    const CCUString m_root =
        CCUString("Software\\Test") + testing::UnitTest::GetInstance()->current_test_info()->name();
    CCUString m_sText;
};

}  // namespace

TEST_F(Registry, WalksAndRemovesKeys)
{
    EXPECT_FALSE(CCURegistry(HKEY_CURRENT_USER, m_root).IsOpen());
    // Read-write makes what is missing.
    CCURegistry registry(HKEY_CURRENT_USER, m_root, false);
    ASSERT_TRUE(registry.Descend("\\a\\b\\"));
    EXPECT_FALSE(registry.Descend("") || registry.Descend(nullptr));
    EXPECT_TRUE(registry.Ascend());
    EXPECT_STREQ(m_root + "\\a", registry.GetPath());
    EXPECT_TRUE(registry.GetKeyName(0, m_sText));
    EXPECT_STREQ("b", m_sText);
    EXPECT_FALSE(registry.GetKeyName(1, m_sText) || registry.GetKeyName(-1, m_sText));
    EXPECT_FALSE(registry.DeleteKey("") || registry.DeleteKey("missing"));
    CCURegistry reader(HKEY_CURRENT_USER, m_root);
    EXPECT_FALSE(reader.Descend("missing") || reader.DeleteKey("a") || reader.SetInt("n", 1));
    EXPECT_TRUE(reader.Descend("a\\b"));
    // Names of any length; up to the root and no further; a key goes with all below it.
    EXPECT_TRUE(registry.Descend(CCUString('n', 255) + "\\c"));
    while (registry.Ascend()) {
    }
    EXPECT_STREQ("", registry.GetPath());
    // As on Windows 95, which deletes keys by their names alone.
    const CFailingCall<FARPROC(HMODULE, const char *)> oldSystem("GetProcAddress");
    CFailPlan::Start(CFailPlan::ALL);
    EXPECT_TRUE(registry.DeleteKey(m_root));
    EXPECT_FALSE(CCURegistry(HKEY_CURRENT_USER, m_root).IsOpen());
}

TEST_F(Registry, ReadsAndWritesValues)
{
    CCURegistry registry(HKEY_CURRENT_USER, m_root, false);
    const CCUString sLong('x', 100000);
    EXPECT_TRUE(registry.SetString("s", sLong) && registry.SetInt("n", -5) &&
                registry.SetBinary("b", "\1\0\2\0", 4) && registry.SetString(nullptr, "text"));
    int nNumber = 7;
    EXPECT_TRUE(registry.GetInt("n", nNumber) && registry.GetString("s", m_sText));
    EXPECT_EQ(-5, nNumber);
    EXPECT_TRUE(m_sText == sLong);
    EXPECT_TRUE(registry.GetString("", m_sText));
    // Other types and missing values leave the output alone.
    EXPECT_FALSE(registry.GetString("n", m_sText) || registry.GetString("none", m_sText));
    EXPECT_FALSE(registry.GetInt("b", nNumber) || registry.GetInt("s", nNumber));
    EXPECT_EQ(-5, nNumber);
    EXPECT_STREQ("text", m_sText);
    char read[] = "99999";
    DWORD nSize = 3;
    EXPECT_FALSE(registry.GetBinary("b", read, nSize));
    EXPECT_EQ(4u, nSize);
    EXPECT_TRUE(registry.GetBinary("b", read, nSize));
    EXPECT_EQ(std::string("\1\0\2\0\x39", 5), std::string(read, 5));
    // A text that another program has stored without its NUL.
    RegSetValueExA(registry.GetKey(), "s", 0, REG_SZ, reinterpret_cast<const BYTE *>("abcd"), 3);
    EXPECT_TRUE(registry.GetString("s", m_sText));
    EXPECT_STREQ("abc", m_sText);
    EXPECT_TRUE(registry.GetValueName(3, m_sText));
    EXPECT_FALSE(registry.GetValueName(4, m_sText));
    EXPECT_TRUE(registry.DeleteValue("n"));
    EXPECT_FALSE(registry.DeleteValue("n"));
}
