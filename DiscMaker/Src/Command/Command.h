#pragma once

// Runs the command that a command line names, without a window. False when it names none, so that
// the window is wanted; else `nExitCode` is
//   0  done, and nothing is wrong (notes apart)
//   1  done, but there are problems
//   2  not done
// One line a problem goes to the standard output. "/?" lists the commands.
bool RunCommand(const char *pszCommandLine, int &nExitCode);
