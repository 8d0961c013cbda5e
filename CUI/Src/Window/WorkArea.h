#pragma once

#include "CUI/Platform.h"

// Where windows may be, in screen pixels: the monitor nearest to a window (null: the first one)
// without the task bar.
RECT CUIWorkArea(HWND hWnd);
