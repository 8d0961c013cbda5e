#include "Menu/MenuPictures.h"

#include "Base/GdiGuards.h"
#include "CUI/Data.h"
#include "Drawing/Look.h"

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
    const CUIData &data = *CUIGetWinData();
    if (data.dwColorStamp == m_dwColorStamp && data.cyPixelsPerInch == m_nScreenDpi)
        return;
    m_dwColorStamp = data.dwColorStamp;
    m_nScreenDpi = data.cyPixelsPerInch;
    CUIReloadSystemColors(m_given);
    int cx = m_given.Width() / m_ids.Count();
    m_strip = CUIScaledPictures(m_given, cx, m_nDpi);
    const CCUIMemoryDC memory(nullptr);
    const CCUISelect bitmap(memory, m_strip);
    m_crKey = GetPixel(memory, 0, 0);
}

void CCUIMenuPictures::Draw(HDC hDC, int x, int y, int nPicture, bool bDisabled) const
{
    const int x0 = nPicture * Width();
    CUIDrawStatePicture(hDC, x, y, m_strip, {x0, 0, x0 + Width(), Height()}, m_crKey, bDisabled);
}
