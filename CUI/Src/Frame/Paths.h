#pragma once

#include "CU/String.h"

// The last part of a path: all of it where it has no folder.
CCUString CUIFileName(const char *pszPath);

// The whole path of a file: of a relative one, from that folder ("": the current one) on. As it
// stands where the system can make nothing of it.
CCUString CUIFullPath(const char *pszPath, const char *pszFolder);

// The name of the program's file, without folder and extension.
CCUString CUIProgramName();
