#pragma once

/// @file
/// The framework's window classes.

#include "CU/String.h"
#include "CUI/Platform.h"

/// The framework's window classes, as bits, so that one call registers several. All have
/// DefWindowProcA as their procedure: CCUIWindow binds to the single window, not to the class.
enum : unsigned short
{
    CUI_CLASS_WINDOW = 1,       ///< "pzl-Window", in the window colour
    CUI_CLASS_MDIWINDOW = 2,    ///< "pzl-MDIWindow", with no background and with the program's icon
    CUI_CLASS_CONTROLBAR = 4,   ///< "pzl-ControlBAR", in the button face's colour
    CUI_CLASS_FRAMEWINDOW = 8,  ///< "pzl-FrameWindow", the same with the program's icon
};

/// The program's icon for those classes, IDI_APPLICATION where it has none.
enum : unsigned short
{
    CUI_CLASS_ICON = 1014  ///< the id of the icon resource
};

/// The classes that have been asked for so far, whether or not their registration succeeded.
/// For the user-interface thread only, as is everything here.
extern CUI_API unsigned short g_nRegisteredClasses;

/// The name of one class. Any other value is reported as "0" and answered with the name of
/// CUI_CLASS_WINDOW.
CUI_API const CCUString &CUIWindowClassName(unsigned short id);

/// Sets the class's instance to the program, or the module, that has the framework inside, and
/// registers the class unless it is registered already. Returns 1; or 0 after a line in the trace,
/// where a name given as an atom reads "#" and its number.
CUI_API int CUIRegisterWindowClass(WNDCLASSA *pClass);

/// Registers the classes whose bits are set. Returns 1, or 0 when any of them failed.
CUI_API int CUIWindowClassDoRegister(unsigned short ids);

/// What a creator of windows of one class calls before each creation: registers on the first call
/// and does not try again after a failure.
inline int CUIWindowClassRegister(unsigned short id)
{
    return (g_nRegisteredClasses & id) ? 1 : CUIWindowClassDoRegister(id);
}
