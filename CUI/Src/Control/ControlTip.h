#pragma once

#include "CUI/Platform.h"

class CCUIToolTip;

// The tooltip that all own-drawn controls share: only one of them is under the mouse.
CCUIToolTip &CUIControlTip();

// Takes it from the control whose window that is, if it has it.
void CUIHideControlTip(HWND hWnd);
