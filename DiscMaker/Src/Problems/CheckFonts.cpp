#include <string.h>

#include "Model/EntryText.h"
#include "Model/IsAmong.h"
#include "Problems/Checks.h"

namespace {

const int SMALLEST_POINTS = 7;
const int LARGEST_POINTS = 72;

// With Windows 98 and 2000, or the browser that came then.
const char *const FACES_LATER[] = {"Verdana", "Tahoma", "Georgia", "Impact", "Webdings"};

// What stands in the entry for the face, spaces and all.
CCUString FaceAsWritten(const CCUString &sText)
{
    const char *p = sText;
    for (int i = 0; i < 3 && p; ++i) {
        p = strchr(p, ',');
        p = p ? p + 1 : nullptr;
    }
    CCUString sFace = p ? p : "";
    sFace.TrimLeft();
    sFace.TrimRight();
    return sFace;
}

void CheckFace(CSkinCheck &check, const SkinEntry &entry, const CCUString &sText,
               const CCUString &sFace)
{
    const CCUString sCaption = CCUString(entry.m_pszCaption) + ": ";
    const CCUString sWritten = FaceAsWritten(sText);
    if (sWritten != sFace)
        check.Warn(entry.m_nID,
                   sCaption + "the face \"" + sWritten + "\" is cut to \"" + sFace +
                       "\": a face ends at its first space and after 31 characters.",
                   IsFaceEverywhere(sFace)
                       ? "Windows finds a similar face under that name."
                       : "Windows takes some other face, and texts get another width.");
    else if (IsAmong(sFace, FACES_LATER))
        check.Note(entry.m_nID,
                   sCaption + "Windows 95 and NT 4 may not have the face \"" + sFace + "\".",
                   "They take some other face, and texts get another width.");
    else if (!IsFaceEverywhere(sFace))
        check.Warn(entry.m_nID, sCaption + "not every system has the face \"" + sFace + "\".",
                   "Others take some other face, and texts get another width.");
}

void CheckHeight(CSkinCheck &check, const SkinEntry &entry, int nPoints)
{
    const CCUString sWhat = CCUString(entry.m_pszCaption) +
                            WithNumber(": a height of %d points is hardly meant.", nPoints);
    if (nPoints <= 0)
        check.Warn(entry.m_nID, sWhat, "Windows chooses a height of its own.");
    else if (nPoints < SMALLEST_POINTS)
        check.Warn(entry.m_nID, sWhat, "The text is too small to be read.");
    else if (nPoints > LARGEST_POINTS)
        check.Warn(entry.m_nID, sWhat, "The text does not fit into a window.");
}

}  // namespace

void CheckFonts(CSkinCheck &check)
{
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        SkinFont font = {};
        const CCUString sText = check.m_strings.Read(entry.m_nID);
        if (entry.m_kind != EntryFont || !ParseFont(sText, font))
            continue;
        CheckFace(check, entry, sText, font.m_sFace);
        CheckHeight(check, entry, font.m_nPoints);
    }
}
