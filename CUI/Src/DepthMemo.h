#pragma once

#include "CUI/Platform.h"

// The BITSPIXEL of a DC that is drawn to again and again, for any thread. Asking the system can
// cost ten times the drawing (it looks the display mode up), so the last answer is kept for a
// moment. Nothing depends on noticing a change of mode sooner: drawing between depths converts.
class CCUIDepthMemo
{
public:
    int Of(HDC hDC)
    {
        // Another thread is at it: ask.
        if (InterlockedExchange(&m_bBusy, 1))
            return GetDeviceCaps(hDC, BITSPIXEL);
        const DWORD dwNow = GetTickCount();
        if (hDC != m_hDC || dwNow - m_dwAsked > s_dwKept) {
            m_hDC = hDC;
            m_dwAsked = dwNow;
            m_nBits = GetDeviceCaps(hDC, BITSPIXEL);
        }
        const int nBits = m_nBits;
        InterlockedExchange(&m_bBusy, 0);
        return nBits;
    }

private:
    static const DWORD s_dwKept = 100;  // milliseconds

    LONG m_bBusy = 0;
    HDC m_hDC = nullptr;
    DWORD m_dwAsked = 0;  // GetTickCount
    int m_nBits = 0;
};
