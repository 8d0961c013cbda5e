#pragma once

#include <utility>

#include "Model/Skin.h"

inline CBlob MakeBlob(std::vector<BYTE> bytes)
{
    return std::make_shared<const std::vector<BYTE>>(std::move(bytes));
}

// Two that were read apart may be equal too. None is equal to none alone.
inline bool SameBytes(const CBlob &a, const CBlob &b)
{
    return a == b || (a && b && *a == *b);
}
