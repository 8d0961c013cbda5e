#pragma once

#include "CUI/Bitmap.h"
#include "Model/Skin.h"

// A picture as the launcher loads it from its resources: of the screen's depth, with the palette of
// its colours. Null when the bytes are no picture.
CCUIBitmap BitmapOfPicture(const CBlob &picture);
// Its header, when all that this speaks of is there; null: it cannot be shown. Costs nothing.
const BITMAPINFOHEADER *HeaderOfPicture(const CBlob &picture);
