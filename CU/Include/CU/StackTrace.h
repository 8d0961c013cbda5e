#pragma once

/// @file
/// Who called whom.

#include "CU/Platform.h"

/// Writes the calls that led to where a thread stands, innermost first, one line each: "00401a2c
/// AutoRun.exe CCUIWindow::Create+0x1c Window.cpp(120)" with as much of function, source and line
/// as the debug information at hand tells, otherwise address and place in the module only. The
/// caller's own frame is the first one. Another thread, of this process, is held for the time of
/// the walk; before Windows Vista the calling thread must be given as GetCurrentThread(). Always
/// leaves a terminated text of fewer than `size` characters; what does not fit is left out by whole
/// lines. Returns the number of lines, 0 when nothing could be walked. Keeps the last error. The
/// system's debug-help library is loaded at the first call; without it, or with less than 64 KiB of
/// stack left, the walk follows the frame pointers and the lines tell no function. So it does from
/// the moment on when the library itself fails with a fault. From inside OnThreadExit at a thread's
/// end only that thread can be walked, as GetCurrentThread(), and the lines are addresses alone.
CU_API int CUGetStackTrace(HANDLE hThread, char *buffer, unsigned int size);
