#pragma once

/// @file
/// Names of resources where UNICODE is defined.

#include "CU/Assert.h"
#include "CU/String.h"
#include "CUI/Platform.h"

/// Makes a name that functions take as `const char *` of what UNICODE makes names of: an id of
/// MAKEINTRESOURCE stays that id, a wide text is converted to the ANSI code page and lives as long
/// as the object. All functions that take a resource's name use it by themselves.
class CUIResourceName
{
public:
    /// A wide text, or an id as a pointer to wide characters.
    template <typename Wide>
    explicit CUIResourceName(const Wide *pszName) : m_pszID(reinterpret_cast<const char *>(pszName))
    {
        if (!IsID(m_pszID)) {
            m_sName = pszName;
            m_pszID = nullptr;
        }
    }
    /// The name: an id, a text or null.
    operator const char *() const { return m_sName.IsEmpty() ? m_pszID : m_sName.GetString(); }

    /// Whether a pointer is an id of MAKEINTRESOURCE, or null.
    static bool IsID(const void *pszName)
    {
        return reinterpret_cast<ULONG_PTR>(pszName) >> 16 == 0;
    }
    /// The id alone, for those who keep a name as a pointer. A wide text is reported with
    /// "IS_INTRESOURCE(pszName)" and counts as null.
    static const char *OnlyID(const void *pszName)
    {
        CUAssertHolds(IsID(pszName), "IS_INTRESOURCE(pszName)", "ResourceName", __LINE__);
        return IsID(pszName) ? static_cast<const char *>(pszName) : nullptr;
    }

private:
    const char *m_pszID;
    CCUString m_sName;
};
