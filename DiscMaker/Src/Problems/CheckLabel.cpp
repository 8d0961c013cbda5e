#include "Disc/Label.h"
#include "Problems/Checks.h"
#include "Resource.h"

void CheckLabel(CSkinCheck &check)
{
    const CCUString sLabel = check.m_strings.Read(IDS_DISC_LABEL);
    if (sLabel.GetLength() > MAX_LABEL)
        check.Warn(IDS_DISC_LABEL,
                   WithNumber("The disc's label has more than %d characters.", MAX_LABEL),
                   "The rest is cut off.");
    if (HasBadLabelCharacter(sLabel, check.m_strings.CodePage()))
        check.Warn(IDS_DISC_LABEL,
                   CCUString("The disc's label has a character that a label cannot have: one of ") +
                       BAD_LABEL_CHARACTERS + " or a line break.",
                   "An underscore takes its place.");
    bool bLost = false;
    const CWideText *const pLabel = check.m_strings.Find(IDS_DISC_LABEL);
    if (pLabel)
        pLabel->ToCodePage(check.m_strings.CodePage(), &bLost);
    if (bLost)
        check.Warn(IDS_DISC_LABEL,
                   "The disc's label has a character that is not in the disc's code page.",
                   "A question mark or a similar character is shown.");
}
