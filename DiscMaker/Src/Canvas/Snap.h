#pragma once

#include <vector>

#include "CUI/Platform.h"

// How far something that is moved has to go on to stand in one line with other things.
struct SnapResult
{
    int m_nBy = 0;  // pixels, 0: it snaps to nothing
    bool m_bSnaps = false;
    LONG m_nAt = 0;  // the line that it snaps to
};

// Of the edges (left, right, or top, bottom) of what is moved, the one that is nearest to one of
// the lines, if that is no more than nReach pixels away.
SnapResult Snap(LONG nFirst, LONG nSecond, const std::vector<LONG> &lines, int nReach);
