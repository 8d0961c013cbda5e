#include "Model/EntryLines.h"

#include <string.h>

#include "Model/SkinEntry.h"

namespace {

CCUString Quoted(const CCUString &sText, UINT nCodePage)
{
    CCUString sQuoted = "\"";
    for (const char *p = sText; *p;) {
        const int nSize = CharacterSize(p, nCodePage);
        switch (*p) {
        case '"': sQuoted += "\"\""; break;
        case '\\': sQuoted += "\\\\"; break;
        case '\n': sQuoted += "\\n"; break;
        default: sQuoted += CCUString(p, nSize);
        }
        p += nSize;
    }
    return sQuoted + "\"";
}

// The text behind the first quote of a line.
CCUString Unquoted(const char *p, UINT nCodePage)
{
    CCUString sText;
    while (*p && *p != '\r' && *p != '\n') {
        if (*p == '"' && *++p != '"')
            break;
        const int nSize = CharacterSize(p, nCodePage);
        if (*p == '\\' && (p[1] == 'n' || p[1] == '\\'))
            sText += *++p == 'n' ? CCUString("\n") : CCUString("\\");
        else
            sText += CCUString(p, nSize);
        p += nSize;
    }
    return sText;
}

}  // namespace

CCUString EntriesToLines(const CEntryTexts &entries, UINT nCodePage)
{
    CCUString sLines;
    for (const auto &entry : entries)
        sLines += EntrySymbol(entry.first) + " " + Quoted(entry.second, nCodePage) + "\r\n";
    return sLines;
}

CEntryTexts LinesToEntries(const CCUString &sLines, UINT nCodePage)
{
    CEntryTexts entries;
    for (const char *p = sLines; *p;) {
        p += strspn(p, " \t\r\n");
        const CCUString sSymbol(p, static_cast<int>(strcspn(p, " \t,\"\r\n")));
        const UINT nEntry = EntryOfSymbol(sSymbol);
        const char *const pEnd = p + strcspn(p, "\r\n");
        const char *const pQuote = strchr(p, '"');
        if (nEntry && pQuote && pQuote < pEnd)
            entries[nEntry] = Unquoted(pQuote + 1, nCodePage);
        p = pEnd;
    }
    return entries;
}
