#pragma once

#include <string.h>

#include <string>

#include "CU/Platform.h"

#include <commctrl.h>

inline BOOL CALLBACK AskTip(HWND hWnd, LPARAM lTool)
{
    char szClass[32] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    if (strcmp(szClass, TOOLTIPS_CLASSA) == 0)
        SendMessageA(hWnd, TTM_GETTEXTA, 0, lTool);
    return TRUE;
}

// The text of the tip that a window of this thread has now; "": none. Other programs' tips come and
// go while one looks for it.
inline std::string TipOf(HWND hTool)
{
    char szText[80] = "";
    TOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.hwnd = hTool;
    tool.lpszText = szText;
    EnumThreadWindows(GetCurrentThreadId(), AskTip, reinterpret_cast<LPARAM>(&tool));
    return szText;
}
