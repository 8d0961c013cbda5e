#pragma once

#include "CU/String.h"

// Whether a text is one of a table, in any case of letters.
template <size_t N>
bool IsAmong(const CCUString &sText, const char *const (&texts)[N])
{
    for (const char *const pszText : texts) {
        if (sText.CompareNoCase(pszText) == 0)
            return true;
    }
    return false;
}
