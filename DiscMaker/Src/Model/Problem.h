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

// What problems call the icon: its number in the launcher is a text's too.
const UINT PROBLEM_ICON = 0x10000;

// One thing that is wrong with a skin, a file or a disc, in words for who makes the disc.
struct CProblem
{
    ProblemWeight m_weight;
    UINT m_nEntry;        // id of the string or the picture that it is about; PROBLEM_ICON; 0: none
    CCUString m_sWhere;   // "Skin.rc:12", "Music\Intro.wav"; empty: the entry says it
    CCUString m_sWhat;    // what is wrong
    CCUString m_sEffect;  // what happens on the disc if it stays
    int m_nTexts = -1;    // of which of the skin's languages, an index; -1: of none in particular
};

typedef std::vector<CProblem> CProblems;

bool HasErrors(const CProblems &problems);

// For people: what it is about, "Run line, program" or a file; and what is wrong, in a sentence
// that does not say that again.
CCUString ProblemPlace(const CProblem &problem);
CCUString ProblemWhat(const CProblem &problem);
CCUString ProblemEffect(const CProblem &problem);
// A paragraph each, of the first few, for a message box.
CCUString ProblemsInWords(const CProblems &problems);

// For scripts and their authors:
// "error: Skin.rc:12: IDS_RUN_POS: what (effect)", without a line end.
CCUString ProblemLine(const CProblem &problem);
