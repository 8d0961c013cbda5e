#include "Base/SystemLibrary.h"

HMODULE CULoadSystemLibrary(const char *name)
{
    char szPath[MAX_PATH + 16];
    const UINT nLength = GetSystemDirectoryA(szPath, MAX_PATH);
    if (nLength == 0 || nLength >= MAX_PATH)
        return nullptr;
    lstrcatA(szPath, "\\");
    return LoadLibraryExA(lstrcatA(szPath, name), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}
