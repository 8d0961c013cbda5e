#include "Model/SkinEntry.h"

#include <stdio.h>

#include "Resource.h"

#define ENTRY(id) id, #id

const SkinEntry SKIN_ENTRIES[SKIN_ENTRY_COUNT] = {
    {ENTRY(IDS_CAPTION), EntryText, "Window title", true},
    {ENTRY(IDS_TITLE), EntryText, "Title", true},
    {ENTRY(IDS_TITLE_POS), EntryPoint, "Title, place", true},
    {ENTRY(IDS_TITLE_FONT), EntryFont, "Title, font", true},
    {ENTRY(IDS_PRODUCT_POS), EntryPoint, "Product picture, place", true},
    {ENTRY(IDS_PRODUCT_ICON_POS), EntryPoint, "Product icon, place", false},
    {ENTRY(IDS_ITEM_FONT), EntryFont, "Lines, font", true},
    {ENTRY(IDS_HIGHLIGHT_COLOR), EntryColor, "Lines, colour under the mouse", true},
    {ENTRY(IDS_SPARE_COLOR), EntryColor, "Spare colour", false},
    {ENTRY(IDS_HELP), EntryText, "Learn line", true},
    {ENTRY(IDS_HELP_POS), EntryPoint, "Learn line, place", true},
    {ENTRY(IDS_HELP_ICON_POS), EntryPoint, "Learn line, bullet", true},
    {ENTRY(IDS_HELP_COMMAND), EntryCommand, "Learn line, program", true},
    {ENTRY(IDS_RUN), EntryText, "Run line", true},
    {ENTRY(IDS_RUN_POS), EntryPoint, "Run line, place", true},
    {ENTRY(IDS_RUN_ICON_POS), EntryPoint, "Run line, bullet", true},
    {ENTRY(IDS_RUN_COMMAND), EntryCommand, "Run line, program", true},
    {ENTRY(IDS_SETUP), EntryText, "Install line", true},
    {ENTRY(IDS_SETUP_POS), EntryPoint, "Install line, place", true},
    {ENTRY(IDS_SETUP_ICON_POS), EntryPoint, "Install line, bullet", true},
    {ENTRY(IDS_SETUP_COMMAND), EntryCommand, "Install line, program", true},
    {ENTRY(IDS_EXIT), EntryText, "Exit line", true},
    {ENTRY(IDS_EXIT_POS), EntryPoint, "Exit line, place", true},
    {ENTRY(IDS_EXIT_ICON_POS), EntryPoint, "Exit line, bullet", true},
    {ENTRY(IDS_ABOUT), EntryText, "Description", true},
    {ENTRY(IDS_ABOUT_RECT), EntryRect, "Description, place", true},
    {ENTRY(IDS_ABOUT_FONT), EntryFont, "Description, font", true},
};

const SkinEntry *FindSkinEntry(UINT nID)
{
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (entry.m_nID == nID)
            return &entry;
    }
    return nullptr;
}

CCUString EntrySymbol(UINT nID)
{
    const SkinEntry *const pEntry = FindSkinEntry(nID);
    if (pEntry || nID == IDS_DISC_LABEL)
        return pEntry ? pEntry->m_pszSymbol : "IDS_DISC_LABEL";
    CCUString sNumber;
    sNumber.Format("%u", nID);
    return sNumber;
}

UINT EntryOfSymbol(const CCUString &sSymbol)
{
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (sSymbol == entry.m_pszSymbol)
            return entry.m_nID;
    }
    return sSymbol == EntrySymbol(IDS_DISC_LABEL) ? IDS_DISC_LABEL : 0;
}

bool HasTexts(const CSkin &skin, CProblems *pProblems)
{
    for (const CSkinTexts &texts : skin.m_texts) {
        for (const auto &entry : texts.m_entries) {
            if (!entry.second.IsEmpty() && FindSkinEntry(entry.first))
                return true;
        }
    }
    if (pProblems)
        pProblems->push_back(
            {ProblemError, 0, "", "There are no texts at all.",
             "The launcher would show its pictures alone and start nothing; it is not made."});
    return false;
}

bool ParsePoint(const CCUString &sText, POINT &point)
{
    return sscanf(sText, "%ld,%ld", &point.x, &point.y) == 2;
}

bool ParseRect(const CCUString &sText, RECT &rect)
{
    return sscanf(sText, "%ld,%ld,%ld,%ld", &rect.left, &rect.top, &rect.right, &rect.bottom) == 4;
}

bool ParseColor(const CCUString &sText, int (&components)[3])
{
    return sscanf(sText, "%d,%d,%d", &components[0], &components[1], &components[2]) == 3;
}

bool ParseFont(const CCUString &sText, SkinFont &font)
{
    char face[LF_FACESIZE] = "";
    static_assert(LF_FACESIZE == 32, "the width below leaves room for the terminator");
    const int nRead =
        sscanf(sText, "%d,%d,%d,%31s", &font.m_nPoints, &font.m_nBold, &font.m_nItalic, face);
    if (nRead == 4)
        font.m_sFace = face;
    return nRead == 4;
}

CCUString FormatPoint(const POINT &point)
{
    CCUString sText;
    sText.Format("%ld,%ld", point.x, point.y);
    return sText;
}

CCUString FormatRect(const RECT &rect)
{
    CCUString sText;
    sText.Format("%ld,%ld,%ld,%ld", rect.left, rect.top, rect.right, rect.bottom);
    return sText;
}

CCUString FormatColor(COLORREF color)
{
    CCUString sText;
    sText.Format("%d,%d,%d", GetRValue(color), GetGValue(color), GetBValue(color));
    return sText;
}

CCUString FormatFont(const SkinFont &font)
{
    CCUString sText;
    sText.Format("%d,%d,%d,%s", font.m_nPoints, font.m_nBold, font.m_nItalic,
                 static_cast<const char *>(font.m_sFace));
    return sText;
}
