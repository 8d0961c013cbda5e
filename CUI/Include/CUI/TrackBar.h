#pragma once

/// @file
/// The system's track bar.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

#include <commctrl.h>

/// A slider. From 0 to 100 at first.
class CCUITrackBar : public CCUISystemControl
{
public:
    /// The usual style. TBS_VERT: upright.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | TBS_AUTOTICKS  ///< the usual style
    };
    /// Bound to no control.
    CCUITrackBar() : CCUISystemControl({TRACKBAR_CLASSA, STYLE, 0, 0, true, 60, 15}) {}

    /// The first and the last position.
    void SetRange(int nMin, int nMax)
    {
        Send(TBM_SETRANGEMIN, FALSE, static_cast<LPARAM>(nMin));
        Send(TBM_SETRANGEMAX, TRUE, static_cast<LPARAM>(nMax));
    }
    /// The position.
    int GetPos() const { return Send(TBM_GETPOS); }
    void SetPos(int nPos) { Send(TBM_SETPOS, TRUE, static_cast<LPARAM>(nPos)); }  ///< tells nobody
    /// The distance from tick to tick.
    void SetTicFreq(int nStep) { Send(TBM_SETTICFREQ, static_cast<WPARAM>(nStep)); }
    /// How far the arrow keys go, and how far the page keys and clicks beside the slider.
    void SetSteps(int nLine, int nPage)
    {
        Send(TBM_SETLINESIZE, 0, static_cast<LPARAM>(nLine));
        Send(TBM_SETPAGESIZE, 0, static_cast<LPARAM>(nPage));
    }

protected:
    /// The user has moved the slider, or, when bDragging, is doing so.
    virtual int OnChange(int /*nPos*/, bool /*bDragging*/) { return 0; }

    int OnControlScroll(UINT nCode) override
    {
        return nCode == TB_ENDTRACK ? 0 : OnChange(GetPos(), nCode == TB_THUMBTRACK);
    }
};
