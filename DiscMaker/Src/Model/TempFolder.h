#pragma once

#include "Base/TempDirectory.h"
#include "CU/String.h"

// The user's folder for temporary files, with a backslash at the end; empty where there is none.
inline CCUString TempFolder()
{
    char szFolder[MAX_PATH];
    return CUFindTempDirectory(szFolder) ? szFolder : "";
}
