#pragma once

#include "Model/Problem.h"
#include "Problems/SkinLook.h"

// What all checks of one language work with.
class CSkinCheck
{
public:
    CSkinCheck(const CSkin &skin, size_t nLanguage, CProblems &problems);

    const CSkin &m_skin;
    const CSkinStrings m_strings;
    const CSkinLook m_look;

    // Adds a problem of that entry.
    void Add(ProblemWeight weight, UINT nEntry, const CCUString &sWhat, const CCUString &sEffect);
    void Note(UINT nEntry, const CCUString &sWhat, const CCUString &sEffect);
    void Warn(UINT nEntry, const CCUString &sWhat, const CCUString &sEffect);
    void Fail(UINT nEntry, const CCUString &sWhat, const CCUString &sEffect);

private:
    CCUString m_sWhere;
    const int m_nTexts;
    CProblems &m_problems;
};

// "%d" of `nNumber` in `pszFormat`, which has one.
CCUString WithNumber(const char *pszFormat, int nNumber);
