// A program with 1,000 variables to be read from outside. Its plain window takes bytes and does
// nothing with them.

#include <deque>

#include "CU/CU.h"
#include "CU/Prober.h"

static LRESULT CALLBACK TakeBytes(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_COPYDATA ? 1 : DefWindowProcA(hWnd, message, wParam, lParam);
}

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int)
{
    std::deque<CCUProberLong> variables;
    for (int i = 0; i < 1000; ++i)
        variables.emplace_back("\\Bench", "Value", i);
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = TakeBytes;
    windowClass.hInstance = hInstance;
    windowClass.lpszClassName = "BenchTakeBytes";
    RegisterClassA(&windowClass);
    CreateWindowA("BenchTakeBytes", "", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, hInstance, nullptr);
    CUGetWindow();
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0))
        DispatchMessageA(&msg);
    return 0;
}
