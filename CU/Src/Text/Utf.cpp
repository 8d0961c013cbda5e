#include "Text/Utf.h"

namespace {

const unsigned int FIRST_PAIR = 0x10000;  // from here on UTF-16 has two units for a character
const unsigned int HIGH_UNIT = 0xD800;
const unsigned int LOW_UNIT = 0xDC00;
const unsigned int END_OF_UNITS = 0xE000;
const unsigned int END_OF_CHARACTERS = 0x110000;
const int MOST_UNITS = 1024;

const wchar_t *UnitsOf(const CCUString &sWide)
{
    return reinterpret_cast<const wchar_t *>(sWide.GetString());
}

int CountUnits(const CCUString &sWide)
{
    return sWide.GetLength() / static_cast<int>(sizeof(wchar_t));
}

// The character at p, and the one behind it in p; END_OF_CHARACTERS where there is none in UTF-8.
unsigned int TakeUtf8(const unsigned char *&p, const unsigned char *pEnd)
{
    const unsigned int nFirst = *p++;
    if (nFirst < 0x80)
        return nFirst;
    const int nMore = nFirst >= 0xF0 ? 3 : nFirst >= 0xE0 ? 2 : 1;
    if (nFirst < 0xC0 || nFirst >= 0xF8 || pEnd - p < nMore)
        return END_OF_CHARACTERS;
    unsigned int nChar = nFirst & (0x3Fu >> nMore);
    for (int i = 0; i < nMore; ++i, ++p) {
        if ((*p & 0xC0) != 0x80)
            return END_OF_CHARACTERS;
        nChar = nChar << 6 | (*p & 0x3Fu);
    }
    // Neither longer than it has to be, nor one unit of a pair.
    static const unsigned int LEAST[] = {0, 0x80, 0x800, FIRST_PAIR};
    const bool bUnit = nChar >= HIGH_UNIT && nChar < END_OF_UNITS;
    return nChar < LEAST[nMore] || bUnit ? END_OF_CHARACTERS : nChar;
}

unsigned int TakeUtf16(const wchar_t *&p, const wchar_t *pEnd)
{
    const unsigned int nFirst = *p++;
    if (nFirst < HIGH_UNIT || nFirst >= LOW_UNIT || p == pEnd || *p < LOW_UNIT ||
        *p >= END_OF_UNITS)
        return nFirst;
    return FIRST_PAIR + ((nFirst - HIGH_UNIT) << 10) + (*p++ - LOW_UNIT);
}

int LengthInUtf8(unsigned int nChar)
{
    return nChar < 0x80 ? 1 : nChar < 0x800 ? 2 : nChar < FIRST_PAIR ? 3 : 4;
}

char *PutUtf8(char *p, unsigned int nChar)
{
    const int nMore = LengthInUtf8(nChar) - 1;
    if (nMore == 0) {
        *p++ = static_cast<char>(nChar);
        return p;
    }
    *p++ = static_cast<char>(~(0x7Fu >> nMore) | nChar >> (6 * nMore));
    for (int i = nMore - 1; i >= 0; --i)
        *p++ = static_cast<char>(0x80 | (nChar >> (6 * i) & 0x3F));
    return p;
}

// How many of the next units are converted at a time: no pair is taken apart.
int PieceLength(const wchar_t *p, const wchar_t *pEnd)
{
    if (pEnd - p <= MOST_UNITS)
        return static_cast<int>(pEnd - p);
    const wchar_t nLast = p[MOST_UNITS - 1];
    return nLast >= HIGH_UNIT && nLast < LOW_UNIT ? MOST_UNITS - 1 : MOST_UNITS;
}

// How many units are others when they come back from the code page, where some of what it lacks
// becomes what looks like it, and not all systems tell.
int CountLost(const wchar_t *p, int nUnits, const char *pBytes, int nBytes)
{
    wchar_t back[MOST_UNITS];
    const int nBack = MultiByteToWideChar(CP_ACP, 0, pBytes, nBytes, back, MOST_UNITS);
    int nLost = 0;
    for (int i = 0; i < nUnits; ++i)
        nLost += i >= nBack || back[i] != p[i];
    return nLost;
}

}  // namespace

