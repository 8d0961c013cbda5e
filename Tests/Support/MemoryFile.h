#pragma once

#include <string.h>

#include <algorithm>
#include <vector>

#include "Support/ImportHook.h"

// The file that this program opens, whatever the name, as long as the object lives, without a disk:
// for tests that read more files than a disk is good for. Read only; the system itself does not see
// it.
class CMemoryFile
{
public:
    explicit CMemoryFile(const std::vector<BYTE> &bytes) : m_bytes(bytes) {}

private:
    BOOL Read(void *p, DWORD nCount, DWORD *pnRead)
    {
        *pnRead = m_nAt < m_bytes.size() ? std::min<DWORD>(nCount, m_bytes.size() - m_nAt) : 0;
        if (*pnRead)
            memcpy(p, m_bytes.data() + m_nAt, *pnRead);
        m_nAt += *pnRead;
        return TRUE;
    }

    const std::vector<BYTE> &m_bytes;
    DWORD m_nAt = 0;
    CFakeCall<HANDLE(const char *, DWORD, DWORD, void *, DWORD, DWORD, HANDLE)> m_open{
        "CreateFileA", [this](auto...) {
            m_nAt = 0;
            return reinterpret_cast<HANDLE>(0x0F11E);
        }};
    CFakeCall<BOOL(HANDLE, void *, DWORD, DWORD *, void *)> m_read{
        "ReadFile", [this](HANDLE, void *p, DWORD nCount, DWORD *pnRead, void *) {
            return Read(p, nCount, pnRead);
        }};
    CFakeCall<DWORD(HANDLE, LONG, LONG *, DWORD)> m_seek{
        "SetFilePointer", [this](HANDLE, LONG nBy, LONG *, DWORD nFrom) {
            const DWORD from[] = {0, m_nAt, static_cast<DWORD>(m_bytes.size())};
            return m_nAt = from[nFrom] + static_cast<DWORD>(nBy);
        }};
    CFakeCall<BOOL(HANDLE)> m_close{"CloseHandle", [](auto...) { return TRUE; }};
};
