#pragma once

#include "Disc/DiscProgress.h"
#include "Model/Problem.h"
#include "Model/Skin.h"

// Makes the folder of a disc: a copy of the maker's own contents, the launcher with these looks,
// autorun.inf, and SHA256SUMS, a list of what was written. `sLauncher` is any launcher.
//
// Nothing of the maker's is ever changed: an output folder is replaced only if all in it stands in
// its SHA256SUMS, unchanged. The disc grows in a folder beside it, "NAME.unfinished", and takes its
// name at the end, so that a disc which fails, or is stopped, leaves the old one whole.
//
// False when there is no disc. A disc whose lines start programs that are not on it is made, and
// the problems say so.
bool MakeDisc(const CSkin &skin, const CCUString &sLauncher, const CCUString &sContents,
              const CCUString &sOut, CDiscProgress *pProgress, CProblems &problems);
