#pragma once

#include "CU/Platform.h"

// What the message window does for other processes that ask for variables (ProberProtocol.h). On
// its thread.

// The window has been made.
void CUStartProberServer(HWND hWnd);
// The window goes. Any thread.
void CUEndProberServer();
// Answers a message that the window got, if it is one of these.
bool CUServeProber(UINT uMessage, WPARAM wParam, LPARAM lParam, LRESULT &result);
