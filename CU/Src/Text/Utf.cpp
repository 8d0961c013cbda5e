#include "Text/Utf.h"

#include "Base/Utf8.h"

namespace {

const int MOST_UNITS = 1024;

const wchar_t *UnitsOf(const CCUString &sWide)
{
    return reinterpret_cast<const wchar_t *>(sWide.GetString());
}

int CountUnits(const CCUString &sWide)
{
    return sWide.GetLength() / static_cast<int>(sizeof(wchar_t));
}

unsigned int TakeUtf16(const wchar_t *&p, const wchar_t *pEnd)
{
    const unsigned int nFirst = *p++;
    if (nFirst < CU_HIGH_UNIT || nFirst >= CU_LOW_UNIT || p == pEnd || *p < CU_LOW_UNIT ||
        *p >= CU_END_OF_UNITS)
        return nFirst;
    return CU_FIRST_PAIR + ((nFirst - CU_HIGH_UNIT) << 10) + (*p++ - CU_LOW_UNIT);
}

int LengthInUtf8(unsigned int nChar)
{
    return nChar < 0x80 ? 1 : nChar < 0x800 ? 2 : nChar < CU_FIRST_PAIR ? 3 : 4;
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
    return nLast >= CU_HIGH_UNIT && nLast < CU_LOW_UNIT ? MOST_UNITS - 1 : MOST_UNITS;
}

// How many units are others when they come back from the code page: some of what it lacks becomes
// what looks like it, and no system before Windows 98 and 2000 can be asked to do otherwise.
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
        const unsigned int nChar = CUTakeUtf8(p, pEnd);
        if (nChar >= CU_END_OF_CHARACTERS)
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
        unsigned int nChar = CUTakeUtf8(p, pEnd);
        if (nChar >= CU_FIRST_PAIR) {
            *pTo++ = static_cast<wchar_t>(CU_HIGH_UNIT + ((nChar - CU_FIRST_PAIR) >> 10));
            nChar = CU_LOW_UNIT + (nChar & 0x3FF);
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
