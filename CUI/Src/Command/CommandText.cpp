#include "Command/CommandText.h"

CCUString CUICommandHelp(UINT nItem, UINT nFlags)
{
    const bool bCommand = !(nFlags & (MF_POPUP | MF_SYSMENU | MF_SEPARATOR));
    CCUICommandHandler *const pHandler = bCommand ? CUIFindCommand(nItem) : nullptr;
    return pHandler ? pHandler->GetLongTT(nItem) : CCUString();
}

CCUString CUIPlainCommandText(const CCUString &sText)
{
    CCUString sPlain = sText.SpanExcluding("\t");
    char *const pszText = sPlain.GetBuffer(0);
    char *pszTo = pszText;
    for (const char *psz = pszText; *psz; ++psz) {
        if (*psz == '&' && psz[1])
            ++psz;
        *pszTo++ = *psz;
    }
    *pszTo = '\0';
    sPlain.ReleaseBuffer();
    return sPlain;
}
