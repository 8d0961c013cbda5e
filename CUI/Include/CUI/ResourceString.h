#pragma once

#include "CU/String.h"
#include "CUI/Platform.h"

// The string-table entry of that id, of any length; empty, without a message, when there is none.
// With bLocalize the entry of the current language (CUGetLocalizedID) is taken instead.
CUI_API CCUString CUIResourceString(HINSTANCE hInst, UINT nID, bool bLocalize);
