#include "Frame/BufferedPaint.h"

#include "Base/Wrap.h"
#include "CUI/Data.h"
#include "CUI/OffScreenDC.h"

int CUIScale(int n)
{
    return MulDiv(n, CUIGetWinData()->cyPixelsPerInch, 96);
}

COLORREF CUISystemColor(int nIndex)
{
    return CUIGetWinData()->ResolveColor(CUIGetWinData()->crSys[nIndex]);
}

void CUIReloadSystemColors(CCUIBitmap &bitmap)
{
    const CUIBitmapSource *const pSource = bitmap.GetData()->m_pSource;
    if (pSource && (pSource->m_wFlags & CUIBMP_SYSCOLORS))
        bitmap.ReLoad(nullptr, nullptr, 0);
}

CCUIBufferedPaint::CCUIBufferedPaint(HWND hWnd, HDC hGiven)
    : m_hWnd(hWnd), m_hGiven(hGiven), m_paint()
{
    RECT client = {};
    GetClientRect(hWnd, &client);
    m_hTarget = hGiven ? hGiven : BeginPaint(hWnd, &m_paint);
    m_rcArea = hGiven ? client : m_paint.rcPaint;
    m_hDC = CUIGetOSDC()->GetDC(m_hTarget, client.right, client.bottom);
    SetBkMode(m_hDC, TRANSPARENT);
}

CCUIBufferedPaint::~CCUIBufferedPaint()
{
    BitBlt(m_hTarget, m_rcArea.left, m_rcArea.top, CUIWidth(m_rcArea), CUIHeight(m_rcArea), m_hDC,
           m_rcArea.left, m_rcArea.top, SRCCOPY);
    CUIGetOSDC()->ReleaseDC();
    if (!m_hGiven)
        EndPaint(m_hWnd, &m_paint);
}

bool CCUIBufferedPaint::Touches(const RECT &rect) const
{
    return rect.left < m_rcArea.right && rect.right > m_rcArea.left && rect.top < m_rcArea.bottom &&
           rect.bottom > m_rcArea.top;
}
