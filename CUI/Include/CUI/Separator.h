#pragma once

/// @file
/// Lines between controls.

#include "CUI/Control.h"
#include "CUI/Platform.h"

/// An engraved line along the longer side of the window, in its middle. It takes no part in mouse
/// and keyboard.
class CCUISeparator : public CCUIControl
{
public:
    /// Bound to no window.
    CUI_API CCUISeparator();
    CUI_API ~CCUISeparator() override;

    /// The room of a line, in both directions.
    CUI_API void GetNaturalSize(SIZE &size) override;

protected:
    CUI_API void Paint(HDC hDC, const RECT &rect) override;
    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API UINT OnGetDlgCode(const MSG *pMsg) override;
};
