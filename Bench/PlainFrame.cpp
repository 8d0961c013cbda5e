// What FrameProgram shows, on plain Win32 with the system's toolbar and status bar.
#include "FrameProgram.h"

#include <windows.h>

#include <commctrl.h>

namespace {

HWND s_hBar, s_hStatusBar, s_hClient;

void Layout(HWND hFrame)
{
    RECT room, bar, status;
    SendMessageA(s_hBar, TB_AUTOSIZE, 0, 0);
    SendMessageA(s_hStatusBar, WM_SIZE, 0, 0);
    GetClientRect(hFrame, &room);
    GetWindowRect(s_hBar, &bar);
    GetWindowRect(s_hStatusBar, &status);
    const int nTop = bar.bottom - bar.top;
    MoveWindow(s_hClient, 0, nTop, room.right, room.bottom - (status.bottom - status.top) - nTop,
               TRUE);
}

void MakeChildren(HWND hFrame, HINSTANCE hInstance)
{
    TBBUTTON buttons[FRAME_BUTTONS] = {};
    for (int i = 0; i < FRAME_BUTTONS; ++i) {
        buttons[i].iBitmap = i;
        buttons[i].idCommand = ID_FRAME_FIRST + i;
        buttons[i].fsState = TBSTATE_ENABLED;
        buttons[i].fsStyle = TBSTYLE_BUTTON;
    }
    s_hBar = CreateToolbarEx(hFrame, WS_CHILD | WS_VISIBLE, 1, FRAME_BUTTONS, HINST_COMMCTRL,
                             IDB_STD_SMALL_COLOR, buttons, FRAME_BUTTONS, 16, 16, 16, 16,
                             sizeof(TBBUTTON));
    s_hStatusBar = CreateStatusWindowA(WS_CHILD | WS_VISIBLE, FRAME_READY, hFrame, 2);
    s_hClient = CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_MULTILINE,
                                0, 0, 0, 0, hFrame, reinterpret_cast<HMENU>(3), hInstance, nullptr);
}

LRESULT CALLBACK FrameProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_SIZE: Layout(hWnd); return 0;
    case WM_SETFOCUS: SetFocus(s_hClient); return 0;
    case WM_DESTROY: PostQuitMessage(0); return 0;
    default: return DefWindowProcA(hWnd, message, wParam, lParam);
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int nShow)
{
    InitCommonControls();
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = FrameProc;
    windowClass.hInstance = hInstance;
    windowClass.hIcon = LoadIconA(nullptr, MAKEINTRESOURCEA(32512));      // IDI_APPLICATION
    windowClass.hCursor = LoadCursorA(nullptr, MAKEINTRESOURCEA(32512));  // IDC_ARROW
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    windowClass.lpszMenuName = MAKEINTRESOURCEA(IDR_FRAME);
    windowClass.lpszClassName = "PlainFrame";
    RegisterClassA(&windowClass);
    const HWND hFrame = CreateWindowExA(
        0, "PlainFrame", FRAME_TITLE, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, hInstance, nullptr);
    MakeChildren(hFrame, hInstance);
    Layout(hFrame);
    ShowWindow(hFrame, nShow);
    UpdateWindow(hFrame);
    MSG msg;
    while (GetMessageA(&msg, nullptr, 0, 0)) {
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    return 0;
}
