#pragma once

#include "Picture/Pixels.h"

// What the system itself can read: with GDI+ (Windows XP, and older ones that got it) PNG, JPEG and
// GIF, transparency included; else with OLE JPEG and GIF. False when it cannot.
bool ReadWithSystem(const std::vector<BYTE> &file, CPixels &pixels);
