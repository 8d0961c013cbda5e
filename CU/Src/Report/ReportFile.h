#pragma once

#include <stdio.h>

#include "CU/Platform.h"

// The file that failed checks and crashes are reported in. A report may come from the middle of
// anything, with the heap damaged or any lock held. So nothing here takes memory or a lock of ours,
// and the C library gets its buffer from the stack of whoever reports. What fopen itself and the
// system's functions take cannot be helped: handlers were promised a FILE, and the user the date in
// his own format.

struct CCUReportBuffer
{
    char text[4096];
};

// Opens the day's file for one more report and begins it with the separator and the time; other
// threads and processes that report wait for its end, two seconds at most. Null when there is no
// temporary directory or the file cannot be opened. The buffer is in use until the report is
// closed.
FILE *CUOpenReport(CCUReportBuffer &buffer);
// Lets the report handlers have their say and closes the file.
void CUCloseReport(FILE *file);
