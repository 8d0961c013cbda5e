#include "Menu/MenuMetrics.h"

#include <string.h>

#include "Base/GdiGuards.h"
#include "CUI/Data.h"
#include "Drawing/Look.h"

// Of Windows XP.
#if !defined(SPI_GETFLATMENU)
#define SPI_GETFLATMENU 0x1022
#endif

bool CCUIMenuMetrics::Refresh()
{
    // Systems that do not know this leave it alone.
    BOOL bFlat = FALSE;
    SystemParametersInfoA(SPI_GETFLATMENU, 0, &bFlat, 0);
    m_bFlat = bFlat != FALSE;
    m_bContrast = CUIIsHighContrast();

    const CUIData &data = *CUIGetWinData();
    const int cxCheck = GetSystemMetrics(SM_CXMENUCHECK);
    LOGFONTA font = {};
    GetObjectA(data.hMenuFont, sizeof font, &font);
    if (memcmp(&font, &m_font, sizeof font) == 0 && m_nDpi == data.cyPixelsPerInch &&
        m_cxCheck == cxCheck)
        return false;
    m_font = font;
    m_nDpi = data.cyPixelsPerInch;
    m_cxCheck = cxCheck;
    m_nGap = CUIScale(4);
    const CCUIMemoryDC memory(nullptr);
    const CCUISelect select(memory, data.hMenuFont);
    TEXTMETRICA text = {};
    GetTextMetricsA(memory, &text);
    m_cyText = text.tmHeight + text.tmExternalLeading;
    m_cxChar = text.tmAveCharWidth;
    return true;
}
