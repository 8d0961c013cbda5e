#pragma once

/// @file
/// Shortcut keys and what they are called.

#include "CU/String.h"
#include "CUI/Platform.h"
#include "CUI/ResourceName.h"

/// A list of shortcut keys, which stand for commands, and their names for menus and tips. The
/// window that serves them gets them by CCUIWindow::SetAccelerators(keys.GetKeys(),
/// keys.GetCount()). A name is made of the words of the user's keyboard layout, "Ctrl+Shift+F5" on
/// an English one; where the layout has none for a key, English ones take their place.
class CCUIAccelerators
{
public:
    /// Without keys.
    CCUIAccelerators() : m_pKeys(nullptr), m_nCount(0) {}
    /// The keys of an accelerator resource, by its name or MAKEINTRESOURCE(id); none, and traced,
    /// when there is no such resource.
    /// @{
    CUI_API CCUIAccelerators(HINSTANCE hInstance, const char *name);
    template <typename Wide>
    CCUIAccelerators(HINSTANCE hInstance, const Wide *name)
        : CCUIAccelerators(hInstance, CUIResourceName(name))
    {
    }
    /// @}
    CUI_API ~CCUIAccelerators();
    CCUIAccelerators(const CCUIAccelerators &) = delete;
    CCUIAccelerators &operator=(const CCUIAccelerators &) = delete;

    /// Append copies of the keys, of an array or of a system's table (null: of none).
    /// @{
    CUI_API void Add(const ACCEL *pKeys, int nCount);
    CUI_API void Add(HACCEL hTable);
    /// @}
    /// Forgets all keys.
    CUI_API void Empty();

    /// The keys, in order; the object's, until it is changed. Null when there are none.
    ACCEL *GetKeys() const { return m_pKeys; }
    int GetCount() const { return m_nCount; }  ///< how many keys there are

    /// The first key of a command; the object's. Null: it has none.
    CUI_API const ACCEL *Find(UINT nID) const;
    /// What the first key of a command is called; empty when it has none.
    CCUString GetText(UINT nID) const
    {
        const ACCEL *const pKey = Find(nID);
        return pKey ? KeyText(*pKey) : CCUString();
    }
    /// What a key is called, with the keys to hold meanwhile in front. A key that was given as a
    /// character (without FVIRTKEY) is called by it; of control characters and letters the keys
    /// that make them are told.
    CUI_API static CCUString KeyText(const ACCEL &key);

private:
    ACCEL *m_pKeys;
    int m_nCount;
};
