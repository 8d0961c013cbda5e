#pragma once

#include "CU/Platform.h"

// The two halves of CUGetStackTrace, for crash reports. Private to the layer.

// The addresses of the calls that led to where a thread stands, the innermost first.
struct CCUStackAddresses
{
    enum
    {
        Most = 64
    };
    DWORD address[Most];
    int nCount;
    bool bFirstIsExact;  // the first is where the thread stands, the others are return addresses
};

// Reads the stack from a context on: the calling thread's, or that of one that crashed and waits.
void CUWalkStack(HANDLE hThread, const CONTEXT &context, CCUStackAddresses &stack);
// One line for each address, as CUGetStackTrace writes them. Returns the number of lines.
int CUFormatStack(const CCUStackAddresses &stack, char *buffer, unsigned int size);
