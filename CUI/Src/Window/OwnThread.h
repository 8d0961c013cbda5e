#pragma once

#include "CUI/Platform.h"

// Whether the caller is the thread of the window, which is there: not another thread's, nor another
// program's.
inline bool CUIIsOwnWindow(HWND hWnd)
{
    return GetWindowThreadProcessId(hWnd, nullptr) == GetCurrentThreadId();
}

// The same, or there is none: of that, anybody is.
inline bool CUIIsOwnThread(HWND hWnd)
{
    return !hWnd || CUIIsOwnWindow(hWnd);
}
