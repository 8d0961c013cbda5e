#pragma once

/// @file
/// Where windows keep what survives the program: places, bars, recent files, answers.

#include "CU/Registry.h"
#include "CU/String.h"
#include "CUI/Platform.h"

/// The key below HKEY_CURRENT_USER of this program's settings; set it before the first window is
/// made. Null or "" is the default: "Software\" and the name of the program's file, without its
/// extension. For the user-interface thread only, as is everything here.
/// @{
CUI_API void CUISetSettingsKey(const char *pszKey);
CUI_API CCUString CUIGetSettingsKey();
/// @}

/// Opens a section, "a\b" below the settings' key (null or "": that key itself), for the values in
/// it, by the rules of CCURegistry::Open: read-only it must exist, else it is made. False when it
/// cannot be; a refusal to write is traced.
CUI_API bool CUIOpenSettings(CCURegistry &registry, const char *pszSection, bool bReadOnly = true);
