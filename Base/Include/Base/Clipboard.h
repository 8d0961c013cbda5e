#pragma once

#include <string.h>

#include "Base/Compiler.h"
#include "CU/Platform.h"

// The clipboard, open as long as the object lives, if nobody else has it open.
class CCUClipboard
{
public:
    explicit CCUClipboard(HWND hWnd) : m_bOpen(OpenClipboard(hWnd) != FALSE) {}
    ~CCUClipboard()
    {
        if (m_bOpen)
            CloseClipboard();
    }
    CCUClipboard(const CCUClipboard &) = delete;
    CCUClipboard &operator=(const CCUClipboard &) = delete;
    explicit operator bool() const { return m_bOpen; }

private:
    const bool m_bOpen;
};

// Puts a copy of the bytes on the open clipboard, in that format.
CU_NOINLINE inline bool CUPutOnClipboard(UINT nFormat, const void *pBytes, SIZE_T nSize)
{
    const HGLOBAL hBytes = GlobalAlloc(GMEM_MOVEABLE | GMEM_DDESHARE, nSize);
    void *const pMemory = hBytes ? GlobalLock(hBytes) : nullptr;
    if (pMemory) {
        memcpy(pMemory, pBytes, nSize);
        GlobalUnlock(hBytes);
        if (SetClipboardData(nFormat, hBytes))
            return true;  // the system's from now on
    }
    if (hBytes)
        GlobalFree(hBytes);
    return false;
}
