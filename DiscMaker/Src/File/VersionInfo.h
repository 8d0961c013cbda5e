#pragma once

#include <map>

#include "File/ByteView.h"
#include "Model/WideText.h"

typedef std::map<CWideText, CWideText> CVersionStrings;

// The texts of a version resource, "ProductName" and so on, of the first language that it has them
// in. False when it is damaged.
bool ReadVersionStrings(const CByteView &data, CVersionStrings &strings);
// The same resource with these texts: those that stay keep their order, new ones follow. Empty when
// it is damaged.
std::vector<BYTE> WriteVersionStrings(const CByteView &data, const CVersionStrings &strings);
