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
    const DWORD dwStamp = CUIGetWinData()->dwColorStamp;
    if (dwStamp == m_dwColorStamp)
        return;
    m_dwColorStamp = dwStamp;
    CUIReloadSystemColors(m_strip);
    const CCUIMemoryDC memory(nullptr);
    const CCUISelect bitmap(memory, m_strip);
    m_crKey = GetPixel(memory, 0, 0);
}

void CCUIMenuPictures::Draw(HDC hDC, int x, int y, int nPicture, bool bDisabled) const
{
    const int x0 = nPicture * Width();
    CUIDrawStatePicture(hDC, x, y, m_strip, {x0, 0, x0 + Width(), Height()}, m_crKey, bDisabled);
}
