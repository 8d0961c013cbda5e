#pragma once

#include "Model/Skin.h"
#include "Picture/Pixels.h"

// As a launcher's resource: header of 40 bytes, colours, rows from the bottom up; transparency is
// left out. With the picture's own table in 8 bits if it has one that holds all its pixels, else in
// 24 bits.
CBlob WriteDib(const CPixels &pixels);
