#pragma once

#include "CU/Platform.h"

// The handles of a process that was started; it goes on without them.
class CProcess
{
public:
    CProcess() : m_process() {}
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
    PROCESS_INFORMATION m_process;
};
