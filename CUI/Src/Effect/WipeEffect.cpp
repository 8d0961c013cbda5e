#include "Base/Wrap.h"
#include "Effect/EffectScene.h"

// --- What all transitions have in common ---

bool CCUITransitionEffect::Prepare(CCUIEffectScene &scene, HDC hDC)
{
    return scene.MakeOpaque(scene.m_first, hDC, GetBackground(), GetPicture(0)) &&
           scene.MakeOpaque(scene.m_second, hDC, GetBackground(), GetPicture(1));
}

void CCUITransitionEffect::RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect,
                                       double fProgress)
{
    scene.ClearShape();
    MakeShape(scene, fProgress);
    scene.DrawShape(hDC, rect);
}

// --- Wipes ---

namespace {

// The way of a front through a rectangle.
class CFront
{
public:
    CFront(CCUITimeBasedEffect::Direction direction, int cx, int cy, int nEdge)
        : m_cx(cx), m_cy(cy), m_nEdge(nEdge)
    {
        static const short STEPS[][2] = {{1, 0},  {1, 1},   {0, 1},  {-1, 1},
                                         {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
        m_dx = STEPS[direction][0];
        m_dy = STEPS[direction][1];
    }
    bool IsDiagonal() const { return m_dx && m_dy; }
    bool IsAcross() const { return m_dx != 0; }
    // How many different distances there are.
    int Length() const { return (m_dx ? m_cx : 0) + (m_dy ? m_cy : 0) - (IsDiagonal() ? 1 : 0); }
    // How far the front has come with its edge behind it.
    int At(double fProgress) const { return CUIEffectRound(fProgress, Length() + m_nEdge); }
    int RowDistance(int y) const { return m_dy > 0 ? y : m_dy < 0 ? m_cy - 1 - y : 0; }
    int ColumnDistance(int x) const { return m_dx > 0 ? x : m_dx < 0 ? m_cx - 1 - x : 0; }

    // The mask of the dithered edge. It is made once for all places of the front: longer than the
    // rectangle in the direction, so that each frame takes another part of it, from MaskAt on.
    int MaskWidth() const { return m_cx + (m_dx ? Length() + m_nEdge : 0); }
    int MaskHeight() const { return m_cy + (m_dx ? 0 : Length() + m_nEdge); }
    POINT MaskAt(int nFront) const
    {
        const bool bForwards = (m_dx ? m_dx : m_dy) > 0;
        const int nOffset = bForwards ? Length() + m_nEdge - nFront : nFront;
        return IsAcross() ? POINT{nOffset, 0} : POINT{0, nOffset};
    }
    // How far a front at 0 is ahead of a place in the mask.
    int Ahead(int x, int y) const
    {
        const POINT at = MaskAt(0);
        return -ColumnDistance(x - at.x) - RowDistance(y - at.y);
    }

    // For directions to the corners: adds all that is behind a front at 0, where that is still
    // outside of the rectangle. Moved DiagonalAt pixels to the right it is what is behind a front
    // that has come further.
    void AddDiagonal(CCUIEffectScene &scene) const
    {
        const int nFar = 2 * Length();
        for (int y = 0; y < m_cy; ++y) {
            const int nDistance = RowDistance(y);
            if (m_dx > 0)
                scene.AddToShape(-nFar, y, -nDistance, y + 1);
            else
                scene.AddToShape(m_cx + nDistance, y, m_cx + nFar, y + 1);
        }
    }
    int DiagonalAt(int nFront) const { return m_dx * nFront; }

    // The part of the rectangle from one distance to another, for directions along the sides.
    RECT Part(int nFrom, int nTo) const
    {
        const int nLength = Length();
        const int nNear = CUISmaller(CUILarger(nFrom, 0), nLength);
        const int nFar = CUILarger(CUISmaller(nTo, nLength), nNear);
        const bool bForwards = m_dx + m_dy > 0;
        const int nLow = bForwards ? nNear : nLength - nFar;
        const int nHigh = bForwards ? nFar : nLength - nNear;
        return IsAcross() ? RECT{nLow, 0, nHigh, m_cy} : RECT{0, nLow, m_cx, nHigh};
    }

private:
    int m_cx, m_cy, m_nEdge;
    int m_dx, m_dy;
};

// The place of a pixel in an order in which 64 of them fill a square of 8 by 8 evenly.
int DitherOrder(int x, int y)
{
    int nOrder = 0;
    for (int i = 0; i < 3; ++i)
        nOrder = nOrder * 4 + ((x >> i ^ y >> i) & 1) * 2 + (y >> i & 1);
    return nOrder;
}

// White where the first picture stays.
bool MakeEdgeMask(CCUIEffectSurface &mask, const CFront &front, int nEdge)
{
    BYTE *pRow = nullptr;
    const int cx = front.MaskWidth();
    const int cy = front.MaskHeight();
    if (!mask.MakeMask(cx, cy, &pRow))
        return false;
    for (int y = 0; y < cy; ++y, pRow += (cx + 31) / 32 * 4) {
        for (int x = 0; x < cx; ++x) {
            if (64 * front.Ahead(x, y) <= nEdge * DitherOrder(x, y))
                pRow[x / 8] = static_cast<BYTE>(pRow[x / 8] | 0x80 >> x % 8);
        }
    }
    return true;
}

void CopyPart(const CCUIEffectSurface &surface, HDC hDC, const RECT &rect, const RECT &part,
              DWORD dwRop)
{
    surface.Copy(hDC, rect.left + part.left, rect.top + part.top, CUIWidth(part), CUIHeight(part),
                 part.left, part.top, dwRop);
}

}  // namespace

bool CCUIWipeEffect::Prepare(CCUIEffectScene &scene, HDC hDC)
{
    // Of what is too large there are no surfaces, either, and no rows to be walked.
    if (!CCUITransitionEffect::Prepare(scene, hDC))
        return false;
    const CFront front(m_direction, scene.m_cx, scene.m_cy, m_nEdge);
    if (m_nEdge)
        return MakeEdgeMask(scene.m_mask, front, m_nEdge);
    if (!front.IsDiagonal())
        return true;
    front.AddDiagonal(scene);
    return scene.KeepShape();
}

void CCUIWipeEffect::RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect,
                                 double fProgress)
{
    const CFront front(m_direction, scene.m_cx, scene.m_cy, m_nEdge);
    const int nFront = front.At(fProgress);
    if (!m_nEdge && front.IsDiagonal()) {
        scene.DrawKept(hDC, rect, front.DiagonalAt(nFront));
        return;
    }
    if (!m_nEdge) {
        CCUITransitionEffect::RenderScene(scene, hDC, rect, fProgress);
        return;
    }
    RECT mixed = {0, 0, scene.m_cx, scene.m_cy};
    if (!front.IsDiagonal()) {
        mixed = front.Part(nFront - m_nEdge, nFront);
        CopyPart(scene.m_second, hDC, rect, front.Part(0, nFront - m_nEdge), SRCCOPY);
        CopyPart(scene.m_first, hDC, rect, front.Part(nFront, front.Length()), SRCCOPY);
    }
    // Inverted with the second picture twice, the first one stays where the mask is white.
    const POINT mask = front.MaskAt(nFront);
    CopyPart(scene.m_first, hDC, rect, mixed, SRCCOPY);
    CopyPart(scene.m_second, hDC, rect, mixed, SRCINVERT);
    scene.m_mask.Copy(hDC, rect.left + mixed.left, rect.top + mixed.top, CUIWidth(mixed),
                      CUIHeight(mixed), mask.x + mixed.left, mask.y + mixed.top, SRCAND);
    CopyPart(scene.m_second, hDC, rect, mixed, SRCINVERT);
}

void CCUIWipeEffect::MakeShape(CCUIEffectScene &scene, double fProgress) const
{
    const CFront front(m_direction, scene.m_cx, scene.m_cy, 0);
    const RECT part = front.Part(0, front.At(fProgress));
    scene.AddToShape(part.left, part.top, part.right, part.bottom);
}
