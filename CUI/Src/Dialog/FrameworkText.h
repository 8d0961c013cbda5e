#pragma once

#include "CU/String.h"
#include "CUI/FrameworkText.h"
#include "CUI/Platform.h"

// A text of the framework's own as the program has it in its string table; else the other one.
CCUString CUIFrameworkText(UINT nID, const char *pszElse);
