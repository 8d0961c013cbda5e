#pragma once

/// @file
/// The system's up-down control.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

#include <commctrl.h>

/// Two arrows that count, beside a field that shows the number. From 0 to 100 at first.
class CCUISpinButton : public CCUISystemControl
{
public:
    /// The usual style: at the right edge of its field, whose number it writes. The field is the
    /// control that was created just before; without UDS_AUTOBUDDY, what SetBuddy says.
    enum : DWORD
    {
        STYLE = UDS_AUTOBUDDY | UDS_ALIGNRIGHT | UDS_ARROWKEYS | UDS_SETBUDDYINT |
                UDS_NOTHOUSANDS  ///< the usual style
    };
    /// Bound to no control.
    CCUISpinButton() : CCUISystemControl({UPDOWN_CLASSA, STYLE, 0, 0, true, 11, 14}) {}

    /// The field; UDS_ALIGNRIGHT and UDS_ALIGNLEFT make room for the arrows inside of it. To be
    /// called again when the field has another place.
    void SetBuddy(HWND hField) { Send(UDM_SETBUDDY, FromPointer<WPARAM>(hField)); }
    /// The field; null: none.
    HWND GetBuddy() const { return reinterpret_cast<HWND>(Send(UDM_GETBUDDY)); }
    /// Beyond -32,767 to 32,767 with Internet Explorer 4, and positions with 5. A minimum above the
    /// maximum turns the arrows around.
    /// @{
    void SetRange(int nMin, int nMax)
    {
        if (IsShort(nMin) && IsShort(nMax))
            Send(UDM_SETRANGE, 0, MAKELPARAM(nMax, nMin));
        else
            Send(UDM_SETRANGE32, static_cast<WPARAM>(nMin), static_cast<LPARAM>(nMax));
    }
    void SetPos(int nPos)
    {
        if (IsShort(nPos))
            Send(UDM_SETPOS, 0, MAKELPARAM(nPos, 0));
        else
            Send(UDM_SETPOS32, 0, static_cast<LPARAM>(nPos));
    }
    /// What the field says, if that is a number; else the last one.
    int GetPos() const
    {
        BOOL bUnknown = TRUE;
        const int nPos = Send(UDM_GETPOS32, 0, &bUnknown);
        return bUnknown ? static_cast<SHORT>(LOWORD(Send(UDM_GETPOS))) : nPos;
    }
    /// @}

protected:
    /// An arrow is about to add nDelta, which may be changed, to nPos, or not if bRefuse is set.
    virtual int OnDeltaPos(int /*nPos*/, int & /*nDelta*/, bool & /*bRefuse*/) { return 0; }
    /// The number was changed by the arrows.
    virtual int OnChange(int /*nPos*/) { return 0; }

    int OnControlScroll(UINT nCode) override
    {
        return nCode == SB_THUMBPOSITION ? OnChange(GetPos()) : 0;
    }
    int OnControlNotify(NMHDR *pHeader, long &result) override
    {
        if (pHeader->code != UDN_DELTAPOS)
            return 0;
        auto &delta = *reinterpret_cast<NMUPDOWN *>(pHeader);
        bool bRefuse = false;
        const int bHandled = OnDeltaPos(delta.iPos, delta.iDelta, bRefuse);
        result = bRefuse;
        return bHandled;
    }

private:
    static bool IsShort(int n) { return n >= -0x7FFF && n <= 0x7FFF; }
};
