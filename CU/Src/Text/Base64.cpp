// Base64 of a string's bytes.

#include <limits.h>
#include <string.h>

#include "CU/String.h"

namespace {

constexpr char s_alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

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

// One group, which a byte must follow. Two stores are faster here than one of a word.
inline void PutGroupByPairs(char *pOut, const char *p)
{
    unsigned int nWord;
    memcpy(&nWord, p, sizeof nWord);
    nWord = __builtin_bswap32(nWord);
    memcpy(pOut, &s_pairs[nWord >> 20], sizeof *s_pairs);
    memcpy(pOut + 2, &s_pairs[nWord >> 8 & 4095], sizeof *s_pairs);
}

// Whole groups, four at a time and some bytes left; moves both places on. For long texts.
void PutGroupsByPairs(char *&pOut, const char *&p, const char *pEnd)
{
    for (; p < pEnd - 12; p += 12, pOut += 16) {
        PutGroupByPairs(pOut, p);
        PutGroupByPairs(pOut + 4, p + 3);
        PutGroupByPairs(pOut + 8, p + 6);
        PutGroupByPairs(pOut + 12, p + 9);
    }
}

// What a character gives at each of the four places of a group: its bits where they stand in the
// group's three bytes as a word holds them, so that a group is decoded by or-ing four words;
// SKIPPED outside the alphabet. Made when first needed, as the pairs are.
unsigned int s_values[4][256];
volatile LONG s_bValuesMade = 0;

const unsigned int SKIPPED = 0xFF000000;

void MakeValues()
{
    if (s_bValuesMade)
        return;
    // Each word is written once: other threads may be reading already.
    for (unsigned int ch = 0; ch < 256; ++ch) {
        unsigned int nValue = 0;
        while (nValue < 64 && static_cast<unsigned char>(s_alphabet[nValue]) != ch)
            ++nValue;
        for (int nPlace = 0; nPlace < 4; ++nPlace)
            s_values[nPlace][ch] =
                nValue < 64 ? __builtin_bswap32(nValue << (26 - 6 * nPlace)) : SKIPPED;
    }
    InterlockedExchange(&s_bValuesMade, 1);
}

}  // namespace

CCUString CCUString::Encode64() const
{
    CCUString result;
    const int nSrc = GetLength();
    if (nSrc == 0)
        return result;
    const unsigned int nGroups = (static_cast<unsigned int>(nSrc) + 2) / 3;
    const int nEncoded = nGroups > INT_MAX / 4 ? INT_MAX : static_cast<int>(nGroups * 4);
    char *pOut = result.GetBufferSetLength(nEncoded);
    if (result.GetLength() < nEncoded)
        return result;
    const char *p = m_pchData;
    const char *pEnd = p + nSrc;
    if (nSrc >= LONG_TEXT) {
        MakePairs();
        PutGroupsByPairs(pOut, p, pEnd);
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
    MakeValues();
    while (p != pEnd) {
        if (nBitCount == 0) {
            // Whole groups of four, up to the next character that is skipped. The fourth byte
            // written is the next group's first one, or where the NUL comes to stand.
            for (; pEnd - p >= 4; p += 4, pOut += 3) {
                const unsigned int nGroup =
                    s_values[0][p[0]] | s_values[1][p[1]] | s_values[2][p[2]] | s_values[3][p[3]];
                if (nGroup >= SKIPPED)
                    break;
                memcpy(pOut, &nGroup, sizeof nGroup);
            }
            if (p == pEnd)
                break;
        }
        const unsigned int nValue = s_values[3][*p++];
        if (nValue == SKIPPED)
            continue;
        // At the last place the value is the third byte.
        nBits = nBits << 6 | nValue >> 16;
        nBitCount += 6;
        if (nBitCount >= 8) {
            nBitCount -= 8;
            *pOut++ = static_cast<char>(nBits >> nBitCount);
        }
    }
    result.ReleaseBuffer(static_cast<int>(pOut - pStart));
    return result;
}
