#include "CU/Registry.h"

#include <string.h>

#include "Base/Handle.h"
#include "Base/SystemLibrary.h"

namespace {

bool Succeeded(LONG nError)
{
    if (nError == ERROR_SUCCESS)
        return true;
    SetLastError(static_cast<DWORD>(nError));
    return false;
}

const BYTE *ToBytes(const void *data)
{
    return static_cast<const BYTE *>(data);
}

CCUString WithoutOuterBackslashes(const CCUString &sPath)
{
    int nFirst = 0;
    while (sPath[nFirst] == '\\')
        ++nFirst;
    int nEnd = sPath.GetLength();
    while (nEnd > nFirst && sPath[nEnd - 1] == '\\')
        --nEnd;
    return sPath.Mid(nFirst, nEnd - nFirst);
}

// The system's calls take some 260 characters at one time: longer paths are walked in parts.
const int LONGEST_PATH = 255;

// Null, with the last error set, on failure.
HKEY OpenKey(HKEY hRoot, const CCUString &sPath, bool bReadOnly)
{
    const int nCut =
        sPath.GetLength() > LONGEST_PATH ? sPath.Left(LONGEST_PATH + 1).ReverseFind('\\') : -1;
    if (nCut > 0) {
        const CCUKeyHandle upper(OpenKey(hRoot, sPath.Left(nCut), bReadOnly));
        return upper ? OpenKey(upper, sPath.Mid(nCut + 1), bReadOnly) : nullptr;
    }
    HKEY hKey = nullptr;
    const LONG nError = bReadOnly
                            ? RegOpenKeyExA(hRoot, sPath, 0, KEY_READ, &hKey)
                            : RegCreateKeyExA(hRoot, sPath, 0, nullptr, REG_OPTION_NON_VOLATILE,
                                              KEY_READ | KEY_WRITE, nullptr, &hKey, nullptr);
    return Succeeded(nError) ? hKey : nullptr;
}

bool IsLink(HKEY hKey)
{
    DWORD dwType = REG_NONE;
    return RegQueryValueExA(hKey, "SymbolicLinkValue", nullptr, &dwType, nullptr, nullptr) ==
               ERROR_SUCCESS &&
           dwType == REG_LINK;
}

// A symbolic link among the keys is opened and deleted by its handle. By its name the system would
// find the key that it points to, which is no part of the tree. No Win32 function deletes a key by
// its handle, so ntdll's does; Windows 95 has neither that function nor links.
LONG DeleteTree(HKEY hParent, const char *pszPath)
{
    typedef LONG NTAPI NtDeleteKeyFunction(HANDLE hKey);
    const auto ntDeleteKey = CUFindFunction<NtDeleteKeyFunction>("ntdll.dll", "NtDeleteKey");
    CCUKeyHandle key;
    LONG nError = RegOpenKeyExA(hParent, pszPath, ntDeleteKey ? REG_OPTION_OPEN_LINK : 0,
                                KEY_READ | KEY_WRITE | DELETE, key.Receive());
    if (nError != ERROR_SUCCESS)
        return nError;
    // Windows NT removes a key only when it has no keys. One that cannot go ends the loop.
    char szName[256];
    DWORD nLength = sizeof szName;
    while (nError == ERROR_SUCCESS && RegEnumKeyExA(key, 0, szName, &nLength, nullptr, nullptr,
                                                    nullptr, nullptr) == ERROR_SUCCESS)
    {
        nError = DeleteTree(key, szName);
        nLength = sizeof szName;
    }
    const bool bLink = nError == ERROR_SUCCESS && IsLink(key);
    if (bLink && (!ntDeleteKey || ntDeleteKey(key) < 0))
        nError = ERROR_ACCESS_DENIED;
    key.Close();
    return nError == ERROR_SUCCESS && !bLink ? RegDeleteKeyA(hParent, pszPath) : nError;
}

}  // namespace

CCURegistry::CCURegistry() : m_hRoot(nullptr), m_hKey(nullptr), m_bReadOnly(true) {}

CCURegistry::CCURegistry(HKEY hRoot, const char *pszPath, bool bReadOnly) : CCURegistry()
{
    Open(hRoot, pszPath, bReadOnly);
}

CCURegistry::~CCURegistry()
{
    Close();
}

bool CCURegistry::Open(HKEY hRoot, const char *pszPath, bool bReadOnly)
{
    const CCUString sPath = WithoutOuterBackslashes(pszPath);
    Close();
    m_hKey = OpenKey(hRoot, sPath, bReadOnly);
    if (!m_hKey)
        return false;
    m_hRoot = hRoot;
    m_bReadOnly = bReadOnly;
    m_sPath = sPath;
    return true;
}

void CCURegistry::Close()
{
    if (m_hKey)
        RegCloseKey(m_hKey);
    m_hKey = nullptr;
    m_hRoot = nullptr;
    m_bReadOnly = true;
    m_sPath.Empty();
}

bool CCURegistry::MoveTo(const CCUString &sPath)
{
    HKEY hKey = OpenKey(m_hRoot, sPath, m_bReadOnly);
    if (!hKey)
        return false;
    RegCloseKey(m_hKey);
    m_hKey = hKey;
    m_sPath = sPath;
    return true;
}

bool CCURegistry::Descend(const char *pszPath)
{
    const CCUString sPath = WithoutOuterBackslashes(pszPath);
    if (!m_hKey || sPath.IsEmpty())
        return Succeeded(m_hKey ? ERROR_INVALID_PARAMETER : ERROR_INVALID_HANDLE);
    return MoveTo(m_sPath.IsEmpty() ? sPath : m_sPath + '\\' + sPath);
}

