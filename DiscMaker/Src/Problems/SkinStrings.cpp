#include "Problems/SkinStrings.h"

#include <stdlib.h>

namespace {

const UINT NEUTRAL_CODE_PAGE = 1252;
const UINT BLOCK = 16;

CCUString LocaleText(LANGID nLanguage, LCTYPE type)
{
    char szText[80] = "";
    GetLocaleInfoA(MAKELCID(nLanguage, SORT_DEFAULT), type, szText, sizeof szText);
    return szText;
}

bool HasBlock(const CSkinTexts &texts, UINT nEntry)
{
    const auto at = texts.m_entries.lower_bound(nEntry / BLOCK * BLOCK);
    return at != texts.m_entries.end() && at->first / BLOCK == nEntry / BLOCK;
}

const CWideText *FindIn(const CSkinTexts &texts, UINT nEntry)
{
    const auto at = texts.m_entries.find(nEntry);
    return at != texts.m_entries.end() && !at->second.IsEmpty() ? &at->second : nullptr;
}

}  // namespace

UINT CodePageOf(LANGID nLanguage)
{
    if (PRIMARYLANGID(nLanguage) == LANG_NEUTRAL)
        return NEUTRAL_CODE_PAGE;
    // Languages without a code page of their own answer 0.
    const int nCodePage = atoi(LocaleText(nLanguage, LOCALE_IDEFAULTANSICODEPAGE));
    return nCodePage > 0 ? static_cast<UINT>(nCodePage) : NEUTRAL_CODE_PAGE;
}

CCUString LanguageName(LANGID nLanguage)
{
    if (PRIMARYLANGID(nLanguage) == LANG_NEUTRAL)
        return "neutral";
    const CCUString sName = LocaleText(nLanguage, LOCALE_SENGLANGUAGE);
    if (!sName.IsEmpty() && SUBLANGID(nLanguage) > SUBLANG_DEFAULT)
        return sName + " (" + LocaleText(nLanguage, LOCALE_SENGCOUNTRY) + ")";
    if (!sName.IsEmpty())
        return sName;
    CCUString sNumber;
    sNumber.Format("language 0x%04X", nLanguage);
    return sNumber;
}

CSkinStrings::CSkinStrings(const CSkin &skin, size_t nLanguage)
    : m_skin(skin),
      m_nLanguage(nLanguage),
      m_nCodePage(CodePageOf(skin.m_texts[nLanguage].m_nLanguage))
{
}

const CWideText *CSkinStrings::Find(UINT nEntry) const
{
    const CSkinTexts &own = m_skin.m_texts[m_nLanguage];
    if (HasBlock(own, nEntry))
        return FindIn(own, nEntry);
    for (const CSkinTexts &texts : m_skin.m_texts) {
        if (PRIMARYLANGID(texts.m_nLanguage) == LANG_NEUTRAL && HasBlock(texts, nEntry))
            return FindIn(texts, nEntry);
    }
    for (const CSkinTexts &texts : m_skin.m_texts) {
        if (HasBlock(texts, nEntry))
            return FindIn(texts, nEntry);
    }
    return nullptr;
}

CCUString CSkinStrings::Read(UINT nEntry) const
{
    const CWideText *const pText = Find(nEntry);
    return pText ? pText->ToCodePage(m_nCodePage) : CCUString();
}
