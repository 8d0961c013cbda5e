#pragma once

#include "CUI/Platform.h"

// Whether the caller is the thread of the window; of none, anybody is.
inline bool CUIIsOwnThread(HWND hWnd)
{
    return !hWnd || GetWindowThreadProcessId(hWnd, nullptr) == GetCurrentThreadId();
}
