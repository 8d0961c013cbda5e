#pragma once

#include "Base/Compiler.h"
#include "CUI/Platform.h"

// The flags of the WM_MENUSELECT, with no menu, that a menu's owner gets when the menu has closed.
const UINT CUI_MENU_CLOSED = 0xFFFF;

// After a menu that a button at rcScreen had opened: takes off the queue the click that closed the
// menu, where it was on the button, which would open it again. Handlers of messages that other
// threads have sent run meanwhile.
CU_NOINLINE inline void CUITakeClosingClick(HWND hWnd, const RECT &rcScreen)
{
    MSG msg;
    if (!PeekMessageA(&msg, hWnd, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_NOREMOVE))
        return;
    POINT at = {static_cast<SHORT>(LOWORD(msg.lParam)), static_cast<SHORT>(HIWORD(msg.lParam))};
    ClientToScreen(hWnd, &at);
    if (PtInRect(&rcScreen, at))
        PeekMessageA(&msg, hWnd, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE);
}
