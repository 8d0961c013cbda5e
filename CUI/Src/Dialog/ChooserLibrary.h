#pragma once

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

// A function of one of them; null, with the last error, when there is no such library or function.
FARPROC CUIFindChooserFunction(CUIChooserLibrary library, const char *pszFunction);

// The same, as its type.
template <typename F>
F *CUIFindChooser(CUIChooserLibrary library, const char *pszFunction)
{
    return reinterpret_cast<F *>(CUIFindChooserFunction(library, pszFunction));
}
