#pragma once

#include "CU/Platform.h"

#include <imagehlp.h>

// The system's debug-help library, loaded when first needed: programs start without it, and systems
// that have none (Windows 95) go without its help. Its functions are for one thread at a time: use
// under CCUDebugHelp's lock. Private to the layer.
class CCUDebugHelp
{
public:
    // Takes the lock; the library may still be missing.
    CCUDebugHelp();
    ~CCUDebugHelp();
    CCUDebugHelp(const CCUDebugHelp &) = delete;
    CCUDebugHelp &operator=(const CCUDebugHelp &) = delete;

    // Steps to the caller of the frame; false at the end of the stack, or without the library.
    bool Walk(HANDLE hThread, STACKFRAME &frame, CONTEXT &context) const;
    // The function that holds the address, as the debug information spells it, and how far into it
    // the address lies. False when unknown.
    bool GetFunction(DWORD dwAddress, char *name, unsigned int nSize, DWORD &dwOffset) const;
    // The source line of the address. The file's name is the library's and holds until the next
    // call. False when unknown.
    bool GetLine(DWORD dwAddress, const char *&file, DWORD &nLine) const;
};
