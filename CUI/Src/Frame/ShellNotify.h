#pragma once

#include "CUI/Platform.h"

#include <shellapi.h>

// What is used of the system's shell32.dll for notification icons. It is loaded at the first use;
// where it is missing no icon can be shown. Tests put a function of their own in here.
struct CCUIShellNotify
{
    BOOL(WINAPI *notify)(DWORD nMessage, NOTIFYICONDATAA *pData);
    bool bBalloons;  // shell 5.0 (Windows 2000 and Me) and later: longer tips and balloons
};
CCUIShellNotify &CUIShellNotify();
