#pragma once

/// @file
/// Popup menus.

#include "CUI/Platform.h"
#include "CUI/ResourceName.h"

/// A popup menu that the object owns, to be filled through Win32 and shown with
/// CCUIWindow::DisplayPopupMenu or as a window's context menu.
class CUI_API CCUIMenu
{
public:
    /// An empty menu.
    CCUIMenu();
    /// Takes over a popup menu.
    explicit CCUIMenu(HMENU hMenu);
    /// The popup number nIndex of a menu resource, by its name or MAKEINTRESOURCE(id); empty (a
    /// null handle) when there is none.
    /// @{
    CCUIMenu(HINSTANCE hInstance, const char *name, int nIndex);
    template <typename Wide>
    CCUIMenu(HINSTANCE hInstance, const Wide *name, int nIndex)
        : CCUIMenu(hInstance, CUIResourceName(name), nIndex)
    {
    }
    /// @}
    ~CCUIMenu();
    CCUIMenu(const CCUIMenu &) = delete;
    CCUIMenu &operator=(const CCUIMenu &) = delete;

    /// Stays the object's; null when it is empty.
    HMENU GetHandle() const { return m_hMenu; }

private:
    HMENU m_hMenu;
};
