#pragma once

#include <utility>

#include "CUI/Data.h"

// The screen has so many dots an inch as long as it lives.
class CDotsPerInch
{
public:
    explicit CDotsPerInch(int nDpi) : m_nOld(std::exchange(CUIGetWinData()->cyPixelsPerInch, nDpi))
    {
    }
    ~CDotsPerInch() { CUIGetWinData()->cyPixelsPerInch = m_nOld; }
    CDotsPerInch(const CDotsPerInch &) = delete;
    CDotsPerInch &operator=(const CDotsPerInch &) = delete;

private:
    int m_nOld;
};
