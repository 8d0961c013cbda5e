#include "Dialog/CommonDialog.h"

#include "Dialog/ChooserOwner.h"
#include "Window/LoadedLibrary.h"

#include <cderr.h>

CUICommonResult CUICommonDialog(const char *pszFunction, void *pRecord)
{
    auto *const pFunction = CUIFindFunction<BOOL WINAPI(void *)>(CUIComDlg32, pszFunction);
    auto *const pGetError = CUIFindFunction<DWORD WINAPI()>(CUIComDlg32, "CommDlgExtendedError");
    if (!pFunction || !pGetError)
        return {FALSE, CUI_NO_FUNCTION, GetLastError()};
    if (pFunction(pRecord))
        return {TRUE, 0, 0};
    const DWORD dwError = GetLastError();
    return {FALSE, pGetError(), dwError};
}

int CUICommonAnswer(const char *pszFunction, const CUICommonResult &result)
{
    if (result.bChosen)
        return 1;
    if (result.dwCode == 0)
        return CUIChoiceCancelled();
    switch (result.dwCode) {
    case CDERR_MEMALLOCFAILURE:
    case CDERR_MEMLOCKFAILURE:
        return CUIChoiceFailed(pszFunction, result.dwCode, ERROR_NOT_ENOUGH_MEMORY);
    case FNERR_INVALIDFILENAME:
        return CUIChoiceFailed(pszFunction, result.dwCode, ERROR_INVALID_NAME);
    case FNERR_BUFFERTOOSMALL: return CUIChoiceFailed(pszFunction, result.dwCode, ERROR_MORE_DATA);
    case PDERR_NODEFAULTPRN:
    case PDERR_NODEVICES:
    case PDERR_PRINTERNOTFOUND:
        return CUIChoiceFailed(pszFunction, result.dwCode, ERROR_INVALID_PRINTER_NAME);
    case CUI_NO_FUNCTION: return CUIChoiceFailed(pszFunction, result.dwCode, result.dwError);
    default: return CUIChoiceFailed(pszFunction, result.dwCode, ERROR_GEN_FAILURE);
    }
}
