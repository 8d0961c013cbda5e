// What is done with a string's text: comparing, searching, taking parts, changing in place.

#include "CU/String.h"

#include <ctype.h>
#include <string.h>

#include "Text/Characters.h"

#define CU_SOURCE "String"

namespace {

bool AreSame(const char *p1, const char *p2, int nLength)
{
    for (; nLength >= 8; nLength -= 8, p1 += 8, p2 += 8) {
        if (((CUWord(p1) ^ CUWord(p2)) | (CUWord(p1 + 4) ^ CUWord(p2 + 4))) != 0)
            return false;
    }
    for (; nLength > 0; --nLength) {
        if (*p1++ != *p2++)
            return false;
    }
    return true;
}

int CompareBytes(const char *p1, const char *p2)
{
    // By words where both texts begin at a multiple of 4. Such a word never reaches into another
    // page of memory, so it may be read even where the text ends within it.
    if (((reinterpret_cast<size_t>(p1) | reinterpret_cast<size_t>(p2)) & 3) == 0) {
        for (; CUWord(p1) == CUWord(p2); p1 += 4, p2 += 4) {
            if (CUHasNul(CUWord(p1)))
                return 0;
        }
    }
    for (; *p1 == *p2; ++p1, ++p2) {
        if (*p1 == '\0')
            return 0;
    }
    return static_cast<unsigned char>(*p1) - static_cast<unsigned char>(*p2);
}

// Mostly two strings are compared to see whether they are equal: so that is looked at first.
inline int CompareStrings(const CCUString &s1, const CCUString &s2)
{
    if (s1.GetLength() == s2.GetLength() && AreSame(s1, s2, s1.GetLength()))
        return 0;
    return CompareBytes(s1, s2);
}

// Which of the 256 characters are in a set; the NUL that ends the set never is.
class CCharSet
{
public:
    explicit CCharSet(const char *set)
    {
        memset(m_bits, 0, sizeof m_bits);
        for (; *set; ++set)
            m_bits[Byte(*set) / 32] |= 1U << Byte(*set) % 32;
    }
    bool Has(char ch) const { return m_bits[Byte(ch) / 32] >> Byte(ch) % 32 & 1; }
    // How many of the first characters of a text are (bIn) or are not (!bIn) in the set.
    int Span(const char *pch, int nLength, bool bIn) const
    {
        int n = 0;
        while (n < nLength && Has(pch[n]) == bIn)
            ++n;
        return n;
    }

private:
    static unsigned int Byte(char ch) { return static_cast<unsigned char>(ch); }
    unsigned int m_bits[8];
};

bool IsSpace(char ch)
{
    return isspace(static_cast<unsigned char>(ch)) != 0;
}

}  // namespace

// Comparing. In one source with the operators, which so need no second call.

int CCUString::Compare(const char *psz) const
{
    return CompareBytes(m_pchData, CUOrEmpty(psz));
}

int CCUString::Compare(const CCUString &string) const
{
    return CompareStrings(*this, string);
}

int CCUString::CompareNoCase(const char *psz) const
{
    return _stricmp(m_pchData, CUOrEmpty(psz));
}

int CCUString::Collate(const char *psz) const
{
    return strcoll(m_pchData, CUOrEmpty(psz));
}

// NOLINTBEGIN(bugprone-macro-parentheses): an operator cannot stand in them.
#define CU_COMPARISON(op)                                      \
    bool operator op(const CCUString &s1, const CCUString &s2) \
    {                                                          \
        return CompareStrings(s1, s2) op 0;                    \
    }                                                          \
    bool operator op(const CCUString &s1, const char *s2)      \
    {                                                          \
        return s1.Compare(s2) op 0;                            \
    }                                                          \
    bool operator op(const char *s1, const CCUString &s2)      \
    {                                                          \
        return 0 op s2.Compare(s1);                            \
    }
// NOLINTEND(bugprone-macro-parentheses)

CU_COMPARISON(==)
CU_COMPARISON(!=)
CU_COMPARISON(<)
CU_COMPARISON(>)
CU_COMPARISON(<=)
CU_COMPARISON(>=)

// Searching.

int CCUString::Find(char ch) const
{
    const char *p = CUFindByte(m_pchData, m_pchData + GetLength(), ch);
    return p ? static_cast<int>(p - m_pchData) : -1;
}

