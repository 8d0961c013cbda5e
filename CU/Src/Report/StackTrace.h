#pragma once

#include "CU/Platform.h"

// Steps of a stack trace that crash reports take one by one. Private to the layer.

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

// From the state of the calling thread, or of one that crashed and stands still, on.
void CUWalkStack(HANDLE hThread, const CONTEXT &context, CCUStackAddresses &stack);
// One line for each address, as CUGetStackTrace writes them. Returns the number of lines.
int CUFormatStack(const CCUStackAddresses &stack, char *buffer, unsigned int size);
