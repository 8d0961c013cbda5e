#pragma once

#include <stdlib.h>
#include <string.h>

#include "Support/Process.h"
#include "Support/ThreadBirths.h"

// A part that this test program plays as another process, with the environment (and so the
// temporary directory) of the test that starts it:
//     CHILD_PROCESS(Crash) { *static_cast<volatile int *>(nullptr) = 0; }
//     EXPECT_EQ(0xC0000005, CChildProcess("Crash").ExitCode());
// It runs while global objects are constructed, and ends with exit(0).
class CChildProcess : public CProcess
{
public:
    explicit CChildProcess(const char *part) : CProcess(CommandLine(part))
    {
        SetEnvironmentVariableA("TEST_PART", nullptr);
    }
    template <typename F>
    static bool Play(const char *part, F play)
    {
        const char *wanted = getenv("TEST_PART");
        if (!wanted || strcmp(wanted, part) != 0)
            return false;
        SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
        atexit(WaitForThreadBirths);
        play();
        exit(0);
    }

private:
    static std::string CommandLine(const char *part)
    {
        SetEnvironmentVariableA("TEST_PART", part);
        char szProgram[MAX_PATH];
        GetModuleFileNameA(nullptr, szProgram, MAX_PATH);
        return std::string("\"") + szProgram + "\"";
    }
};

#define CHILD_PROCESS(part)                                               \
    static void Play##part();                                             \
    static const bool s_b##part = CChildProcess::Play(#part, Play##part); \
    static void Play##part()
