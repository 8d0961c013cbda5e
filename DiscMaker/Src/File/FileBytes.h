#pragma once

#include "File/ByteView.h"
#include "Model/Problem.h"
#include "Model/Skin.h"

// A whole file. Null when it cannot be read or is larger than anything that belongs to a skin; the
// reason is in *pError, a system's error.
CBlob ReadFileBytes(const CCUString &sPath, DWORD *pError = nullptr);

bool FileExists(const CCUString &sPath);
bool FolderExists(const CCUString &sPath);
// With the backslash at its end; empty for a name alone.
CCUString FolderOf(const CCUString &sPath);
CCUString NameOf(const CCUString &sPath);
// With a backslash between.
CCUString JoinPath(const CCUString &sFolder, const CCUString &sName);
