#pragma once

#include <stdarg.h>
#include <stdio.h>

#include <string>

#include "CUI/Window.h"

inline BOOL CALLBACK CountWindow(HWND, LPARAM lParam)
{
    ++*reinterpret_cast<int *>(lParam);
    return TRUE;
}

// The top-level windows of the calling thread.
inline int WindowCount()
{
    int nCount = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountWindow, reinterpret_cast<LPARAM>(&nCount));
    return nCount;
}

// A plain framework window, hidden unless the style says otherwise.
inline bool CreateTestWindow(CCUIWindow &window, HWND hParent = nullptr,
                             DWORD style = WS_OVERLAPPEDWINDOW, const char *className = nullptr)
{
    const RECT rect = {10, 20, 210, 170};
    return window.Create(className, "test", style, rect, hParent, 7) != 0;
}

// Handles what the thread has waiting, and no more.
inline void PumpWaiting()
{
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_NOREMOVE))
        CCUIWindow::PumpMessage(&msg);
}

// printf into a std::string.
inline std::string Text(const char *format, ...)
{
    char szText[256];
    va_list args;
    va_start(args, format);
    vsnprintf(szText, sizeof szText, format, args);
    va_end(args);
    return szText;
}
