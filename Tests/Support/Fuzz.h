#pragma once

#include <stdlib.h>

// How many inputs a test generates: AUTORUN_FUZZ in the environment, or as many as usual.
inline int FuzzInputs(int nUsual = 100000)
{
    const char *inputs = getenv("AUTORUN_FUZZ");
    return inputs ? atoi(inputs) : nUsual;
}
