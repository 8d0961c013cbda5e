#include "BmpSharedDC.h"

#include "CU/Assert.h"
#include "DepthMemo.h"

#define CU_SOURCE "Bmp"

CCUIBmpSharedDC g_bmpImageDC;
CCUIBmpSharedDC g_bmpMaskDC;
CCUIBmpSharedDC g_bmpWorkDC;

static CCUIDepthMemo s_depth;

CCUIBmpSharedDC::~CCUIBmpSharedDC()
{
    if (m_hDC)
        DeleteDC(m_hDC);
}

HDC CCUIBmpSharedDC::For(HDC hDC)
{
    const int nBits = s_depth.Of(hDC);
    if (m_hDC && m_nBits == nBits)
        return m_hDC;
    if (m_hDC)
        DeleteDC(m_hDC);
    m_hDC = CreateCompatibleDC(hDC);
    CU_ASSERT_TEXT(m_hDC, "*pMemDC = CreateCompatibleDC(hDC)");
    m_nBits = nBits;  // compatible: the same
    return m_hDC;
}
