#include "CUI/WindowClass.h"

#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CUI/Data.h"

#define CU_SOURCE "WindowClass"

namespace {

HICON LoadClassIcon()
{
    HICON hIcon = LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(CUI_CLASS_ICON));
    return hIcon ? hIcon : LoadIconA(nullptr, MAKEINTRESOURCEA(32512));  // IDI_APPLICATION
}

HBRUSH SystemColorBrush(int nColor)
{
    return reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(nColor + 1));
}

// Registers one of the framework's classes from what the record holds by now.
int RegisterAs(WNDCLASSA &windowClass, unsigned short id)
{
    windowClass.lpszClassName = CUIWindowClassName(id);
    return CUIRegisterWindowClass(&windowClass);
}

}  // namespace

unsigned short g_nRegisteredClasses;

const CCUString &CUIWindowClassName(unsigned short id)
{
    // Made by the first call and not at start-up: a global window of another source may ask before
    // this source's globals exist, and a program that makes no such window pays nothing.
    static const CCUString s_window("pzl-Window");
    static const CCUString s_mdiWindow("pzl-MDIWindow");
    static const CCUString s_controlBar("pzl-ControlBAR");
    static const CCUString s_frameWindow("pzl-FrameWindow");
    switch (id) {
    case CUI_CLASS_WINDOW: return s_window;
    case CUI_CLASS_MDIWINDOW: return s_mdiWindow;
    case CUI_CLASS_CONTROLBAR: return s_controlBar;
    case CUI_CLASS_FRAMEWINDOW: return s_frameWindow;
    default: CU_ASSERT_TEXT(false, "0"); return s_window;
    }
}

int CUIRegisterWindowClass(WNDCLASSA *pClass)
{
    pClass->hInstance = GetModuleHandleA(nullptr);
    WNDCLASSA present;
    if (GetClassInfoA(pClass->hInstance, pClass->lpszClassName, &present))
        return 1;
    if (RegisterClassA(pClass))
        return 1;
    const DWORD nError = GetLastError();
    CUDump("CUIWindowClass: Can't register window class %s, gle: %d\n", pClass->lpszClassName,
           static_cast<int>(nError));
    return 0;
}

int CUIWindowClassDoRegister(unsigned short ids)
{
    int nResult = 1;
    // One record for all: the classes with an icon come last, so that no other inherits it.
    WNDCLASSA windowClass = {};
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hCursor = CUIGetWinData()->hcurArrow;
    if (ids & CUI_CLASS_WINDOW) {
        windowClass.hbrBackground = SystemColorBrush(COLOR_WINDOW);
        nResult &= RegisterAs(windowClass, CUI_CLASS_WINDOW);
    }
    if (ids & CUI_CLASS_CONTROLBAR) {
        windowClass.hbrBackground = SystemColorBrush(COLOR_BTNFACE);
        nResult &= RegisterAs(windowClass, CUI_CLASS_CONTROLBAR);
    }
    if (ids & CUI_CLASS_MDIWINDOW) {
        windowClass.hbrBackground = nullptr;
        windowClass.hIcon = LoadClassIcon();
        nResult &= RegisterAs(windowClass, CUI_CLASS_MDIWINDOW);
    }
    if (ids & CUI_CLASS_FRAMEWINDOW) {
        windowClass.hbrBackground = SystemColorBrush(COLOR_BTNFACE);
        windowClass.hIcon = LoadClassIcon();
        nResult &= RegisterAs(windowClass, CUI_CLASS_FRAMEWINDOW);
    }
    g_nRegisteredClasses = static_cast<unsigned short>(g_nRegisteredClasses | ids);
    return nResult;
}
