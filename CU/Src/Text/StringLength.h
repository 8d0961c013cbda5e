#pragma once

// Arithmetic on lengths that cannot wrap: what is too long stays too long, and is reported where
// the block is made.

#include <limits.h>

// With the terminating NUL, a length still is an int.
const int CU_MAX_STRING_LENGTH = INT_MAX - 1;

inline int CUToLength(long long nLength)
{
    if (nLength > INT_MAX)
        return INT_MAX;
    return nLength < INT_MIN ? INT_MIN : static_cast<int>(nLength);
}

inline int CUSum(int n1, int n2)
{
    int nSum = 0;
    if (__builtin_add_overflow(n1, n2, &nSum))
        return n1 < 0 ? INT_MIN : INT_MAX;
    return nSum;
}

// The length of two texts together; -1 when one of them is negative.
inline int CUAddLengths(int nLength1, int nLength2)
{
    if (nLength1 < 0 || nLength2 < 0)
        return -1;
    return CUSum(nLength1, nLength2);
}

// nLength, at least 0 and at most nMost.
inline int CUCutLength(int nLength, int nMost)
{
    if (nLength < 0)
        return 0;
    return nLength > nMost ? nMost : nLength;
}
