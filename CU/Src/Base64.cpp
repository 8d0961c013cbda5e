// Base64 of a string's bytes.

#include <string.h>

#include "CU/String.h"
#include "StringLength.h"

namespace {

constexpr char s_alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

const unsigned char SKIPPED = 0xFF;

// The value of each character, SKIPPED outside the alphabet.
struct CReverseAlphabet
{
    constexpr CReverseAlphabet() : values()
    {
        for (unsigned char &value : values)
            value = SKIPPED;
        for (unsigned char i = 0; i < 64; ++i)
            values[static_cast<unsigned char>(s_alphabet[i])] = i;
    }
    unsigned char values[256];
};

constexpr CReverseAlphabet s_reverse;

unsigned int Byte(const char *pch)
{
    return static_cast<unsigned char>(*pch);
}

char Letter(unsigned int nGroup, int nShift)
{
    return s_alphabet[nGroup >> nShift & 63];
}

// The four characters of a group of 24 bits, the top six first.
void PutGroup(char *pch, unsigned int nGroup)
{
    pch[0] = Letter(nGroup, 18);
    pch[1] = Letter(nGroup, 12);
    pch[2] = Letter(nGroup, 6);
    pch[3] = Letter(nGroup, 0);
}

// Two characters for each 12 bits. Made when a long text first needs it, not kept in the program's
// file; threads that make it at the same time write the same.
unsigned short s_pairs[4096];
volatile LONG s_bPairsMade = 0;

const int LONG_TEXT = 256;

void MakePairs()
{
    if (s_bPairsMade)
        return;
    for (unsigned int n = 0; n < 4096; ++n) {
        const char pair[] = {Letter(n, 6), Letter(n, 0)};
        memcpy(&s_pairs[n], pair, sizeof pair);
    }
    InterlockedExchange(&s_bPairsMade, 1);
}

// Whole groups, as long as a word of source is left; returns how many bytes they took.
int PutGroupsByPairs(char *pOut, const char *p, int nSrc)
{
    int n = 0;
    for (; nSrc - n >= 4; n += 3, pOut += 4) {
        unsigned int nWord;
        memcpy(&nWord, p + n, sizeof nWord);
        nWord = __builtin_bswap32(nWord);
        const unsigned int nPairs =
            s_pairs[nWord >> 20] | static_cast<unsigned int>(s_pairs[nWord >> 8 & 4095]) << 16;
        memcpy(pOut, &nPairs, sizeof nPairs);
    }
    return n;
}

}  // namespace

CCUString CCUString::Encode64() const
{
    CCUString result;
    const int nSrc = GetLength();
    if (nSrc == 0)
        return result;
    const int nEncoded = CUToLength((nSrc + 2LL) / 3 * 4);
    char *pOut = result.GetBufferSetLength(nEncoded);
    if (result.GetLength() < nEncoded)
        return result;
    const char *p = m_pchData;
    const char *pEnd = p + nSrc;
    if (nSrc >= LONG_TEXT) {
        MakePairs();
        const int nDone = PutGroupsByPairs(pOut, p, nSrc);
        p += nDone;
        pOut += nDone / 3 * 4;
    }
    for (; pEnd - p >= 3; p += 3, pOut += 4)
        PutGroup(pOut, Byte(p) << 16 | Byte(p + 1) << 8 | Byte(p + 2));
    if (pEnd != p) {
        const bool bTwo = pEnd - p == 2;
        PutGroup(pOut, Byte(p) << 16 | (bTwo ? Byte(p + 1) << 8 : 0));
        if (!bTwo)
            pOut[2] = '=';
        pOut[3] = '=';
    }
    return result;
}

CCUString CCUString::Decode64() const
{
    CCUString result;
    const int nSrc = GetLength();
    int nCapacity = (nSrc / 4 + (nSrc % 4 ? 1 : 0)) * 3;
    for (int i = nSrc - 1; i >= 0 && i >= nSrc - 2; --i)
        nCapacity -= m_pchData[i] == '=';
    char *pStart = result.GetBuffer(nCapacity);
    char *pOut = pStart;
    unsigned int nBits = 0;
    int nBitCount = 0;
    const unsigned char *p = reinterpret_cast<const unsigned char *>(m_pchData);
    const unsigned char *pEnd = p + nSrc;
    while (p != pEnd) {
        if (nBitCount == 0) {
            // Whole groups of four, up to the next character that is skipped.
            for (; pEnd - p >= 4; p += 4, pOut += 3) {
                const unsigned int n0 = s_reverse.values[p[0]], n1 = s_reverse.values[p[1]];
                const unsigned int n2 = s_reverse.values[p[2]], n3 = s_reverse.values[p[3]];
                if ((n0 | n1 | n2 | n3) == SKIPPED)
                    break;
                const unsigned int nGroup = n0 << 18 | n1 << 12 | n2 << 6 | n3;
                pOut[0] = static_cast<char>(nGroup >> 16);
                pOut[1] = static_cast<char>(nGroup >> 8);
                pOut[2] = static_cast<char>(nGroup);
            }
            if (p == pEnd)
                break;
        }
        const unsigned int nValue = s_reverse.values[*p++];
        if (nValue == SKIPPED)
            continue;
        nBits = nBits << 6 | nValue;
        nBitCount += 6;
        if (nBitCount >= 8) {
            nBitCount -= 8;
            *pOut++ = static_cast<char>(nBits >> nBitCount);
        }
    }
    result.ReleaseBuffer(static_cast<int>(pOut - pStart));
    return result;
}
