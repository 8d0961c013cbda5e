#include "Problems/Check.h"

#include <algorithm>

#include "File/FileBytes.h"
#include "Problems/Checks.h"

namespace {

// The place of an entry in the launcher's table; what is not there comes last.
ptrdiff_t PlaceOf(const CProblem &problem)
{
    const SkinEntry *const pEntry = FindSkinEntry(problem.m_nEntry);
    return pEntry ? pEntry - SKIN_ENTRIES : SKIN_ENTRY_COUNT;
}

void CheckLanguage(const CSkin &skin, size_t nLanguage, const CCUString &sContents,
                   CProblems &problems)
{
    CSkinCheck check(skin, nLanguage, problems);
    CheckEntries(check);
    CheckNumbers(check);
    CheckFonts(check);
    CheckTexts(check);
    CheckCommands(check, sContents);
    CheckLabel(check);
    CheckPlaces(check);
    CheckContrast(check);
}

}  // namespace

void CheckSkin(const CSkin &skin, const CCUString &sFolder, CProblems &problems)
{
    const bool bGone = !sFolder.IsEmpty() && !FolderExists(sFolder);
    const CCUString sContents = bGone ? CCUString() : sFolder;
    if (bGone)
        problems.push_back({ProblemError, 0, sFolder,
                            "The folder with the disc's contents is not there.",
                            "No disc can be made; its programs are not looked for."});
    // The pictures first: of what is wrong with them, such as two that were swapped, follows much
    // else.
    CheckPictures(skin, problems);
    CProblems found;
    HasTexts(skin, &found);
    for (size_t i = 0; i < skin.m_texts.size(); ++i)
        CheckLanguage(skin, i, sContents, found);
    std::stable_sort(found.begin(), found.end(), [](const CProblem &left, const CProblem &right) {
        return PlaceOf(left) < PlaceOf(right);
    });
    problems.insert(problems.end(), found.begin(), found.end());
}

void CheckPrograms(const CSkin &skin, const CCUString &sContents, CProblems &problems)
{
    for (size_t i = 0; i < skin.m_texts.size(); ++i) {
        CSkinCheck check(skin, i, problems);
        CheckCommands(check, sContents);
    }
}
