#pragma once

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CUI/Data.h"
#include "CUI/OffScreenDC.h"

// Pixels at 96 dots an inch, on the screen as it is.
inline int CUIScale(int n)
{
    return MulDiv(n, CUIGetWinData()->cyPixelsPerInch, 96);
}

// One painting of a window's client area, in its coordinates: into memory, from where what is to be
// repainted goes to the window at the end, so that nothing flickers. No code of others may run
// meanwhile: all threads share that memory.
class CCUIBufferedPaint
{
public:
    // hGiven: what the sender of WM_PAINT wants painted into, all of the area; null: the window.
    CCUIBufferedPaint(HWND hWnd, HDC hGiven) : m_hWnd(hWnd), m_hGiven(hGiven), m_paint()
    {
        RECT client = {};
        GetClientRect(hWnd, &client);
        m_hTarget = hGiven ? hGiven : BeginPaint(hWnd, &m_paint);
        m_rcArea = hGiven ? client : m_paint.rcPaint;
        m_hDC = CUIGetOSDC()->GetDC(m_hTarget, client.right, client.bottom);
        SetBkMode(m_hDC, TRANSPARENT);
    }
    ~CCUIBufferedPaint()
    {
        BitBlt(m_hTarget, m_rcArea.left, m_rcArea.top, CUIWidth(m_rcArea), CUIHeight(m_rcArea),
               m_hDC, m_rcArea.left, m_rcArea.top, SRCCOPY);
        CUIGetOSDC()->ReleaseDC();
        if (!m_hGiven)
            EndPaint(m_hWnd, &m_paint);
    }
    CCUIBufferedPaint(const CCUIBufferedPaint &) = delete;
    CCUIBufferedPaint &operator=(const CCUIBufferedPaint &) = delete;

    operator HDC() const { return m_hDC; }
    // What is to be painted.
    const RECT &Area() const { return m_rcArea; }
    bool Touches(const RECT &rect) const
    {
        return rect.left < m_rcArea.right && rect.right > m_rcArea.left &&
               rect.top < m_rcArea.bottom && rect.bottom > m_rcArea.top;
    }

private:
    HWND m_hWnd;
    HDC m_hGiven;
    HDC m_hTarget;
    HDC m_hDC;
    PAINTSTRUCT m_paint;
    RECT m_rcArea;
};
