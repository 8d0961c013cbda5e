#pragma once

#include "CUI/Window.h"

// A binding as the system knows it: a property of the window that leads to the object. The map
// (WindowMap.h) is asked first; this costs calls to the system.

// Whether the window's property leads to the object.
bool CUILeadsTo(HWND hWnd, const CCUIWindow *pWindow);
// The same for a binding that the map has and doubts; one that is past is removed from the map.
bool CUIIsStillBound(HWND hWnd, const CCUIWindow *pWindow);
