#pragma once

#include "CU/Platform.h"

#include <mmsystem.h>

#include "Base/Compiler.h"
#include "Base/Lifetime.h"

extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(readability-identifier-naming): the linker's

// The program or module (DLL) that has the framework inside. Classes and windows are made in its
// name. In the program's name a module could not take its classes back: other modules may have made
// classes there with the same names.
inline HINSTANCE CUInstance()
{
    return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

// The end of a module (DLL) with the framework inside. A program's ends with its process, where the
// system takes everything back; FreeLibrary takes the code away and leaves what points to it. Each
// source that hands something to the system has a function here that takes it back. Module.cpp,
// which is linked into modules alone, calls those that are linked; in a program nobody calls them,
// and the linker drops them. They run under the loader's lock, so none of them waits for another
// thread. (The system does, in DestroyWindow, when the window's parent or children belong to one.)

#if defined(CU_MODULE)
#define CU_UNLOAD CU_WEAK
#else
#define CU_UNLOAD
#endif

enum CUUnloadPhase : int
{
    // Before the statics are destroyed: what belongs to other threads.
    CUUnloadOthers,
    // After that: the rest.
    CUUnloadRest
};

CU_UNLOAD void CUIUnloadWindows(CUUnloadPhase phase);
CU_UNLOAD void CUIUnloadClasses();
CU_UNLOAD void CUIUnloadData();
CU_UNLOAD void CUIUnloadLibraries();
CU_UNLOAD void CUModuleThreadEnd();
CU_UNLOAD void CUUnloadThreadEnd();
CU_UNLOAD void CUUnloadTimers(CUUnloadPhase phase);
CU_UNLOAD void CUUnloadMessageWindow(CUUnloadPhase phase);
CU_UNLOAD void CUUnloadCrashReport();
CU_UNLOAD void CUUnloadProcessInfo();
CU_UNLOAD void CUUnloadMultimedia();
CU_UNLOAD void CUUnloadSlots();

// For functions that end windows in either phase: whether it is a window's turn.
inline bool CUIsUnloadTurn(HWND hWnd, CUUnloadPhase phase)
{
    return phase == CUUnloadRest || GetWindowThreadProcessId(hWnd, nullptr) != GetCurrentThreadId();
}

// Ends a window of the module's. Another thread's cannot be destroyed from here: it gets the
// system's procedures and is asked to close, which it does when its thread looks for messages.
void CUUnloadWindow(HWND hWnd);

// In a module, the callback for multimedia timers that posts uMessage with the timer's identifier
// to the window that is its user data. It stands outside of the module. Null when it cannot be had.
// In a program there is no such function.
#if defined(CU_MODULE)
LPTIMECALLBACK CUModuleTimerCallback(UINT uMessage);
#else
CU_WEAK LPTIMECALLBACK CUModuleTimerCallback(UINT uMessage);
#endif
