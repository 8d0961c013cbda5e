#pragma once

#include "CU/Platform.h"

// Raised where a virtual function is called that its class does not have yet, or no longer.
const DWORD CUExceptionPureVirtual = 0xE0505643;

// "EXCEPTION_ACCESS_VIOLATION" and the like; "Unknown Exception" for a code without a name.
// Private to the layer.
const char *CUGetExceptionName(DWORD dwCode);
