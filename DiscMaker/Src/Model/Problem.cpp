#include "Model/Problem.h"

#include "Model/SkinEntry.h"

namespace {

const char *WeightText(ProblemWeight weight)
{
    switch (weight) {
    case ProblemNote: return "note";
    case ProblemWarning: return "warning";
    default: return "error";
    }
}

CCUString EntryName(UINT nEntry)
{
    const SkinEntry *const pEntry = FindSkinEntry(nEntry);
    if (pEntry)
        return pEntry->m_pszSymbol;
    CCUString sText;
    sText.Format("%u", nEntry);
    return sText;
}

}  // namespace

bool HasErrors(const CProblems &problems)
{
    for (const CProblem &problem : problems) {
        if (problem.m_weight == ProblemError)
            return true;
    }
    return false;
}

CCUString ProblemLine(const CProblem &problem)
{
    CCUString sLine = CCUString(WeightText(problem.m_weight)) + ": ";
    if (!problem.m_sWhere.IsEmpty())
        sLine += problem.m_sWhere + ": ";
    if (problem.m_nEntry)
        sLine += EntryName(problem.m_nEntry) + ": ";
    sLine += problem.m_sWhat;
    if (!problem.m_sEffect.IsEmpty())
        sLine += CCUString(" (") + problem.m_sEffect + ")";
    return sLine;
}
