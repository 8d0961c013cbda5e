#pragma once

#include "CUI/Platform.h"

// A screen, in pixels of all of the desktop.
struct CCUIScreen
{
    RECT all;
    RECT work;  // without the task bar and the like
};

// The screen that a rectangle lies on for the most part, else the nearest. Where the system knows
// one screen only (Windows 95 and NT 4), that one.
CCUIScreen CUIScreenOf(const RECT &rect);
// The screen whose upper left corner is the origin.
CCUIScreen CUIPrimaryScreen();
