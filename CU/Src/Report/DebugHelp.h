#pragma once

#include "CU/Platform.h"

#include <imagehlp.h>

// The system's debug-help library, loaded when first needed: programs start without it, and where
// there is none (Windows 95) stacks are told without its help. Private to the layer.

// The module that holds an address, and its path, cut to what fits. 0 when no module holds it.
DWORD CUFindModule(DWORD dwAddress, char (&szPath)[MAX_PATH]);

// Calls ask(argument), which may use the functions below; one thread at a time. Does not call it
// without the library, nor with too little stack left for it. A fault inside the library ends the
// call where it stands, so `ask` must have nothing to destroy, and the library is not used again.
void CUAskDebugHelp(void (*ask)(void *), void *argument);

// Steps to the caller of the frame; false at the end of the stack.
bool CUDebugHelpWalk(HANDLE hThread, STACKFRAME &frame, CONTEXT &context);

struct CCUPlace
{
    DWORD dwAddress;        // what is asked for
    DWORD dwOffset;         // of the address in the function
    DWORD nLine;            // in the source
    char szFunction[256];   // as the debug information spells it; left alone when unknown
    char szFile[MAX_PATH];  // the source's path; left alone when unknown
};
// Fills a CCUPlace with what the debug information tells of its address. For CUAskDebugHelp.
void CUDebugHelpFindPlace(void *place);
