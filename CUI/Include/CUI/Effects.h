#pragma once

/// @file
/// The kinds of effects: scrolling, blinking, shrinking, wiping and revealing, of bitmaps, colours
/// and texts. Below, w and h are the width and height of the effect's rectangle in pixels, x and y
/// a pixel's place in it, p is the progress, and round(n) the whole part of n + 0.5.

#include "CUI/Bitmap.h"
#include "CUI/Data.h"
#include "CUI/Effect.h"

class CCUIEffectScene;

/// What an effect shows: a bitmap in the middle of its rectangle, or a colour all over it. The
/// background is seen around a bitmap, and where it has its key colour. Copies share the bitmap.
/// Colours are COLORREFs or those of CUIData::crSys.
struct CUIEffectPicture
{
    /// An empty bitmap: nothing but the background.
    CUIEffectPicture() : m_cr(0), m_bColor(false), m_bKeyed(false) {}
    /// A colour.
    CUIEffectPicture(DWORD cr) : m_cr(cr), m_bColor(true), m_bKeyed(false) {}
    /// All of a bitmap.
    CUIEffectPicture(const CCUIBitmap &bitmap)
        : m_bitmap(bitmap), m_cr(0), m_bColor(false), m_bKeyed(false)
    {
    }
    /// A bitmap that is transparent where a pixel has the colour crKey, as CUIBmpMakeMask finds it.
    CUIEffectPicture(const CCUIBitmap &bitmap, DWORD crKey)
        : m_bitmap(bitmap), m_cr(crKey), m_bColor(false), m_bKeyed(true)
    {
    }

    CCUIBitmap m_bitmap;  ///< null: the colour counts, or nothing
    DWORD m_cr;           ///< the colour, or the key colour
    bool m_bColor;        ///< it is a colour
    bool m_bKeyed;        ///< m_cr is a key colour
};

/// An effect with pictures on a background. What is drawn with is made from them at the first
/// frame, in the screen's depth and the rectangle's size, and kept until a setting, the size or the
/// screen changes, or until Stop: bitmaps of 32 bits take 4 * w * h bytes each. If there is no
/// memory for that, only the background's colour is drawn. On a screen of 256 colours the window
/// sees to it that the palette of the pictures is the screen's.
class CUI_API CCUIPictureEffect : public CCUITimeBasedEffect
{
public:
    ~CCUIPictureEffect() override;

    /// What is seen where the pictures are not: at first the colour of windows. A bitmap lies at
    /// the top left corner of the rectangle, with that colour around it; its key colour does not
    /// count. To be called with the window's own background, so that pictures are transparent to
    /// it.
    void SetBackground(const CUIEffectPicture &background);

protected:
    /// Without pictures, on the colour of windows.
    CCUIPictureEffect() = default;

    /// The settings.
    /// @{
    void SetPicture(int nPicture, const CUIEffectPicture &picture);
    const CUIEffectPicture &GetPicture(int nPicture) const { return m_pictures[nPicture]; }
    const CUIEffectPicture &GetBackground() const { return m_background; }
    /// @}
    /// Has the pictures made, if they are not, and calls RenderScene.
    void Render(HDC hDC, const RECT &rect, double fProgress) override;
    /// In front of a bitmap what moves is drawn over it.
    bool IsLayered() const override { return !m_background.m_bitmap.IsNull(); }
    void Discard() override;
    /// Makes what is drawn with; false: there is no memory.
    virtual bool Prepare(CCUIEffectScene &scene, HDC hDC) = 0;
    /// Draws all of `rect`, whose size is the scene's.
    virtual void RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect,
                             double fProgress) = 0;
    /// What was made last; null: nothing.
    const CCUIEffectScene *GetScene() const { return m_pScene; }

private:
    CUIEffectPicture m_background{CUIGetWinData()->crSys[COLOR_WINDOW]};
    CUIEffectPicture m_pictures[2];
    CCUIEffectScene *m_pScene = nullptr;
};

