#include "Disc/DiscName.h"

#include <string.h>

namespace {

// Longer names are cut in the names that Windows reads from an image (Joliet).
const int MAX_NAME = 64;

bool HasAny(const WCHAR *pszName, const char *pszCharacters)
{
    for (const WCHAR *p = pszName; *p; ++p) {
        if (*p < 0x80 && strchr(pszCharacters, static_cast<char>(*p)))
            return true;
    }
    return false;
}

bool HasControl(const WCHAR *pszName)
{
    const WCHAR *p = pszName;
    while (*p >= 0x20)
        ++p;
    return *p != 0;
}

// "NUL", "com1.txt": what stands in front of the first dot counts.
bool IsDevice(const WCHAR *pszName)
{
    char szName[5] = "";
    int nLength = 0;
    for (; pszName[nLength] && pszName[nLength] != L'.'; ++nLength) {
        if (nLength == 4 || pszName[nLength] >= 0x80)
            return false;
        szName[nLength] = static_cast<char>(pszName[nLength]);
    }
    for (const char *const pszDevice : {"CON", "PRN", "AUX", "NUL"}) {
        if (lstrcmpiA(szName, pszDevice) == 0)
            return true;
    }
    const bool bNumbered = nLength == 4 && szName[3] >= '1' && szName[3] <= '9';
    szName[3] = 0;
    return bNumbered && (lstrcmpiA(szName, "COM") == 0 || lstrcmpiA(szName, "LPT") == 0);
}

bool EndsBadly(const WCHAR *pszName)
{
    const int nLength = lstrlenW(pszName);
    return nLength > 0 && (pszName[nLength - 1] == L'.' || pszName[nLength - 1] == L' ');
}

}  // namespace

const CDiscNameFault *FindDiscNameFault(const WCHAR *pszName)
{
    // Other systems than Windows have names with all of these.
    static const CDiscNameFault s_control = {
        ProblemError, "This name has a line break in it, or another character that is not seen.",
        "There is no new disc. Give it another name."};
    static const CDiscNameFault s_forbidden = {
        ProblemError, "Windows has no names with any of *:<>?\"|\\ in them.",
        "There is no new disc. Give it another name."};
    static const CDiscNameFault s_device = {
        ProblemWarning, "Windows keeps this name for a device, such as a printer.",
        "Nobody can open it there. Give it another name."};
    static const CDiscNameFault s_end = {ProblemWarning,
                                         "Windows knows no names with a dot or a space at the end.",
                                         "Nobody can open it there. Give it another name."};
    static const CDiscNameFault s_semicolon = {
        ProblemWarning, "Names on a disc have no semicolon.",
        "On the disc it may be another character, and programs may not find it."};
    static const CDiscNameFault s_long = {
        ProblemWarning, "This name is too long for a disc.",
        "On the disc it may be cut, and programs may not find it."};
    return HasControl(pszName)             ? &s_control
           : HasAny(pszName, "*:<>?\"|\\") ? &s_forbidden
           : IsDevice(pszName)             ? &s_device
           : EndsBadly(pszName)            ? &s_end
           : HasAny(pszName, ";")          ? &s_semicolon
           : lstrlenW(pszName) > MAX_NAME  ? &s_long
                                           : nullptr;
}
