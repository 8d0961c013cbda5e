#pragma once

#include <stdio.h>
#include <stdlib.h>

#include "Bench.h"

// Seconds from the creation of the process until it waits for input, its window painted; `close`
// then has the program end.
template <typename Close>
double TimeProgramStart(const char *path, Close close)
{
    char commandLine[MAX_PATH];
    lstrcpynA(commandLine, path, MAX_PATH);
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process;
    const double start = BenchNow();
    if (!CreateProcessA(nullptr, commandLine, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
    {
        fprintf(stderr, "cannot start %s\n", path);
        exit(1);
    }
    WaitForInputIdle(process.hProcess, INFINITE);
    const double took = BenchNow() - start;
    close();
    if (WaitForSingleObject(process.hProcess, 60000) != WAIT_OBJECT_0)
        TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return took;
}
