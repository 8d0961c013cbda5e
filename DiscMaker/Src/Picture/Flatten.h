#pragma once

#include "Model/Skin.h"
#include "Picture/Pixels.h"

// Makes a picture opaque as if it were drawn onto `under` with its top left corner at `at`. Where
// nothing is under it, white is.
void Flatten(CPixels &picture, const CPixels &under, const POINT &at);

// What lies under that picture of the skin, and where: under the product picture and the bullet the
// background, at the product's place and at that of the first line's bullet. White and (0, 0) when
// there is none.
void FindUnder(const CSkin &skin, SkinPicture picture, CPixels &under, POINT &at);
