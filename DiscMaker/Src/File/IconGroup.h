#pragma once

#include "File/ByteView.h"
#include "File/ResourceTree.h"

// The .ico file of an icon in the tree: a group, whose pictures are resources of their own. Null
// when there is no group; false when it or one of its pictures is missing or damaged.
bool ReadIcon(const CResourceTree &tree, UINT nIcon, CBlob &icon);
// Replaces the icon, or takes it away for null. The pictures keep the numbers of the old ones as
// far as these go, others take free ones. False when the bytes are no .ico file: nothing changes
// then.
bool WriteIcon(CResourceTree &tree, UINT nIcon, UINT nLanguage, const CBlob &icon);
// Whether every picture of an .ico file is in it.
bool IsIconFile(const CByteView &file);
// Whether two .ico files list the same pictures, wherever in the files these stand; both may be
// null.
bool IsSameIcon(const CBlob &a, const CBlob &b);
