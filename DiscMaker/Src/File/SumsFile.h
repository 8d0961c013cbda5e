#pragma once

#include <map>

#include "CU/String.h"

// The SHA-256 sum of each file, by its path. As a text it is what "sha256sum -c" takes: "SUM *PATH"
// and a line feed. What a disc's folder was written with has paths from that folder, in UTF-8 with
// "/" between.
typedef std::map<CCUString, CCUString> CSums;

extern const char *const SUMS_NAME;

CCUString WriteSums(const CSums &sums);
// Lines that are none are left out.
CSums ReadSums(const CCUString &sText);
