#include "Dialog/Answers.h"

#include "CU/Dump.h"
#include "CUI/MessageBox.h"
#include "CUI/Settings.h"

namespace {

const char SECTION[] = "Answers";

}  // namespace

int CUIReadAnswer(const char *pszName)
{
    CCURegistry registry;
    int nID = 0;
    return CUIOpenSettings(registry, SECTION) && registry.GetInt(pszName, nID) ? nID : 0;
}

void CUIWriteAnswer(const char *pszName, int nID)
{
    CCURegistry registry;
    if (CUIOpenSettings(registry, SECTION, false) && !registry.SetInt(pszName, nID))
        CUDump("Unable to keep the answer to %.100s, gle: %lu\n", pszName, GetLastError());
}

int CUIForgetAnswer(const char *pszName)
{
    CCURegistry registry;
    // What is only opened to be written to would be made.
    if (!CUIOpenSettings(registry, SECTION) || !CUIOpenSettings(registry, SECTION, false))
        return 0;
    if (pszName)
        return registry.DeleteValue(pszName);
    return CUIOpenSettings(registry, nullptr, false) && registry.DeleteKey(SECTION);
}
