#include "Window/MnemonicText.h"

#include <string.h>

char CUIUpper(char ch)
{
    CharUpperBuffA(&ch, 1);
    return ch;
}

char CUIMnemonicOf(const char *pszText)
{
    for (const char *p = strchr(pszText, '&'); p; p = strchr(p + 2, '&')) {
        if (p[1] != '&')
            return CUIUpper(p[1]);
    }
    return 0;
}

CCUString CUIWithoutMnemonic(CCUString sText)
{
    char *pszTo = sText.GetBuffer(0);
    for (const char *psz = pszTo; *psz; ++psz) {
        if (*psz == '&' && psz[1])
            ++psz;
        *pszTo++ = *psz;
    }
    *pszTo = '\0';
    sText.ReleaseBuffer();
    return sText;
}
