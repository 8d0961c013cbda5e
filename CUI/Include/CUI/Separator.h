#pragma once

/// @file
/// Lines between controls.

#include "CUI/Control.h"
#include "CUI/Platform.h"

/// An engraved line along the longer side of the window, in its middle. It takes no part in mouse
/// and keyboard.
class CUI_API CCUISeparator : public CCUIControl
{
public:
    /// Bound to no window.
    CCUISeparator();
    ~CCUISeparator() override;

    /// The room of a line, in both directions.
    void GetNaturalSize(SIZE &size) override;

protected:
    void Paint(HDC hDC, const RECT &rect) override;
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    UINT OnGetDlgCode(const MSG *pMsg) override;
};
