#include <gtest/gtest.h>

#include "CU/Registry.h"
#include "Support/HeapWatch.h"

TEST(Registry, WalksReadsAndWritesKeys)
{
    const CHeapWatch heap;
    const char *const pszRoot = "Software\\CURegistryTest";
    // What a run that did not come to its end has left.
    CCURegistry(HKEY_CURRENT_USER, nullptr, false).DeleteKey(pszRoot);
    CCURegistry registry(HKEY_CURRENT_USER, pszRoot);
    EXPECT_FALSE(registry.IsOpen());
    EXPECT_EQ(static_cast<DWORD>(ERROR_FILE_NOT_FOUND), GetLastError());
    CCUString sText("unchanged");
    int nNumber = 7;
    DWORD nSize = 0;
    EXPECT_FALSE(registry.Ascend() || registry.Descend("a") || registry.GetString("s", sText) ||
                 registry.SetInt("n", 1) || registry.DeleteValue("n") || registry.DeleteKey("a") ||
                 registry.GetKeyName(0, sText));

    // Read-write makes what is missing.
    ASSERT_TRUE(registry.Open(HKEY_CURRENT_USER, pszRoot, false));
    ASSERT_TRUE(registry.Descend("\\a\\b\\"));
    EXPECT_STREQ("Software\\CURegistryTest\\a\\b", registry.GetPath());
    EXPECT_FALSE(registry.Descend("") || registry.Descend(nullptr));
    const BYTE bytes[] = {1, 0, 2};
    const CCUString sLong('x', 100000);
    EXPECT_TRUE(registry.SetString("s", "text") && registry.SetString(nullptr, nullptr) &&
                registry.SetString("long", sLong) && registry.SetInt("n", -5) &&
                registry.SetBinary("b", bytes, sizeof bytes));
    ASSERT_EQ(ERROR_SUCCESS, RegSetValueExA(registry.GetKey(), "open", 0, REG_EXPAND_SZ,
                                            reinterpret_cast<const BYTE *>("%TEMP%x"), 6));
    EXPECT_TRUE(registry.Ascend());
    EXPECT_STREQ("Software\\CURegistryTest\\a", registry.GetPath());
    EXPECT_TRUE(registry.SetInt("n", 1));

    CCURegistry reader(HKEY_CURRENT_USER, pszRoot);
    EXPECT_TRUE(reader.IsOpen() && reader.IsReadOnly());
    EXPECT_FALSE(reader.Descend("missing"));
    ASSERT_TRUE(reader.Descend("a\\b"));
    EXPECT_TRUE(reader.GetInt("n", nNumber));
    EXPECT_EQ(-5, nNumber);
    const char *const texts[][2] = {{"s", "text"}, {"", ""}, {"long", sLong}, {"open", "%TEMP%"}};
    for (const auto &text : texts) {
        EXPECT_TRUE(reader.GetString(text[0], sText));
        EXPECT_TRUE(sText == text[1]) << text[0];
    }
    BYTE read[4] = {9, 9, 9, 9};
    EXPECT_TRUE(reader.GetBinary("b", nullptr, nSize) && nSize == 3);
    EXPECT_TRUE(reader.GetBinary("b", read, nSize) && memcmp(read, "\1\0\2\x9", 4) == 0);
    nSize = 2;
    EXPECT_FALSE(reader.GetBinary("b", read, nSize));
    EXPECT_EQ(3u, nSize);
    // Other types and missing values leave the output alone.
    EXPECT_FALSE(reader.GetString("n", sText) || reader.GetString("none", sText) ||
                 reader.GetInt("b", nNumber) || reader.GetInt("s", nNumber));
    EXPECT_EQ(-5, nNumber);
    EXPECT_STREQ("%TEMP%", sText);
    EXPECT_FALSE(reader.SetInt("n", 1) || reader.DeleteValue("n"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_ACCESS_DENIED), GetLastError());
    int nValues = 0;
    while (reader.GetValueName(nValues, sText))
        ++nValues;
    EXPECT_EQ(6, nValues);

    EXPECT_TRUE(registry.DeleteValue("n"));
    EXPECT_FALSE(registry.GetInt("n", nNumber) || registry.DeleteValue("n"));
    EXPECT_TRUE(registry.GetKeyName(0, sText) && sText == "b");
    EXPECT_FALSE(registry.GetKeyName(1, sText) || registry.GetKeyName(-1, sText));
    EXPECT_FALSE(registry.DeleteKey("") || registry.DeleteKey("missing"));
    reader.Close();
    // Names of any length and depth.
    const CCUString sName('n', 255);
    EXPECT_TRUE(registry.Descend(sName + '\\' + sName) && registry.Descend(sName));
    EXPECT_TRUE(registry.Ascend() && registry.GetKeyName(0, sText) && sText == sName);
    EXPECT_TRUE(registry.Ascend() && registry.Ascend());
    // Up to the root and no further; a key goes with all below it.
    EXPECT_TRUE(registry.Ascend() && registry.Ascend() && registry.Ascend());
    EXPECT_STREQ("", registry.GetPath());
    EXPECT_FALSE(registry.Ascend());
    EXPECT_TRUE(registry.DeleteKey(pszRoot));
    EXPECT_FALSE(reader.Open(HKEY_CURRENT_USER, pszRoot));
}

