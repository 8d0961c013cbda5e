#pragma once

#include "Model/Skin.h"

// In characters, as the disc image's own label and autorun.inf take it.
const int MAX_LABEL = 32;
extern const char *const BAD_LABEL_CHARACTERS;

bool HasBadLabelCharacter(const CCUString &sLabel);

// The disc's label in that code page, cut and cleaned: the entry of the label, else the title.
CCUString LabelOf(const CSkin &skin);
