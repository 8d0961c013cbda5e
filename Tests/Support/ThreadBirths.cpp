#include "Support/ThreadBirths.h"

#include "CU/Platform.h"

#include <tlhelp32.h>

namespace {

// The threads that the loader has told of, which it does on the thread itself as its first deed.
volatile LONG s_begun[4096];

void Replace(LONG nOld, LONG nNew)
{
    for (volatile LONG &nThread : s_begun) {
        if (nThread == nOld && InterlockedCompareExchange(&nThread, nNew, nOld) == nOld)
            return;
    }
}

bool HasBegun(DWORD nThread)
{
    for (const volatile LONG &nBegun : s_begun) {
        if (static_cast<DWORD>(nBegun) == nThread)
            return true;
    }
    return nThread == GetCurrentThreadId();
}

void NTAPI OnLoaderNotice(void *, DWORD nReason, void *)
{
    const auto nThread = static_cast<LONG>(GetCurrentThreadId());
    if (nReason == DLL_THREAD_ATTACH)
        Replace(0, nThread);
    else if (nReason == DLL_THREAD_DETACH)
        Replace(nThread, 0);
}

bool HaveAllBegun()
{
    const HANDLE hSnapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    bool bAll = true;
    for (BOOL bMore = Thread32First(hSnapshot, &entry); bMore && bAll;
         bMore = Thread32Next(hSnapshot, &entry))
        bAll = entry.th32OwnerProcessID != GetCurrentProcessId() || HasBegun(entry.th32ThreadID);
    CloseHandle(hSnapshot);
    return bAll;
}

}  // namespace

// The linker collects the loader's callbacks from this section.
extern "C" {
extern const PIMAGE_TLS_CALLBACK g_threadBirthsCallback;
__attribute__((section(".CRT$XLF"), used)) const PIMAGE_TLS_CALLBACK g_threadBirthsCallback =
    OnLoaderNotice;
}

void WaitForThreadBirths()
{
    // A thread that is suspended from its birth on is not waited for without end.
    for (int i = 0; i < 5000 && !HaveAllBegun(); ++i)
        Sleep(1);
}
