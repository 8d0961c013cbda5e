#pragma once

#include "CUI/Platform.h"

// The tooltip of a bar's items, one at a time: the system's own, which asks the bar for the text by
// TTN_NEEDTEXTA. Null where the system has none: Windows 95 and NT 3.51 may have no comctl32.dll.
HWND CUIMakeBarTip(HWND hBar);
// The item that it is for: an empty rectangle means none. A tip that is shown goes.
void CUIMoveBarTip(HWND hTip, HWND hBar, const RECT &rcItem);
// A tip lives on what the mouse does to the bar.
void CUIRelayToBarTip(HWND hTip, HWND hBar, UINT message, WPARAM wParam, LPARAM lParam);
// The bar's answer, cut to the 79 characters that every system takes.
void CUIAnswerBarTip(NMHDR *pHeader, const char *pszText);
