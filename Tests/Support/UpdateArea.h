#pragma once

#include "Support/TestWindow.h"

inline std::string Of(const RECT &rc)
{
    return Text("%ld %ld %ld %ld", rc.left, rc.top, rc.right, rc.bottom);
}

// What is about to be repainted; zeros: nothing.
inline std::string UpdateArea(HWND hWnd)
{
    RECT rc = {};
    GetUpdateRect(hWnd, &rc, FALSE);
    return Of(rc);
}
