#pragma once

#include "Model/Skin.h"

// A whole skin in one block of bytes, for the clipboard and for what is kept in case of a crash.
const BYTE SKIN_BEGINS = 'S';  // the first of them
std::vector<BYTE> PackSkin(const CSkin &skin);
// False, with `skin` as it was, when the bytes are none that PackSkin made, or not all of them.
bool UnpackSkin(const BYTE *pBytes, size_t nBytes, CSkin &skin);
// Of bytes that UnpackSkin does not take: whether they were of this form, cut off or damaged since.
bool IsDamagedSkin(const BYTE *pBytes, size_t nBytes);