// The first pszSub from nFirst, 0 or above, on.
static inline int FindFrom(const CCUString &sText, const char *pszSub, int nFirst)
{
    if (!pszSub || nFirst > sText.GetLength())
        return -1;
    const char *const pText = sText.GetString();
    const size_t nSub = strlen(pszSub);
    if (nSub == 0)
        return nFirst;
    if (nSub > static_cast<size_t>(sText.GetLength() - nFirst))
        return -1;
    const char *pEnd = pText + sText.GetLength() - nSub + 1;
    for (const char *p = pText + nFirst; (p = CUFindByte(p, pEnd, *pszSub)) != nullptr; ++p) {
        if (memcmp(p, pszSub, nSub) == 0)
            return static_cast<int>(p - pText);
    }
    return -1;
}

int CCUString::Find(const char *pszSub) const
{
    return FindFrom(*this, pszSub, 0);
}

int CCUString::Find(const char *pszSub, int nFirst) const
{
    return FindFrom(*this, pszSub, nFirst < 0 ? 0 : nFirst);
}

int CCUString::ReverseFind(char ch) const
{
    int nIndex = GetLength() - 1;
    while (nIndex >= 0 && m_pchData[nIndex] != ch)
        --nIndex;
    return nIndex;
}

int CCUString::FindOneOf(const char *set) const
{
    const int nIndex = CCharSet(CUOrEmpty(set)).Span(m_pchData, GetLength(), false);
    return nIndex < GetLength() ? nIndex : -1;
}

// Taking parts.

CCUString CCUString::Mid(int nFirst) const
{
    // A negative index stands for 0. (GetLength() - nFirst would wrap for one far below.)
    return Mid(nFirst, nFirst < 0 ? GetLength() : GetLength() - nFirst);
}

CCUString CCUString::Mid(int nFirst, int nCount) const
{
    if (nFirst < 0)
        nFirst = 0;
    if (nCount < 0)
        nCount = 0;
    if (nCount > GetLength() - nFirst)
        nCount = GetLength() - nFirst;
    if (nFirst > GetLength())
        nCount = 0;
    CCUString result;
    AllocCopy(result, nCount, nFirst, 0);
    return result;
}

CCUString CCUString::Left(int nCount) const
{
    CCUString result;
    AllocCopy(result, CUCutLength(nCount, GetLength()), 0, 0);
    return result;
}

CCUString CCUString::Right(int nCount) const
{
    nCount = CUCutLength(nCount, GetLength());
    CCUString result;
    AllocCopy(result, nCount, GetLength() - nCount, 0);
    return result;
}

CCUString CCUString::SpanIncluding(const char *set) const
{
    return Left(CCharSet(CUOrEmpty(set)).Span(m_pchData, GetLength(), true));
}

CCUString CCUString::SpanExcluding(const char *set) const
{
    return Left(CCharSet(CUOrEmpty(set)).Span(m_pchData, GetLength(), false));
}

// Changing in place.

void CCUString::MakeUpper()
{
    CopyBeforeWrite();
    CharUpperBuffA(m_pchData, static_cast<DWORD>(GetLength()));
}

void CCUString::MakeLower()
{
    CopyBeforeWrite();
    CharLowerBuffA(m_pchData, static_cast<DWORD>(GetLength()));
}

void CCUString::MakeReverse()
{
    CopyBeforeWrite();
    for (int i = 0, j = GetLength() - 1; i < j; ++i, --j) {
        const char ch = m_pchData[i];
        m_pchData[i] = m_pchData[j];
        m_pchData[j] = ch;
    }
}

void CCUString::TrimRight()
{
    CopyBeforeWrite();
    int nLength = GetLength();
    while (nLength > 0 && IsSpace(m_pchData[nLength - 1]))
        --nLength;
    if (nLength < GetLength())
        SetLength(nLength);
}

void CCUString::TrimLeft()
{
    CopyBeforeWrite();
    int nSpaces = 0;
    while (nSpaces < GetLength() && IsSpace(m_pchData[nSpaces]))
        ++nSpaces;
    if (nSpaces == 0)
        return;
    const int nLength = GetLength() - nSpaces;
    memmove(m_pchData, m_pchData + nSpaces, static_cast<size_t>(nLength));
    SetLength(nLength);
}
