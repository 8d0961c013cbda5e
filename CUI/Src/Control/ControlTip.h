#pragma once

#include "CUI/Platform.h"

class CCUIToolTip;

// The tooltip that all own-drawn controls and bars share: only one of them is under the mouse.
CCUIToolTip &CUIControlTip();

// Gives it a message of the mouse, if it has been used.
void CUIRelayToControlTip(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

// Takes it from the control whose window that is, if it has it.
void CUIHideControlTip(HWND hWnd);
