#pragma once

#include <vector>

#include "CUI/Platform.h"

enum Arrangement
{
    AlignLeft,
    AlignRight,
    AlignTop,
    AlignBottom,
    AlignCenter,  // one below the other
    AlignMiddle,  // side by side
    SpaceAcross,  // the same room between all, from the left to the right
    SpaceDown
};

// Whether there are enough things for it.
bool CanArrange(Arrangement arrangement, size_t nThings);
// Moves all but the first one, which the others go by; of those that are spaced, all but the
// outermost.
void Arrange(Arrangement arrangement, std::vector<RECT> &rects);
