#pragma once

#include "CU/String.h"
#include "Model/Skin.h"

// A bitmap's resource of its .bmp file, which has a header more in front; null when it is no such
// file.
CBlob ReadBmpFile(const CBlob &file);
// The other way. A file that the resource came from comes out as it was, unless it had a gap in
// front of its bits.
CBlob MakeBmpFile(const CBlob &picture);

// "a PNG picture" and so on, for files with another's name; empty: unknown.
CCUString PictureKind(const CBlob &file);
