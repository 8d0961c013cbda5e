// Adds a line to every report in the report file of the process that loads it.

#include "CU/Assert.h"

static void OnReport(FILE *file)
{
    fputs("Module: still here\n", file);
}

BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, void *)
{
    if (dwReason == DLL_PROCESS_ATTACH)
        CURegisterExceptionHandler(OnReport);
    else if (dwReason == DLL_PROCESS_DETACH)
        CUUnregisterExceptionHandler(OnReport);
    return TRUE;
}
