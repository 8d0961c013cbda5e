#pragma once

#include "CUI/Data.h"

// The BITSPIXEL of a DC that is drawn to again and again, for any thread. Asking the system can
// cost ten times the drawing (Wine 8 looks the display mode up), so the last answer is kept for a
// moment. Nothing depends on noticing a change of mode sooner: drawing between depths converts.
// On some systems the answer follows the bitmap in a memory DC, so it counts only while that one
// stays selected. Windows 95 is always asked: there another bitmap may have the same handle soon.
class CCUIDepthMemo
{
public:
    int Of(HDC hDC)
    {
        // Another thread is at it: ask.
        if (InterlockedExchange(&m_bBusy, 1))
            return GetDeviceCaps(hDC, BITSPIXEL);
        const DWORD dwNow = GetTickCount();
        const HGDIOBJ hBitmap = GetCurrentObject(hDC, OBJ_BITMAP);
        if (hDC != m_hDC || hBitmap != m_hBitmap || dwNow - m_dwAsked > s_dwKept ||
            CUIGetWinData()->bWin9x) {
            m_hDC = hDC;
            m_hBitmap = hBitmap;
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
    HGDIOBJ m_hBitmap = nullptr;  // in m_hDC
    DWORD m_dwAsked = 0;          // GetTickCount
    int m_nBits = 0;
};
