#pragma once

#include "Model/Blob.h"
#include "Picture/Pixels.h"

// What the system itself can read: with GDI+ (Windows XP, and older ones that got it) PNG, JPEG and
// GIF, transparency included; else with OLE JPEG and GIF. False when it cannot.
bool ReadWithSystem(const CBytes &file, CPixels &pixels);
