#pragma once

#include "CU/Platform.h"

#include <imagehlp.h>

// The system's debug-help library, loaded when first needed: programs start without it, and systems
// that have none (Windows 95) go without its help. Private to the layer.

// Calls ask(argument), which may use the functions below, for one thread at a time. It is not
// called without the library, nor on a thread with too little stack left for it. Whatever fault the
// library makes ends the call, wherever it stands, and the library is not used again; so `ask` has
// nothing to destroy.
void CUAskDebugHelp(void (*ask)(void *), void *argument);

// Steps to the caller of the frame; false at the end of the stack.
bool CUDebugHelpWalk(HANDLE hThread, STACKFRAME &frame, CONTEXT &context);

struct CCUPlace
{
    DWORD dwAddress;        // asked for
    DWORD dwOffset;         // into the function
    DWORD nLine;            // of the source
    char szFunction[256];   // as the debug information spells it; stays as it was when unknown
    char szFile[MAX_PATH];  // the source's path; the same
};
// What the debug information tells of an address, in a CCUPlace.
void CUDebugHelpFindPlace(void *place);
