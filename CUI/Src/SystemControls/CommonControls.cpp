#include "SystemControls/CommonControls.h"

#include "Base/SystemLibrary.h"
#include "CU/Dump.h"

namespace {

bool Load()
{
    const HMODULE hControls = CULoadSystemLibrary("comctl32.dll");
    typedef void WINAPI InitCall();
    // Of every version, and it makes all classes of the first one known: InitCommonControlsEx,
    // which Windows 95 has with Internet Explorer 3 only, would do no more for those that are used
    // here.
    const auto init = CUFindFunction<InitCall>(hControls, "InitCommonControls");
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
