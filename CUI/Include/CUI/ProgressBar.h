#pragma once

/// @file
/// The system's progress bar.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

#include <commctrl.h>

/// A bar that shows how far something is. From 0 to 100 at first.
class CCUIProgressBar : public CCUISystemControl
{
public:
    /// The usual style. With Internet Explorer 3: PBS_SMOOTH, PBS_VERTICAL.
    enum : DWORD
    {
        STYLE = 0  ///< the usual style
    };
    /// Bound to no control.
    CCUIProgressBar() : CCUISystemControl({PROGRESS_CLASSA, STYLE, 0, 0, true, 60, 10}) {}

    /// Beyond 0 to 65,535 with Internet Explorer 3.
    void SetRange(int nMin, int nMax)
    {
        if (nMin >= 0 && nMin <= 0xFFFF && nMax >= 0 && nMax <= 0xFFFF)
            Send(PBM_SETRANGE, 0, MAKELPARAM(nMin, nMax));
        else
            Send(PBM_SETRANGE32, static_cast<WPARAM>(nMin), static_cast<LPARAM>(nMax));
    }
    /// Both return the position before.
    /// @{
    int SetPos(int nPos) { return Send(PBM_SETPOS, static_cast<WPARAM>(nPos)); }
    int OffsetPos(int nBy) { return Send(PBM_DELTAPOS, static_cast<WPARAM>(nBy)); }
    /// @}
    int GetPos() const { return Send(PBM_GETPOS); }  ///< with Internet Explorer 3, else 0
};