/// A picture or a text that moves through the rectangle and comes in again behind itself, without
/// an end or a seam: in a pass by its own length and the gap, which is the period. Its edge is at
/// the one that it moves to when p is 0; going left, pixel x is what lies at (x + round(p *
/// period)) % period of picture and gap.
class CUI_API CCUIScrollEffect : public CCUIPictureEffect
{
public:
    /// Right, Down, Left (at first) or Up; others are reported as "direction % 2 == 0" and change
    /// nothing.
    void SetDirection(Direction direction);
    /// Pixels of background between the end and the next beginning; 0 at first and at least.
    void SetGap(int nPixels)
    {
        m_nGap = nPixels > 0 ? nPixels : 0;
        Discard();
    }
    /// A bitmap in its own size, in the middle across the direction; a colour fills one pixel.
    void SetPicture(const CUIEffectPicture &picture)
    {
        m_bText = false;
        CCUIPictureEffect::SetPicture(0, picture);
    }
    /// A text, in one line when it moves left or right, broken into centred lines of the
    /// rectangle's width when it moves up or down. The font stays the caller's and must live as
    /// long as the effect; null: the user's for icons. '&' is an ordinary character. In front of a
    /// background bitmap letters have hard edges.
    void SetText(const char *pszText, HFONT hFont, DWORD crText);
    /// The period in a rectangle of that size, in pixels, for a duration that makes a speed.
    int GetPeriod(int cx, int cy) const;

protected:
    bool LooksSame(double fFrom, double fTo) const override;
    bool Prepare(CCUIEffectScene &scene, HDC hDC) override;
    void RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect, double fProgress) override;

private:
    bool IsAcross() const { return m_direction == Left || m_direction == Right; }
    SIZE ContentSize(HDC hDC, int cx, int cy) const;
    void DrawContent(HDC hDC, HDC hMask, RECT rect) const;
    int Offset(double fProgress) const;

    Direction m_direction = Left;
    int m_nGap = 0;
    CCUString m_sText;
    HFONT m_hFont = nullptr;
    DWORD m_crText = 0;
    bool m_bText = false;
    int m_nPeriod = 0;  // of the scene, and what it was repeated to
    int m_nLength = 0;
};

/// A picture that gets smaller until it is gone, in a point or at an edge; backwards it grows. What
/// fills the rectangle at first has round(w * (1 - p)) columns and round(h * (1 - p)) rows at p,
/// every so many of its own (COLORONCOLOR), and lies at round((w - columns) * fX), round((h - rows)
/// * fY).
class CUI_API CCUIShrinkEffect : public CCUIPictureEffect
{
public:
    /// What shrinks; at first an empty bitmap.
    void SetPicture(const CUIEffectPicture &picture) { CCUIPictureEffect::SetPicture(0, picture); }
    /// The point (fX, fY), from (0, 0), top left, to (1, 1), which is the nearest one to what lies
    /// outside; at first the middle.
    void SetPoint(double fX, double fY)
    {
        m_fX = fX > 0 ? fX < 1 ? fX : 1 : 0;
        m_fY = fY > 0 ? fY < 1 ? fY : 1 : 0;
        m_bKeepsWidth = m_bKeepsHeight = false;
        Discard();
    }
    /// The edge at Right, Down, Left or Up: the picture keeps its height or width. Others are
    /// corners.
    void SetEdge(Direction edge)
    {
        const bool bRight = edge == Right || edge == RightDown || edge == RightUp;
        const bool bDown = edge == Down || edge == RightDown || edge == LeftDown;
        SetPoint(bRight, bDown);
        m_bKeepsWidth = edge == Down || edge == Up;
        m_bKeepsHeight = edge == Right || edge == Left;
    }

protected:
    bool Prepare(CCUIEffectScene &scene, HDC hDC) override;
    void RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect, double fProgress) override;

private:
    double m_fX = 0.5;
    double m_fY = 0.5;
    bool m_bKeepsWidth = false;
    bool m_bKeepsHeight = false;
};

/// What the kinds below have in common: the second picture takes the place of the first.
class CUI_API CCUITransitionEffect : public CCUIPictureEffect
{
public:
    /// From the first to the second; empty bitmaps at first.
    void SetPictures(const CUIEffectPicture &first, const CUIEffectPicture &second)
    {
        SetPicture(0, first);
        SetPicture(1, second);
    }

protected:
    CCUITransitionEffect() = default;

    bool IsLayered() const override { return false; }
    bool Prepare(CCUIEffectScene &scene, HDC hDC) override;
    void RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect, double fProgress) override;
    /// Adds to the scene's shape where the second picture is.
    virtual void MakeShape(CCUIEffectScene &scene, double fProgress) const = 0;
};

