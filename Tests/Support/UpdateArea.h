#pragma once

#include "Support/TestWindow.h"

// What is about to be repainted; "0,0,0,0": nothing.
inline std::string UpdateArea(HWND hWnd)
{
    RECT rc = {};
    GetUpdateRect(hWnd, &rc, FALSE);
    return Of(rc);
}
