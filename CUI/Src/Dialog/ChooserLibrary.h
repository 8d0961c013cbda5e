#pragma once

#include "Base/SystemLibrary.h"
#include "CUI/Platform.h"

// The libraries that the choosers use. One is loaded by its first use and stays as long as the
// framework.
enum CUIChooserLibrary
{
    CUIComDlg32,
    CUIShell32,
    CUIOle32,
    CUIChooserLibraries
};

// Null, with the last error, when there is no such library.
HMODULE CUILoadChooserLibrary(CUIChooserLibrary library);

// A function of one of them; null, with the last error, when there is no such library or function.
template <typename F>
F *CUIFindChooser(CUIChooserLibrary library, const char *pszFunction)
{
    return CUFindFunction<F>(CUILoadChooserLibrary(library), pszFunction);
}
