#include "Problems/Checks.h"
#include "Resource.h"

namespace {

const char *MissingEffect(const SkinEntry &entry)
{
    switch (entry.m_kind) {
    case EntryText: return "Nothing is shown there.";
    case EntryCommand: return "A click on the line does nothing.";
    case EntryPoint: return "It stands in the upper left corner.";
    case EntryRect: return "The description is not shown.";
    case EntryColor: return "The line under the mouse is black.";
    default: return "The font before it is taken, or the system's.";
    }
}

// Whether anything is shown that is no picture.
bool HasShownText(const CSkinCheck &check)
{
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (entry.m_kind == EntryText && check.m_strings.Find(entry.m_nID))
            return true;
    }
    return false;
}

void CheckMissing(CSkinCheck &check, const SkinEntry &entry)
{
    if (check.m_strings.Find(entry.m_nID))
        return;
    const CCUString sWhat = CCUString(entry.m_pszCaption) + ": the entry is missing or empty.";
    if (entry.m_bUsed)
        check.Warn(entry.m_nID, sWhat, MissingEffect(entry));
    else
        check.Note(entry.m_nID, sWhat,
                   "It is not used, but the launcher writes a report about it.");
}

}  // namespace

void CheckEntries(CSkinCheck &check)
{
    const bool bTexts = HasTexts(check.m_skin);  // else that has been told
    const bool bShown = HasShownText(check);
    if (bTexts && !bShown)
        check.Fail(IDS_CAPTION, "The titles, the lines and the description are all empty.",
                   "The launcher shows its pictures alone, with nothing to click.");
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (bTexts && (bShown || entry.m_kind != EntryText))
            CheckMissing(check, entry);
    }
    for (const auto &own : check.m_strings.Own()) {
        if (!own.second.IsEmpty() && !FindSkinEntry(own.first) && own.first != IDS_DISC_LABEL)
            check.Note(own.first, "The launcher does not use this entry.",
                       "Nothing of it is seen.");
    }
}
