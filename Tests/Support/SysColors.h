#pragma once

#include "CU/Platform.h"

// Gives the system's buttons colours that nothing else has, as long as it lives.
class CSysColors
{
public:
    explicit CSysColors(BYTE nTint = 0)
    {
        for (BYTE i = 0; i < 4; ++i) {
            m_old[i] = GetSysColor(INDEXES[i]);
            m_new[i] = RGB(0x21 + 0x20 * i, 0x43 + nTint, 0x65 + 2 * i);
        }
        SetSysColors(4, INDEXES, m_new);
    }
    ~CSysColors() { SetSysColors(4, INDEXES, m_old); }
    CSysColors(const CSysColors &) = delete;
    CSysColors &operator=(const CSysColors &) = delete;

    static constexpr int INDEXES[] = {COLOR_BTNTEXT, COLOR_BTNSHADOW, COLOR_BTNFACE,
                                      COLOR_BTNHIGHLIGHT};
    COLORREF m_new[4], m_old[4];
};
