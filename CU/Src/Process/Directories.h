#pragma once

#include "CU/String.h"

// Creates the directories that a path leads through and that are missing, up to its last backslash.
// Of a network path the server is left alone. Returns the one that could not be created; empty when
// all are there. Without a word to the trace, whose own folder is made by this.
CCUString CUMakeDirectories(const CCUString &sPath);

// What its callers tell the trace.
const char CU_DIRECTORY_FAILED[] = "CreateDirectory %s error\n";
