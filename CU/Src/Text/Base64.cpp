// Base64 of a string's bytes.

#include <limits.h>
#include <string.h>

#include "Base/Atomic.h"
#include "CU/String.h"

namespace {

constexpr char ALPHABET[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

unsigned int Byte(const char *pch)
{
    return static_cast<unsigned char>(*pch);
}

char Letter(unsigned int nGroup, int nShift)
{
    return ALPHABET[nGroup >> nShift & 63];
}

// The four characters of a group of 24 bits, the top six first.
void PutGroup(char *pch, unsigned int nGroup)
{
    pch[0] = Letter(nGroup, 18);
    pch[1] = Letter(nGroup, 12);
    pch[2] = Letter(nGroup, 6);
    pch[3] = Letter(nGroup, 0);
}

// The two characters for each 12 bits. Made when a long text first needs them, to keep the
// program's file small. Threads that do so at the same time write the same.
unsigned short s_pairs[4096];
volatile LONG s_nPairsMade = 0;

// From this length on the pairs are worth making.
const int LONG_TEXT = 256;

void MakePairs()
{
    CUOnceWithoutWait(s_nPairsMade, [] {
        for (unsigned int n = 0; n < 4096; ++n) {
            const char pair[] = {Letter(n, 6), Letter(n, 0)};
            memcpy(&s_pairs[n], pair, sizeof pair);
        }
    });
}

// The bytes of a word in the other order; the compilers make one instruction of it.
inline unsigned int SwapBytes(unsigned int nWord)
{
    return nWord << 24 | (nWord << 8 & 0xFF0000) | (nWord >> 8 & 0xFF00) | nWord >> 24;
}

// One group, of which a fourth byte is read as well. Two stores are faster here than one of a word.
inline void PutGroupByPairs(char *pOut, const char *p)
{
    unsigned int nWord;
    memcpy(&nWord, p, sizeof nWord);
    nWord = SwapBytes(nWord);
    memcpy(pOut, &s_pairs[nWord >> 20], sizeof *s_pairs);
    memcpy(pOut + 2, &s_pairs[nWord >> 8 & 4095], sizeof *s_pairs);
}

// Whole groups, four at a time, as long as a byte is left behind them; moves both places on.
void PutGroupsByPairs(char *&pOut, const char *&p, const char *pEnd)
{
    for (; p < pEnd - 12; p += 12, pOut += 16) {
        PutGroupByPairs(pOut, p);
        PutGroupByPairs(pOut + 4, p + 3);
        PutGroupByPairs(pOut + 8, p + 6);
        PutGroupByPairs(pOut + 12, p + 9);
    }
}

// For each of the four places in a group and each character: its six bits where they belong in a
// word whose first three bytes are those of the group. The bitwise "or" of four such words decodes
// a group. SKIPPED for characters outside of the alphabet. Made when first needed, as the pairs
// are.
unsigned int s_values[4][256];
volatile LONG s_nValuesMade = 0;

const unsigned int SKIPPED = 0xFF000000;

void MakeValues()
{
    CUOnceWithoutWait(s_nValuesMade, [] {
        // Each word is written just once, with its final value: another thread may have made them
        // all and be reading.
        for (unsigned int ch = 0; ch < 256; ++ch) {
            unsigned int nValue = 0;
            while (nValue < 64 && static_cast<unsigned char>(ALPHABET[nValue]) != ch)
                ++nValue;
            for (int nPlace = 0; nPlace < 4; ++nPlace)
                s_values[nPlace][ch] =
                    nValue < 64 ? SwapBytes(nValue << (26 - 6 * nPlace)) : SKIPPED;
        }
    });
}

// Whole groups of four, up to the first one with a character that is skipped; moves both places on.
// Each store writes a fourth byte: where the next group's first byte comes to stand, or the NUL.
inline void DecodeGroups(char *&pOut, const unsigned char *&p, const unsigned char *pEnd)
{
    for (; pEnd - p >= 4; p += 4, pOut += 3) {
        const unsigned int nGroup =
            s_values[0][p[0]] | s_values[1][p[1]] | s_values[2][p[2]] | s_values[3][p[3]];
        if (nGroup >= SKIPPED)
            break;
        memcpy(pOut, &nGroup, sizeof nGroup);
    }
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
            DecodeGroups(pOut, p, pEnd);
            if (p == pEnd)
                break;
        }
        const unsigned int nValue = s_values[3][*p++];
        if (nValue == SKIPPED)
            continue;
        // At the last place in a group, the six bits are the lowest of the third byte.
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
