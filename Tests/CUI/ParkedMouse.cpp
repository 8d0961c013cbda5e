// Every test begins with the mouse where no window of a test is. The system tells windows of the
// real mouse, too, when they appear below it or have the capture, between the messages that a test
// makes.
#include <gtest/gtest.h>

#include "CU/Platform.h"

namespace {

class CParkedMouse : public testing::Environment
{
    void SetUp() override
    {
        const POINT parked = {GetSystemMetrics(SM_CXSCREEN) - 2, GetSystemMetrics(SM_CYSCREEN) - 2};
        // A move is told some time later: it has been when a window there hears of it.
        const HWND hWnd =
            CreateWindowExA(WS_EX_TOPMOST, "STATIC", "", WS_POPUP | WS_VISIBLE | SS_NOTIFY,
                            parked.x - 8, parked.y - 8, 10, 10, nullptr, nullptr, nullptr, nullptr);
        // Two moves: the system may believe that the mouse is there already.
        SetCursorPos(parked.x - 4, parked.y - 4);
        SetCursorPos(parked.x, parked.y);
        MSG msg = {};
        for (int i = 0; i < 100 && msg.message != WM_MOUSEMOVE; ++i) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
            while (msg.message != WM_MOUSEMOVE && PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
                DispatchMessageA(&msg);
        }
        DestroyWindow(hWnd);
    }
};

const testing::Environment *const s_pMouse = testing::AddGlobalTestEnvironment(new CParkedMouse);

}  // namespace
