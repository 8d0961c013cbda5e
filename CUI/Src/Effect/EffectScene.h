#pragma once

#include "Base/Array.h"
#include "Base/GdiGuards.h"
#include "CUI/Effects.h"

// A picture in memory. It stays selected: to select it for each frame can take longer than to copy
// it (Wine 8 looks the display mode up).
class CCUIEffectSurface
{
public:
    // In the colours of hDC. False: there is no memory.
    bool Make(HDC hDC, int cx, int cy);
    // In black, all zeros, and white, all ones, whatever the colours of the target. The bits are of
    // rows from the top down, each of a multiple of 4 bytes; GDI's until GdiFlush.
    bool MakeMask(int cx, int cy, BYTE **ppBits = nullptr);
    HDC DC() const { return m_dc; }
    bool IsMade() const { return DC() != nullptr; }
    // Puts a part onto hDC; an empty one does nothing.
    void Copy(HDC hDC, int x, int y, int cx, int cy, int xFrom, int yFrom,
              DWORD dwRop = SRCCOPY) const;

private:
    CCUIBitmapDC m_dc;
};

// What the frames of an effect are drawn with.
class CCUIEffectScene
{
public:
    CCUIEffectScene(int cx, int cy)
        : m_cx(cx), m_cy(cy), m_region(nullptr), m_clip(CreateRectRgn(0, 0, 0, 0))
    {
    }

    // The picture on the background, in the scene's size.
    bool MakeOpaque(CCUIEffectSurface &surface, HDC hDC, const CUIEffectPicture &background,
                    const CUIEffectPicture &picture) const;
    // For a picture that is moved about: m_first, with nothing in it yet but what is behind the
    // picture, of any size. In front of a bitmap also m_second, that background, and m_mask, white,
    // into which the picture's shape is to be drawn in black.
    bool MakeSprite(HDC hDC, const CUIEffectPicture &background, int cx, int cy);

    // The shape where the second picture is: rectangles by rows from the top left, apart from each
    // other. What would be empty is left out.
    void ClearShape(bool bOutside = false);
    void AddToShape(int left, int top, int right, int bottom);
    // Both pictures at `rect`, each pixel once.
    void DrawShape(HDC hDC, const RECT &rect) const;
    // Keeps the shape, in the place of one that changes: DrawKept moves it.
    void KeepShape();
    void DrawKept(HDC hDC, const RECT &rect, int nRight) const;
    // A surface of the scene's size, at `rect`, where rcInner is not.
    void DrawAround(const CCUIEffectSurface &surface, HDC hDC, const RECT &rect,
                    const RECT &rcInner) const;

    const int m_cx;
    const int m_cy;
    CCUIEffectSurface m_first;
    CCUIEffectSurface m_second;
    CCUIEffectSurface m_mask;
    CCUArray<int> m_ranks;  // of the tiles of a reveal

private:
    HRGN MakeRegion() const;
    void DrawThrough(HRGN hRegion, HDC hDC, const RECT &rect, int nRight) const;

    CCUArray<RECT> m_shape;
    bool m_bOutside = false;       // the second picture is where the shape is not
    CCUIOwned<HRGN> m_region;      // what KeepShape kept
    const CCUIOwned<HRGN> m_clip;  // while a region is the target's clipping, what that was before
};

// Draws a background from (0, 0) to (cx, cy).
void CUIDrawEffectBackground(HDC hDC, const CUIEffectPicture &background, int cx, int cy);
// Draws a picture in the middle of that and, unless hMask is null, its shape in black.
void CUIDrawEffectPicture(HDC hDC, HDC hMask, const CUIEffectPicture &picture, int cx, int cy);

// The whole number nearest to a share of n.
inline int CUIEffectRound(double fShare, int n)
{
    return static_cast<int>(2 * fShare * n + 1) / 2;
}
