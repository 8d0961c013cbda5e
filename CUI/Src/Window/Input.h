#pragma once

#include "Base/Compiler.h"
#include "CUI/Platform.h"

// What windows of the framework ask of mouse and keyboard.

inline bool CUIIsKeyMessage(UINT message)
{
    return message >= WM_KEYFIRST && message <= WM_KEYLAST;
}

// Milliseconds between two looks at the mouse where the system does not tell that it has left
// (CCUIWindow::TrackMouseLeave): the first Windows 95, without Internet Explorer 3.
const UINT CUI_MOUSE_LOOK = 100;

CU_NOINLINE inline bool CUIIsMouseOver(HWND hWnd)
{
    POINT point;
    return GetCursorPos(&point) && WindowFromPoint(point) == hWnd;
}
