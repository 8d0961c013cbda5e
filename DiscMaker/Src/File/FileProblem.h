#pragma once

#include "Model/Problem.h"

// Problems of files, which are about no entry.
inline void AddProblem(CProblems &problems, ProblemWeight weight, const CCUString &sWhere,
                       const CCUString &sWhat, const CCUString &sEffect = "")
{
    problems.push_back(CProblem{weight, 0, sWhere, sWhat, sEffect});
}

// For a path in which a name has lost characters that this system's code page lacks: it leads
// nowhere, and whoever chose it does not see why. Empty: it has not.
const char *LostNameText(const CCUString &sPath);

// A file that the system refuses: what could not be done, and why in plain words.
void AddFileProblem(CProblems &problems, const CCUString &sPath, const char *pszWhat, DWORD nError);
