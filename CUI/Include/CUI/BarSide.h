#pragma once

/// @file
/// Where bars stand.

/// The side of its parent that a bar is at.
enum CUIBarSide
{
    CUI_BAR_TOP,     ///< from the left to the right, at the upper edge of the room left
    CUI_BAR_BOTTOM,  ///< the same at the lower edge
    CUI_BAR_LEFT,    ///< from the top to the bottom, at the left edge of the room left
    CUI_BAR_RIGHT    ///< the same at the right edge
};
