#include "CUI/Settings.h"

#include "Base/Lifetime.h"
#include "CU/Dump.h"
#include "Frame/Paths.h"

namespace {

CCUShared<CCUString> s_key;

}  // namespace

void CUISetSettingsKey(const char *pszKey)
{
    s_key.Get() = pszKey ? pszKey : "";
}

CCUString CUIGetSettingsKey()
{
    const CCUString &sKey = s_key.Get();
    return sKey.IsEmpty() ? "Software\\" + CUIProgramName() : sKey;
}

bool CUIOpenSettings(CCURegistry &registry, const char *pszSection, bool bReadOnly)
{
    CCUString sPath = CUIGetSettingsKey();
    if (pszSection && *pszSection)
        sPath += CCUString("\\") + pszSection;
    if (registry.Open(HKEY_CURRENT_USER, sPath, bReadOnly))
        return true;
    if (!bReadOnly)
        CUDump("Unable to open settings %s, gle: %lu\n", sPath.GetString(), GetLastError());
    return false;
}
