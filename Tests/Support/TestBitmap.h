#pragma once

#include "CUI/Bitmap.h"
#include "Support/PixelMap.h"

// A bitmap of the screen's depth with that picture.
inline CCUIBitmap BitmapOf(const CPixelMap &picture)
{
    CTestSurface surface(picture);
    return CCUIBitmap(HBITMAP(CopyImage(surface.Bitmap(), IMAGE_BITMAP, 0, 0, 0)), nullptr);
}
