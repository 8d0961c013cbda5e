// The language of the process and the ids of translated string-table entries.

#include "CU/Language.h"

namespace {

CCUString &CurrentLanguage()
{
    static CCUString s_sLanguage("english");
    return s_sLanguage;
}

struct CLanguageOffset
{
    const char *pszName;
    unsigned int nOffset;
};

const CLanguageOffset s_offsets[] = {
    {"english", 0},    {"french", 1000}, {"spanish", 2000},    {"german", 3000},
    {"italian", 4000}, {"dutch", 5000},  {"portuguese", 6000},
};

}  // namespace

void CUSetCurrentLanguage(CCUString language)
{
    if (language.IsEmpty())
        language = "english";
    language.MakeLower();
    CurrentLanguage() = language;
}

CCUString CUGetCurrentLanguage()
{
    return CurrentLanguage();
}

unsigned int CUGetLocalizedID(unsigned int id)
{
    // Kept: the texts of one process come in one language, whatever is set later.
    static const CCUString s_sLatched(CurrentLanguage());
    for (const CLanguageOffset &offset : s_offsets) {
        if (s_sLatched == offset.pszName)
            return id + offset.nOffset;
    }
    return id;
}
