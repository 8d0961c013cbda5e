#pragma once

#include "CU/Platform.h"

// What a menu that draws itself keeps of an item, which dwItemData leads to.
struct CCUIMenuRecord;

// What windows and commands ask the menus that draw themselves. A table, so that programs without
// such menus do not link them.
struct CUIMenuHooks
{
    // An item's record, by its dwItemData; null: not one of these menus' items.
    CCUIMenuRecord *(*record)(ULONG_PTR dwItemData);
    // What follows is called for a message of that kind, and answers 0 for other menus. The window
    // is the one that got it.
    void (*opens)(HMENU hMenu, HWND hWnd);
    int (*measure)(MEASUREITEMSTRUCT &measure);
    int (*draw)(const DRAWITEMSTRUCT &draw);
    long (*character)(UINT nChar, HMENU hMenu);
    // A window's bar is about to be destroyed, with the window or by it.
    void (*goes)(HMENU hMenu);
};

// Null until there is such a menu.
extern const CUIMenuHooks *volatile g_pMenuHooks;

inline void CUIMenuGoes(HMENU hMenu)
{
    if (hMenu && g_pMenuHooks)
        g_pMenuHooks->goes(hMenu);
}
