#pragma once

#include "CU/String.h"
#include "CUI/Platform.h"

// A window's text, of any length.
CCUString CUIWindowText(HWND hWnd);
