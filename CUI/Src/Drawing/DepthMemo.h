#pragma once

#include "CUI/Platform.h"

// The BITSPIXEL of a DC that is drawn to again and again, for any thread. Asking the system can
// cost ten times the drawing (Wine 8 looks the display mode up), so the last answer is kept for a
// moment. Nothing depends on noticing a change of mode sooner: drawing between depths converts.
// Wine 8 answers for the display whatever bitmap a memory DC has, but no documentation promises
// that: the answer counts only while the bitmap stays selected. Windows 95 is always asked: there
// another bitmap may have the same handle soon.
class CCUIDepthMemo
{
public:
    int Of(HDC hDC);

private:
    volatile LONG m_nLock = 0;
    HDC m_hDC = nullptr;
    HGDIOBJ m_hBitmap = nullptr;  // in m_hDC
    DWORD m_dwAsked = 0;          // GetTickCount
    int m_nBits = 0;
};
