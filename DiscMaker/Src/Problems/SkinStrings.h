#pragma once

#include "Model/Skin.h"

// The ANSI code page in which a launcher shows texts of that language; 1252 for the neutral one.
UINT CodePageOf(LANGID nLanguage);

// "German", as the system calls the language in English, with the country where that is not the
// usual one: "German (Austria)"; "neutral" for the neutral one.
CCUString LanguageName(LANGID nLanguage);

// The string table as a launcher reads it in one of its languages. The system looks for a language
// in each block of 16 entries apart: where a block is missing, it takes another language's.
class CSkinStrings
{
public:
    // The skin must outlive it.
    CSkinStrings(const CSkin &skin, size_t nLanguage);

    LANGID Language() const { return m_skin.m_texts[m_nLanguage].m_nLanguage; }
    UINT CodePage() const { return m_nCodePage; }
    // Null: there is none.
    const CWideText *Find(UINT nEntry) const;
    // In the disc's code page; empty when there is none.
    CCUString Read(UINT nEntry) const;
    // The entries of this language.
    const std::map<UINT, CWideText> &Own() const { return m_skin.m_texts[m_nLanguage].m_entries; }

private:
    const CSkin &m_skin;
    size_t m_nLanguage;
    UINT m_nCodePage;
};
