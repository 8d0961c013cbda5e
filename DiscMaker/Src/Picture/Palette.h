#pragma once

#include "Model/Skin.h"

// Gives the skin's pictures one table of 256 colours, with the system's twenty at its ends, and
// draws them in it with dithering where it lacks colours. Pictures that are missing or cannot be
// read stay as they are. False when there is nothing to share: none can be read.
bool ShareColours(CSkin &skin);

// Whether all pictures that there are have 256 colours or less, and the same ones.
bool HaveSharedColours(const CSkin &skin);
