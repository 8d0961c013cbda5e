#include "Command/Output.h"

#include "Base/SystemLibrary.h"
#include "CUI/Platform.h"

namespace {

const DWORD PARENT_PROCESS = static_cast<DWORD>(-1);

HANDLE OpenConsole()
{
    typedef BOOL WINAPI FAttach(DWORD);
    const auto attach = CUFindFunction<FAttach>("kernel32.dll", "AttachConsole");
    if (!attach || !attach(PARENT_PROCESS))
        return nullptr;
    const HANDLE hConsole = CreateFileA("CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
    return hConsole == INVALID_HANDLE_VALUE ? nullptr : hConsole;
}

}  // namespace

COutput::COutput() : m_hOutput(GetStdHandle(STD_OUTPUT_HANDLE)), m_bConsole(false)
{
    // A program with windows that the Explorer starts gets the number of a monitor here, from
    // Windows 98 and 2000 on: no handle.
    if (m_hOutput == INVALID_HANDLE_VALUE || GetFileType(m_hOutput) == FILE_TYPE_UNKNOWN)
        m_hOutput = nullptr;
    if (!m_hOutput)
        m_hOutput = OpenConsole();
    DWORD nMode;
    m_bConsole = m_hOutput && GetConsoleMode(m_hOutput, &nMode);
}

void COutput::WriteLine(const CCUString &sLine) const
{
    if (!m_hOutput)
        return;
    CCUString sText = sLine + "\r\n";
    const int nLength = sText.GetLength();
    if (m_bConsole) {
        CCUString sConsole;
        CharToOemBuffA(sText, sConsole.GetBufferSetLength(nLength), static_cast<DWORD>(nLength));
        sText = sConsole;
    }
    DWORD nWritten;
    WriteFile(m_hOutput, sText, static_cast<DWORD>(nLength), &nWritten, nullptr);
}
