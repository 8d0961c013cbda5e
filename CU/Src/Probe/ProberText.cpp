#include "Probe/ProberText.h"

#include <stdio.h>
#include <string.h>

#include "CU/Prober.h"
#include "Text/Characters.h"

namespace {

int DigitOf(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    c = static_cast<char>(c | 0x20);
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : 16;
}

// Steps over the digits of a number without a sign. False when there are none, or too many.
bool ReadDigits(const char *&psz, unsigned nBase, unsigned long &nValue)
{
    const char *const pszStart = psz;
    nValue = 0;
    for (unsigned nDigit; (nDigit = static_cast<unsigned>(DigitOf(*psz))) < nBase; ++psz) {
        if (nValue > (0xFFFFFFFFUL - nDigit) / nBase)
            return false;
        nValue = nValue * nBase + nDigit;
    }
    return psz != pszStart;
}

}  // namespace

bool CUParseProberLong(const char *pszText, long &nValue)
{
    const char *psz = CUSkipBlanks(pszText);
    const bool bNegative = *psz == '-';
    psz += bNegative || *psz == '+';
    const bool bHex = psz[0] == '0' && (psz[1] | 0x20) == 'x';
    psz += bHex ? 2 : 0;
    unsigned long nSize;
    if (!ReadDigits(psz, bHex ? 16 : 10, nSize) || *CUSkipBlanks(psz))
        return false;
    if (!bHex && nSize > 0x7FFFFFFFUL + bNegative)
        return false;
    nValue = static_cast<long>(bNegative ? 0 - nSize : nSize);
    return true;
}

bool CUParseProberDouble(const char *pszText, double &fValue)
{
    int nRead = 0;
    double fRead;
    // What is too large is read as infinite, whose difference from itself is no number.
    if (sscanf(pszText, "%lf%n", &fRead, &nRead) != 1 || *CUSkipBlanks(pszText + nRead) ||
        !(fRead - fRead == 0))
        return false;
    fValue = fRead;
    return true;
}

bool CUParseProberFlag(const char *pszText, bool &bValue)
{
    static const char *const WORDS[] = {"0", "1", "false", "true", "off", "on"};
    const char *const psz = CUSkipBlanks(pszText);
    for (int i = 0; i < 6; ++i) {
        const size_t nLength = strlen(WORDS[i]);
        if (_strnicmp(psz, WORDS[i], nLength) == 0 && !*CUSkipBlanks(psz + nLength)) {
            bValue = i % 2 != 0;
            return true;
        }
    }
    return false;
}

// With as few digits as give the same number again.
CCUString CUFormatProberDouble(double fValue)
{
    char szText[40];
    double fRead = 0;
    sprintf(szText, "%.15g", fValue);
    if (!CUParseProberDouble(szText, fRead) || fRead < fValue || fRead > fValue)
        sprintf(szText, "%.17g", fValue);
    return szText;
}

CCUString CUProberValue::ToText() const
{
    if (nKind == CU_PROBER_TEXT)
        return sText;
    if (nKind == CU_PROBER_DOUBLE)
        return CUFormatProberDouble(fDouble);
    char szNumber[16];
    wsprintfA(szNumber, "%ld", nLong);
    const char *const pszFlag = nLong ? "true" : "false";
    return nKind == CU_PROBER_FLAG ? pszFlag : szNumber;
}
