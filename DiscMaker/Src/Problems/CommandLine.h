#pragma once

#include "CU/String.h"

// The program at the start of a command line, without its quotes. Without quotes it ends at the
// first space.
CCUString ProgramOf(const CCUString &sCommand);

// With ".exe" where it has no extension, as Windows looks for it.
CCUString WithExtension(const CCUString &sProgram);

// In lower case and without the dot; empty when there is none.
CCUString ExtensionOf(const CCUString &sProgram);
