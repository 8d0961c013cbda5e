#pragma once

/// @file
/// Tooltips.

#include "CUI/Platform.h"

/// The system's tooltip control, for one tool at a time: who shows many, one under the mouse after
/// the other, needs one object. The window of it is made when the first tool is set, and again for
/// a tool in another top-level window; it belongs to that one. Windows 95 has such controls from
/// its comctl32.dll on; without that library, which is loaded here, there are no tips. For the
/// user-interface thread only.
class CCUIToolTip
{
public:
    /// Without a tool, and without a window.
    CUI_API CCUIToolTip();
    CUI_API ~CCUIToolTip();
    CCUIToolTip(const CCUIToolTip &) = delete;
    CCUIToolTip &operator=(const CCUIToolTip &) = delete;

    /// Shows the text when the mouse rests over the part prc (client pixels; null: all) of the
    /// window, in place of the tool before. A single '&' is not shown, nor what follows a tab;
    /// lines end at '\n', and long ones are broken, with Internet Explorer 3, else all is one line.
    /// A null window, and a text that is null or empty: no tool.
    CUI_API void SetTool(HWND hTool, const RECT *prc, const char *pszText);
    /// The window of the tool; null: none.
    HWND GetTool() const { return m_hTool; }
    /// Takes every mouse message of the tool's window; of others it is nothing.
    CUI_API void Relay(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    /// The tooltip control; null: none (yet).
    HWND GetHandle() const { return m_hTip; }

private:
    bool MakeWindow(HWND hTool);
    void RemoveTool();

    HWND m_hTip;   // goes with its owner: to be asked before it is used
    HWND m_hTool;  // null: none
};
