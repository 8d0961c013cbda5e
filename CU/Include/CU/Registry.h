#pragma once

/// @file
/// The system's registry.

#include "CU/Platform.h"
#include "CU/String.h"

/// One open key of the registry, reached by a path from a root such as HKEY_CURRENT_USER, and its
/// values by type. The object owns the key's handle and cannot be copied. Names of values: null or
/// "" is the key's default value; names of keys have no limit but the system's (255 characters a
/// level). A call on an object without an open key fails. Failures are told by the result alone and
/// leave the Win32 error code in GetLastError. Nothing is asserted or traced.
class CU_API CCURegistry
{
public:
    /// Nothing is open.
    CCURegistry();
    /// As Open.
    CCURegistry(HKEY hRoot, const char *pszPath, bool bReadOnly = true);
    ~CCURegistry();
    CCURegistry(const CCURegistry &) = delete;
    CCURegistry &operator=(const CCURegistry &) = delete;

    /// Opens the key "a\b\c" below hRoot, which must stay open as long as this object does; null or
    /// "" is the root itself. Read-only: the key must exist. Read-write: missing keys are made.
    /// What was open is closed first, also when this fails: the object's own GetKey() is no root
    /// for it.
    bool Open(HKEY hRoot, const char *pszPath, bool bReadOnly = true);
    /// Without effect when nothing is open.
    void Close();
    /// Whether a key is open.
    bool IsOpen() const { return m_hKey != nullptr; }
    /// Whether the key must not be written to; true when none is open.
    bool IsReadOnly() const { return m_bReadOnly; }
    /// For calls that are not here; still owned by the object, null when nothing is open.
    HKEY GetKey() const { return m_hKey; }
    /// The path below the root, without a backslash at either end.
    const CCUString &GetPath() const { return m_sPath; }

    /// Goes on to the key "d\e" below the open one, by the rules of Open. On failure the present
    /// key stays open.
    bool Descend(const char *pszPath);
    /// Goes back to the parent; false at the root. On failure the present key stays open.
    bool Ascend();

    /// Read a value of the fitting type: false, with the output unchanged, when it does not exist
    /// or is of another type. Strings: REG_SZ, or REG_EXPAND_SZ as it stands. Integers: REG_DWORD.
    /// @{
    bool GetString(const char *pszName, CCUString &sValue) const;
    bool GetInt(const char *pszName, int &nValue) const;
    /// @}
    /// Reads a value of any type. nSize: bytes that `data` has room for, then bytes read; false
    /// when it is too small, with the size that is needed in nSize. A null `data` asks for the
    /// size.
    bool GetBinary(const char *pszName, void *data, DWORD &nSize) const;

    /// Store a value as REG_SZ, REG_DWORD, REG_BINARY, in place of what was there.
    /// @{
    bool SetString(const char *pszName, const char *pszValue);
    bool SetInt(const char *pszName, int nValue);
    bool SetBinary(const char *pszName, const void *data, DWORD nSize);
    /// @}
    /// Deletes a value; false when there is no such value.
    bool DeleteValue(const char *pszName);
    /// Removes the key "d\e" below the open one with all that is in it. A link to another key goes
    /// itself, and what it points to stays.
    bool DeleteKey(const char *pszPath);

    /// The name of the nIndex-th key or value (from 0, in no particular order) of the open key;
    /// false past the last, and for a key whose name has more than 255 bytes.
    /// @{
    bool GetKeyName(int nIndex, CCUString &sName) const;
    bool GetValueName(int nIndex, CCUString &sName) const;
    /// @}

private:
    bool MoveTo(const CCUString &sPath);
    bool Read(const char *pszName, DWORD &dwType, void *data, DWORD &nSize) const;
    bool Write(const char *pszName, DWORD dwType, const void *data, DWORD nSize);

    HKEY m_hRoot;
    HKEY m_hKey;
    bool m_bReadOnly;
    CCUString m_sPath;
};
