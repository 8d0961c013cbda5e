#pragma once

#include "Model/Problem.h"
#include "Model/Skin.h"

// Draws the launcher's window with these looks by the launcher's own code, and writes it as .png or
// .bmp, as the name ends. False when there is nothing to draw, or it cannot be written.
bool WriteFacePicture(const CSkin &skin, const CCUString &sPath, CProblems &problems);
