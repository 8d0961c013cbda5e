#include "AutoRunDlg.h"
#include "Base/Multimedia.h"
#include "CU/CU.h"

namespace {

// Called when the program attaches to the framework (1) and detaches from it (0). Whatever a source
// wants done once at start-up is done at the first; nothing waits for the second, for all that the
// process shares is given back at its end.
int ModuleHook(HINSTANCE, DWORD nReason, void *)
{
    if (nReason == DLL_PROCESS_ATTACH)
        CUInitialize();
    return 1;
}

}  // namespace

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int)
{
    ModuleHook(hInstance, DLL_PROCESS_ATTACH, nullptr);
    {
        CAutoRunDlg dialog(hInstance);
        g_multimedia.playSound("SystemStart", nullptr, SND_ALIAS | SND_ASYNC);
        dialog.DoModal(nullptr);
        ModuleHook(hInstance, DLL_PROCESS_DETACH, nullptr);
    }
    return 0;
}
