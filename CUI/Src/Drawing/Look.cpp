#include "Drawing/Look.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CUI/BmpBlt.h"
#include "CUI/BmpState.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"

int CUIScale(int n)
{
    return MulDiv(n, CUIGetWinData()->cyPixelsPerInch, 96);
}

COLORREF CUISystemColor(int nIndex)
{
    const CUIData &data = *CUIGetWinData();
    return data.ResolveColor(data.crSys[nIndex]);
}

// Asked for once for all that is drawn in the same colours.
bool CUIIsHighContrast()
{
    static DWORD s_dwStamp;
    static bool s_bKnown;
    static bool s_bHighContrast;
    const DWORD dwStamp = CUIGetWinData()->dwColorStamp;
    if (!s_bKnown || dwStamp != s_dwStamp) {
        HIGHCONTRASTA contrast = {sizeof contrast, 0, nullptr};
        SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0);
        s_bHighContrast = (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
        s_dwStamp = dwStamp;
        s_bKnown = true;
    }
    return s_bHighContrast;
}

void CUIReloadSystemColors(CCUIBitmap &bitmap)
{
    const CUIBitmapSource *const pSource = bitmap.GetData()->m_pSource;
    if (!pSource || !(pSource->m_wFlags & CUIBMP_SYSCOLORS) ||
        pSource->m_dwColorStamp == CUIGetWinData()->dwColorStamp)
        return;
    const CCUIBitmap before = bitmap;
    bitmap.ReLoad(nullptr, nullptr, 0);
    if (bitmap.Width() != before.Width())
        bitmap = before;
}

CCUIBitmap CUIScaledPictures(const CCUIBitmap &strip, int &cx, int nDpi)
{
    const int nScreenDpi = CUIGetWinData()->cyPixelsPerInch;
    const int nPictures = cx > 0 ? strip.Width() / cx : 0;
    if (nPictures == 0 || nDpi <= 0 || nScreenDpi <= nDpi)
        return strip;
    const int cxTo = MulDiv(cx, nScreenDpi, nDpi);
    const int cyTo = MulDiv(strip.Height(), nScreenDpi, nDpi);
    const CCUIWindowDC screen(nullptr);
    const CCUIBitmap scaled(CreateCompatibleBitmap(screen, nPictures * cxTo, cyTo), nullptr);
    const CCUIMemoryDC memory(screen);
    const CCUISelect bitmap(memory, scaled);
    if (!scaled || !bitmap) {
        CUDump("Unable to stretch pictures to %d dots an inch\n", nScreenDpi);
        return strip;
    }
    CUIBmpStretchBlt(memory, 0, 0, nPictures * cxTo, cyTo, strip, 0, 0, nPictures * cx,
                     strip.Height(), strip, TRUE);
    cx = cxTo;
    return scaled;
}

SIZE CUIMeasureText(HWND hWnd, HFONT hFont, const char *pszText, UINT nFormat)
{
    const CCUIWindowDC hDC(hWnd);
    const CCUISelect font(hDC, hFont);
    RECT rect = {0, 0, 0, 0};
    DrawTextA(hDC, pszText, -1, &rect, DT_CALCRECT | nFormat);
    return {rect.right, rect.bottom};
}

void CUIDrawTriangle(HDC hDC, int x, int y, int nSize, bool bDown, COLORREF cr)
{
    for (int i = 0; i < nSize; ++i) {
        const int nLength = 2 * (nSize - i) - 1;
        CUIDCFillSolidRect(hDC, x + i, y + i, bDown ? nLength : 1, bDown ? 1 : nLength, cr);
    }
}

void CUIDrawStateText(HDC hDC, const char *pszText, RECT rc, UINT nFormat, COLORREF cr,
                      bool bDisabled)
{
    if (bDisabled && CUIIsHighContrast()) {
        cr = CUISystemColor(COLOR_GRAYTEXT);
    } else if (bDisabled) {
        // Lit from above.
        cr = CUISystemColor(COLOR_BTNSHADOW);
        OffsetRect(&rc, 1, 1);
        SetTextColor(hDC, CUISystemColor(COLOR_BTNHIGHLIGHT));
        DrawTextA(hDC, pszText, -1, &rc, nFormat);
        OffsetRect(&rc, -1, -1);
    }
    SetTextColor(hDC, cr);
    DrawTextA(hDC, pszText, -1, &rc, nFormat);
}

void CUIDrawStatePicture(HDC hDC, int x, int y, const CCUIBitmap &strip, const RECT &rcSource,
                         COLORREF crKey, bool bDisabled)
{
    const int cx = CUIWidth(rcSource);
    const int cy = CUIHeight(rcSource);
    if (!bDisabled) {
        CUIBmpBgBltFull(hDC, x, y, strip, crKey, rcSource.left, rcSource.top, cx, cy);
        return;
    }
    // The engraved look has a light copy further down, and wants a margin for it.
    CUIBmpStateRects rects = {{x, y, x + cx + 2, y + cy + 2}, {x, y, x + cx, y + cy}, rcSource};
    CUIBmpDrawState(hDC, &rects.rcArea, strip, CUIBMPSTATE_DISABLED, crKey,
                    CUISystemColor(COLOR_BTNHIGHLIGHT), CUISystemColor(COLOR_BTNSHADOW));
}
