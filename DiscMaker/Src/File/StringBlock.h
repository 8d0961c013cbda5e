#pragma once

#include <map>

#include "File/ByteView.h"
#include "Model/WideText.h"

typedef std::map<UINT, CWideText> CStringEntries;

// String tables are kept in blocks of 16 entries: a length and that many characters for each.
const UINT STRING_BLOCK_ENTRIES = 16;
// The longest text of an entry, in characters.
const size_t STRING_LIMIT = 0xFFFF;

// The number of the block that has an entry.
inline UINT StringBlockOf(UINT nEntry)
{
    return nEntry / STRING_BLOCK_ENTRIES + 1;
}

// Adds those of a block that are not empty. False when it is cut: those before the cut are added.
bool ReadStringBlock(const CByteView &data, UINT nBlock, CStringEntries &entries);
// Empty when none of the block's entries has a text.
std::vector<BYTE> WriteStringBlock(UINT nBlock, const CStringEntries &entries);
