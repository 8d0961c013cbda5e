#pragma once

/// @file
/// Identifiers for commands and controls.

#include "CU/Platform.h"

/// Command and control identifiers that nobody else has: 10,000 and up, the range above the
/// identifiers that a program chooses for itself. Window messages carry 16 bits of them, so a
/// process has some 55,000.
class CU_API CCUIIDGenerator
{
public:
    /// The next one. Any thread may call it.
    static unsigned int GetNextID();
};
