#pragma once

#include "CUI/Button.h"

// Where the parts of a button stand, in its client area. What it does not have is empty.
struct CCUIButton::CParts
{
    RECT rcFace;  // what goes down
    RECT rcArrow;
    RECT rcMark;  // box or circle
    RECT rcPicture;
    RECT rcText;
};
