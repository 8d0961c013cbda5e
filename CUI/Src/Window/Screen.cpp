#include "Window/Screen.h"

namespace {

// What later systems call HMONITOR and MONITORINFO.
typedef void *Monitor;
struct CMonitorInfo
{
    DWORD cbSize;
    RECT all;
    RECT work;
    DWORD dwFlags;
};
const DWORD NEAREST = 2;  // MONITOR_DEFAULTTONEAREST

Monitor(WINAPI *s_fromRect)(const RECT *, DWORD);
BOOL(WINAPI *s_getInfo)(Monitor, CMonitorInfo *);

template <typename F>
void Find(const char *name, F &function)
{
    function = reinterpret_cast<F>(GetProcAddress(GetModuleHandleA("user32.dll"), name));
}

}  // namespace

CCUIScreen CUIPrimaryScreen()
{
    CCUIScreen screen = {{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}, {}};
    if (!SystemParametersInfoA(SPI_GETWORKAREA, 0, &screen.work, 0))
        screen.work = screen.all;
    return screen;
}

CCUIScreen CUIScreenOf(const RECT &rect)
{
    if (!s_fromRect) {
        Find("GetMonitorInfoA", s_getInfo);
        Find("MonitorFromRect", s_fromRect);
    }
    CMonitorInfo info = {};
    info.cbSize = sizeof info;
    if (s_fromRect && s_getInfo && s_getInfo(s_fromRect(&rect, NEAREST), &info))
        return {info.all, info.work};
    return CUIPrimaryScreen();
}
