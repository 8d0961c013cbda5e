#pragma once

/// @file
/// Texts from resources.

#include "CU/String.h"
#include "CUI/Platform.h"

/// The string-table entry of that id, of any length, up to its first NUL; empty, with nothing
/// traced, when there is none. One that can be read in part but not whole is traced, and the result
/// is "Resource Not Found - ID = %u". With bLocalize the entry of the current language
/// (CUGetLocalizedID) is taken instead.
CUI_API CCUString CUIResourceString(HINSTANCE hInst, UINT nID, bool bLocalize);
