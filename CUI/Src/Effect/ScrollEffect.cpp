#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Drawing/RasterOps.h"
#include "Effect/EffectScene.h"

#define CU_SOURCE "Effect"

void CCUIScrollEffect::SetDirection(Direction direction)
{
    CU_ASSERT(direction % 2 == 0);
    if (direction % 2 != 0)
        return;
    m_direction = direction;
    Discard();
}

void CCUIScrollEffect::SetText(const char *pszText, HFONT hFont, DWORD crText)
{
    m_sText = pszText;
    m_hFont = hFont;
    m_crText = crText;
    m_bText = true;
    CCUIPictureEffect::SetPicture(0, CUIEffectPicture());
}

// --- What scrolls ---

// The content without the gap, at least a pixel long and as wide as the rectangle.
SIZE CCUIScrollEffect::ContentSize(HDC hDC, int cx, int cy) const
{
    RECT rect = {0, 0, cx, cy};
    if (m_bText) {
        const CCUISelect font(hDC, m_hFont ? m_hFont : CUIGetWinData()->hIconFont);
        DrawTextA(hDC, m_sText, m_sText.GetLength(), &rect,
                  DT_CALCRECT | DT_NOPREFIX | (IsAcross() ? DT_SINGLELINE : DT_WORDBREAK));
    } else {
        rect.right = GetPicture(0).m_bitmap.Width();
        rect.bottom = GetPicture(0).m_bitmap.Height();
    }
    const SIZE size = {IsAcross() ? CUILarger(rect.right, 1) : cx,
                       IsAcross() ? cy : CUILarger(rect.bottom, 1)};
    return size;
}

int CCUIScrollEffect::GetPeriod(int cx, int cy) const
{
    const CCUIWindowDC screen(nullptr);
    const SIZE size = ContentSize(screen, cx, cy);
    return (IsAcross() ? size.cx : size.cy) + m_nGap;
}

// The content in its rectangle and, unless hMask is null, its shape in black.
void CCUIScrollEffect::DrawContent(HDC hDC, HDC hMask, RECT rect) const
{
    if (!m_bText) {
        CUIDrawEffectPicture(hDC, hMask, GetPicture(0), rect.right, rect.bottom);
        return;
    }
    // With a mask the text is drawn in black on that, which has no colours for smooth edges.
    const HDC hText = hMask ? hMask : hDC;
    const DWORD cr = CUIGetWinData()->ResolveColor(m_crText);
    const CCUISavedDC saved(hText);
    SelectObject(hText, m_hFont ? m_hFont : CUIGetWinData()->hIconFont);
    SetBkMode(hText, TRANSPARENT);
    SetTextColor(hText, hMask ? 0 : cr);
    DrawTextA(hText, m_sText, m_sText.GetLength(), &rect,
              DT_NOPREFIX | (IsAcross() ? DT_SINGLELINE | DT_VCENTER : DT_WORDBREAK | DT_CENTER));
    if (!hMask)
        return;
    CUIDCFillSolidRect(hDC, &rect, cr);
    BitBlt(hDC, 0, 0, rect.right, rect.bottom, hMask, 0, 0, CUI_ROP_DSNA);
}

bool CCUIScrollEffect::Prepare(CCUIEffectScene &scene, HDC hDC)
{
    const SIZE size = ContentSize(hDC, scene.m_cx, scene.m_cy);
    const int nView = IsAcross() ? scene.m_cx : scene.m_cy;
    m_nPeriod = (IsAcross() ? size.cx : size.cy) + m_nGap;
    // Repeated until it fills the rectangle: two copies then make each frame.
    const int nTimes = (nView + m_nPeriod - 1) / m_nPeriod;
    m_nLength = m_nPeriod * nTimes;
    if (!scene.MakeSprite(hDC, GetBackground(), IsAcross() ? m_nLength : scene.m_cx,
                          IsAcross() ? scene.m_cy : m_nLength))
        return false;
    const CCUIEffectSurface &image = scene.m_first;
    const CCUIEffectSurface &mask = scene.m_mask;
    DrawContent(image.DC(), mask.DC(), {0, 0, size.cx, size.cy});
    for (int i = 1; i < nTimes; ++i) {
        const int x = IsAcross() ? i * m_nPeriod : 0;
        const int y = IsAcross() ? 0 : i * m_nPeriod;
        image.Copy(image.DC(), x, y, size.cx, size.cy, 0, 0);
        mask.Copy(mask.DC(), x, y, size.cx, size.cy, 0, 0);
    }
    return true;
}

// --- Frames ---

// What lies at the left or upper edge.
int CCUIScrollEffect::Offset(double fProgress) const
{
    const int nMoved = CUIEffectRound(fProgress, m_nPeriod) % m_nPeriod;
    return nMoved && (m_direction == Right || m_direction == Down) ? m_nPeriod - nMoved : nMoved;
}

bool CCUIScrollEffect::LooksSame(double fFrom, double fTo) const
{
    return GetScene() ? Offset(fFrom) == Offset(fTo) : fFrom == fTo;
}

void CCUIScrollEffect::RenderScene(CCUIEffectScene &scene, HDC hDC, const RECT &rect,
                                   double fProgress)
{
    const int nOffset = Offset(fProgress);
    const int nView = IsAcross() ? scene.m_cx : scene.m_cy;
    const int nFirst = CUISmaller(m_nLength - nOffset, nView);
    const bool bAcross = IsAcross();
    const auto copy = [&](const CCUIEffectSurface &surface, DWORD dwRop) {
        const int cx = bAcross ? nFirst : scene.m_cx;
        const int cy = bAcross ? scene.m_cy : nFirst;
        surface.Copy(hDC, rect.left, rect.top, cx, cy, bAcross ? nOffset : 0, bAcross ? 0 : nOffset,
                     dwRop);
        const int x = bAcross ? nFirst : 0;
        const int y = bAcross ? 0 : nFirst;
        surface.Copy(hDC, rect.left + x, rect.top + y, scene.m_cx - x, scene.m_cy - y, 0, 0, dwRop);
    };
    if (!scene.m_mask.IsMade()) {
        copy(scene.m_first, SRCCOPY);
        return;
    }
    scene.m_second.Copy(hDC, rect.left, rect.top, scene.m_cx, scene.m_cy, 0, 0);
    copy(scene.m_mask, SRCAND);
    copy(scene.m_first, SRCPAINT);
}
