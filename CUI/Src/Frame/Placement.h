#pragma once

#include "CU/String.h"
#include "CUI/Platform.h"

// Where a top-level window stands when it is neither minimised nor maximised, and whether it is
// maximised then, as the settings keep it.
struct CCUIPlacement
{
    RECT rect;  // pixels of all of the desktop
    bool bMaximized;
    int nDpi;  // dots per inch of the screens that it was made for
};

// Of what GetWindowPlacement has filled.
CCUIPlacement CUIPlacementOf(const WINDOWPLACEMENT &placement);
// As SetWindowPlacement takes it, to be shown with a command of ShowWindow, the program's own.
WINDOWPLACEMENT CUIToShow(const CCUIPlacement &placement, int nShow);

// "left,top,right,bottom,maximised,dpi". Reading fails where that is not what stands there.
CCUString CUIPlacementText(const CCUIPlacement &placement);
bool CUIReadPlacement(const char *pszText, CCUIPlacement &placement);

// The placement for the screens that there are now, with the dots per inch that they have.
void CUIFitPlacement(CCUIPlacement &placement, int nDpi);
