#pragma once

#include <string>

#include "Support/ImportHook.h"

// For "TrackPopupMenuEx".
using CFakePopup = CFakeCall<BOOL(HMENU, UINT, int, int, HWND, TPMPARAMS *)>;

// What a window hears when one of its menus is about to be seen.
inline void OpenMenu(HWND hWnd, HMENU hMenu)
{
    SendMessageA(hWnd, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(hMenu), 0);
}

inline MENUITEMINFOA ItemInfo(HMENU hMenu, UINT nItem)
{
    MENUITEMINFOA info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_ID | MIIM_STATE | MIIM_TYPE | MIIM_DATA;
    GetMenuItemInfoA(hMenu, nItem, TRUE, &info);
    return info;
}

// An item's text, "*" when it draws itself, and its state where that is another than at first.
inline std::string ItemOf(HMENU hMenu, UINT nItem)
{
    char szText[300] = "";
    GetMenuStringA(hMenu, nItem, szText, sizeof szText, MF_BYPOSITION);
    const MENUITEMINFOA info = ItemInfo(hMenu, nItem);
    const bool bLine = (info.fType & MFT_SEPARATOR) != 0;  // which is always disabled
    return std::string(szText) + ((info.fType & MFT_OWNERDRAW) ? "*" : "") +
           ((info.fState & MFS_DISABLED) && !bLine ? " disabled" : "") +
           ((info.fState & MFS_CHECKED) ? " checked" : "") +
           ((info.fType & MFT_RADIOCHECK) ? " radio" : "");
}
inline std::string ItemsOf(HMENU hMenu, const char *pszBetween = " ")
{
    std::string items;
    for (int i = 0; i < GetMenuItemCount(hMenu); ++i)
        items += (i ? pszBetween : "") + ItemOf(hMenu, static_cast<UINT>(i));
    return items;
}
