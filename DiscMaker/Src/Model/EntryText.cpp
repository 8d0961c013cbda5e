#include "Model/EntryText.h"

#include <string.h>

#include "Resource.h"

namespace {

// "Times", "Helv" and "Helvetica" are other names that every Windows knows for its own.
const char *const FACES[] = {
    "Arial",  "Courier",  "Courier New", "Fixedsys",      "Helv",        "Helvetica",
    "Modern", "MS Serif", "Roman",       "MS Sans Serif", "Small Fonts", "Script",
    "Symbol", "System",   "Times",       "Terminal",      "Wingdings",   "Times New Roman"};

const char *FontFault(const CCUString &sText)
{
    SkinFont font = {0, 0, 0, ""};
    if (!ParseFont(sText, font))
        return "A font is written as size, bold (1 or 0), italic (1 or 0) and face, such as "
               "15,0,0,Arial.";
    if (font.m_nPoints < 4 || font.m_nPoints > 200)
        return "The size is in points: 4 to 200.";
    const char *const pszFace = strrchr(sText, ',');
    if (pszFace && strchr(pszFace, ' '))
        return "The launcher reads the name of a face up to its first space.";
    return "";
}

const char *ColorFault(const CCUString &sText)
{
    int components[3] = {};
    if (!ParseColor(sText, components))
        return "A colour is written as red, green and blue, such as 212,0,0.";
    for (const int n : components) {
        if (n < 0 || n > 255)
            return "Red, green and blue are numbers from 0 to 255.";
    }
    return "";
}

const char *RectFault(const CCUString &sText)
{
    RECT rect = {};
    if (!ParseRect(sText, rect))
        return "A rectangle is written as left, top, right and bottom, such as 13,280,500,332.";
    return rect.left < rect.right && rect.top < rect.bottom
               ? ""
               : "The right edge must be right of the left one, the lower below the upper one.";
}

// The numbers of a place, a rectangle or a colour without the spaces between them. False when the
// text is nothing of that, or has more in it than the launcher reads.
bool BareNumbers(const SkinEntry &entry, const CCUString &sText, CCUString &sBare)
{
    POINT point = {};
    RECT rect = {};
    int components[3] = {};
    CCUString sRead;
    if (entry.m_kind == EntryPoint && ParsePoint(sText, point))
        sRead = FormatPoint(point);
    else if (entry.m_kind == EntryRect && ParseRect(sText, rect))
        sRead = FormatRect(rect);
    else if (entry.m_kind == EntryColor && ParseColor(sText, components))
        sRead.Format("%d,%d,%d", components[0], components[1], components[2]);
    sBare.Empty();
    for (const char *p = sText; *p; ++p) {
        if (*p != ' ')
            sBare += *p;
    }
    return !sRead.IsEmpty() && sRead == sBare;
}

}  // namespace

CCUString EntryFault(const SkinEntry &entry, const CCUString &sText)
{
    POINT point = {};
    switch (entry.m_kind) {
    case EntryPoint:
        return ParsePoint(sText, point) ? "" : "A place is written as x and y, such as 46,204.";
    case EntryRect: return RectFault(sText);
    case EntryColor: return ColorFault(sText);
    case EntryFont: return FontFault(sText);
    case EntryCommand:
        return sText.IsEmpty() ? "No program: a click on the line does nothing." : "";
    case EntryText: return sText.IsEmpty() && entry.m_bUsed ? "There is no text." : "";
    }
    return "";
}

CCUString EntryHelp(const SkinEntry &entry)
{
    if (!entry.m_bUsed)
        return "Launchers read it, but show it nowhere.";
    switch (entry.m_nID) {
    case IDS_CAPTION: return "The title of the launcher's window, as the task bar shows it.";
    case IDS_ABOUT: return "The description; \\n begins a new line, nothing else does.";
    case IDS_ABOUT_RECT:
        return "Left, top, right and bottom of the description, in pixels. What does not fit is "
               "cut "
               "off.";
    default: break;
    }
    switch (entry.m_kind) {
    case EntryPoint: return "x and y of the upper left corner, in pixels of the background.";
    case EntryColor: return "Red, green and blue, each from 0 to 255.";
    case EntryFont:
        return "Size in points, bold (1 or 0), italic (1 or 0) and face. The size is the same on "
               "every display.";
    case EntryCommand:
        return "What a click on the line starts: a program on the disc, with arguments if need be.";
    default: return "The text that the launcher shows.";
    }
}

CCUString EntryInWords(const SkinEntry &entry, const CCUString &sText)
{
    SkinFont font = {0, 0, 0, ""};
    if (entry.m_kind != EntryFont || !ParseFont(sText, font))
        return EntryToField(entry, sText);
    CCUString sWords;
    sWords.Format("%s, %d points%s%s", static_cast<const char *>(font.m_sFace), font.m_nPoints,
                  font.m_nBold > 0 ? ", bold" : "", font.m_nItalic ? ", italic" : "");
    return sWords;
}

CCUString EntryToField(const SkinEntry &entry, const CCUString &sText)
{
    CCUString sBare;
    if (!BareNumbers(entry, sText, sBare))
        return entry.m_nID == IDS_ABOUT ? ToOneLine(sText) : sText;
    CCUString sSpaced;
    for (const char *p = sBare; *p; ++p) {
        sSpaced += *p;
        if (*p == ',')
            sSpaced += ' ';
    }
    return sSpaced;
}

CCUString EntryFromField(const SkinEntry &entry, const CCUString &sText)
{
    CCUString sBare;
    if (BareNumbers(entry, sText, sBare))
        return sBare;
    return entry.m_nID == IDS_ABOUT ? FromOneLine(sText) : sText;
}

CCUString ToOneLine(const CCUString &sText, UINT nCodePage)
{
    if (!strpbrk(sText, "\n\\"))
        return sText;
    CCUString sLine;
    for (const char *p = sText; *p;) {
        const int nSize = CharacterSize(p, nCodePage);
        if (*p == '\n')
            sLine += "\\n";
        else if (*p == '\\')
            sLine += "\\\\";
        else
            sLine += CCUString(p, nSize);
        p += nSize;
    }
    return sLine;
}

CCUString FromOneLine(const CCUString &sText, UINT nCodePage)
{
    if (!strchr(sText, '\\'))
        return sText;
    CCUString sLines;
    for (const char *p = sText; *p;) {
        const bool bEscape = *p == '\\' && (p[1] == 'n' || p[1] == '\\');
        if (bEscape)
            ++p;
        const int nSize = CharacterSize(p, nCodePage);
        sLines += bEscape && *p == 'n' ? CCUString("\n") : CCUString(p, nSize);
        p += nSize;
    }
    return sLines;
}

bool IsFaceEverywhere(const CCUString &sFace)
{
    for (const char *const pszFace : FACES) {
        if (sFace.CompareNoCase(pszFace) == 0)
            return true;
    }
    return false;
}
