#pragma once

#include <stdlib.h>

// How many inputs a test generates: AUTORUN_FUZZ in the environment, 100,000 without it.
inline int FuzzInputs()
{
    const char *inputs = getenv("AUTORUN_FUZZ");
    return inputs ? atoi(inputs) : 100000;
}
