#pragma once

#include <map>

#include "CU/String.h"

// What a disc's folder was written with: the SHA-256 sum of each file, by its path from the folder
// in UTF-8 with "/" between. As a file it is what "sha256sum -c" takes: "SUM *PATH" and a line
// feed.
typedef std::map<CCUString, CCUString> CSums;

extern const char *const SUMS_NAME;

CCUString WriteSums(const CSums &sums);
// Lines that are none are left out.
CSums ReadSums(const CCUString &sText);
