#pragma once

#include "CUI/Platform.h"

// Raster operations that the system's headers have no names for.
const DWORD CUI_ROP_DSPDXAX = 0x00E20746;  // the brush where the source is 1, else the destination
const DWORD CUI_ROP_PSDPXAX = 0x00B8074A;  // the brush where the source is 0, else the destination
const DWORD CUI_ROP_DSNA = 0x00220326;     // the destination where the source is 0, else 0
