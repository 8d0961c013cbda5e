#pragma once

#include "CU/String.h"

// Puts a text on the clipboard; a failure is traced.
void CUICopyText(HWND hWnd, const CCUString &sText);
