#include <gtest/gtest.h>

#include "CU/Registry.h"

namespace {

const CCUString s_root = "Software\\CURegistryTest";

bool IsThere(const char *pszKey)
{
    return CCURegistry(HKEY_CURRENT_USER, s_root + pszKey).IsOpen();
}

// A key of the test alone, without what a run that did not come to its end has left.
struct Registry : testing::Test
{
    Registry() { CCURegistry(HKEY_CURRENT_USER, nullptr, false).DeleteKey(s_root); }
    CCUString m_sText;
};

}  // namespace

TEST_F(Registry, WalksAndRemovesKeys)
{
    EXPECT_FALSE(IsThere(""));
    // Read-write makes what is missing.
    CCURegistry registry(HKEY_CURRENT_USER, s_root, false);
    ASSERT_TRUE(registry.Descend("\\a\\b\\"));
    EXPECT_FALSE(registry.Descend("") || registry.Descend(nullptr));
    EXPECT_TRUE(registry.Ascend());
    EXPECT_STREQ(s_root + "\\a", registry.GetPath());
    EXPECT_TRUE(registry.GetKeyName(0, m_sText));
    EXPECT_STREQ("b", m_sText);
    EXPECT_FALSE(registry.GetKeyName(1, m_sText) || registry.GetKeyName(-1, m_sText));
    EXPECT_FALSE(registry.DeleteKey("") || registry.DeleteKey("missing"));
    CCURegistry reader(HKEY_CURRENT_USER, s_root);
    EXPECT_FALSE(reader.Descend("missing") || reader.DeleteKey("a") || reader.SetInt("n", 1));
    EXPECT_TRUE(reader.Descend("a\\b"));
    // Names of any length; up to the root and no further; a key goes with all below it.
    EXPECT_TRUE(registry.Descend(CCUString('n', 255) + "\\c"));
    while (registry.Ascend()) {
    }
    EXPECT_STREQ("", registry.GetPath());
    EXPECT_TRUE(registry.DeleteKey(s_root));
    EXPECT_FALSE(IsThere(""));
}

TEST_F(Registry, ReadsAndWritesValues)
{
    CCURegistry registry(HKEY_CURRENT_USER, s_root, false);
    const CCUString sLong('x', 100000);
    EXPECT_TRUE(registry.SetString("s", sLong) && registry.SetInt("n", -5) &&
                registry.SetBinary("b", "\1\0\2", 3) && registry.SetString(nullptr, "text"));
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
    char read[] = "9999";
    DWORD nSize = 2;
    EXPECT_FALSE(registry.GetBinary("b", read, nSize));
    EXPECT_EQ(3u, nSize);
    EXPECT_TRUE(registry.GetBinary("b", read, nSize));
    EXPECT_EQ(std::string("\1\0\2\x39", 4), std::string(read, 4));
    EXPECT_TRUE(registry.GetValueName(3, m_sText));
    EXPECT_FALSE(registry.GetValueName(4, m_sText));
    EXPECT_TRUE(registry.DeleteValue("n"));
    EXPECT_FALSE(registry.DeleteValue("n"));
}

TEST_F(Registry, RemovesALinkAndNotWhatItPointsTo)
{
    typedef LONG NTAPI QueryKey(HANDLE, int, void *, ULONG, ULONG *);
    const auto ntQueryKey =
        reinterpret_cast<QueryKey *>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryKey"));
    const CCURegistry target(HKEY_CURRENT_USER, s_root + "\\target", false);
    CCURegistry registry(HKEY_CURRENT_USER, s_root + "\\target\\sub", false);
    EXPECT_TRUE(registry.Open(HKEY_CURRENT_USER, s_root + "\\top", false));
    // By the name that the system's core has for the target.
    struct
    {
        ULONG m_nBytes;
        wchar_t m_text[500];
    } name = {};
    ULONG nSize = 0;
    ASSERT_EQ(0, ntQueryKey(target.GetKey(), 3, &name, sizeof name, &nSize));
    HKEY hLink = nullptr;
    ASSERT_EQ(0, RegCreateKeyExA(registry.GetKey(), "link", 0, nullptr, REG_OPTION_CREATE_LINK,
                                 KEY_WRITE | KEY_CREATE_LINK, nullptr, &hLink, nullptr));
    EXPECT_EQ(0, RegSetValueExW(hLink, L"SymbolicLinkValue", 0, REG_LINK,
                                reinterpret_cast<BYTE *>(name.m_text), name.m_nBytes));
    RegCloseKey(hLink);
    EXPECT_TRUE(IsThere("\\top\\link\\sub"));
    EXPECT_TRUE(registry.Ascend() && registry.DeleteKey("top"));
    EXPECT_FALSE(IsThere("\\top"));
    EXPECT_TRUE(IsThere("\\target\\sub"));
}
