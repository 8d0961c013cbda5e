#pragma once

#include "Model/SkinEntry.h"
#include "Model/WideText.h"

// What is wrong with the text of an entry as it stands, in words for who types it; empty: nothing.
CCUString EntryFault(const SkinEntry &entry, const CCUString &sText);
// What the entry is for and how it is written.
CCUString EntryHelp(const SkinEntry &entry);
// The text as a person reads it: "Arial, 15 points, bold". One that is faulty stays as it is.
CCUString EntryInWords(const SkinEntry &entry, const CCUString &sText);

// The text in a field: places, rectangles and colours in one form, "36, 108", however the skin
// spaces them; and what the skin gets for what the field has.
CCUString EntryToField(const SkinEntry &entry, const CCUString &sText);
CCUString EntryFromField(const SkinEntry &entry, const CCUString &sText);

// A text of several lines in one: "\n" stands for the line's end, "\\" for a backslash; and back.
CCUString ToOneLine(const CCUString &sText, UINT nCodePage = CP_ACP);
CCUString FromOneLine(const CCUString &sText, UINT nCodePage = CP_ACP);

// Whether every Windows has that face.
bool IsFaceEverywhere(const CCUString &sFace);
