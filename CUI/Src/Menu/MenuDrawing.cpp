// How the items of a menu look: as the system's own, in its colours.

#include "Base/GdiGuards.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Drawing/Look.h"
#include "Menu/MenuPictures.h"
#include "Menu/MenuPopup.h"

// Of Windows 2000: underlines stay hidden until a key is used.
#if !defined(ODS_NOACCEL)
#define ODS_NOACCEL 0x0100
#endif
#if !defined(DT_HIDEPREFIX)
#define DT_HIDEPREFIX 0x00100000
#endif

namespace {

// A colour on another; the second choice where they are the same, as on screens of few colours.
DWORD Visible(DWORD cr, DWORD crBack, int nSecondChoice)
{
    return cr != crBack ? cr : CUISystemColor(nSecondChoice);
}

// A shape of vertical strips.
struct CShape
{
    HDC hDC;
    int x, y;
    DWORD cr;

    void Strip(int nColumn, int nTop, int nHeight) const
    {
        CUIDCFillSolidRect(hDC, x + nColumn, y + nTop, 1, nHeight, cr);
    }
};

// A check mark in a square of nSize pixels.
void DrawTick(const CShape &shape, int nSize)
{
    const int nThick = (nSize * 3 + 3) / 7;
    const int nCorner = nSize / 3;
    for (int i = 0; i < nSize; ++i) {
        const int nRise = i < nCorner ? nCorner - i : i - nCorner;
        shape.Strip(i, nSize - nThick - nRise, nThick);
    }
}

// A disc in a square of nSize pixels: those whose middle is within its radius.
void DrawBullet(const CShape &shape, int nSize)
{
    for (int i = 0; i < nSize; ++i) {
        const int dx = 2 * i + 1 - nSize;
        int nTop = 0;
        while ((2 * nTop + 1 - nSize) * (2 * nTop + 1 - nSize) + dx * dx > nSize * nSize)
            ++nTop;
        shape.Strip(i, nTop, nSize - 2 * nTop);
    }
}

}  // namespace

// One drawing of an item.
class CCUIMenuPopup::CDrawing
{
public:
    CDrawing(const CCUIMenuPopup &popup, const CCUIMenuRecord &record, const DRAWITEMSTRUCT &draw);
    void DrawBack() const;
    void DrawPicture() const;
    void DrawContents() const;

private:
    void DrawParts(DWORD cr, int nOffset) const;
    void DrawLine(const char *pszText, int nLength, int nLeft, UINT nFormat, int nOffset) const;
    bool IsSet(UINT nState) const { return (m_draw.itemState & nState) != 0; }
    int Middle(int cy) const { return (m_rc.top + m_rc.bottom - cy) / 2; }

    const CCUIMenuPopup &m_popup;
    const CCUIMenuMetrics &m_metrics;
    const CCUIMenuRecord &m_record;
    const DRAWITEMSTRUCT &m_draw;
    const RECT &m_rc;
    const HDC m_hDC;
    const bool m_bSelected;
    const bool m_bDisabled;
    DWORD m_crBack;
    DWORD m_crText;
};

CCUIMenuPopup::CDrawing::CDrawing(const CCUIMenuPopup &popup, const CCUIMenuRecord &record,
                                  const DRAWITEMSTRUCT &draw)
    : m_popup(popup),
      m_metrics(popup.m_metrics),
      m_record(record),
      m_draw(draw),
      m_rc(draw.rcItem),
      m_hDC(draw.hDC),
      m_bSelected(IsSet(ODS_SELECTED)),
      m_bDisabled(IsSet(ODS_GRAYED | ODS_DISABLED))
{
    const CUIData &data = *CUIGetWinData();
    m_crBack = CUISystemColor(m_bSelected ? COLOR_HIGHLIGHT : COLOR_MENU);
    if (m_bSelected && m_metrics.m_bFlat)
        m_crBack = data.ResolveColor(data.crMenuHilite);
    const int nPlain = m_bSelected ? COLOR_HIGHLIGHTTEXT : COLOR_MENUTEXT;
    m_crText = CUISystemColor(nPlain);
    if (m_bDisabled)
        m_crText = Visible(CUISystemColor(COLOR_GRAYTEXT), m_crBack, nPlain);
}

void CCUIMenuPopup::CDrawing::DrawBack() const
{
    CUIDCFillSolidRect(m_hDC, &m_rc, m_crBack);
    if (m_bSelected && m_metrics.m_bFlat)
        CUIDCDrawRect(m_hDC, &m_rc, CUISystemColor(COLOR_HIGHLIGHT));
}

