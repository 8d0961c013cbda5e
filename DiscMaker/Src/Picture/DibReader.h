#pragma once

#include "Picture/Pixels.h"

// Reads a DIB of any kind: OS/2 or Windows header of any length, 1 to 32 bits a pixel, masks, runs,
// either row first. `nSize` bytes begin with the header; `nBits` is where the pixels start, 0:
// right after the colours. Null, or why it cannot be read, such as "its data is cut off": nothing
// outside of the bytes is ever read. A picture of runs that end early is black in the rest.
const char *ReadDib(const BYTE *pDib, size_t nSize, size_t nBits, CPixels &pixels);

// The same for the bytes of a .bmp file.
const char *ReadBmp(const BYTE *pFile, size_t nSize, CPixels &pixels);
