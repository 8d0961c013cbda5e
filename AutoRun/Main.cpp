#include "Base/Multimedia.h"
#include "AutoRunDlg.h"

namespace {

// Called when the program attaches to the framework (1) and detaches from it (0): the place for
// what a process must do for it, which for the launcher is nothing.
int ModuleHook(HINSTANCE, DWORD, void *)
{
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
