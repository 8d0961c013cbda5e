// Has the AutoRun.exe with that caption load Watcher.dll: Loader "Fennick Setup". It stays there as
// long as this program runs: until the launcher is closed.

#include <stdio.h>

#include <windows.h>

int main(int nArguments, char **ppArguments)
{
    const HWND hWnd = nArguments > 1 ? FindWindowA(nullptr, ppArguments[1]) : nullptr;
    // Only looked at here: the framework that it wants is in the other process.
    const HMODULE hModule = LoadLibraryExA("Watcher.dll", nullptr, DONT_RESOLVE_DLL_REFERENCES);
    const FARPROC hook = hModule ? GetProcAddress(hModule, "WatcherHook@12") : nullptr;
    if (!hWnd || !hook) {
        puts("Usage: Loader CAPTION, beside Watcher.dll");
        return 1;
    }
    SetWindowsHookExA(WH_CALLWNDPROC, reinterpret_cast<HOOKPROC>(reinterpret_cast<void *>(hook)),
                      hModule, GetWindowThreadProcessId(hWnd, nullptr));
    SendMessageA(hWnd, WM_APP, 0, 0);
    while (IsWindow(hWnd))
        Sleep(100);
    return 0;
}
