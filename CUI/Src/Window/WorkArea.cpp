#include "Window/WorkArea.h"

// Windows 95 and NT 4 know one monitor.
RECT CUIWorkArea(HWND hWnd)
{
    typedef HMONITOR(WINAPI * MonitorFromWindowType)(HWND, DWORD);
    typedef BOOL(WINAPI * GetMonitorInfoType)(HMONITOR, MONITORINFO *);
    const HMODULE hUser = GetModuleHandleA("user32.dll");
    const auto monitorFromWindow =
        reinterpret_cast<MonitorFromWindowType>(GetProcAddress(hUser, "MonitorFromWindow"));
    const auto getMonitorInfo =
        reinterpret_cast<GetMonitorInfoType>(GetProcAddress(hUser, "GetMonitorInfoA"));
    MONITORINFO info = {};
    info.cbSize = sizeof info;
    if (hWnd && monitorFromWindow && getMonitorInfo &&
        getMonitorInfo(monitorFromWindow(hWnd, MONITOR_DEFAULTTONEAREST), &info))
        return info.rcWork;
    RECT rect = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &rect, 0);
    return rect;
}
