#include <stdlib.h>
#include <string.h>

#include "Problems/Checks.h"

namespace {

const int MAX_DIGITS = 9;

// How many numbers stand in front of what else an entry of that kind has.
int NumbersOf(SkinEntryKind kind)
{
    switch (kind) {
    case EntryPoint: return 2;
    case EntryRect: return 4;
    case EntryColor:
    case EntryFont: return 3;
    default: return 0;
    }
}

const char *FormOf(SkinEntryKind kind)
{
    switch (kind) {
    case EntryPoint: return "x,y";
    case EntryRect: return "left,top,right,bottom";
    case EntryColor: return "red,green,blue";
    default: return "height,bold,italic,face";
    }
}

bool IsDigit(char ch)
{
    return ch >= '0' && ch <= '9';
}

bool IsSpace(char ch)
{
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

// One number as the launcher reads it: white space may stand in front of it, none behind.
struct CNumber
{
    bool m_bThere;
    bool m_bTooLong;
    int m_nValue;
};

CNumber TakeNumber(const char *&p)
{
    const char *at = p;
    while (IsSpace(*at))
        ++at;
    const char *const pStart = at;
    if (*at == '-' || *at == '+')
        ++at;
    const char *const pDigits = at;
    while (IsDigit(*at))
        ++at;
    CNumber number = {at > pDigits, at - pDigits > MAX_DIGITS, 0};
    if (number.m_bThere) {
        number.m_nValue = number.m_bTooLong ? 0 : atoi(pStart);
        p = at;
    }
    return number;
}

// The numbers of an entry, read as far as they go.
struct CNumbers
{
    std::vector<CNumber> m_numbers;
    const char *m_pRest;  // behind the last one that was read, and the comma that must follow it
    bool m_bComma;        // false: that comma is missing
};

CNumbers TakeNumbers(const CCUString &sText, int nCount, bool bCommaBehind)
{
    CNumbers result = {{}, sText, true};
    for (int i = 0; i < nCount; ++i) {
        const CNumber number = TakeNumber(result.m_pRest);
        if (!number.m_bThere)
            return result;
        result.m_numbers.push_back(number);
        if (i + 1 == nCount && !bCommaBehind)
            return result;
        result.m_bComma = *result.m_pRest == ',';
        if (!result.m_bComma)
            return result;
        ++result.m_pRest;
    }
    return result;
}

CCUString Quoted(const CCUString &sText)
{
    return "\"" + sText + "\"";
}

CCUString UnreadableText(const SkinEntry &entry, const CCUString &sText, const CNumbers &numbers)
{
    const int nWanted = NumbersOf(entry.m_kind);
    CCUString sWhat = CCUString(entry.m_pszCaption) + ": " + Quoted(sText) + " cannot be read as " +
                      FormOf(entry.m_kind) + ".";
    const int nRead = static_cast<int>(numbers.m_numbers.size());
    if (!numbers.m_bComma && nRead > 0)
        sWhat += WithNumber(" A comma is missing right behind number %d.", nRead);
    else if (nRead < nWanted)
        sWhat += WithNumber(" Number %d is missing.", nRead + 1);
    else
        sWhat += " The face is missing.";
    return sWhat;
}

const char *UnreadableEffect(SkinEntryKind kind)
{
    switch (kind) {
    case EntryFont: return "What is missing is taken from the font before it.";
    case EntryColor: return "What is missing is 0, or as in the colour before it.";
    default: return "What is missing is 0: it stands at the edge of the picture.";
    }
}

void CheckRest(CSkinCheck &check, const SkinEntry &entry, const CCUString &sText,
               const CNumbers &numbers)
{
    const char *pRest = numbers.m_pRest;
    while (IsSpace(*pRest))
        ++pRest;
    if (entry.m_kind == EntryFont || *pRest == '\0')
        return;
    const char *const pszWhat =
        *pRest == ',' ? " has more numbers than " : " has something behind its numbers: wanted is ";
    check.Warn(
        entry.m_nID,
        CCUString(entry.m_pszCaption) + ": " + Quoted(sText) + pszWhat + FormOf(entry.m_kind) + ".",
        "The launcher leaves out " + Quoted(pRest) + ".");
}

void CheckRanges(CSkinCheck &check, const SkinEntry &entry, const CNumbers &numbers)
{
    for (const CNumber &number : numbers.m_numbers) {
        if (number.m_bTooLong)
            check.Warn(entry.m_nID, CCUString(entry.m_pszCaption) + ": a number is far too large.",
                       "The launcher takes any other number for it.");
        if (entry.m_kind == EntryColor && (number.m_nValue < 0 || number.m_nValue > 255))
            check.Warn(
                entry.m_nID,
                CCUString(entry.m_pszCaption) +
                    WithNumber(": %d is no part of a colour; 0 to 255 are.", number.m_nValue),
                WithNumber("The launcher takes %d instead.", number.m_nValue & 255));
    }
}

void CheckRectOrder(CSkinCheck &check, const SkinEntry &entry, const CNumbers &numbers)
{
    if (entry.m_kind != EntryRect)
        return;
    const auto &n = numbers.m_numbers;
    if (n[2].m_nValue <= n[0].m_nValue || n[3].m_nValue <= n[1].m_nValue)
        check.Warn(entry.m_nID,
                   CCUString(entry.m_pszCaption) +
                       ": right must be more than left, and bottom more than top.",
                   "The description is not shown.");
}

void CheckNumbersOf(CSkinCheck &check, const SkinEntry &entry)
{
    const CCUString sText = check.m_strings.Read(entry.m_nID);
    const int nWanted = NumbersOf(entry.m_kind);
    if (nWanted == 0 || sText.IsEmpty())
        return;
    const bool bFont = entry.m_kind == EntryFont;
    const CNumbers numbers = TakeNumbers(sText, nWanted, bFont);
    const bool bAll = static_cast<int>(numbers.m_numbers.size()) == nWanted && numbers.m_bComma;
    SkinFont font = {};
    if (!bAll || (bFont && !ParseFont(sText, font))) {
        check.Warn(entry.m_nID, UnreadableText(entry, sText, numbers),
                   UnreadableEffect(entry.m_kind));
        return;
    }
    CheckRest(check, entry, sText, numbers);
    CheckRanges(check, entry, numbers);
    CheckRectOrder(check, entry, numbers);
}

}  // namespace

void CheckNumbers(CSkinCheck &check)
{
    for (const SkinEntry &entry : SKIN_ENTRIES)
        CheckNumbersOf(check, entry);
}
