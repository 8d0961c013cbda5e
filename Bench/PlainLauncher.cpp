// The launcher without a framework: what the launcher's start is measured against.
#include "PlainLauncher.h"

#include <mmsystem.h>

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int)
{
    // The launcher's libraries are loaded here too.
    HKEY hKey = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, "", 0, KEY_READ, &hKey) == ERROR_SUCCESS)
        RegCloseKey(hKey);
    CPlainLauncher launcher(hInstance);
    PlaySoundA("SystemStart", nullptr, SND_ALIAS | SND_ASYNC);
    launcher.Create();
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    return 0;
}
