#include "Effect/EffectScene.h"

bool CCUIBlinkEffect::ShowsSecond(double fProgress) const
{
    return static_cast<unsigned>(fProgress * 2 * m_nBlinks) % 2 != 0;
}

bool CCUIBlinkEffect::LooksSame(double fFrom, double fTo) const
{
    return ShowsSecond(fFrom) == ShowsSecond(fTo);
}

void CCUIBlinkEffect::MakeShape(CCUIEffectScene &scene, double fProgress) const
{
    if (ShowsSecond(fProgress))
        scene.AddToShape(0, 0, scene.m_cx, scene.m_cy);
}
