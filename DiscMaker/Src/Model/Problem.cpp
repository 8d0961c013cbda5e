#include "Model/Problem.h"

#include <ctype.h>

#include "Model/SkinEntry.h"
#include "Resource.h"

namespace {

const size_t MOST_IN_WORDS = 6;  // more paragraphs do not fit on small screens

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
    switch (nEntry) {
    case PROBLEM_ICON: return "IDI_AUTORUN";
    case IDB_BACKGROUND:
    case IDB_PRODUCT:
    case IDB_BULLET: return "bitmap " + EntrySymbol(nEntry);
    default: return EntrySymbol(nEntry);
    }
}

CCUString EntryCaption(UINT nEntry)
{
    switch (nEntry) {
    case 0: return "";
    case IDS_DISC_LABEL: return "Label";
    case IDB_BACKGROUND: return "Background";
    case IDB_PRODUCT: return "Product picture";
    case IDB_BULLET: return "Bullet";
    case PROBLEM_ICON: return "Icon";
    default: break;
    }
    const SkinEntry *const pEntry = FindSkinEntry(nEntry);
    return pEntry ? CCUString(pEntry->m_pszCaption) : "Entry " + EntryName(nEntry);
}

// Names that other systems than Windows allow, and texts of skins, may have line breaks and the
// like.
CCUString InOneLine(CCUString sText)
{
    for (int i = 0; i < sText.GetLength(); ++i) {
        if (static_cast<BYTE>(sText[i]) < 0x20)
            sText.SetAt(i, '?');
    }
    return sText;
}

CCUString Sentence(CCUString sText)
{
    if (sText.IsEmpty())
        return sText;
    sText.SetAt(0, static_cast<char>(toupper(static_cast<BYTE>(sText[0]))));
    return sText.Right(1).FindOneOf(".!?") < 0 ? sText + "." : sText;
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

CCUString ProblemPlace(const CProblem &problem)
{
    const CCUString sCaption = EntryCaption(problem.m_nEntry);
    const CCUString sWhere = InOneLine(problem.m_sWhere);
    if (sCaption.IsEmpty() || sWhere.IsEmpty())
        return sCaption + sWhere;
    return sCaption + " (" + sWhere + ")";
}

CCUString ProblemWhat(const CProblem &problem)
{
    const CCUString sCaption = EntryCaption(problem.m_nEntry) + ": ";
    CCUString sWhat = problem.m_sWhat;
    if (sWhat.Left(sCaption.GetLength()) == sCaption)
        sWhat = sWhat.Mid(sCaption.GetLength());
    return Sentence(sWhat);
}

CCUString ProblemEffect(const CProblem &problem)
{
    return Sentence(problem.m_sEffect);
}

CCUString ProblemsInWords(const CProblems &problems)
{
    CCUString sText;
    const size_t nShown = problems.size() > MOST_IN_WORDS + 1 ? MOST_IN_WORDS : problems.size();
    for (size_t i = 0; i < nShown; ++i) {
        const CProblem &problem = problems[i];
        const CCUString sPlace = ProblemPlace(problem);
        sText += (sText.IsEmpty() ? "" : "\n\n") + sPlace + (sPlace.IsEmpty() ? "" : "\n");
        sText += ProblemWhat(problem) + " " + ProblemEffect(problem);
    }
    if (nShown < problems.size()) {
        CCUString sMore;
        sMore.Format("\n\nThere are %u more.", static_cast<unsigned>(problems.size() - nShown));
        sText += sMore;
    }
    return sText;
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
    return InOneLine(sLine);
}
