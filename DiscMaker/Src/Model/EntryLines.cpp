#include "Model/EntryLines.h"

#include <string.h>

#include "Model/SkinEntry.h"

namespace {

CCUString Quoted(const CCUString &sText)
{
    CCUString sQuoted = "\"";
    for (const char *p = sText; *p; ++p) {
        switch (*p) {
        case '"': sQuoted += "\"\""; break;
        case '\\': sQuoted += "\\\\"; break;
        case '\n': sQuoted += "\\n"; break;
        default: sQuoted += CCUString(*p, 1);
        }
    }
    return sQuoted + "\"";
}

// The text behind the first quote of a line.
CCUString Unquoted(const char *p)
{
    CCUString sText;
    for (; *p && *p != '\r' && *p != '\n'; ++p) {
        if (*p == '"' && *++p != '"')
            break;
        if (*p == '\\' && (p[1] == 'n' || p[1] == '\\'))
            sText += *++p == 'n' ? CCUString("\n") : CCUString("\\");
        else
            sText += CCUString(*p, 1);
    }
    return sText;
}

const SkinEntry *EntryAt(const char *pszLine)
{
    const size_t nLength = strcspn(pszLine, " \t,\"\r\n");
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (strlen(entry.m_pszSymbol) == nLength &&
            strncmp(entry.m_pszSymbol, pszLine, nLength) == 0)
            return &entry;
    }
    return nullptr;
}

}  // namespace

CCUString EntriesToLines(const CEntryTexts &entries)
{
    CCUString sLines;
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        const auto found = entries.find(entry.m_nID);
        if (found != entries.end())
            sLines += CCUString(entry.m_pszSymbol) + " " + Quoted(found->second) + "\r\n";
    }
    return sLines;
}

CEntryTexts LinesToEntries(const CCUString &sLines)
{
    CEntryTexts entries;
    for (const char *p = sLines; *p;) {
        p += strspn(p, " \t\r\n");
        const SkinEntry *const pEntry = EntryAt(p);
        const char *const pEnd = p + strcspn(p, "\r\n");
        const char *const pQuote = strchr(p, '"');
        if (pEntry && pQuote && pQuote < pEnd)
            entries[pEntry->m_nID] = Unquoted(pQuote + 1);
        p = pEnd;
    }
    return entries;
}
