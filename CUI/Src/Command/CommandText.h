#pragma once

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"

// The handler of an identifier, or null; one of no table has none, and is nothing to report.
inline CCUICommandHandler *CUIFindCommand(unsigned int nID)
{
    return CCUICommandMap::Find(nID);
}

// The long help of what OnMenuSelect names; "" where there is none.
CCUString CUICommandHelp(UINT nItem, UINT nFlags);

// What a menu item is called elsewhere: without the mark of its mnemonic and its shortcut.
CCUString CUIPlainCommandText(const CCUString &sText);
