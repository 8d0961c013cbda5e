#pragma once

#include "CU/String.h"

// The text with "\r\n" at the end of each line, as edit controls and the clipboard want it.
CCUString CUIWithLineEnds(const CCUString &sText);

// Puts a text on the clipboard; a failure is traced.
void CUICopyText(HWND hWnd, const CCUString &sText);
