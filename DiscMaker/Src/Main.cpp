#include "CU/CU.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "Window/RunWindow.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShow)
{
    CUInitialize();
    CUStartExceptionHandler();
    return RunWindow(nShow);
}
