#pragma once

#include <string>

#include "CU/Platform.h"

// A process that was started; it goes on without the object.
class CProcess
{
public:
    explicit CProcess(std::string commandLine, const char *folder = nullptr)
    {
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, FALSE, 0, nullptr, folder,
                       &startup, &m_process);
    }
    ~CProcess()
    {
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    CProcess(const CProcess &) = delete;
    CProcess &operator=(const CProcess &) = delete;

    HANDLE Process() const { return m_process.hProcess; }
    DWORD Id() const { return m_process.dwProcessId; }
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

protected:
    PROCESS_INFORMATION m_process = {};
};
