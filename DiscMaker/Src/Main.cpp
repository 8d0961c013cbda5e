#include "CU/CU.h"
#include "CUI/Platform.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    CUInitialize();
    return 0;
}
