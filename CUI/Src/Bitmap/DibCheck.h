#pragma once

#include "CU/File.h"
#include "CUI/Platform.h"

// LoadImage believes the headers of bitmaps, and some systems' read beyond the end of the data.
// These hold what the headers claim against the bytes that there are.

// They say too whether the lowest row comes first: of a DIB section GetObject does not tell.

// Opens the file and checks it. Nobody can change it as long as it stays open.
bool CUIBmpFileIsSound(CCUFile &file, const char *pszName, bool &bBottomUp);
bool CUIBmpResourceIsSound(HINSTANCE hInst, const char *pszName, bool &bBottomUp);
