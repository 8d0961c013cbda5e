#pragma once

#include "CUI/Platform.h"

// One painting of a window's client area, in its coordinates: into memory, from where what is to be
// repainted goes to the window at the end, so that nothing flickers. From Begin on no code of
// others may run: all threads share that memory.
class CCUIBufferedPaint
{
public:
    // hGiven: what the sender of WM_PAINT wants painted into, all of the area; null: the window.
    CCUIBufferedPaint(HWND hWnd, HDC hGiven);
    ~CCUIBufferedPaint();
    CCUIBufferedPaint(const CCUIBufferedPaint &) = delete;
    CCUIBufferedPaint &operator=(const CCUIBufferedPaint &) = delete;

    // Gets the memory, with the font selected and a transparent background mode; the palette, if
    // any, is realised there and in the window. What is set on it is undone at the end.
    HDC Begin(HFONT hFont, HPALETTE hPalette = nullptr);
    // The place of the picture, before Begin.
    HDC Target() const { return m_hTarget; }
    // What is to be painted.
    const RECT &Area() const { return m_rcArea; }
    bool Touches(const RECT &rect) const;

private:
    HWND m_hWnd;
    HDC m_hGiven;
    HDC m_hTarget;
    HDC m_hDC;
    HPALETTE m_hOldPalette;  // of the target; null: left alone
    int m_nSaved;
    int m_nBegun;  // as it was given to the painting
    bool m_bBegun;
    PAINTSTRUCT m_paint;
    RECT m_rcArea;
};
