#pragma once

#include "Problems/SkinCheck.h"

// The checks, each in the source of its name. One subject each.
void CheckEntries(CSkinCheck &check);   // missing ones, unused ones
void CheckNumbers(CSkinCheck &check);   // places, rectangles, colours, the numbers of fonts
void CheckFonts(CSkinCheck &check);     // heights and faces
void CheckTexts(CSkinCheck &check);     // characters, "&", line breaks
void CheckLabel(CSkinCheck &check);     // the disc's label
void CheckPlaces(CSkinCheck &check);    // outside, cut off, overlapping
void CheckContrast(CSkinCheck &check);  // texts that cannot be read
// `sContents` empty: whether the programs are there is not asked.
void CheckCommands(CSkinCheck &check, const CCUString &sContents);

// Of no language: the pictures and the icon.
void CheckPictures(const CSkin &skin, CProblems &problems);
