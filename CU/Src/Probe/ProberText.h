#pragma once

#include "CU/String.h"

// Values of variables as texts. Each parser takes the whole text or answers false.

bool CUParseProberLong(const char *pszText, long &nValue);
bool CUParseProberDouble(const char *pszText, double &fValue);
bool CUParseProberFlag(const char *pszText, bool &bValue);
CCUString CUFormatProberDouble(double fValue);
