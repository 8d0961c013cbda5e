#pragma once

#include "Model/Skin.h"

// In bytes, as the disc image's own label and autorun.inf take it.
const int MAX_LABEL = 32;
extern const char *const BAD_LABEL_CHARACTERS;

// Of a label in that code page.
bool HasBadLabelCharacter(const CCUString &sLabel, UINT nCodePage);

// The disc's label in that code page, cut and cleaned: the entry of the label, else the title.
CCUString LabelOf(const CSkin &skin);
