#pragma once

/// @file
/// The system's scroll bar, as a control or as a part of a window.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

/// Moves a bar of a window to where the user wants it, as OnHScroll (nBar: SB_HORZ) and OnVScroll
/// (SB_VERT) are told by nCode: GetScrollPos has the position then. nLine: how far an arrow goes.
/// Whether the bar is at another position now. The range is what SetScrollInfo said.
CUI_API bool CUIFollowScrollBar(HWND hWnd, int nBar, UINT nCode, int nLine);

/// A scroll bar that moves as it is told to: OnChange hears of the new position only.
class CCUIScrollBar : public CCUISystemControl
{
public:
    /// The usual style. SBS_VERT: upright.
    enum : DWORD
    {
        STYLE = SBS_HORZ  ///< the usual style
    };
    /// Bound to no control.
    CCUIScrollBar() : CCUISystemControl({"SCROLLBAR", STYLE, 0, 0, false, 60, 10}), m_nLine(1) {}

    /// The positions of all that there is, first and last, and how many of them are seen at a time:
    /// the bar's own position ends where those are the last. Nothing to scroll: it is disabled.
    void SetRange(int nMin, int nMax, int nPage)
    {
        const SCROLLINFO info = {sizeof info,
                                 SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL,
                                 nMin,
                                 nMax,
                                 static_cast<UINT>(nPage),
                                 0,
                                 0};
        SetScrollInfo(m_hWnd, SB_CTL, &info, TRUE);
    }
    /// The position.
    int GetPos() const { return GetScrollPos(m_hWnd, SB_CTL); }
    /// Moves it there, and tells nobody.
    void SetPos(int nPos) { SetScrollPos(m_hWnd, SB_CTL, nPos, TRUE); }
    void SetLine(int nLine) { m_nLine = nLine; }  ///< how far an arrow goes; 1 at first

protected:
    /// The user has moved the bar, which is there already.
    virtual int OnChange(int /*nPos*/) { return 0; }

    int OnControlScroll(UINT nCode) override { return Follow(nCode) ? OnChange(GetPos()) : 1; }

private:
    CUI_API bool Follow(UINT nCode);

    int m_nLine;
};
