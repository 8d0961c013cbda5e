#pragma once

#include "CUI/Data.h"

// A length of so many pixels on a screen of 96 an inch, in pixels of this one.
inline int Scaled(int nPixels)
{
    return MulDiv(nPixels, CUIGetWinData()->cyPixelsPerInch, 96);
}
