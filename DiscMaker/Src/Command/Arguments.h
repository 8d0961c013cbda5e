#pragma once

#include <vector>

#include "CU/String.h"

// A command line in words: without the program's name, quotes taken off. Unlike the C library's, a
// word with "*" or "?" stays as it is.
std::vector<CCUString> SplitCommandLine(const char *pszLine);
