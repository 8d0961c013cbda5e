#pragma once

#include <stdlib.h>

// How often a test does what it repeats: as often as it asks, or as the environment variable
// TEST_TIMES says for a run by hand that takes longer.
inline int Times(int nUsual)
{
    const char *const pszTimes = getenv("TEST_TIMES");
    return pszTimes ? atoi(pszTimes) : nUsual;
}
