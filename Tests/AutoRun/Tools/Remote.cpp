// Looks at and speaks to the dialog with a caption, from another process; runs a program with a
// temporary directory of its own, until it ends, and takes it along when it is ended itself.
// Usage: Remote info CAPTION | send CAPTION MESSAGE WPARAM LPARAM |
//        shot CAPTION FILE.bmp | run DIRECTORY COMMANDLINE
#undef _WIN32_WINNT
#define _WIN32_WINNT 0x0500  // job objects
#undef WINVER
#define WINVER 0x0500
#include "SaveBitmap.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

namespace {

int Info(HWND hWnd)
{
    RECT window, client;
    GetWindowRect(hWnd, &window);
    GetClientRect(hWnd, &client);
    printf("rect %ld %ld %ld %ld\n", window.left, window.top, window.right, window.bottom);
    printf("client %ld %ld\n", client.right, client.bottom);
    printf("screen %d %d\n", GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    printf("style %lx\n", GetWindowLongA(hWnd, GWL_STYLE));
    printf("exstyle %lx\n", GetWindowLongA(hWnd, GWL_EXSTYLE));
    return 0;
}

// The window as it is on the screen, in the colours that the screen shows it in.
int Shot(HWND hWnd, const char *path)
{
    RECT client;
    GetClientRect(hWnd, &client);
    const HDC hWindow = GetDC(hWnd);
    const HDC hDC = CreateCompatibleDC(hWindow);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hWindow, client.right, client.bottom);
    SelectObject(hDC, hBitmap);
    BitBlt(hDC, 0, 0, client.right, client.bottom, hWindow, 0, 0, SRCCOPY);
    const bool bSaved = SaveBitmap(path, hDC, hBitmap, {client.right, client.bottom});
    ReleaseDC(hWnd, hWindow);
    return bSaved ? 0 : 4;
}

int Run(const char *directory, char *commandLine)
{
    SetEnvironmentVariableA("TMP", directory);
    SetEnvironmentVariableA("TEMP", directory);
    const HANDLE hJob = CreateJobObjectA(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(hJob, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(nullptr, commandLine, nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr,
                        nullptr, &startup, &process))
        return 200;
    AssignProcessToJobObject(hJob, process.hProcess);
    ResumeThread(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD nCode = 201;
    GetExitCodeProcess(process.hProcess, &nCode);
    return static_cast<int>(nCode);
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc == 4 && strcmp(argv[1], "run") == 0)
        return Run(argv[2], argv[3]);
    const HWND hWnd = argc > 2 ? FindWindowA("#32770", argv[2]) : nullptr;
    if (!hWnd) {
        fprintf(stderr, "no such window\n");
        return 2;
    }
    if (strcmp(argv[1], "info") == 0)
        return Info(hWnd);
    if (strcmp(argv[1], "shot") == 0 && argc > 3)
        return Shot(hWnd, argv[3]);
    if (strcmp(argv[1], "send") != 0 || argc < 6)
        return 3;
    printf("%ld\n", SendMessageA(hWnd, strtoul(argv[3], nullptr, 0), strtoul(argv[4], nullptr, 0),
                                 static_cast<LPARAM>(strtoul(argv[5], nullptr, 0))));
    return 0;
}
