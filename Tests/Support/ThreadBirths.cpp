#include "Support/ThreadBirths.h"

#include "CU/Platform.h"

#include <tlhelp32.h>

// The threads that have begun: the loader tells of it on the thread itself as its first deed.
static volatile LONG s_nBegun = 1;

static void NTAPI OnLoaderNotice(void *, DWORD nReason, void *)
{
    if (nReason == DLL_THREAD_ATTACH)
        InterlockedIncrement(&s_nBegun);
    else if (nReason == DLL_THREAD_DETACH)
        InterlockedDecrement(&s_nBegun);
}

// The linker collects the loader's callbacks from this section.
extern "C" {
extern const PIMAGE_TLS_CALLBACK g_threadBirthsCallback;
__attribute__((section(".CRT$XLF"), used)) const PIMAGE_TLS_CALLBACK g_threadBirthsCallback =
    OnLoaderNotice;
}

static LONG CountThreads()
{
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {sizeof entry, 0, 0, 0, 0, 0, 0};
    LONG nCount = 0;
    for (BOOL bMore = Thread32First(hSnapshot, &entry); bMore;
         bMore = Thread32Next(hSnapshot, &entry))
        nCount += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(hSnapshot);
    return nCount;
}

void WaitForThreadBirths()
{
    // A thread that is suspended from its birth on is not waited for without end.
    for (int i = 0; i < 5000 && CountThreads() > s_nBegun; ++i)
        Sleep(1);
}
