#pragma once

#include "CU/String.h"

// The last part of a path: all of it where it has no folder.
CCUString CUIFileName(const char *pszPath);

// The whole path of a file. A relative one counts from that folder ("": the current one). One that
// the system cannot resolve is answered as it is.
CCUString CUIFullPath(const char *pszPath, const char *pszFolder);

// The name of the program's file, without folder and extension.
CCUString CUIProgramName();