bool CUIsUtf8(const CCUString &sBytes)
{
    bool bAscii = true;
    const auto *p = reinterpret_cast<const unsigned char *>(sBytes.GetString());
    for (const unsigned char *const pEnd = p + sBytes.GetLength(); p < pEnd;) {
        const unsigned int nChar = TakeUtf8(p, pEnd);
        if (nChar >= END_OF_CHARACTERS)
            return false;
        bAscii = bAscii && nChar < 0x80;
    }
    return !bAscii;
}

CCUString CUUtf8To16(const CCUString &sBytes)
{
    CCUString sWide;
    auto *const pFirst = reinterpret_cast<wchar_t *>(sWide.GetBuffer(2 * sBytes.GetLength()));
    wchar_t *pTo = pFirst;
    const auto *p = reinterpret_cast<const unsigned char *>(sBytes.GetString());
    for (const unsigned char *const pEnd = p + sBytes.GetLength(); p < pEnd;) {
        unsigned int nChar = TakeUtf8(p, pEnd);
        if (nChar >= FIRST_PAIR) {
            *pTo++ = static_cast<wchar_t>(HIGH_UNIT + ((nChar - FIRST_PAIR) >> 10));
            nChar = LOW_UNIT + (nChar & 0x3FF);
        }
        *pTo++ = static_cast<wchar_t>(nChar);
    }
    sWide.ReleaseBuffer(static_cast<int>(pTo - pFirst) * 2);
    return sWide;
}

CCUString CUUtf16To8(const CCUString &sWide)
{
    const wchar_t *const pEnd = UnitsOf(sWide) + CountUnits(sWide);
    int nLength = 0;
    for (const wchar_t *p = UnitsOf(sWide); p < pEnd;)
        nLength += LengthInUtf8(TakeUtf16(p, pEnd));
    CCUString sBytes;
    char *pTo = sBytes.GetBuffer(nLength);
    for (const wchar_t *p = UnitsOf(sWide); p < pEnd;)
        pTo = PutUtf8(pTo, TakeUtf16(p, pEnd));
    sBytes.ReleaseBuffer(nLength);
    return sBytes;
}

CCUString CUSwapUtf16(CCUString sWide)
{
    const int nLength = sWide.GetLength();
    char *const p = sWide.GetBuffer(nLength);
    for (int i = 0; i + 1 < nLength; i += 2) {
        const char cFirst = p[i];
        p[i] = p[i + 1];
        p[i + 1] = cFirst;
    }
    sWide.ReleaseBuffer(nLength);
    return sWide;
}

CCUString CUFromUtf16(const CCUString &sWide, int &nLost)
{
    const wchar_t *p = UnitsOf(sWide);
    const wchar_t *const pEnd = p + CountUnits(sWide);
    CCUString sText;
    const int nLength =
        WideCharToMultiByte(CP_ACP, 0, p, CountUnits(sWide), nullptr, 0, nullptr, nullptr);
    char *const pFirst = sText.GetBuffer(nLength);
    char *pTo = pFirst;
    nLost = 0;
    // In pieces, so that what is compared needs little room, and a character that takes another
    // number of units on its way back counts for no more than its piece.
    while (p < pEnd) {
        const int nPiece = PieceLength(p, pEnd);
        const int nRoom = nLength - static_cast<int>(pTo - pFirst);
        const int nBytes = WideCharToMultiByte(CP_ACP, 0, p, nPiece, pTo, nRoom, nullptr, nullptr);
        nLost += CountLost(p, nPiece, pTo, nBytes);
        p += nPiece;
        pTo += nBytes;
    }
    sText.ReleaseBuffer(static_cast<int>(pTo - pFirst));
    return sText;
}

CCUString CUToUtf16(const CCUString &sText)
{
    CCUString sWide;
    const int nUnits = MultiByteToWideChar(CP_ACP, 0, sText, sText.GetLength(), nullptr, 0);
    auto *const pWide = reinterpret_cast<wchar_t *>(sWide.GetBuffer(2 * nUnits));
    MultiByteToWideChar(CP_ACP, 0, sText, sText.GetLength(), pWide, nUnits);
    sWide.ReleaseBuffer(2 * nUnits);
    return sWide;
}
