#pragma once

#include "Base/SystemLibrary.h"
#include "CUI/Platform.h"

// The system's libraries that only some programs need. Each is loaded by its first use and stays as
// long as the framework.
enum CUILibrary
{
    CUIComCtl32,
    CUIComDlg32,
    CUIOle32,
    CUIShell32,
    CUILibraries
};

// Null, with the last error, when there is no such library.
HMODULE CUILoadLibrary(CUILibrary library);

// A function of one of them; null, with the last error, when there is no such library or function.
template <typename F>
F *CUIFindFunction(CUILibrary library, const char *pszFunction)
{
    return CUFindFunction<F>(CUILoadLibrary(library), pszFunction);
}

// When a module is unloaded: windows of other threads are still to end, and their classes, which a
// library may have, are needed for that.
void CUIKeepWindowLibraries();
