#include "Drawing/BufferedPaint.h"

#include "Base/SystemLibrary.h"
#include "Base/Wrap.h"
#include "CUI/OffScreenDC.h"

namespace {

// Of Windows 98 and 2000.
const DWORD RIGHT_TO_LEFT = 0x1;

typedef DWORD WINAPI GetLayoutCall(HDC);
typedef DWORD WINAPI SetLayoutCall(HDC, DWORD);

// In memory x counts as it does in the place of the picture: in a mirrored window from right to
// left, where the system writes texts from left to right all the same. What is drawn otherwise
// would be seen in a mirror.
void LayOutAs(HDC hDC, HDC hTarget)
{
    static const auto s_getLayout = CUFindFunction<GetLayoutCall>("gdi32.dll", "GetLayout");
    static const auto s_setLayout = CUFindFunction<SetLayoutCall>("gdi32.dll", "SetLayout");
    if (!s_getLayout || !s_setLayout)
        return;
    if (s_getLayout(hTarget) & RIGHT_TO_LEFT)
        s_setLayout(hDC, RIGHT_TO_LEFT);
}

}  // namespace

CCUIBufferedPaint::CCUIBufferedPaint(HWND hWnd, HDC hGiven)
    : m_hWnd(hWnd),
      m_hGiven(hGiven),
      m_hTarget(hGiven),
      m_hDC(nullptr),
      m_hOldPalette(nullptr),
      m_nSaved(0),
      m_nBegun(0),
      m_bBegun(false),
      m_rcArea()
{
    if (hGiven) {
        GetClientRect(hWnd, &m_rcArea);
    } else {
        m_hTarget = BeginPaint(hWnd, &m_paint);
        m_rcArea = m_paint.rcPaint;
    }
}

HDC CCUIBufferedPaint::Begin(HFONT hFont, HPALETTE hPalette)
{
    RECT client = {};
    GetClientRect(m_hWnd, &client);
    m_hDC = CUIGetOSDC()->GetDC(m_hTarget, client.right, client.bottom);
    m_bBegun = true;
    m_nSaved = SaveDC(m_hDC);
    LayOutAs(m_hDC, m_hTarget);
    if (hPalette) {
        m_hOldPalette = SelectPalette(m_hTarget, hPalette, FALSE);
        RealizePalette(m_hTarget);
        SelectPalette(m_hDC, hPalette, FALSE);
        RealizePalette(m_hDC);
    }
    SelectObject(m_hDC, hFont);
    SetBkMode(m_hDC, TRANSPARENT);
    m_nBegun = SaveDC(m_hDC);
    return m_hDC;
}

CCUIBufferedPaint::~CCUIBufferedPaint()
{
    if (m_bBegun) {
        // A mapping of logical units that the painting has left counts for the copy, too.
        RestoreDC(m_hDC, m_nBegun);
        BitBlt(m_hTarget, m_rcArea.left, m_rcArea.top, CUIWidth(m_rcArea), CUIHeight(m_rcArea),
               m_hDC, m_rcArea.left, m_rcArea.top, SRCCOPY);
        RestoreDC(m_hDC, m_nSaved);  // the layout too
        if (m_hOldPalette)
            SelectPalette(m_hTarget, m_hOldPalette, TRUE);
        CUIGetOSDC()->ReleaseDC();
    }
    if (!m_hGiven)
        EndPaint(m_hWnd, &m_paint);
}

bool CCUIBufferedPaint::Touches(const RECT &rect) const
{
    RECT rcBoth;
    return IntersectRect(&rcBoth, &rect, &m_rcArea) != 0;
}
