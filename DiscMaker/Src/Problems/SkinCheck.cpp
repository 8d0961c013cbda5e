#include "Problems/SkinCheck.h"

CSkinCheck::CSkinCheck(const CSkin &skin, size_t nLanguage, CProblems &problems)
    : m_skin(skin),
      m_strings(skin, nLanguage),
      m_look(skin, m_strings),
      m_nTexts(static_cast<int>(nLanguage)),
      m_problems(problems)
{
    if (skin.m_texts.size() > 1)
        m_sWhere = LanguageName(m_strings.Language());
}

void CSkinCheck::Add(ProblemWeight weight, UINT nEntry, const CCUString &sWhat,
                     const CCUString &sEffect)
{
    m_problems.push_back({weight, nEntry, m_sWhere, sWhat, sEffect, m_nTexts});
}

void CSkinCheck::Note(UINT nEntry, const CCUString &sWhat, const CCUString &sEffect)
{
    Add(ProblemNote, nEntry, sWhat, sEffect);
}

void CSkinCheck::Warn(UINT nEntry, const CCUString &sWhat, const CCUString &sEffect)
{
    Add(ProblemWarning, nEntry, sWhat, sEffect);
}

void CSkinCheck::Fail(UINT nEntry, const CCUString &sWhat, const CCUString &sEffect)
{
    Add(ProblemError, nEntry, sWhat, sEffect);
}

CCUString WithNumber(const char *pszFormat, int nNumber)
{
    CCUString sText;
    sText.Format(pszFormat, nNumber);
    return sText;
}