void CCUIMenuPopup::CDrawing::DrawPicture() const
{
    const CCUIMenuPictures &pictures = *m_record.m_pPictures;
    const int cx = pictures.Width();
    const int cy = pictures.Height();
    const int x = m_rc.left + (m_popup.MarkWidth() - cx) / 2;
    const int y = Middle(cy);
    const CCUIBkColor back(m_hDC, m_crBack);
    pictures.Draw(m_hDC, x, y, m_record.m_nPicture, m_bDisabled);
    // In place of its mark a checked item has its picture in a frame, as if pressed.
    if (!IsSet(ODS_CHECKED))
        return;
    const RECT frame = {x - 2, y - 2, x + cx + 2, y + cy + 2};
    if (m_metrics.m_bFlat || m_metrics.m_bContrast)
        CUIDCDrawRect(m_hDC, &frame,
                      Visible(CUISystemColor(COLOR_HIGHLIGHT), m_crBack, COLOR_MENUTEXT));
    else
        CUIDCDraw3dRect(m_hDC, &frame, CUISystemColor(COLOR_BTNSHADOW),
                        CUISystemColor(COLOR_BTNHIGHLIGHT), 0, 0);
}

void CCUIMenuPopup::CDrawing::DrawLine(const char *pszText, int nLength, int nLeft, UINT nFormat,
                                       int nOffset) const
{
    RECT rect = {m_rc.left + nLeft + nOffset, m_rc.top + nOffset, m_rc.right,
                 m_rc.bottom + nOffset};
    if (m_record.m_nType & MFT_RIGHTORDER)
        nFormat |= DT_RTLREADING;
    DrawTextA(m_hDC, pszText, nLength, &rect, nFormat | DT_SINGLELINE | DT_VCENTER);
}

// Texts, mark and arrow in one colour.
void CCUIMenuPopup::CDrawing::DrawParts(DWORD cr, int nOffset) const
{
    SetTextColor(m_hDC, cr);
    const int nLeft = m_popup.TextLeft();
    DrawLine(m_record.m_sText, m_record.LabelLength(), nLeft,
             IsSet(ODS_NOACCEL) ? DT_HIDEPREFIX : 0, nOffset);
    if (m_record.m_cxKey)
        DrawLine(m_record.Shortcut(), -1, nLeft + m_record.m_cxColumn + 2 * m_metrics.m_cxChar,
                 DT_NOPREFIX, nOffset);

    const int nSize = m_metrics.m_cxCheck * 2 / 3;
    if (IsSet(ODS_CHECKED) && !m_record.m_pPictures) {
        const int nMark = m_rc.left + (m_popup.MarkWidth() - nSize) / 2;
        const CShape shape = {m_hDC, nMark + nOffset, Middle(nSize) + nOffset, cr};
        if (m_record.m_nType & MFT_RADIOCHECK)
            DrawBullet(shape, nSize);
        else
            DrawTick(shape, nSize);
    }
    if (m_record.m_bSubmenu) {
        const int cx = (nSize + 1) / 2;
        CUIDrawTriangle(m_hDC, m_rc.right - m_metrics.m_nGap - cx + nOffset,
                        Middle(2 * cx - 1) + nOffset, cx, false, cr);
    }
}

void CCUIMenuPopup::CDrawing::DrawContents() const
{
    const CUIData &data = *CUIGetWinData();
    const CCUISelect font(m_hDC, m_record.m_bDefault ? data.hMenuFontBold : data.hMenuFont);
    SetBkMode(m_hDC, TRANSPARENT);
    // Disabled items of menus with relief are embossed.
    if (m_bDisabled && !m_bSelected && !m_metrics.m_bFlat && !m_metrics.m_bContrast)
        DrawParts(CUISystemColor(COLOR_BTNHIGHLIGHT), 1);
    DrawParts(m_crText, 0);
}

void CCUIMenuPopup::Draw(const CCUIMenuRecord &record, const DRAWITEMSTRUCT &draw) const
{
    {
        const CCUISavedDC saved(draw.hDC);
        const CDrawing drawing(*this, record, draw);
        drawing.DrawBack();
        if (record.m_pPictures)
            drawing.DrawPicture();
        drawing.DrawContents();
    }
    // Else the system draws an arrow of its own over ours, in one colour for all states.
    if (record.m_bSubmenu)
        ExcludeClipRect(draw.hDC, draw.rcItem.left, draw.rcItem.top, draw.rcItem.right,
                        draw.rcItem.bottom);
}