bool CCURegistry::Ascend()
{
    if (!m_hKey || m_sPath.IsEmpty())
        return Succeeded(m_hKey ? ERROR_NO_MORE_ITEMS : ERROR_INVALID_HANDLE);
    const int nLast = m_sPath.ReverseFind('\\');
    return MoveTo(WithoutOuterBackslashes(m_sPath.Left(nLast < 0 ? 0 : nLast)));
}

bool CCURegistry::Read(const char *pszName, DWORD &dwType, void *data, DWORD &nSize) const
{
    // What the system says of a null handle is documented nowhere: it is not asked.
    if (!m_hKey)
        return Succeeded(ERROR_INVALID_HANDLE);
    return Succeeded(
        RegQueryValueExA(m_hKey, pszName, nullptr, &dwType, static_cast<BYTE *>(data), &nSize));
}

bool CCURegistry::Write(const char *pszName, DWORD dwType, const void *data, DWORD nSize)
{
    // Windows 95 does not look at the access that a key was opened with.
    if (!m_hKey || m_bReadOnly)
        return Succeeded(m_hKey ? ERROR_ACCESS_DENIED : ERROR_INVALID_HANDLE);
    return Succeeded(RegSetValueExA(m_hKey, pszName, 0, dwType, ToBytes(data), nSize));
}

bool CCURegistry::GetString(const char *pszName, CCUString &sValue) const
{
    CCUString sText;
    DWORD dwType = REG_NONE;
    DWORD nSize = 0;
    if (!Read(pszName, dwType, nullptr, nSize))
        return false;
    for (;;) {
        char *text = sText.GetBuffer(static_cast<int>(nSize) + 1);
        DWORD nRead = nSize;
        const bool bRead = Read(pszName, dwType, text, nRead);
        // Another program may have made the value longer since.
        if (!bRead && GetLastError() == ERROR_MORE_DATA && nRead > nSize) {
            nSize = nRead;
            continue;
        }
        if (!bRead)
            return false;
        if (dwType != REG_SZ && dwType != REG_EXPAND_SZ)
            return Succeeded(ERROR_INVALID_DATATYPE);
        // A stored text need not end in a NUL.
        text[nRead] = '\0';
        sText.ReleaseBuffer();
        sValue = sText;
        return true;
    }
}

bool CCURegistry::GetInt(const char *pszName, int &nValue) const
{
    DWORD dwType = REG_NONE;
    int nRead = 0;
    DWORD nSize = sizeof nRead;
    if (!Read(pszName, dwType, &nRead, nSize))
        return false;
    if (dwType != REG_DWORD || nSize != sizeof nRead)
        return Succeeded(ERROR_INVALID_DATATYPE);
    nValue = nRead;
    return true;
}

bool CCURegistry::GetBinary(const char *pszName, void *data, DWORD &nSize) const
{
    DWORD dwType = REG_NONE;
    return Read(pszName, dwType, data, nSize);
}

bool CCURegistry::SetString(const char *pszName, const char *pszValue)
{
    const char *text = pszValue ? pszValue : "";
    return Write(pszName, REG_SZ, text, static_cast<DWORD>(strlen(text)) + 1);
}

bool CCURegistry::SetInt(const char *pszName, int nValue)
{
    return Write(pszName, REG_DWORD, &nValue, sizeof nValue);
}

bool CCURegistry::SetBinary(const char *pszName, const void *data, DWORD nSize)
{
    return Write(pszName, REG_BINARY, data, nSize);
}

bool CCURegistry::DeleteValue(const char *pszName)
{
    if (!m_hKey || m_bReadOnly)
        return Succeeded(m_hKey ? ERROR_ACCESS_DENIED : ERROR_INVALID_HANDLE);
    return Succeeded(RegDeleteValueA(m_hKey, pszName));
}

bool CCURegistry::DeleteKey(const char *pszPath)
{
    const CCUString sPath = WithoutOuterBackslashes(pszPath);
    if (!m_hKey || m_bReadOnly)
        return Succeeded(m_hKey ? ERROR_ACCESS_DENIED : ERROR_INVALID_HANDLE);
    // The empty path is the open key itself.
    if (sPath.IsEmpty())
        return Succeeded(ERROR_INVALID_PARAMETER);
    return Succeeded(DeleteTree(m_hKey, sPath));
}

bool CCURegistry::GetKeyName(int nIndex, CCUString &sName) const
{
    if (!m_hKey || nIndex < 0)
        return Succeeded(m_hKey ? ERROR_NO_MORE_ITEMS : ERROR_INVALID_HANDLE);
    char szName[256];
    DWORD nLength = sizeof szName;
    if (!Succeeded(RegEnumKeyExA(m_hKey, static_cast<DWORD>(nIndex), szName, &nLength, nullptr,
                                 nullptr, nullptr, nullptr)))
        return false;
    sName = szName;
    return true;
}

bool CCURegistry::GetValueName(int nIndex, CCUString &sName) const
{
    if (!m_hKey || nIndex < 0)
        return Succeeded(m_hKey ? ERROR_NO_MORE_ITEMS : ERROR_INVALID_HANDLE);
    // The longest name of a value, and its NUL.
    CCUString sBuffer;
    DWORD nLength = 16384;
    char *name = sBuffer.GetBuffer(static_cast<int>(nLength));
    if (!Succeeded(RegEnumValueA(m_hKey, static_cast<DWORD>(nIndex), name, &nLength, nullptr,
                                 nullptr, nullptr, nullptr)))
        return false;
    sName = name;
    return true;
}
