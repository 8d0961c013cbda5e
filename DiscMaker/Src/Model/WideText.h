#pragma once

#include <vector>

#include "CU/String.h"
#include "CUI/Platform.h"

// Of the character that begins there, in bytes. The second one of two may look like any character.
int CharacterSize(const char *p, UINT nCodePage);

// A text as resources hold it, in UTF-16: what the window shows is made of it, and what nobody
// edits keeps every character, whether or not this system's code page has it.
class CWideText
{
public:
    CWideText() {}
    CWideText(const WCHAR *pText, size_t nLength) : m_text(pText, pText + nLength) {}
    // Of bytes of a code page.
    CWideText(const CCUString &sText, UINT nCodePage);

    // What the code page lacks comes out as a similar character or as its default one; `*pLost`
    // says whether any did.
    CCUString ToCodePage(UINT nCodePage, bool *pLost = nullptr) const;
    // What becomes of it when what ToCodePage gave is edited to `sText`: before and behind what was
    // changed every character stays, also those that the code page lacks.
    CWideText Edited(const CCUString &sText, UINT nCodePage) const;

    size_t Length() const { return m_text.size(); }
    bool IsEmpty() const { return m_text.empty(); }
    // Not terminated.
    const WCHAR *Data() const { return m_text.data(); }
    void Append(WCHAR ch) { m_text.push_back(ch); }

    bool operator==(const CWideText &other) const { return m_text == other.m_text; }
    bool operator!=(const CWideText &other) const { return m_text != other.m_text; }
    bool operator<(const CWideText &other) const { return m_text < other.m_text; }

private:
    std::vector<WCHAR> m_text;
};
