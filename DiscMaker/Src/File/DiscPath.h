#pragma once

#include <vector>

#include "CU/String.h"
#include "CUI/Platform.h"

// An absolute path, by its characters: a disc may have names that this system's code page lacks.
class CDiscPath
{
public:
    CDiscPath() : m_text(1) {}
    // Of a path of this system's code page, made absolute; empty when that cannot be done, which
    // only Windows 95 to Me refuse, from 260 characters on.
    explicit CDiscPath(const CCUString &sPath);
    // Of a zero-terminated text that is taken as it stands.
    explicit CDiscPath(const WCHAR *pszPath);

    bool IsEmpty() const { return m_text.size() == 1; }
    size_t Length() const { return m_text.size() - 1; }
    const WCHAR *Wide() const { return m_text.data(); }
    // For people, and for systems that take nothing else.
    CCUString Text() const;
    CCUString Utf8() const;

    CDiscPath Join(const WCHAR *pszName) const;
    CDiscPath Join(const CDiscPath &relative) const { return Join(relative.Wide()); }
    // The same with something behind the last name.
    CDiscPath With(const char *pszSuffix) const;
    // Empty for the root of a drive.
    CDiscPath Parent() const;
    // What stands behind the last backslash.
    const WCHAR *Name() const;

    // Whether it is the same one, as far as the names say; which letters are capital counts for
    // nothing.
    bool IsSame(const CDiscPath &other) const;
    bool operator<(const CDiscPath &other) const { return m_text < other.m_text; }

private:
    std::vector<WCHAR> m_text;  // with its zero
};
