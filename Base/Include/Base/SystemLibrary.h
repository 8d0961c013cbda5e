#pragma once

#include "CU/Platform.h"

// Loads a library of the system, "name.dll", from the system's own folder, with what it needs from
// there too: this runs in programs on discs and in folders that anybody may have written to. Null
// when the system has none. Takes the loader's lock. Private to the framework.
HMODULE CULoadSystemLibrary(const char *name);
