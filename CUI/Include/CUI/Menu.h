#pragma once

/// @file
/// Menus that draw themselves.

#include "CU/String.h"
#include "CUI/Accelerators.h"
#include "CUI/Bitmap.h"
#include "CUI/Platform.h"
#include "CUI/ResourceName.h"

class CCUIMenuData;

/// What an empty CCUIMenu is; the second is also the index that stands for a whole menu resource.
enum CUIMenuKind : int
{
    CUI_MENU_POPUP = 0,  ///< a popup menu
    CUI_MENU_BAR = -1    ///< the bar of a window, for SetMenu(window, bar.GetHandle())
};

/// A menu that the object owns: a popup, to be shown with CCUIWindow::DisplayPopupMenu or as a
/// window's context menu, or a window's menu bar, with all popups below it. It is loaded from a
/// resource or built here, or filled through Win32, also by a handler while it opens.
///
/// In a framework window (CCUIWindow, CCUIDialog) that calls the base handlers the popups draw
/// their items themselves, in the system's colours and fonts of that moment, and take what they
/// show of each:
///
///     picture     SetPictures; in a frame while the item is checked
///     mark        a tick or a dot, from the item's state; so are enabled, default (bold), checked
///     text        from the item, or of a command with CUI_COMMAND_TEXT from its handler
///     shortcut    what the text has behind a tab, else the command's key: of SetAccelerators,
///                 else of the window's accelerators or those of the windows above it
///
/// Before that, where the window routes commands, their handlers set the items
/// (CCUICommandMap::UpdateMenu). The bar itself, separators, bitmaps, the items that the program
/// draws by itself and the system menu are left to the system. Mnemonics and keys work as in the
/// system's menus.
///
/// An item's text can be asked for as ever (GetMenuString); on Windows 95 and NT 4, which keep no
/// text of an item that is drawn by a program, with GetText. dwItemData of the items is the
/// object's; screen readers find the text there. Once it has been opened, a menu can only be read
/// in framework windows; Detach makes a plain one of it.
///
/// A popup that the system mirrors (WS_EX_LAYOUTRTL, on Windows 98 and 2000) has marks, shortcuts
/// and arrows on the other side, as the system's own, and its pictures mirrored, as a control's;
/// DisplayPopupMenu is told so by TPM_LAYOUTRTL. MFT_RIGHTORDER has a text read from right to left.
/// (Wine 8 shows nothing of such an item, nor of the system's own.)
///
/// For one thread, that of the windows in which it opens. The object may die while it is shown, and
/// the menu while the object lives: the bar of a framework window goes with the window, and that of
/// a frame when another one takes its place; the object is empty then.
class CCUIMenu
{
public:
    /// An empty menu.
    /// @{
    CUI_API CCUIMenu();
    CUI_API explicit CCUIMenu(CUIMenuKind kind);
    /// @}
    /// Takes over a menu.
    CUI_API explicit CCUIMenu(HMENU hMenu);
    /// The popup number nIndex of a menu resource, or all of it with CUI_MENU_BAR, by its name or
    /// MAKEINTRESOURCE(id); empty (a null handle) when there is none.
    /// @{
    CUI_API CCUIMenu(HINSTANCE hInstance, const char *name, int nIndex);
    template <typename Wide>
    CCUIMenu(HINSTANCE hInstance, const Wide *name, int nIndex)
        : CCUIMenu(hInstance, CUIResourceName(name), nIndex)
    {
    }
    /// @}
    /// Destroys the menu, if it still exists.
    CUI_API ~CCUIMenu();
    CCUIMenu(const CCUIMenu &) = delete;
    CCUIMenu &operator=(const CCUIMenu &) = delete;

    /// Stays the object's; null when it is empty.
    HMENU GetHandle() const { return m_hMenu; }
    /// Gives the menu away, drawn by the system again, and leaves the object empty. Null: it was.
    CUI_API HMENU Detach();

    /// @name Building
    /// Items are counted from 0; a place of -1 is the end. 1, or 0 when the menu cannot be changed
    /// so (traced).
    /// @{

    /// An item: a command, and its text with '&' before the mnemonic.
    CUI_API int Insert(int nPlace, UINT nID, const char *pszText);
    /// A line.
    CUI_API int InsertSeparator(int nPlace);
    /// A popup, which becomes part of this menu, with its pictures, and leaves its object empty. An
    /// empty one is reported as "popup.GetHandle()".
    CUI_API int InsertPopup(int nPlace, const char *pszText, CCUIMenu &popup);
    /// The same at the end.
    /// @{
    int Append(UINT nID, const char *pszText) { return Insert(-1, nID, pszText); }
    int AppendSeparator() { return InsertSeparator(-1); }
    int AppendPopup(const char *pszText, CCUIMenu &popup)
    {
        return InsertPopup(-1, pszText, popup);
    }
    /// @}
    /// Removes the item at a place, which may be a separator or a popup with all that is in it.
    CUI_API int RemoveAt(int nPlace);
    /// @}

    /// @name Items by their command, also in the popups
    /// 1, or 0 when there is none.
    /// @{

    CUI_API int Remove(UINT nID);                        ///< takes the item out
    CUI_API int SetText(UINT nID, const char *pszText);  ///< also what stands behind a tab
    CUI_API CCUString GetText(UINT nID) const;           ///< empty when there is no such item
    CUI_API int Enable(UINT nID, bool bEnable);          ///< else greyed
    CUI_API int Check(UINT nID, bool bCheck);            ///< a tick, or a dot after CheckRadio
    /// Gives one of a range the dot, and takes it from the others.
    CUI_API int CheckRadio(UINT nFirst, UINT nLast, UINT nID);
    /// Shows the item in bold: what a double click on the menu's object does. One a menu.
    CUI_API int SetDefault(UINT nID);
    /// @}

    /// Pictures for commands: the strip has them side by side, all as wide. An identifier of 0 has
    /// none, so that the table of a control bar's buttons is one for its menu, too. What has the
    /// colour of the strip's top left pixel is transparent. A strip with CUIBMP_SYSCOLORS follows
    /// the system's colours. The pictures are stretched from nDpi, the dots an inch that they were
    /// drawn for, to those of the screen, where these are more. Of several calls the last one with
    /// a command counts. 1, or 0 when the strip is null (traced) or has less than a pixel for each,
    /// or nCount is not positive (reported as "nCount > 0 && pIDs").
    /// @{
    CUI_API int SetPictures(const CCUIBitmap &strip, const UINT *pIDs, int nCount, int nDpi = 96);
    template <size_t COUNT>
    int SetPictures(const CCUIBitmap &strip, const UINT (&nIDs)[COUNT])
    {
        return SetPictures(strip, nIDs, static_cast<int>(COUNT));
    }
    /// @}

    /// The shortcuts that the items show; copied. None: those of the window again.
    CUI_API void SetAccelerators(const CCUIAccelerators &keys);

private:
    HMENU m_hMenu;
    CCUIMenuData *m_pData;
};
