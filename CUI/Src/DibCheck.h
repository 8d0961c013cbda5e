#pragma once

#include "CU/File.h"
#include "CUI/Platform.h"

// LoadImage believes the headers of bitmaps, and some systems' read beyond the end of the data.
// These hold what the headers claim against the bytes that there are.

// Opens the file and checks it. Nobody can change it as long as it stays open.
bool CUIBmpFileIsSound(CCUFile &file, const char *pszName);
bool CUIBmpResourceIsSound(HINSTANCE hInst, const char *pszName);
