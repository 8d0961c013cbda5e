#include "Canvas/Snap.h"

#include <stdlib.h>

SnapResult Snap(LONG nFirst, LONG nSecond, const std::vector<LONG> &lines, int nReach)
{
    SnapResult result;
    int nBest = nReach + 1;
    for (const LONG nLine : lines) {
        for (const LONG nEdge : {nFirst, nSecond}) {
            const int nBy = static_cast<int>(nLine - nEdge);
            if (abs(nBy) >= nBest)
                continue;
            nBest = abs(nBy);
            result.m_nBy = nBy;
            result.m_nAt = nLine;
            result.m_bSnaps = true;
        }
    }
    return result;
}