/// Two pictures in turn: the first where (whole part of 2 * n * p) is even, n being the number of
/// blinks in a pass. So the first is also the last.
class CUI_API CCUIBlinkEffect : public CCUITransitionEffect
{
public:
    /// How often the second one comes in a pass; 1 at first and at least.
    void SetBlinks(int nBlinks) { m_nBlinks = nBlinks > 1 ? nBlinks : 1; }

protected:
    bool LooksSame(double fFrom, double fTo) const override;
    void MakeShape(CCUIEffectScene &scene, double fProgress) const override;

private:
    bool ShowsSecond(double fProgress) const;

    int m_nBlinks = 1;
};

/// The second picture comes over the first from one side or corner to the opposite one, behind a
/// front. A pixel's distance d from where the front begins is, going right, x, left w - 1 - x, down
/// y, up h - 1 - y, to a corner the sum of both; it is at most D. Without a soft edge the second
/// picture is where d < round(p * (D + 1)).
///
/// A soft edge is dithered, at every depth: each pixel is of one picture or the other, in an order
/// of 8 by 8 that moves with the front. With its width s and n = round(p * (D + 1 + s)) the second
/// picture is where 64 * (n - d) > s * B(u, v): along the direction (going to a corner, along x)
/// u or v is x or y less n and plus D + 1 + s if the front moves right or down, plus n if left or
/// up; the other is y or x itself. B, 0 to 63, is made of the lowest three bits of u and v: of each
/// bit, the lowest first, B is given two, the higher one u's bit xor v's, the lower one v's.
class CUI_API CCUIWipeEffect : public CCUITransitionEffect
{
public:
    /// Where the front goes; Right at first.
    void SetDirection(Direction direction)
    {
        m_direction = direction;
        Discard();
    }
    /// The width of the soft edge in pixels; 0, a hard one, at first and at least.
    void SetEdgeWidth(int nPixels)
    {
        m_nEdge = nPixels > 0 ? nPixels : 0;
        Discard();
    }

protected:
    /// A soft edge is drawn over what is below it.
    bool IsLayered() const override { return m_nEdge > 0; }
    bool Prepare(CCUIEffectScene &scene, HDC hDC) override;
    void RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect, double fProgress) override;
    void MakeShape(CCUIEffectScene &scene, double fProgress) const override;

private:
    int m_nEdge = 0;
    Direction m_direction = Right;
};

/// The second picture appears inside of shapes that grow on the first.
class CUI_API CCUIRevealEffect : public CCUITransitionEffect
{
public:
    /// The shapes, with where they show the second picture; s is the size that SetSize sets.
    enum Shape
    {
        BlindsRight,  ///< slats s wide: where x % s < round(p * s)
        BlindsDown,   ///< slats s high: where y % s < round(p * s)
        BoxOut,  ///< a box of round(p * w) by round(p * h), from ((w - its width) / 2, (h - its
                 ///< height) / 2) on, rounded down: inside
        BoxIn,   ///< the box that BoxOut has at 1 - p: outside
        Circle,  ///< from the middle: where (2x + 1 - w)^2 + (2y + 1 - h)^2 < p * p * (w^2 + h^2)
        Tiles    ///< squares of s, in an order of chance that is always the same; see below
    };

    /// BlindsRight at first.
    ///
    /// Tiles are numbered by rows from the top left, and N of them cover the rectangle. Each gets a
    /// rank: at first its own number; then, for i from N - 1 down to 1, the i-th changes ranks with
    /// the one at (r >> 8) % (i + 1), where r, at first 1, becomes 1664525 * r + 1013904223 (in 32
    /// bits) before. Those of a rank below round(p * N) show the second picture.
    void SetShape(Shape shape)
    {
        m_shape = shape;
        Discard();
    }
    /// Of slats and tiles, in pixels; 24 at first, 4 at least.
    void SetSize(int nPixels)
    {
        m_nSize = nPixels > 4 ? nPixels : 4;
        Discard();
    }

protected:
    bool Prepare(CCUIEffectScene &scene, HDC hDC) override;
    void MakeShape(CCUIEffectScene &scene, double fProgress) const override;

private:
    void MakeBlinds(CCUIEffectScene &scene, double fProgress) const;
    void MakeTiles(CCUIEffectScene &scene, double fProgress) const;

    Shape m_shape = BlindsRight;
    int m_nSize = 24;
};
