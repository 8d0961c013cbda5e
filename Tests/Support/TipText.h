#pragma once

#include <string>

#include "CU/Platform.h"

#include <commctrl.h>

// The text of the tip that a window has now; "": none.
inline std::string TipOf(HWND hTool)
{
    char szText[80] = "";
    TOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.hwnd = hTool;
    tool.lpszText = szText;
    for (HWND hTip = nullptr; (hTip = FindWindowExA(nullptr, hTip, TOOLTIPS_CLASSA, nullptr));)
        SendMessageA(hTip, TTM_GETTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
    return szText;
}
