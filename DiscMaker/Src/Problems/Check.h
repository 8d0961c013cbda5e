#pragma once

#include "Model/Problem.h"
#include "Model/Skin.h"

// Everything that is wrong with a skin: with its pictures, then entry by entry in the order of
// SKIN_ENTRIES.
// `sContents` is the folder with what the disc is to hold beside the launcher; empty: there is
// none, and nothing is said of programs that are missing.
void CheckSkin(const CSkin &skin, const CCUString &sContents, CProblems &problems);

// The lines' commands alone.
void CheckPrograms(const CSkin &skin, const CCUString &sContents, CProblems &problems);

// Of the background alone: false, with why, when the launcher's window would have no size.
bool CheckBackground(const CSkin &skin, CProblems &problems);
