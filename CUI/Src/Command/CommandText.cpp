#include "Command/CommandText.h"

#include "Window/MnemonicText.h"

CCUString CUICommandHelp(UINT nItem, UINT nFlags)
{
    const bool bCommand = !(nFlags & (MF_POPUP | MF_SYSMENU | MF_SEPARATOR));
    CCUICommandHandler *const pHandler = bCommand ? CUIFindCommand(nItem) : nullptr;
    return pHandler ? pHandler->GetLongTT(nItem) : CCUString();
}

CCUString CUIPlainCommandText(const CCUString &sText)
{
    return CUIWithoutMnemonic(sText.SpanExcluding("\t"));
}
