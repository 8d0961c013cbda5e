#pragma once

#include <string>

#include "Support/Process.h"

// A program with a window, started as a process of its own.
class CStartedProgram : public CProcess
{
public:
    // Returns when the program shows a window, or has ended without.
    explicit CStartedProgram(const std::string &commandLine, const std::string &folder = ".")
        : CProcess(commandLine, folder.c_str())
    {
        while (!m_hWnd && WaitForSingleObject(m_process.hProcess, 20) == WAIT_TIMEOUT)
            EnumWindows(Find, reinterpret_cast<LPARAM>(this));
    }
    HWND Window() const { return m_hWnd; }
    // Gives the command, waits for the end and returns the exit code.
    DWORD End(WORD nCommand) const
    {
        PostMessageA(m_hWnd, WM_COMMAND, nCommand, 0);
        return ExitCode();
    }

private:
    static BOOL CALLBACK Find(HWND hWnd, LPARAM lParam)
    {
        auto &self = *reinterpret_cast<CStartedProgram *>(lParam);
        DWORD nProcess = 0;
        GetWindowThreadProcessId(hWnd, &nProcess);
        if (nProcess == self.Id() && IsWindowVisible(hWnd))
            self.m_hWnd = hWnd;
        return !self.m_hWnd;
    }

    HWND m_hWnd = nullptr;
};
