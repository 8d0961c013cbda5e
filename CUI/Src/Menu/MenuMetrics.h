#pragma once

#include "CU/Platform.h"

// The sizes in the system's menus, in pixels, and what they follow from.
class CCUIMenuMetrics
{
public:
    // Measures anew if the menu font, the resolution or the check mark has changed since the last
    // call; true then.
    bool Refresh();

    int m_cyText = 0;          // a line
    int m_cxChar = 0;          // an average character
    int m_cxCheck = 0;         // the check mark's place
    int m_nGap = 0;            // between parts of an item
    bool m_bFlat = false;      // the system's menus have no relief
    bool m_bContrast = false;  // the user wants high contrast

private:
    LOGFONTA m_font = {};
    int m_nDpi = 0;
};
