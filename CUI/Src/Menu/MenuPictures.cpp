#include "Menu/MenuPictures.h"

#include "Base/GdiGuards.h"
#include "CUI/BmpBlt.h"
#include "CUI/BmpState.h"
#include "CUI/Data.h"

int CCUIMenuPictures::Find(UINT nID) const
{
    for (int i = 0; i < m_ids.Count(); ++i) {
        if (m_ids[i] == nID)
            return i;
    }
    return -1;
}

void CCUIMenuPictures::Refresh()
{
    const DWORD dwStamp = CUIGetWinData()->dwColorStamp;
    if (dwStamp == m_dwColorStamp)
        return;
    m_dwColorStamp = dwStamp;
    const CUIBitmapSource *const pSource = m_strip.GetData()->m_pSource;
    if (pSource && (pSource->m_wFlags & CUIBMP_SYSCOLORS) && pSource->m_dwColorStamp != dwStamp) {
        const CCUIBitmap before = m_strip;
        m_strip.ReLoad(nullptr, nullptr, 0);
        if (m_strip.Width() < m_ids.Count())
            m_strip = before;
    }
    const CCUIMemoryDC memory(nullptr);
    const CCUISelect bitmap(memory, m_strip);
    m_crKey = GetPixel(memory, 0, 0);
}

void CCUIMenuPictures::Draw(HDC hDC, int x, int y, int nPicture, bool bDisabled) const
{
    const int cx = Width();
    const int cy = Height();
    const int xSource = nPicture * cx;
    if (!bDisabled) {
        CUIBmpBgBltFull(hDC, x, y, m_strip, m_crKey, xSource, 0, cx, cy);
        return;
    }
    const CUIData &data = *CUIGetWinData();
    // The embossed look has a light copy further down, and wants a margin for it.
    RECT rects[] = {
        {x, y, x + cx + 2, y + cy + 2}, {x, y, x + cx, y + cy}, {xSource, 0, xSource + cx, cy}};
    CUIBmpDrawState(hDC, rects, m_strip, CUIBMPSTATE_DISABLED, m_crKey,
                    data.ResolveColor(data.crSys[COLOR_BTNHIGHLIGHT]),
                    data.ResolveColor(data.crSys[COLOR_BTNSHADOW]));
}
