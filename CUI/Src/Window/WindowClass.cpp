#include "CUI/WindowClass.h"

#include "Base/Module.h"
#include "CU/Assert.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "CUI/Data.h"

#define CU_SOURCE "WindowClass"

namespace {

struct CClassNames
{
    CCUString window = "pzl-Window";
    CCUString mdiWindow = "pzl-MDIWindow";
    CCUString controlBar = "pzl-ControlBAR";
    CCUString frameWindow = "pzl-FrameWindow";
};

CCUShared<CClassNames> s_classNames;

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

// The classes that CUIUnloadClasses takes back.
ATOM s_classes[64];

// Puts a class down there. 0 stands for a class that could not be registered, and is the answer
// then.
int NoteClass(ATOM atom)
{
    for (ATOM &noted : s_classes) {
        if (noted == atom || !noted) {
            noted = atom;
            break;
        }
    }
    return atom != 0;
}

}  // namespace

unsigned short g_nRegisteredClasses;

const CCUString &CUIWindowClassName(unsigned short id)
{
    const CClassNames &names = s_classNames.Get();
    switch (id) {
    case CUI_CLASS_WINDOW: return names.window;
    case CUI_CLASS_MDIWINDOW: return names.mdiWindow;
    case CUI_CLASS_CONTROLBAR: return names.controlBar;
    case CUI_CLASS_FRAMEWINDOW: return names.frameWindow;
    default: CU_ASSERT_TEXT(false, "0"); return names.window;
    }
}

int CUIRegisterWindowClass(WNDCLASSA *pClass)
{
    pClass->hInstance = CUInstance();
    // One thread at a time: Wine 8 tells the second that the class exists before it can be used.
    const CCUMutexGuard guard;
    WNDCLASSA present;
    // A class that has DefWindowProcA in the place of its own procedure was left by an earlier load
    // of this module, some window of which had to stay. It is registered anew.
    const auto atom =
        static_cast<ATOM>(GetClassInfoA(pClass->hInstance, pClass->lpszClassName, &present));
    if (atom &&
        (present.lpfnWndProc == pClass->lpfnWndProc || present.lpfnWndProc != DefWindowProcA ||
         !UnregisterClassA(pClass->lpszClassName, pClass->hInstance)))
        return NoteClass(atom);
    if (NoteClass(RegisterClassA(pClass)))
        return 1;
    const DWORD nError = GetLastError();
    CCUString sName;
    if (IS_INTRESOURCE(pClass->lpszClassName))
        sName.Format("#%u", reinterpret_cast<UINT>(pClass->lpszClassName));
    else
        sName = pClass->lpszClassName;
    CUDump("CUIWindowClass: Can't register window class %s, gle: %d\n", sName.GetString(),
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

void CUIUnloadClasses()
{
    for (const ATOM atom : s_classes) {
        if (atom)
            UnregisterClassA(MAKEINTATOM(atom), CUInstance());
    }
}
