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
    // Waits for the end.
    DWORD ExitCode() const
    {
        DWORD nCode = STILL_ACTIVE;
        WaitForSingleObject(m_process.hProcess, INFINITE);
        GetExitCodeProcess(m_process.hProcess, &nCode);
        return nCode;
    }

protected:
    PROCESS_INFORMATION m_process;
};
