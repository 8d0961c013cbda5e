#include "Base/Wrap.h"
#include "CUI/Data.h"
#include "CUI/Effects.h"
#include "Effect/EffectScene.h"

CCUIPictureEffect::~CCUIPictureEffect()
{
    delete m_pScene;
}

void CCUIPictureEffect::SetBackground(const CUIEffectPicture &background)
{
    m_background = background;
    Discard();
}

void CCUIPictureEffect::SetPicture(int nPicture, const CUIEffectPicture &picture)
{
    m_pictures[nPicture] = picture;
    Discard();
}

void CCUIPictureEffect::Discard()
{
    delete m_pScene;
    m_pScene = nullptr;
    CCUITimeBasedEffect::Discard();
}

void CCUIPictureEffect::Render(HDC hDC, const RECT &rect, double fProgress)
{
    const int cx = CUIWidth(rect);
    const int cy = CUIHeight(rect);
    if (!m_pScene || m_pScene->m_cx != cx || m_pScene->m_cy != cy) {
        delete m_pScene;
        m_pScene = new CCUIEffectScene(cx, cy);
        if (!Prepare(*m_pScene, hDC)) {
            delete m_pScene;
            m_pScene = nullptr;
            return;
        }
    }
    RenderScene(*m_pScene, hDC, rect, fProgress);
}
