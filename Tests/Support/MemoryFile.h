#pragma once

#include <string.h>
#include <vector>

#include "Support/ImportHook.h"

// The file that this program opens, whatever the name, as long as the object lives, without a disk:
// for tests that read more files than a disk is good for. Read only; the system itself does not see
// it.
class CMemoryFile
{
public:
    explicit CMemoryFile(const std::vector<BYTE> &bytes) { s_pBytes = &bytes; }

private:
    static HANDLE WINAPI Open(const char *, DWORD, DWORD, void *, DWORD, DWORD, HANDLE)
    {
        s_nAt = 0;
        return reinterpret_cast<HANDLE>(0x0F11E);
    }
    static BOOL WINAPI Read(HANDLE, void *p, DWORD nCount, DWORD *pnRead, OVERLAPPED *)
    {
        const DWORD nSize = static_cast<DWORD>(s_pBytes->size());
        const DWORD nLeft = s_nAt < nSize ? nSize - s_nAt : 0;
        *pnRead = nCount < nLeft ? nCount : nLeft;
        if (*pnRead)
            memcpy(p, s_pBytes->data() + s_nAt, *pnRead);
        s_nAt += *pnRead;
        return TRUE;
    }
    static DWORD WINAPI Seek(HANDLE, LONG nBy, LONG *, DWORD nFrom)
    {
        const DWORD from[] = {0, s_nAt, static_cast<DWORD>(s_pBytes->size())};
        return s_nAt = from[nFrom] + static_cast<DWORD>(nBy);
    }
    static BOOL WINAPI Close(HANDLE) { return TRUE; }

    inline static const std::vector<BYTE> *s_pBytes;
    inline static DWORD s_nAt;
    const CImportHook m_hooks[4] = {{"CreateFileA", Open},
                                    {"ReadFile", Read},
                                    {"SetFilePointer", Seek},
                                    {"CloseHandle", Close}};
};
