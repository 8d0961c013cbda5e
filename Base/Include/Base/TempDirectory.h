#pragma once

#include "CU/Platform.h"

// Reads the user's temporary directory, with a backslash at the end, into a buffer of MAX_PATH
// characters at least. Returns its length, 0 when there is none or its name is longer than a path
// may be. Private to the framework.
inline DWORD CUFindTempDirectory(char *szTempDir)
{
    const DWORD nLength = GetTempPathA(MAX_PATH, szTempDir);
    return nLength < MAX_PATH ? nLength : 0;
}
