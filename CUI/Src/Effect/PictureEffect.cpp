#include "Base/GdiGuards.h"
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
        // Not like hDC, which need not have colours: the next frame may be for another one.
        const CCUIWindowDC screen(nullptr);
        if (!m_pScene->IsMade() || !Prepare(*m_pScene, screen)) {
            delete m_pScene;
            m_pScene = nullptr;
            // Drawn into memory, there is a picture of somebody else's in it.
            CUIFillEffectBackground(hDC, m_background, rect);
            return;
        }
    }
    RenderScene(*m_pScene, hDC, rect, fProgress);
}
