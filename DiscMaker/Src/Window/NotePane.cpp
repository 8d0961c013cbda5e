#include "Window/NotePane.h"

#include "Base/GdiGuards.h"
#include "CUI/Data.h"

namespace {

const UINT TEXT_FORMAT = DT_WORDBREAK | DT_NOPREFIX;

}  // namespace

CNotePane::CNotePane()
{
    m_nShownStates = 0;
    m_bFocusOnClick = false;
}

CNotePane::~CNotePane() = default;

COLORREF CNotePane::FaultColor()
{
    return IsHighContrast() ? GetSysColor(COLOR_WINDOWTEXT) : RGB(208, 0, 0);
}

void CNotePane::Show(const CCUString &sCaption, const CCUString &sHelp, const CCUString &sFault)
{
    if (sCaption == m_sCaption && sHelp == m_sHelp && sFault == m_sFault)
        return;
    m_sCaption = sCaption;
    m_sHelp = sHelp;
    m_sFault = sFault;
    Repaint();
}

UINT CNotePane::OnGetDlgCode(const MSG *)
{
    return DLGC_STATIC;
}

void CNotePane::Paint(HDC hDC, const RECT &rect)
{
    RECT line = {rect.left + Scaled(6), rect.top + Scaled(4), rect.right - Scaled(4), rect.bottom};
    {
        const CCUISelect bold(hDC, CUIGetWinData()->hMenuFontBold);
        line.top += DrawTextA(hDC, m_sCaption, m_sCaption.GetLength(), &line, TEXT_FORMAT);
    }
    if (!m_sFault.IsEmpty()) {
        const CCUITextColor red(hDC, FaultColor());
        line.top += DrawTextA(hDC, m_sFault, m_sFault.GetLength(), &line, TEXT_FORMAT);
    }
    DrawTextA(hDC, m_sHelp, m_sHelp.GetLength(), &line, TEXT_FORMAT);
}
