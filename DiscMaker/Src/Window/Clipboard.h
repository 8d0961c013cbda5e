#pragma once

#include "Model/Skin.h"

// Puts a text onto the clipboard and, unless it is null, a skin with its pictures.
bool CopyToClipboard(HWND hWnd, const CCUString &sText, const CSkin *pSkin);
// A skin that Disc Maker put there; false: there is none.
bool SkinFromClipboard(HWND hWnd, CSkin &skin);
CCUString TextFromClipboard(HWND hWnd);
// Whether TextFromClipboard would get a question mark or the like in the place of a character.
bool LosesCharacters(HWND hWnd);
// Whether there is a skin or a text, without opening the clipboard.
bool CanPaste();
