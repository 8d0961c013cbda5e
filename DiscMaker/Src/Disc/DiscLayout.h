#pragma once

#include "Disc/DiscProgress.h"
#include "Model/Problem.h"
#include "Model/Skin.h"

// The part of MakeDisc that knows files alone: a copy of the contents, the finished launcher as
// AutoRun.exe, these bytes as autorun.inf, and the sums, in the place of an older disc.
bool LayOutDisc(const CCUString &sLauncher, const CCUString &sAutorunInf,
                const CCUString &sContents, const CCUString &sOut, CDiscProgress *pProgress,
                CProblems &problems);

// With CR LF at the ends of lines, in the code page of the disc.
CCUString MakeAutorunInf(const CSkin &skin);
