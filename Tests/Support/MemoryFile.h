#pragma once

#include <string.h>
#include <vector>

#include "Support/ImportHook.h"

// A file that this program finds under Name() as long as the object lives, without a disk: for
// tests that read more files than a disk is good for. One handle at a time, read only; the system
// itself does not see it.
class CMemoryFile
{
public:
    CMemoryFile()
        : m_create("CreateFileA", Create),
          m_read("ReadFile", Read),
          m_seek("SetFilePointer", Seek),
          m_close("CloseHandle", Close)
    {
        s_pFile = this;
    }

    static const char *Name() { return "<memory>"; }
    std::vector<BYTE> m_bytes;

private:
    static HANDLE Handle() { return reinterpret_cast<HANDLE>(0x0F11E); }
    static HANDLE WINAPI Create(const char *name, DWORD nAccess, DWORD nShare,
                                SECURITY_ATTRIBUTES *pSecurity, DWORD nHow, DWORD nFlags, HANDLE h)
    {
        s_pFile->m_nAt = 0;
        return strcmp(name, Name()) == 0 ? Handle()
                                         : s_pFile->m_create.Original<decltype(CreateFileA)>()(
                                               name, nAccess, nShare, pSecurity, nHow, nFlags, h);
    }
    static BOOL WINAPI Read(HANDLE h, void *p, DWORD nCount, DWORD *pnRead, OVERLAPPED *pOverlapped)
    {
        if (h != Handle())
            return s_pFile->m_read.Original<decltype(ReadFile)>()(h, p, nCount, pnRead,
                                                                  pOverlapped);
        const DWORD nSize = static_cast<DWORD>(s_pFile->m_bytes.size());
        const DWORD nLeft = s_pFile->m_nAt < nSize ? nSize - s_pFile->m_nAt : 0;
        *pnRead = nCount < nLeft ? nCount : nLeft;
        if (*pnRead)
            memcpy(p, s_pFile->m_bytes.data() + s_pFile->m_nAt, *pnRead);
        s_pFile->m_nAt += *pnRead;
        return TRUE;
    }
    static DWORD WINAPI Seek(HANDLE h, LONG nBy, LONG *pnHigh, DWORD nFrom)
    {
        if (h != Handle())
            return s_pFile->m_seek.Original<decltype(SetFilePointer)>()(h, nBy, pnHigh, nFrom);
        const DWORD from[] = {0, s_pFile->m_nAt, static_cast<DWORD>(s_pFile->m_bytes.size())};
        return s_pFile->m_nAt = from[nFrom] + static_cast<DWORD>(nBy);
    }
    static BOOL WINAPI Close(HANDLE h)
    {
        return h == Handle() || s_pFile->m_close.Original<decltype(CloseHandle)>()(h);
    }

    inline static CMemoryFile *s_pFile = nullptr;
    CImportHook m_create;
    CImportHook m_read;
    CImportHook m_seek;
    CImportHook m_close;
    DWORD m_nAt = 0;
};
