#include "File/SumsFile.h"

#include <ctype.h>

const char *const SUMS_NAME = "SHA256SUMS";

namespace {

const int DIGITS = 64;
const int PATH_AT = DIGITS + 2;  // behind a space and a mark for binary

void ReadLine(const CCUString &sLine, CSums &sums)
{
    if (sLine.GetLength() <= PATH_AT || sLine[DIGITS] != ' ')
        return;
    for (int i = 0; i < DIGITS; ++i) {
        if (!isxdigit(static_cast<unsigned char>(sLine[i])))
            return;
    }
    sums[sLine.Mid(PATH_AT)] = sLine.Left(DIGITS);
}

}  // namespace

CCUString WriteSums(const CSums &sums)
{
    CCUString sText;
    for (const auto &sum : sums) {
        sText += sum.second;
        sText += " *";
        sText += sum.first;
        sText += '\n';
    }
    return sText;
}

CSums ReadSums(const CCUString &sText)
{
    CSums sums;
    const char *pLine = sText;
    for (const char *p = pLine; *pLine; ++p) {
        if (*p && *p != '\n')
            continue;
        ReadLine(CCUString(pLine, static_cast<int>(p - pLine)), sums);
        pLine = *p ? p + 1 : p;
    }
    return sums;
}
