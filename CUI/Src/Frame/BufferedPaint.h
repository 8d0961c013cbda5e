#pragma once

#include "CUI/Bitmap.h"

// Pixels at 96 dots an inch, on the screen as it is.
int CUIScale(int n);
// The system's colour, as it is now, for GDI.
COLORREF CUISystemColor(int nIndex);
// A picture that has taken on the system's colours takes on those of now.
void CUIReloadSystemColors(CCUIBitmap &bitmap);

// One painting of a window's client area, in its coordinates: into memory, from where what is to be
// repainted goes to the window at the end, so that nothing flickers. No code of others may run
// meanwhile: all threads share that memory.
class CCUIBufferedPaint
{
public:
    // hGiven: what the sender of WM_PAINT wants painted into, all of the area; null: the window.
    CCUIBufferedPaint(HWND hWnd, HDC hGiven);
    ~CCUIBufferedPaint();
    CCUIBufferedPaint(const CCUIBufferedPaint &) = delete;
    CCUIBufferedPaint &operator=(const CCUIBufferedPaint &) = delete;

    operator HDC() const { return m_hDC; }
    // What is to be painted.
    const RECT &Area() const { return m_rcArea; }
    bool Touches(const RECT &rect) const;

private:
    HWND m_hWnd;
    HDC m_hGiven;
    HDC m_hTarget;
    HDC m_hDC;
    PAINTSTRUCT m_paint;
    RECT m_rcArea;
};
