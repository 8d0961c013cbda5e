#pragma once

#include "CUI/Window.h"

// From window handle to object for the whole process: asked for every message, so a look-up is a
// few reads in memory and takes no lock. Bindings change rarely and take one.

struct CUIWindowBinding
{
    CCUIWindow *pWindow;  // null: unbound, but our procedure is still called for the window
    WNDPROC pOldProc;     // what our procedure replaced there, never null
};

CCUIWindow *CUIWindowMapFind(HWND hWnd);
// False when the window is not in the map.
bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding);
void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding);
void CUIWindowMapRemove(HWND hWnd);
