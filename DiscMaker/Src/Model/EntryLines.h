#pragma once

#include <map>

#include "Model/Skin.h"

// Entries as text, one a line, in the form of a string table: IDS_TITLE "Fennick 4.1". So they are
// copied and pasted, also from and into scripts.
typedef std::map<UINT, CCUString> CEntryTexts;

CCUString EntriesToLines(const CEntryTexts &entries, UINT nCodePage = CP_ACP);
// Lines that are no entries are passed over.
CEntryTexts LinesToEntries(const CCUString &sLines, UINT nCodePage = CP_ACP);
