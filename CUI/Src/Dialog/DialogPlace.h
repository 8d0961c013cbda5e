#pragma once

#include "CUI/Platform.h"

// Gives a dialog its size in the middle of its owner, where that can be seen, else of a screen, and
// as far as it must to be on the screen with all of it, or with its upper left corner.
void CUICenterOnOwner(HWND hDialog, const SIZE &size);
