// Has the dialog with a caption load a module into its process and run it there. Ends with 0 when
// the module was used and its timer served. Usage: Inject CAPTION MODULE.dll
#include <windows.h>

int main(int, char **argv)
{
    const HWND hWnd = FindWindowA("#32770", argv[1]);
    const HMODULE hModule = LoadLibraryExA(argv[2], nullptr, DONT_RESOLVE_DLL_REFERENCES);
    const auto proc = reinterpret_cast<HOOKPROC>(GetProcAddress(hModule, "OnCall@12"));
    SetWindowsHookExA(WH_CALLWNDPROC, proc, hModule, GetWindowThreadProcessId(hWnd, nullptr));
    SendMessageA(hWnd, WM_APP, 0, 0);
    for (int i = 0; i < 1000 && !GetPropA(hWnd, "Served"); ++i) {
        SendMessageA(hWnd, WM_NULL, 0, 0);
        Sleep(10);
    }
    return !GetPropA(hWnd, "Used") || !GetPropA(hWnd, "Served");
}
