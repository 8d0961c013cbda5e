#include "BmpSharedDC.h"

#include "CU/Assert.h"

#define CU_SOURCE "Bmp"

CCUIBmpSharedDC g_bmpImageDC;
CCUIBmpSharedDC g_bmpMaskDC;
CCUIBmpSharedDC g_bmpWorkDC;

namespace {

// Asking for the depth can cost ten times a small blit (the system looks the display mode up), so
// a run of calls onto one DC asks once in a tick of the clock. Nothing depends on noticing a change
// of mode sooner: the memory DCs hold nothing between calls.
int DepthOf(HDC hDC)
{
    static HDC s_hDC = nullptr;
    static DWORD s_dwTick = 0;
    static int s_nBits = 0;
    const DWORD dwTick = GetTickCount();
    if (hDC != s_hDC || dwTick != s_dwTick) {
        s_hDC = hDC;
        s_dwTick = dwTick;
        s_nBits = GetDeviceCaps(hDC, BITSPIXEL);
    }
    return s_nBits;
}

}  // namespace

CCUIBmpSharedDC::~CCUIBmpSharedDC()
{
    if (m_hDC)
        DeleteDC(m_hDC);
}

HDC CCUIBmpSharedDC::For(HDC hDC)
{
    const int nBits = DepthOf(hDC);
    if (m_hDC && m_nBits == nBits)
        return m_hDC;
    if (m_hDC)
        DeleteDC(m_hDC);
    m_hDC = CreateCompatibleDC(hDC);
    CU_ASSERT_TEXT(m_hDC, "*pMemDC = CreateCompatibleDC(hDC)");
    m_nBits = GetDeviceCaps(m_hDC, BITSPIXEL);
    return m_hDC;
}
