#include "SystemControls/CommonControls.h"

#include "CU/Dump.h"
#include "Window/LoadedLibrary.h"

namespace {

bool Load()
{
    typedef void WINAPI InitCall();
    // Of every version, and it makes all classes of the first one known: InitCommonControlsEx,
    // which Windows 95 has with Internet Explorer 3 only, would do no more for those that are used
    // here.
    const auto init = CUIFindFunction<InitCall>(CUIComCtl32, "InitCommonControls");
    if (init)
        init();
    else
        CUDump("No common controls, gle: %lu\n", GetLastError());
    return init != nullptr;
}

}  // namespace

bool CUILoadCommonControls()
{
    static const bool s_bLoaded = Load();
    return s_bLoaded;
}
