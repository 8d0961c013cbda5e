#include "CU/ErrorText.h"

#include "Base/KeepLastError.h"

CCUString CUErrorText(DWORD nError)
{
    const CCUKeepLastError keep;
    char szText[512] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, nError, 0,
                   szText, sizeof szText, nullptr);
    CCUString sText = szText;
    sText.TrimRight();
    if (sText.IsEmpty())
        sText.Format("Error %lu", nError);
    return sText;
}
