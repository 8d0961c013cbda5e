#pragma once

#include "CUI/Platform.h"

#include <commdlg.h>

// Calls a function of comdlg32.dll by its name, which shows a dialog. 0: the user cancelled, or it
// failed with the code that is written, and the last error.
struct CUICommonResult
{
    BOOL bChosen;
    DWORD dwCode;   // CommDlgExtendedError; 0: cancelled. NO_FUNCTION: not called
    DWORD dwError;  // the last error
};
const DWORD CUI_NO_FUNCTION = 0xFFFFFFFF;

CUICommonResult CUICommonDialog(const char *pszFunction, void *pRecord);
// What a chooser returns for a result.
int CUICommonAnswer(const char *pszFunction, const CUICommonResult &result);
