#pragma once

#include "CU/String.h"

// The last part of a path: all of it where it has no folder.
inline CCUString CUIFileName(const char *pszPath)
{
    const char *pszName = pszPath;
    for (const char *psz = pszPath; *psz; psz = CharNextA(psz)) {
        if (*psz == '\\' || *psz == '/' || *psz == ':')
            pszName = psz + 1;
    }
    return pszName;
}

// The whole path of a file: of a relative one, from that folder ("": the current one) on. As it
// stands where the system can make nothing of it.
CCUString CUIFullPath(const char *pszPath, const char *pszFolder);
