#pragma once

#include "File/SkinFile.h"

// A folder, a Skin.rc in one, or a launcher. Null when it cannot be read: why is among the
// problems, as is what could be read but not understood.
std::unique_ptr<CSkinFile> OpenSkin(const CCUString &sPath, CProblems &problems);
