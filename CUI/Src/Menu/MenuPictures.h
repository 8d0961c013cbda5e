#pragma once

#include "Base/Array.h"
#include "CUI/Bitmap.h"

// A strip of pictures side by side, one for each of a list of commands. What has the colour of the
// strip's top left pixel is transparent.
struct CCUIMenuPictures
{
    CCUIBitmap m_strip;
    CCUArray<UINT> m_ids;
    COLORREF m_crKey = CLR_INVALID;
    DWORD m_dwColorStamp = 0;  // of the colours that the strip was last held against
    CCUIMenuPictures *m_pNext = nullptr;

    int Width() const { return m_strip.Width() / m_ids.Count(); }
    int Height() const { return m_strip.Height(); }
    // The number of a command's picture; -1: there is none.
    int Find(UINT nID) const;
    // Loads a strip in the system's colours again when those have changed.
    void Refresh();
    // `bDisabled` is CUIBmpDrawState's look. hDC's background colour is what lies behind.
    void Draw(HDC hDC, int x, int y, int nPicture, bool bDisabled) const;
};
