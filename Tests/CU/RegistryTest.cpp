#include <gtest/gtest.h>

#include "CU/Registry.h"
#include "Support/HeapWatch.h"

namespace {

const CCUString s_root = "Software\\CURegistryTest";

// A key of the test alone, without what a run that did not come to its end has left.
class Registry : public testing::Test
{
protected:
    Registry() { DeleteAll(); }
    ~Registry() override { DeleteAll(); }
    static void DeleteAll() { CCURegistry(HKEY_CURRENT_USER, nullptr, false).DeleteKey(s_root); }
    static bool IsThere(const CCUString &sKey)
    {
        return CCURegistry(HKEY_CURRENT_USER, s_root + '\\' + sKey).IsOpen();
    }

    const CHeapWatch m_heap;
    CCUString m_sText = "unchanged";
    int m_nNumber = 7;
};

}  // namespace

TEST_F(Registry, WalksAndRemovesKeys)
{
    CCURegistry registry(HKEY_CURRENT_USER, s_root);
    EXPECT_FALSE(registry.IsOpen());
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), GetLastError());
    EXPECT_FALSE(registry.Ascend() || registry.Descend("a") || registry.DeleteKey("a"));
    EXPECT_FALSE(registry.SetInt("n", 1) || registry.GetString("s", m_sText));
    // Read-write makes what is missing.
    ASSERT_TRUE(registry.Open(HKEY_CURRENT_USER, s_root, false));
    ASSERT_TRUE(registry.Descend("\\a\\b\\"));
    EXPECT_STREQ(s_root + "\\a\\b", registry.GetPath());
    EXPECT_FALSE(registry.Descend("") || registry.Descend(nullptr));
    EXPECT_TRUE(registry.Ascend());
    EXPECT_STREQ(s_root + "\\a", registry.GetPath());
    EXPECT_TRUE(registry.GetKeyName(0, m_sText));
    EXPECT_STREQ("b", m_sText);
    EXPECT_FALSE(registry.GetKeyName(1, m_sText) || registry.GetKeyName(-1, m_sText));
    EXPECT_FALSE(registry.DeleteKey("") || registry.DeleteKey("missing"));
    CCURegistry reader(HKEY_CURRENT_USER, s_root);
    EXPECT_TRUE(reader.IsReadOnly());
    EXPECT_FALSE(reader.Descend("missing") || reader.DeleteKey("a"));
    EXPECT_TRUE(reader.Descend("a\\b"));
    // Names of any length and depth.
    const CCUString sName('n', 255);
    EXPECT_TRUE(registry.Descend(sName + '\\' + sName) && registry.Descend(sName));
    EXPECT_TRUE(registry.Ascend() && registry.GetKeyName(0, m_sText) && m_sText == sName);
    // Up to the root and no further; a key goes with all below it.
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(registry.Ascend());
    EXPECT_STREQ("", registry.GetPath());
    EXPECT_FALSE(registry.Ascend());
    EXPECT_TRUE(registry.DeleteKey(s_root));
    EXPECT_FALSE(IsThere(""));
}

TEST_F(Registry, ReadsAndWritesValues)
{
    CCURegistry registry(HKEY_CURRENT_USER, s_root, false);
    const CCUString sLong('x', 100000);
    EXPECT_TRUE(registry.SetString("s", "text") && registry.SetString(nullptr, nullptr));
    EXPECT_TRUE(registry.SetString("long", sLong) && registry.SetInt("n", -5));
    EXPECT_TRUE(registry.SetBinary("b", "\1\0\2", 3));
    RegSetValueExA(registry.GetKey(), "open", 0, REG_EXPAND_SZ,
                   reinterpret_cast<const BYTE *>("%TEMP%x"), 6);
    CCURegistry reader(HKEY_CURRENT_USER, s_root);
    EXPECT_TRUE(reader.GetInt("n", m_nNumber));
    EXPECT_EQ(-5, m_nNumber);
    const char *const texts[][2] = {{"s", "text"}, {"", ""}, {"long", sLong}, {"open", "%TEMP%"}};
    for (const auto &text : texts) {
        EXPECT_TRUE(reader.GetString(text[0], m_sText));
        EXPECT_STREQ(text[1], m_sText);
    }
    char read[] = "9999";
    DWORD nSize = 0;
    EXPECT_TRUE(reader.GetBinary("b", nullptr, nSize));
    EXPECT_EQ(3u, nSize);
    EXPECT_TRUE(reader.GetBinary("b", read, nSize));
    EXPECT_EQ(0, memcmp(read,
                        "\1\0\2"
                        "9",
                        4));
    nSize = 2;
    EXPECT_FALSE(reader.GetBinary("b", read, nSize));
    EXPECT_EQ(3u, nSize);
    // Other types and missing values leave the output alone.
    EXPECT_FALSE(reader.GetString("n", m_sText) || reader.GetString("none", m_sText));
    EXPECT_FALSE(reader.GetInt("b", m_nNumber) || reader.GetInt("s", m_nNumber));
    EXPECT_EQ(-5, m_nNumber);
    EXPECT_STREQ("%TEMP%", m_sText);
    EXPECT_FALSE(reader.SetInt("n", 1) || reader.DeleteValue("n"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), GetLastError());
    EXPECT_TRUE(reader.GetValueName(5, m_sText));
    EXPECT_FALSE(reader.GetValueName(6, m_sText));
    EXPECT_TRUE(registry.DeleteValue("n"));
    EXPECT_FALSE(registry.DeleteValue("n"));
}

TEST_F(Registry, RemovesALinkAndNotWhatItPointsTo)
{
    typedef LONG NTAPI QueryKey(HANDLE, int, void *, ULONG, ULONG *);
    const auto ntQueryKey =
        reinterpret_cast<QueryKey *>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryKey"));
    CCURegistry registry(HKEY_CURRENT_USER, s_root, false);
    const CCURegistry target(HKEY_CURRENT_USER, s_root + "\\target", false);
    EXPECT_TRUE(registry.Descend("target\\sub"));
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
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExA(registry.GetKey(), "link", 0, nullptr, REG_OPTION_CREATE_LINK,
                              KEY_WRITE | KEY_CREATE_LINK, nullptr, &hLink, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(hLink, L"SymbolicLinkValue", 0, REG_LINK,
                                            reinterpret_cast<BYTE *>(name.m_text), name.m_nBytes));
    RegCloseKey(hLink);
    EXPECT_TRUE(IsThere("top\\link\\sub"));
    EXPECT_TRUE(registry.Ascend() && registry.DeleteKey("top"));
    EXPECT_FALSE(IsThere("top"));
    EXPECT_TRUE(IsThere("target\\sub"));
}
