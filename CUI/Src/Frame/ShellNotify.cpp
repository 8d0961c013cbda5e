#include "Frame/ShellNotify.h"

#include "Window/LoadedLibrary.h"

namespace {

// The system's DLLVERSIONINFO.
struct CLibraryVersion
{
    DWORD nSize;
    DWORD nMajor;
    DWORD nMinor;
    DWORD nBuild;
    DWORD nPlatform;
};

BOOL WINAPI NoNotify(DWORD, NOTIFYICONDATAA *)
{
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return FALSE;
}

// Shells before 4.71 do not tell.
DWORD MajorVersion(HMODULE hShell)
{
    typedef HRESULT CALLBACK GetVersionCall(CLibraryVersion *);
    const auto getVersion = CUFindFunction<GetVersionCall>(hShell, "DllGetVersion");
    CLibraryVersion version = {sizeof version, 0, 0, 0, 0};
    return getVersion && getVersion(&version) >= 0 ? version.nMajor : 0;
}

}  // namespace

CCUIShellNotify &CUIShellNotify()
{
    static CCUIShellNotify s_shell;
    if (s_shell.notify)
        return s_shell;
    s_shell.notify = NoNotify;
    const HMODULE hShell = CUILoadLibrary(CUIShell32);
    if (!hShell)
        return s_shell;
    const auto notify = CUFindFunction<decltype(Shell_NotifyIconA)>(hShell, "Shell_NotifyIconA");
    if (notify)
        s_shell.notify = notify;
    s_shell.bBalloons = MajorVersion(hShell) >= 5;
    return s_shell;
}
