#include "Base/Module.h"

void CUUnloadWindow(HWND hWnd)
{
    const LONG nDefWindowProc = reinterpret_cast<LONG>(DefWindowProcA);
    if (reinterpret_cast<HINSTANCE>(GetClassLongA(hWnd, GCL_HMODULE)) == CUInstance())
        SetClassLongA(hWnd, GCL_WNDPROC, nDefWindowProc);
    SetWindowLongA(hWnd, GWL_WNDPROC, static_cast<LONG>(GetClassLongA(hWnd, GCL_WNDPROC)));
    const DWORD nDialogClass = 32770;
    // A dialog box answers WM_CLOSE with a command of its own, unless its procedure takes it.
    if (GetClassLongA(hWnd, GCW_ATOM) == nDialogClass)
        SetWindowLongA(hWnd, DWL_DLGPROC, nDefWindowProc);
    if (GetWindowThreadProcessId(hWnd, nullptr) == GetCurrentThreadId())
        DestroyWindow(hWnd);
    else
        PostMessageA(hWnd, WM_CLOSE, 0, 0);
}
