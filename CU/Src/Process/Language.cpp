// The language of the process and the ids of translated string-table entries.

#include "CU/Language.h"

#include "Base/Lifetime.h"

namespace {

struct CLanguage
{
    CCUString sName = "english";
};
CCUShared<CLanguage> s_language;

struct CLanguageOffset
{
    const char *pszName;
    unsigned int nOffset;
};

const CLanguageOffset OFFSETS[] = {
    {"english", 0},    {"french", 1000}, {"spanish", 2000},    {"german", 3000},
    {"italian", 4000}, {"dutch", 5000},  {"portuguese", 6000},
};

unsigned int OffsetOf(const CCUString &sLanguage)
{
    for (const CLanguageOffset &offset : OFFSETS) {
        if (sLanguage == offset.pszName)
            return offset.nOffset;
    }
    return 0;
}

}  // namespace

void CUSetCurrentLanguage(CCUString language)
{
    if (language.IsEmpty())
        language = "english";
    language.MakeLower();
    s_language.Get().sName = language;
}

CCUString CUGetCurrentLanguage()
{
    return s_language.Get().sName;
}

unsigned int CUGetLocalizedID(unsigned int id)
{
    // Kept: the texts of one process come in one language, whatever is set later.
    static const unsigned int s_nLatched = OffsetOf(CUGetCurrentLanguage());
    return id + s_nLatched;
}
