#include "CUI/ResourceCommands.h"

#include "CUI/ResourceString.h"

CCUIResourceCommands::CCUIResourceCommands(unsigned int nID, unsigned int nIDRange,
                                           HINSTANCE hInstance)
    : CCUICommandHandler(nID, nIDRange),
      m_hInstance(hInstance ? hInstance : GetModuleHandleA(nullptr))
{
}

// Here, since only this source has the class's table of functions to give to modules.
CCUIResourceCommands::~CCUIResourceCommands() = default;

CCUString CCUIResourceCommands::GetShortTT(unsigned int nID)
{
    return CUIResourceString(m_hInstance, nID, false).SpanExcluding("\n");
}

CCUString CCUIResourceCommands::GetLongTT(unsigned int nID)
{
    const CCUString sText = CUIResourceString(m_hInstance, nID, false);
    const int nEnd = sText.Find('\n');
    return nEnd < 0 ? CCUString() : sText.Mid(nEnd + 1);
}
