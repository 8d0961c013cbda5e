// A library under the name of one of the system's, to be put beside a launcher: a process that
// loads it ends.

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, void *)
{
    if (dwReason == DLL_PROCESS_ATTACH)
        TerminateProcess(GetCurrentProcess(), 99);
    return TRUE;
}
