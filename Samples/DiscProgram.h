#pragma once

// The resource ids of DiscProgram.rc. Read by the compiler and by windres.

#define IDD_PROGRAM 100
#define IDI_PROGRAM 1

#define IDC_MODULE 1001
#define IDC_DIRECTORY 1002
#define IDC_COMMAND_LINE 1003

// One heading and one purpose for each program, in the order of the table in DiscProgram.cpp.
#define IDS_HEADING 1
#define IDS_PURPOSE 11
