// The language of the process and the ids of translated string-table entries.

#include "CU/Language.h"

#include <stdlib.h>

namespace {

CCUString *s_pLanguage = nullptr;  // made by the first use

void DeleteLanguage()
{
    delete s_pLanguage;
    s_pLanguage = nullptr;
}

// The first to be registered is the last to be called: behind the destructors of all global
// objects, which may still ask for it.
__attribute__((constructor(101))) void DeleteLanguageAtExit()
{
    atexit(DeleteLanguage);
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

unsigned int OffsetOf(const CCUString &sLanguage)
{
    for (const CLanguageOffset &offset : s_offsets) {
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
    if (s_pLanguage)
        *s_pLanguage = language;
    else
        s_pLanguage = new CCUString(language);
}

CCUString CUGetCurrentLanguage()
{
    if (!s_pLanguage)
        s_pLanguage = new CCUString("english");
    return *s_pLanguage;
}

unsigned int CUGetLocalizedID(unsigned int id)
{
    // Kept: the texts of one process come in one language, whatever is set later.
    static const unsigned int s_nLatched = OffsetOf(CUGetCurrentLanguage());
    return id + s_nLatched;
}
