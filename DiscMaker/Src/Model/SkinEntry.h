#pragma once

#include "Model/Problem.h"
#include "Model/Skin.h"

enum SkinEntryKind
{
    EntryText,
    EntryCommand,
    EntryPoint,
    EntryRect,
    EntryColor,
    EntryFont
};

// What the launcher reads below one id of the string table.
struct SkinEntry
{
    UINT m_nID;
    const char *m_pszSymbol;  // "IDS_SETUP", as scripts name it
    SkinEntryKind m_kind;
    const char *m_pszCaption;  // "Install line", as the window names it
    bool m_bUsed;              // false: read, but shown nowhere
};

const int SKIN_ENTRY_COUNT = 27;
extern const SkinEntry SKIN_ENTRIES[SKIN_ENTRY_COUNT];

// Null: the launcher does not read that id.
const SkinEntry *FindSkinEntry(UINT nID);

// The name of an entry in scripts, of the disc's label too, which launchers do not read; of any
// other its number. And back: 0 for what is no name.
CCUString EntrySymbol(UINT nID);
UINT EntryOfSymbol(const CCUString &sSymbol);

// Whether there is any text that launchers read; if not, that is told where somebody listens.
bool HasTexts(const CSkin &skin, CProblems *pProblems = nullptr);

// A font as the table writes it.
struct SkinFont
{
    int m_nPoints;
    int m_nBold;    // above 0: bold
    int m_nItalic;  // other than 0: italic
    CCUString m_sFace;
};

// These read as the launcher does, and tell whether it would read the whole entry; what the text
// does not reach stays. A colour's components are as they are written, whatever their size.
bool ParsePoint(const CCUString &sText, POINT &point);
bool ParseRect(const CCUString &sText, RECT &rect);
bool ParseColor(const CCUString &sText, int (&components)[3]);
bool ParseFont(const CCUString &sText, SkinFont &font);

CCUString FormatPoint(const POINT &point);
CCUString FormatRect(const RECT &rect);
CCUString FormatColor(COLORREF color);
CCUString FormatFont(const SkinFont &font);
