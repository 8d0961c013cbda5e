#include "Window/Screen.h"

#include "Base/SystemLibrary.h"

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

typedef Monitor WINAPI FromRectCall(const RECT *, DWORD);
typedef BOOL WINAPI GetInfoCall(Monitor, CMonitorInfo *);
FromRectCall *s_fromRect;
GetInfoCall *s_getInfo;

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
        s_getInfo = CUFindFunction<GetInfoCall>("user32.dll", "GetMonitorInfoA");
        s_fromRect = CUFindFunction<FromRectCall>("user32.dll", "MonitorFromRect");
    }
    CMonitorInfo info = {};
    info.cbSize = sizeof info;
    if (s_fromRect && s_getInfo && s_getInfo(s_fromRect(&rect, NEAREST), &info))
        return {info.all, info.work};
    return CUIPrimaryScreen();
}
