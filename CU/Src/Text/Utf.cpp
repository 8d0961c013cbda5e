#include "Text/Utf.h"

#include "Base/Utf8.h"

namespace {

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

char *PutUtf8(char *p, unsigned int nChar)
{
    if (nChar < 0x80) {
        *p++ = static_cast<char>(nChar);
        return p;
    }
    const int nMore = nChar >= CU_FIRST_PAIR ? 3 : nChar >= 0x800 ? 2 : 1;
    *p++ = static_cast<char>(~(0x7Fu >> nMore) | nChar >> (6 * nMore));
    for (int i = nMore - 1; i >= 0; --i)
        *p++ = static_cast<char>(0x80 | (nChar >> (6 * i) & 0x3F));
    return p;
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
    CCUString sBytes;
    char *const pFirst = sBytes.GetBuffer(3 * CountUnits(sWide));
    char *pTo = pFirst;
    const wchar_t *p = UnitsOf(sWide);
    for (const wchar_t *const pEnd = p + CountUnits(sWide); p < pEnd;)
        pTo = PutUtf8(pTo, TakeUtf16(p, pEnd));
    sBytes.ReleaseBuffer(static_cast<int>(pTo - pFirst));
    return sBytes;
}

CCUString CUFromUtf16(const CCUString &sWide, int &nLost)
{
    const wchar_t *const pWide = UnitsOf(sWide);
    const int nUnits = CountUnits(sWide);
    CCUString sText;
    const int nLength = WideCharToMultiByte(CP_ACP, 0, pWide, nUnits, nullptr, 0, nullptr, nullptr);
    WideCharToMultiByte(CP_ACP, 0, pWide, nUnits, sText.GetBuffer(nLength), nLength, nullptr,
                        nullptr);
    sText.ReleaseBuffer(nLength);
    // Some of what the code page lacks becomes what looks like it, and no system before Windows 98
    // and 2000 can be asked to do otherwise.
    const CCUString sBack = CUToUtf16(sText);
    const wchar_t *const pBack = UnitsOf(sBack);
    nLost = 0;
    for (int i = 0; i < nUnits; ++i)
        nLost += i >= CountUnits(sBack) || pBack[i] != pWide[i];
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
