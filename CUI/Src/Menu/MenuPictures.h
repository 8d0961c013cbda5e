#pragma once

#include "Base/Array.h"
#include "CUI/Bitmap.h"

// A strip of pictures side by side, one for each of a list of commands. What has the colour of the
// strip's top left pixel is transparent.
struct CCUIMenuPictures
{
    CCUIBitmap m_given;
    int m_nDpi = 96;     // that it was drawn for
    CCUIBitmap m_strip;  // stretched to what the screen has
    CCUArray<UINT> m_ids;
    COLORREF m_crKey = CLR_INVALID;
    DWORD m_dwColorStamp = 0;  // of the colours that the strip was last held against
    int m_nScreenDpi = 0;      // and what the screen had then
    CCUIMenuPictures *m_pNext = nullptr;

    int Width() const { return m_strip.Width() / m_ids.Count(); }
    int Height() const { return m_strip.Height(); }
    // The number of a command's picture; -1: there is none.
    int Find(UINT nID) const;
    // Makes the strip anew when the system's colours or the dots an inch have changed.
    void Refresh();
    // `bDisabled` is CUIBmpDrawState's look. hDC's background colour is what lies behind.
    void Draw(HDC hDC, int x, int y, int nPicture, bool bDisabled) const;
};
