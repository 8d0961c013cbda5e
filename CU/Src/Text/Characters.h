#pragma once

// What strings, and others that read texts, share: plain characters, and lengths that cannot wrap.

#include <limits.h>
#include <string.h>

#include "Base/Compiler.h"

inline const char *CUOrEmpty(const char *psz)
{
    return psz ? psz : "";
}

inline const char *CUSkipBlanks(const char *psz)
{
    while (*psz == ' ' || *psz == '\t')
        ++psz;
    return psz;
}

// The path with backslashes alone.
inline void CUTurnSlashes(char *psz)
{
    for (; *psz; ++psz) {
        if (*psz == '/')
            *psz = '\\';
    }
}

// Searching by words of four characters: the C libraries that go byte by byte take three times as
// long.

inline unsigned int CUWord(const char *p)
{
    unsigned int nWord;
    memcpy(&nWord, p, sizeof nWord);
    return nWord;
}

// Whether one of the four bytes is 0.
inline bool CUHasNul(unsigned int nWord)
{
    return ((nWord - 0x01010101U) & ~nWord & 0x80808080U) != 0;
}

// The first ch from p on; null when there is none before pEnd.
inline const char *CUFindByte(const char *p, const char *pEnd, char ch)
{
    const unsigned int nPattern = static_cast<unsigned char>(ch) * 0x01010101U;
    while (pEnd - p >= 4 && !CUHasNul(CUWord(p) ^ nPattern))
        p += 4;
    while (p != pEnd && *p != ch)
        ++p;
    return p != pEnd ? p : nullptr;
}

// Lengths. A sum that is too large for an int becomes INT_MAX, which is more than the longest
// string has: CCUString::AllocBuffer reports it.

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
    if (CUAddOverflows(n1, n2, nSum))
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