namespace {

const char *const pszLinks = "Software\\CURegistryLinks";

// Makes a key below it that stands for the key `target` there, by the name that the system's core
// has for that one.
void MakeLink(const CCUString &sName)
{
    typedef LONG NTAPI QueryKey(HANDLE, int, void *, ULONG, ULONG *);
    const auto ntQueryKey =
        reinterpret_cast<QueryKey *>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryKey"));
    const CCURegistry target(HKEY_CURRENT_USER, CCUString(pszLinks) + "\\target");
    struct
    {
        ULONG m_nBytes;
        wchar_t m_text[500];
    } name = {};
    ULONG nSize = 0;
    ASSERT_EQ(0, ntQueryKey(target.GetKey(), 3, &name, sizeof name, &nSize));
    HKEY hLink = nullptr;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExA(HKEY_CURRENT_USER, CCUString(pszLinks) + '\\' + sName, 0, nullptr,
                              REG_OPTION_CREATE_LINK, KEY_WRITE | KEY_CREATE_LINK, nullptr, &hLink,
                              nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(hLink, L"SymbolicLinkValue", 0, REG_LINK,
                                            reinterpret_cast<BYTE *>(name.m_text), name.m_nBytes));
    RegCloseKey(hLink);
}

bool HasLink(const CCUString &sName)
{
    HKEY hLink = nullptr;
    const bool bThere = RegOpenKeyExA(HKEY_CURRENT_USER, CCUString(pszLinks) + '\\' + sName,
                                      REG_OPTION_OPEN_LINK, KEY_READ, &hLink) == ERROR_SUCCESS;
    if (bThere)
        RegCloseKey(hLink);
    return bThere;
}

}  // namespace

TEST(Registry, RemovesLinksAndNotWhatTheyPointTo)
{
    CCURegistry(HKEY_CURRENT_USER, nullptr, false).DeleteKey(pszLinks);
    CCURegistry registry(HKEY_CURRENT_USER, pszLinks, false);
    for (const char *pszKey : {"top\\a\\b", "target\\sub"}) {
        ASSERT_TRUE(registry.Open(HKEY_CURRENT_USER, CCUString(pszLinks) + '\\' + pszKey, false));
        EXPECT_TRUE(registry.SetInt("n", 5));
    }
    registry.Open(HKEY_CURRENT_USER, pszLinks, false);
    for (const char *pszLink : {"link", "top\\a\\link", "target\\itself"}) {
        ASSERT_NO_FATAL_FAILURE(MakeLink(pszLink));
        EXPECT_TRUE(CCURegistry(HKEY_CURRENT_USER, CCUString(pszLinks) + '\\' + pszLink + "\\sub")
                        .IsOpen());
    }
    const auto expectTarget = [] {
        int n = 0;
        CCURegistry target(HKEY_CURRENT_USER, CCUString(pszLinks) + "\\target\\sub");
        EXPECT_TRUE(target.GetInt("n", n) && n == 5);
    };
    EXPECT_TRUE(registry.DeleteKey("top"));
    EXPECT_FALSE(HasLink("top"));
    expectTarget();
    EXPECT_TRUE(registry.DeleteKey("link"));
    EXPECT_FALSE(HasLink("link"));
    expectTarget();
    // One to a key above it, and one to nowhere.
    ASSERT_NO_FATAL_FAILURE(MakeLink("link"));
    EXPECT_TRUE(registry.DeleteKey("target"));
    EXPECT_FALSE(HasLink("target"));
    EXPECT_TRUE(HasLink("link"));
    registry.Close();
    EXPECT_TRUE(CCURegistry(HKEY_CURRENT_USER, nullptr, false).DeleteKey(pszLinks));
    EXPECT_FALSE(HasLink(""));
}
