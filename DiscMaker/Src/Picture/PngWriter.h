#pragma once

#include "Model/Skin.h"
#include "Picture/Pixels.h"

// The bytes of a .png file of 24 bits, for those who look at a picture elsewhere. Not compressed,
// but the same everywhere.
CBlob WritePng(const CPixels &pixels);
