#pragma once

#include <vector>

#include "CU/String.h"
#include "CUI/Platform.h"

enum ProblemWeight
{
    ProblemNote,     // the disc works; somebody may wonder
    ProblemWarning,  // the disc works, but not as meant
    ProblemError     // the disc does not work, or the file cannot be read or written
};

// One thing that is wrong with a skin, a file or a disc, in words for who makes the disc.
struct CProblem
{
    ProblemWeight m_weight;
    UINT m_nEntry;      // id of the string or the picture that it is about; 0: none
    CCUString m_sWhere; // "Skin.rc:12", "Music\Intro.wav"; empty: the entry says it
    CCUString m_sWhat;  // what is wrong
    CCUString m_sEffect;  // what happens on the disc if it stays
};

typedef std::vector<CProblem> CProblems;

bool HasErrors(const CProblems &problems);
// "error: Skin.rc:12: IDS_RUN_POS: what (effect)", without a line end.
CCUString ProblemLine(const CProblem &problem);
