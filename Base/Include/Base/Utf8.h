#pragma once

// UTF-8, one character after the other, and what UTF-16 makes of a character.

const unsigned int CU_FIRST_PAIR = 0x10000;  // from here on UTF-16 has two units for a character
const unsigned int CU_HIGH_UNIT = 0xD800;
const unsigned int CU_LOW_UNIT = 0xDC00;
const unsigned int CU_END_OF_UNITS = 0xE000;
const unsigned int CU_END_OF_CHARACTERS = 0x110000;

// The character at p, and the one behind it in p; CU_END_OF_CHARACTERS where there is none in
// UTF-8.
inline unsigned int CUTakeUtf8(const unsigned char *&p, const unsigned char *pEnd)
{
    const unsigned int nFirst = *p++;
    if (nFirst < 0x80)
        return nFirst;
    const int nMore = nFirst >= 0xF0 ? 3 : nFirst >= 0xE0 ? 2 : 1;
    if (nFirst < 0xC0 || nFirst >= 0xF8 || pEnd - p < nMore)
        return CU_END_OF_CHARACTERS;
    unsigned int nChar = nFirst & (0x3Fu >> nMore);
    for (int i = 0; i < nMore; ++i, ++p) {
        if ((*p & 0xC0) != 0x80)
            return CU_END_OF_CHARACTERS;
        nChar = nChar << 6 | (*p & 0x3Fu);
    }
    // Neither longer than it has to be, nor one unit of a pair.
    static const unsigned int LEAST[] = {0, 0x80, 0x800, CU_FIRST_PAIR};
    const bool bUnit = nChar >= CU_HIGH_UNIT && nChar < CU_END_OF_UNITS;
    return nChar < LEAST[nMore] || bUnit ? CU_END_OF_CHARACTERS : nChar;
}
