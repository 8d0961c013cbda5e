#include "Drawing/BmpSharedDC.h"

#include "CU/Assert.h"
#include "Drawing/DepthMemo.h"

#define CU_SOURCE "Bmp"

CCUIBmpSharedDC g_bmpImageDC;
CCUIBmpSharedDC g_bmpMaskDC;
CCUIBmpSharedDC g_bmpWorkDC;

namespace {

CCUIDepthMemo s_depth;

}  // namespace

void CCUIBmpSharedDC::Release()
{
    if (m_hDC)
        DeleteDC(m_hDC);
    m_hDC = nullptr;
}

HDC &CCUIBmpSharedDC::For(HDC hDC)
{
    const int nBits = s_depth.Of(hDC);
    if (m_hDC && m_nBits == nBits)
        return m_hDC;
    Release();
    m_hDC = CreateCompatibleDC(hDC);
    CU_ASSERT_TEXT(m_hDC, "*pMemDC = CreateCompatibleDC(hDC)");
    m_nBits = nBits;  // what is compatible has the same
    CUAtLast(*this, [](CCULastCall &call) { static_cast<CCUIBmpSharedDC &>(call).Release(); });
    return m_hDC;
}
