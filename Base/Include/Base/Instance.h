#pragma once

#include "CU/Platform.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(readability-identifier-naming): the linker's

// The program or module (DLL) that has the framework inside. Classes and windows are made in its
// name: classes of that of the program, shared with others, could not be taken back. Private to the
// framework.
inline HINSTANCE CUInstance()
{
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}
