#include "Disc/Label.h"

#include <string.h>

#include "Problems/SkinStrings.h"
#include "Resource.h"

const char *const BAD_LABEL_CHARACTERS = "*/:;?\\\"<>|";

namespace {

bool IsBad(char ch)
{
    return static_cast<BYTE>(ch) < 0x20 || strchr(BAD_LABEL_CHARACTERS, ch);
}

}  // namespace

bool HasBadLabelCharacter(const CCUString &sLabel, UINT nCodePage)
{
    for (const char *p = sLabel; *p; p += CharacterSize(p, nCodePage)) {
        if (IsBad(*p))
            return true;
    }
    return false;
}

CCUString LabelOf(const CSkin &skin)
{
    if (skin.m_texts.empty())
        return "";
    const CSkinStrings strings(skin, 0);
    CCUString sLabel = strings.Read(IDS_DISC_LABEL);
    if (sLabel.IsEmpty())
        sLabel = strings.Read(IDS_TITLE);
    CCUString sClean;
    for (const char *p = sLabel; *p;) {
        const int nSize = CharacterSize(p, strings.CodePage());
        if (sClean.GetLength() + nSize > MAX_LABEL)
            break;
        sClean += IsBad(*p) ? CCUString("_") : CCUString(p, nSize);
        p += nSize;
    }
    sClean.TrimRight();
    return sClean;
}
