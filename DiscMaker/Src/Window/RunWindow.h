#pragma once

#include "CUI/Platform.h"

// Runs Disc Maker with its window until that is closed; what the process answers. The command line
// names what is to be opened.
int RunWindow(int nShow);
