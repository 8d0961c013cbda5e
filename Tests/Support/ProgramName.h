#pragma once

#include <string>

#include "CU/Platform.h"

// The file name of this test program, as stacks name its module.
inline std::string ProgramName()
{
    char szPath[MAX_PATH];
    GetModuleFileNameA(nullptr, szPath, MAX_PATH);
    return strrchr(szPath, '\\') + 1;
}
