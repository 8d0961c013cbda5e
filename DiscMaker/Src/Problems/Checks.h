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

// One subject each.
void CheckEntries(CSkinCheck &check);   // missing ones, unused ones
void CheckNumbers(CSkinCheck &check);   // places, rectangles, colours, the numbers of fonts
void CheckFonts(CSkinCheck &check);     // heights and faces
void CheckTexts(CSkinCheck &check);     // characters, "&", line breaks
void CheckLabel(CSkinCheck &check);     // the disc's label
void CheckPlaces(CSkinCheck &check);    // outside, cut off, overlapping
void CheckContrast(CSkinCheck &check);  // texts that cannot be read
// `sContents` empty: whether the programs are there is not asked.
void CheckCommands(CSkinCheck &check, const CCUString &sContents);

// Of no language: the pictures and the icon.
void CheckPictures(const CSkin &skin, CProblems &problems);

// "%d" of `nNumber` in `pszFormat`, which has one.
CCUString WithNumber(const char *pszFormat, int nNumber);
