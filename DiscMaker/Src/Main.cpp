#include "CU/CU.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "Command/Command.h"
#include "Window/RunWindow.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShow)
{
    CUInitialize();
    CUStartExceptionHandler();
    int nExitCode = 0;
    return RunCommand(GetCommandLineA(), nExitCode) ? nExitCode : RunWindow(nShow);
}
