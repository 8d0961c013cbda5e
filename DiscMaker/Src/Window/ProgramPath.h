#pragma once

#include "CU/String.h"
#include "CUI/Platform.h"

// The folder of this program, with a backslash at its end.
CCUString ProgramFolder();
// How a line starts a program in the folder of the disc's contents: relative to that, in quotes if
// there are blanks in it. Empty: it is not in there.
CCUString CommandOfProgram(const CCUString &sPath, const CCUString &sContents);
