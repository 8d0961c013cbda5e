#pragma once

#include "Base/Compiler.h"
#include "CU/Platform.h"

// Loads a library of the system, "name.dll", from the system's own folder, with what it needs from
// there too: this runs in programs on discs and in folders that anybody may have written to. Null
// when the system has none. Takes the loader's lock. Private to the framework.
HMODULE CULoadSystemLibrary(const char *name);

// A function of type F that not every system has; null where the library has none of that name, or
// is null itself.
template <typename F>
F *CUFindFunction(HMODULE hLibrary, const char *name)
{
    return reinterpret_cast<F *>(hLibrary ? GetProcAddress(hLibrary, name) : nullptr);
}

// The same of a library that is in the process already, such as "user32.dll".
CU_NOINLINE inline FARPROC CUFindLoadedFunction(const char *library, const char *name)
{
    const HMODULE hLibrary = GetModuleHandleA(library);
    return hLibrary ? GetProcAddress(hLibrary, name) : nullptr;
}
template <typename F>
F *CUFindFunction(const char *library, const char *name)
{
    return reinterpret_cast<F *>(CUFindLoadedFunction(library, name));
}
