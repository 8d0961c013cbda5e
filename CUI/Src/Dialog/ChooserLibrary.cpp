#include "Dialog/ChooserLibrary.h"

#include "Base/Lifetime.h"
#include "Base/SystemLibrary.h"

namespace {

HMODULE s_libraries[CUIChooserLibraries];
CCULastCall s_lastCall;

void FreeLibraries(CCULastCall &)
{
    for (HMODULE &hLibrary : s_libraries) {
        if (hLibrary)
            FreeLibrary(hLibrary);
        hLibrary = nullptr;
    }
}

}  // namespace

HMODULE CUILoadChooserLibrary(CUIChooserLibrary library)
{
    static const char *const NAMES[] = {"comdlg32.dll", "shell32.dll", "ole32.dll"};
    HMODULE &hLibrary = s_libraries[library];
    if (!hLibrary) {
        hLibrary = CULoadSystemLibrary(NAMES[library]);
        CUAtLast(s_lastCall, FreeLibraries);
    }
    return hLibrary;
}
