#pragma once

#include <stdio.h>

#include "CU/Platform.h"

class CCUString;

// What assertion and crash reports share. Private to the layer.

// The temporary directory, with a backslash at the end. False, with the text left alone, when there
// is none or its name is longer than a path may be.
bool CUFindTempDirectory(CCUString &sTempDir);
// Opens the day's report file for one more report and begins it with the separator and the time.
// Null when there is no temporary directory or the file cannot be opened.
FILE *CUOpenReport();
// Lets the report handlers have their say and closes the file.
void CUCloseReport(FILE *file);
