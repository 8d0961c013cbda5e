// How a table of properties paints itself.
#include "Base/GdiGuards.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/OffScreenDC.h"
#include "Model/SkinEntry.h"
#include "Window/NotePane.h"
#include "Window/PropertyGrid.h"
#include "Window/Scaled.h"

namespace {

const UINT TEXT_FORMAT = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

// What a screen of 256 colours does not have is mixed of dots.
void Fill(HDC hDC, const RECT &rect, int nSysColor)
{
    FillRect(hDC, &rect, GetSysColorBrush(nSysColor));
}

void Text(HDC hDC, RECT rect, const CCUString &sText, COLORREF crText)
{
    rect.left += Scaled(4);
    rect.right -= Scaled(2);
    SetTextColor(hDC, crText);
    DrawTextA(hDC, sText, sText.GetLength(), &rect, TEXT_FORMAT);
}

}  // namespace

int CPropertyGrid::OnEraseBkgnd(HDC)
{
    return 1;
}

void CPropertyGrid::OnPaint(HDC)
{
    PAINTSTRUCT paint;
    const HDC hDC = BeginPaint(m_hWnd, &paint);
    const RECT &part = paint.rcPaint;
    const HDC hMemDC = CUIGetOSDC()->GetDC(hDC, part.right, part.bottom);
    if (hMemDC) {
        const CCUISavedDC saved(hMemDC);
        Fill(hMemDC, part, COLOR_WINDOW);
        SetBkMode(hMemDC, TRANSPARENT);
        for (int i = 0; i < RowCount(); ++i) {
            const RECT rect = RowRect(i);
            if (rect.bottom > part.top && rect.top < part.bottom)
                PaintRow(hMemDC, i);
        }
        BitBlt(hDC, part.left, part.top, part.right - part.left, part.bottom - part.top, hMemDC,
               part.left, part.top, SRCCOPY);
    }
    CUIGetOSDC()->ReleaseDC();
    EndPaint(m_hWnd, &paint);
}

void CPropertyGrid::PaintRow(HDC hDC, int nRow) const
{
    const RECT rect = RowRect(nRow);
    const PropertyRow &row = Row(nRow);
    if (row.m_kind == PropertyRow::Heading) {
        PaintHeading(hDC, rect, row.m_sCaption);
        return;
    }
    Fill(hDC, {0, rect.bottom - 1, rect.right, rect.bottom}, COLOR_BTNFACE);
    Fill(hDC, {m_cxNames, rect.top, m_cxNames + 1, rect.bottom}, COLOR_BTNFACE);
    RECT name = {0, rect.top, m_cxNames, rect.bottom - 1};
    const bool bSelected = nRow == m_nSelected;
    if (bSelected)
        Fill(hDC, name, COLOR_HIGHLIGHT);
    const CCUISelect font(hDC, CUIGetWinData()->hMenuFont);
    name.left = Scaled(8);
    Text(hDC, name, row.m_sCaption,
         GetSysColor(bSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    PaintValue(hDC, {m_cxNames + 1, rect.top, rect.right, rect.bottom - 1}, nRow);
}

void CPropertyGrid::PaintHeading(HDC hDC, const RECT &rect, const CCUString &sText) const
{
    Fill(hDC, rect, COLOR_BTNFACE);
    const CCUISelect font(hDC, CUIGetWinData()->hMenuFontBold);
    Text(hDC, rect, sText, GetSysColor(COLOR_BTNTEXT));
}

// A frame where something is wrong; a colour with a sample of it.
void CPropertyGrid::PaintValue(HDC hDC, RECT rect, int nRow) const
{
    const PropertyRow &row = Row(nRow);
    if (HasFault(nRow)) {
        const COLORREF cr = CNotePane::FaultColor();
        CUIDCDrawRect(hDC, &rect, cr);
        CUIDCFillSolidRect(hDC, rect.left, rect.top, Scaled(3), rect.bottom - rect.top, cr);
    }
    if (nRow == m_nSelected)
        return;  // under the editor
    const SkinEntry *const pEntry =
        row.m_kind == PropertyRow::Entry ? FindSkinEntry(row.m_nID) : nullptr;
    int components[3] = {};
    if (pEntry && pEntry->m_kind == EntryColor &&
        ParseColor(m_document.Entry(row.m_nID), components)) {
        const int nSide = m_cyRow - Scaled(8);
        const RECT sample = {rect.left + Scaled(4), rect.top + Scaled(3),
                             rect.left + Scaled(4) + nSide * 3 / 2, rect.top + Scaled(3) + nSide};
        CUIDCFillSolidRect(hDC, &sample, RGB(components[0], components[1], components[2]));
        CUIDCDrawRect(hDC, &sample, GetSysColor(COLOR_WINDOWTEXT));
        rect.left = sample.right;
    }
    Text(hDC, rect, RowText(m_document, row), GetSysColor(COLOR_WINDOWTEXT));
}

void CPropertyGrid::OnSysColorChange()
{
    CCUIControlWindow::OnSysColorChange();
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CPropertyGrid::OnWinIniChange(WPARAM nAction, const char *section)
{
    CCUIControlWindow::OnWinIniChange(nAction, section);
    m_edit.SetFont(CUIGetWinData()->hMenuFont);
    MeasureRows();
    Rearrange();
    InvalidateRect(m_hWnd, nullptr, FALSE);
}
