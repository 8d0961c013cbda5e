#pragma once

#include <stdlib.h>
#include <string.h>

#include <string>

#include "CU/Platform.h"
#include "Support/ThreadBirths.h"

// A part that this test program plays as another process, with the environment (and so the
// temporary directory) of the test that starts it:
//     CHILD_PROCESS(Crash) { *static_cast<volatile int *>(nullptr) = 0; }
//     EXPECT_EQ(0xC0000005, CChildProcess("Crash").ExitCode());
// It runs while global objects are constructed, and ends with exit(0).
class CChildProcess
{
public:
    explicit CChildProcess(const char *part, const char *arguments = "",
                           const char *folder = nullptr)
    {
        char szProgram[MAX_PATH];
        GetModuleFileNameA(nullptr, szProgram, MAX_PATH);
        std::string commandLine = '"' + std::string(szProgram) + "\" " + arguments;
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        SetEnvironmentVariableA("TEST_PART", part);
        CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, FALSE, 0, nullptr, folder,
                       &startup, &m_process);
        SetEnvironmentVariableA("TEST_PART", nullptr);
    }
    ~CChildProcess()
    {
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    CChildProcess(const CChildProcess &) = delete;
    CChildProcess &operator=(const CChildProcess &) = delete;

    DWORD Id() const { return m_process.dwProcessId; }
    bool IsRunning() const { return WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT; }
    // Waits for the end, and makes one for a process that hangs.
    DWORD ExitCode() const
    {
        DWORD nCode = STILL_ACTIVE;
        if (WaitForSingleObject(m_process.hProcess, 120000) == WAIT_TIMEOUT)
            TerminateProcess(m_process.hProcess, WAIT_TIMEOUT);
        WaitForSingleObject(m_process.hProcess, INFINITE);
        GetExitCodeProcess(m_process.hProcess, &nCode);
        return nCode;
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
    PROCESS_INFORMATION m_process = {};
};

#define CHILD_PROCESS(part)                                               \
    static void Play##part();                                             \
    static const bool s_b##part = CChildProcess::Play(#part, Play##part); \
    static void Play##part()
