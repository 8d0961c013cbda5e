#pragma once

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"

// The handler of an identifier, or null; one of no table has none, and is nothing to report.
inline CCUICommandHandler *CUIFindCommand(unsigned int nID)
{
    return nID < 1000 ? nullptr : CCUICommandMap::Lookup(nID);
}

// What a menu item is called elsewhere: without the mark of its mnemonic and its shortcut.
inline CCUString CUIPlainCommandText(const CCUString &sText)
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
