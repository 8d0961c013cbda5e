#pragma once

#include <vector>

#include "CU/Platform.h"

// Gives the system's buttons colours that nothing else has, as long as it lives.
class CSysColors
{
public:
    explicit CSysColors(BYTE nTint = 0)
    {
        for (BYTE i = 0; i < 4; ++i) {
            m_old[i] = GetSysColor(s_indexes[i]);
            m_new[i] = RGB(0x21 + i, 0x43 + nTint, 0x65 + 2 * i);
        }
        SetSysColors(4, s_indexes, m_new);
    }
    ~CSysColors() { SetSysColors(4, s_indexes, m_old); }
    CSysColors(const CSysColors &) = delete;
    CSysColors &operator=(const CSysColors &) = delete;

    // Text, shadow, face, highlight, as 0xRRGGBB.
    std::vector<DWORD> Buttons() const
    {
        std::vector<DWORD> colors;
        for (const COLORREF cr : m_new)
            colors.push_back(static_cast<DWORD>(GetRValue(cr) << 16 | GetGValue(cr) << 8) |
                             GetBValue(cr));
        return colors;
    }

private:
    static constexpr int s_indexes[4] = {COLOR_BTNTEXT, COLOR_BTNSHADOW, COLOR_BTNFACE,
                                         COLOR_BTNHIGHLIGHT};
    COLORREF m_old[4];
    COLORREF m_new[4];
};
