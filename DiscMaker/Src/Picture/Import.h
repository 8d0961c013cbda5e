#pragma once

#include "Model/Problem.h"
#include "Model/Skin.h"
#include "Picture/Pixels.h"

// Reads a picture file: BMP of any kind by itself; PNG, JPEG and GIF as far as the system can.
// False when it cannot: why, and what helps, is among the problems.
bool ReadPictureFile(const CCUString &sPath, CPixels &pixels, CProblems &problems);

// The same as a resource for launchers; null when it cannot be read. What is transparent becomes
// white, or shows what lies under that picture of the skin.
CBlob ImportPicture(const CCUString &sPath, CProblems &problems);
CBlob ImportPicture(const CCUString &sPath, const CSkin &skin, SkinPicture picture,
                    CProblems &problems);
