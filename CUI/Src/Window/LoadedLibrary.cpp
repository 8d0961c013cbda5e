#include "Window/LoadedLibrary.h"

#include "Base/Module.h"

namespace {

void *volatile s_libraries[CUILibraries];

}  // namespace

HMODULE CUILoadLibrary(CUILibrary library)
{
    static const char *const NAMES[] = {"comctl32.dll", "comdlg32.dll", "ole32.dll", "shell32.dll"};
    void *volatile &pLibrary = s_libraries[library];
    if (!pLibrary) {
        const HMODULE hLoaded = CULoadSystemLibrary(NAMES[library]);
        // Another thread may have been faster: it is given back as often as it is kept.
        if (hLoaded && InterlockedCompareExchangePointer(&pLibrary, hLoaded, nullptr))
            FreeLibrary(hLoaded);
    }
    return static_cast<HMODULE>(pLibrary);
}

void CUIKeepWindowLibraries()
{
    s_libraries[CUIComCtl32] = nullptr;
}

void CUIUnloadLibraries()
{
    for (void *const pLibrary : s_libraries) {
        if (pLibrary)
            FreeLibrary(static_cast<HMODULE>(pLibrary));
    }
}
