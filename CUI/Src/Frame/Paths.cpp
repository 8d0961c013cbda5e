#include "Frame/Paths.h"

CCUString CUIFileName(const char *pszPath)
{
    const char *pszName = pszPath;
    for (const char *psz = pszPath; *psz; psz = CharNextA(psz)) {
        if (*psz == '\\' || *psz == '/' || *psz == ':')
            pszName = psz + 1;
    }
    return pszName;
}

CCUString CUIFullPath(const char *pszPath, const char *pszFolder)
{
    CCUString sPath = pszPath;
    const bool bRelative = *pszPath != '\\' && *pszPath != '/' && sPath.Find(':') < 0;
    if (bRelative && *pszFolder)
        sPath = CCUString(pszFolder) + "\\" + sPath;
    char *pszName = nullptr;
    CCUString sFull;
    const DWORD nRoom = GetFullPathNameA(sPath, 0, nullptr, &pszName);
    const DWORD nLength =
        GetFullPathNameA(sPath, nRoom, sFull.GetBuffer(static_cast<int>(nRoom)), &pszName);
    sFull.ReleaseBuffer(nLength < nRoom ? static_cast<int>(nLength) : 0);
    return sFull.IsEmpty() ? sPath : sFull;
}

CCUString CUIProgramName()
{
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH - 1);
    const CCUString sName = CUIFileName(path);
    const int nDot = sName.ReverseFind('.');
    return nDot > 0 ? sName.Left(nDot) : sName;
}
