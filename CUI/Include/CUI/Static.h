#pragma once

/// @file
/// The system's static control.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

/// A label, an icon or a picture.
class CCUIStatic : public CCUISystemControl
{
public:
    /// The usual style: a label. SS_ICON and SS_BITMAP show pictures; without SS_NOTIFY it tells no
    /// clicks.
    enum : DWORD
    {
        STYLE = SS_LEFT | SS_NOTIFY  ///< the usual style
    };
    /// Bound to no control.
    CCUIStatic() : CCUISystemControl({"STATIC", STYLE, 0, 0, false, 60, 8}) {}

    /// Of its text, as wide as its longest line, or of its picture.
    void GetNaturalSize(SIZE &size) override { MeasureContent(size); }

    /// The picture of one with SS_ICON or SS_BITMAP; not owned. Returns the one before.
    /// @{
    HICON SetIcon(HICON hIcon)
    {
        return reinterpret_cast<HICON>(Send(STM_SETIMAGE, IMAGE_ICON, hIcon));
    }
    HBITMAP SetBitmap(HBITMAP hBitmap)
    {
        return reinterpret_cast<HBITMAP>(Send(STM_SETIMAGE, IMAGE_BITMAP, hBitmap));
    }
    /// @}
    /// The icon; null: none.
    HICON GetIcon() const { return reinterpret_cast<HICON>(Send(STM_GETIMAGE, IMAGE_ICON)); }
    /// The bitmap; null: none.
    HBITMAP GetBitmap() const
    {
        return reinterpret_cast<HBITMAP>(Send(STM_GETIMAGE, IMAGE_BITMAP));
    }

protected:
    /// Clicks, of one with SS_NOTIFY.
    /// @{
    virtual int OnClick() { return 0; }
    virtual int OnDblClk() { return 0; }
    /// @}

    int OnControlCommand(UINT nCode) override
    {
        switch (nCode) {
        case STN_CLICKED: return OnClick();
        case STN_DBLCLK: return OnDblClk();
        default: return 0;
        }
    }

private:
    CUI_API void MeasureContent(SIZE &size);
};
