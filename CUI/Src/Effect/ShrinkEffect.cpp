#include "Effect/EffectScene.h"

bool CCUIShrinkEffect::Prepare(CCUIEffectScene &scene, HDC hDC)
{
    if (!scene.MakeSprite(hDC, GetBackground(), scene.m_cx, scene.m_cy))
        return false;
    CUIDrawEffectPicture(scene.m_first.DC(), scene.m_mask.DC(), GetPicture(0), scene.m_cx,
                         scene.m_cy);
    return scene.m_mask.IsMade() ||
           scene.MakeOpaque(scene.m_second, hDC, GetBackground(), CUIEffectPicture());
}

void CCUIShrinkEffect::RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect,
                                   double fProgress)
{
    const int cx = m_bKeepsWidth ? scene.m_cx : CUIEffectRound(1 - fProgress, scene.m_cx);
    const int cy = m_bKeepsHeight ? scene.m_cy : CUIEffectRound(1 - fProgress, scene.m_cy);
    const int x = CUIEffectRound(m_fX, scene.m_cx - cx);
    const int y = CUIEffectRound(m_fY, scene.m_cy - cy);
    // In front of a bitmap it is drawn over that, by its mask.
    const bool bMask = scene.m_mask.IsMade();
    const RECT inner = {x, y, x + cx, y + cy};
    scene.DrawAround(scene.m_second, hDC, rect, bMask ? RECT{0, 0, 0, 0} : inner);
    const int nOldMode = SetStretchBltMode(hDC, COLORONCOLOR);
    const auto stretch = [&](const CCUIEffectSurface &surface, DWORD dwRop) {
        StretchBlt(hDC, rect.left + x, rect.top + y, cx, cy, surface.DC(), 0, 0, scene.m_cx,
                   scene.m_cy, dwRop);
    };
    if (bMask && cx && cy)
        stretch(scene.m_mask, SRCAND);
    if (cx && cy)
        stretch(scene.m_first, bMask ? SRCPAINT : SRCCOPY);
    SetStretchBltMode(hDC, nOldMode);
}
