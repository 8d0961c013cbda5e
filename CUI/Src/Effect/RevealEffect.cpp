#include "Base/Wrap.h"
#include "Effect/EffectScene.h"

namespace {

int Tiled(int nLength, int nSize)
{
    return (nLength + nSize - 1) / nSize;
}

// In which order the tiles show.
void MakeRanks(CCUArray<int> &ranks, int nCount)
{
    for (int i = 0; i < nCount; ++i)
        ranks.Add(i);
    unsigned long uRandom = 1;
    for (int i = nCount - 1; i > 0; --i) {
        uRandom = 1664525 * uRandom + 1013904223;
        const int nOther = static_cast<int>((uRandom >> 8) % static_cast<unsigned long>(i + 1));
        const int nRank = ranks[i];
        ranks[i] = ranks[nOther];
        ranks[nOther] = nRank;
    }
}

void MakeBox(CCUIEffectScene &scene, double fProgress)
{
    const int cx = CUIEffectRound(fProgress, scene.m_cx);
    const int cy = CUIEffectRound(fProgress, scene.m_cy);
    const int x = (scene.m_cx - cx) / 2;
    const int y = (scene.m_cy - cy) / 2;
    scene.AddToShape(x, y, x + cx, y + cy);
}

// In half pixels from the middle, where each pixel has whole numbers.
void MakeCircle(CCUIEffectScene &scene, double fProgress)
{
    const double cx = scene.m_cx;
    const double cy = scene.m_cy;
    const double fSquare = fProgress * fProgress * (cx * cx + cy * cy);
    int nLeft = (scene.m_cx + 1) / 2;
    for (int y = 0; y < scene.m_cy; ++y) {
        const double fY = 2 * y + 1 - cy;
        const double fLeft = fSquare - fY * fY;
        const auto isInside = [&](int x) { return (2 * x + 1 - cx) * (2 * x + 1 - cx) < fLeft; };
        // From row to row it gets a little wider, then narrower.
        while (nLeft > 0 && isInside(nLeft - 1))
            --nLeft;
        while (2 * nLeft < scene.m_cx && !isInside(nLeft))
            ++nLeft;
        scene.AddToShape(nLeft, y, scene.m_cx - nLeft, y + 1);
    }
}

}  // namespace

bool CCUIRevealEffect::Prepare(CCUIEffectScene &scene, HDC hDC)
{
    // Of too many tiles there are no surfaces, either.
    if (!CCUITransitionEffect::Prepare(scene, hDC))
        return false;
    if (m_shape == Tiles)
        MakeRanks(scene.m_ranks, Tiled(scene.m_cx, m_nSize) * Tiled(scene.m_cy, m_nSize));
    return true;
}

void CCUIRevealEffect::MakeShape(CCUIEffectScene &scene, double fProgress) const
{
    switch (m_shape) {
    case BoxOut: MakeBox(scene, fProgress); break;
    case BoxIn:
        scene.ClearShape(true);
        MakeBox(scene, 1 - fProgress);
        break;
    case Circle: MakeCircle(scene, fProgress); break;
    case Tiles: MakeTiles(scene, fProgress); break;
    default: MakeBlinds(scene, fProgress); break;
    }
}

void CCUIRevealEffect::MakeBlinds(CCUIEffectScene &scene, double fProgress) const
{
    const bool bAcross = m_shape == BlindsRight;
    const int nOpen = CUIEffectRound(fProgress, m_nSize);
    const int nLength = bAcross ? scene.m_cx : scene.m_cy;
    for (int i = 0; i < nLength; i += m_nSize) {
        const int nEnd = CUISmaller(i + nOpen, nLength);
        if (bAcross)
            scene.AddToShape(i, 0, nEnd, scene.m_cy);
        else
            scene.AddToShape(0, i, scene.m_cx, nEnd);
    }
}

void CCUIRevealEffect::MakeTiles(CCUIEffectScene &scene, double fProgress) const
{
    const int nColumns = Tiled(scene.m_cx, m_nSize);
    const int nRows = Tiled(scene.m_cy, m_nSize);
    const int nShown = CUIEffectRound(fProgress, scene.m_ranks.Count());
    for (int nRow = 0; nRow < nRows; ++nRow) {
        const int y = nRow * m_nSize;
        const int yEnd = CUISmaller(y + m_nSize, scene.m_cy);
        // Tiles side by side are one rectangle.
        int nFirst = 0;
        for (int i = 0; i <= nColumns; ++i) {
            if (i < nColumns && scene.m_ranks[nRow * nColumns + i] < nShown)
                continue;
            scene.AddToShape(nFirst * m_nSize, y, CUISmaller(i * m_nSize, scene.m_cx), yEnd);
            nFirst = i + 1;
        }
    }
}
