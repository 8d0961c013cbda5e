// What a string does with its text: taking parts, searching, changing in place.

#include "CU/String.h"

#include <ctype.h>
#include <string.h>

#include "Text/StringScan.h"
#include "Text/StringLength.h"

#define CU_SOURCE "String"

namespace {

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
    // The first index from 0 to nLength at which being in the set is not bIn.
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

CCUString CCUString::Mid(int nFirst) const
{
    // From a negative index on it is the whole text, however far away the index is.
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

int CCUString::Find(char ch) const
{
    const char *p = CUFindByte(m_pchData, m_pchData + GetLength(), ch);
    return p ? static_cast<int>(p - m_pchData) : -1;
}

int CCUString::Find(const char *pszSub) const
{
    if (!pszSub)
        return -1;
    const size_t nSub = strlen(pszSub);
    if (nSub == 0)
        return 0;
    if (nSub > static_cast<size_t>(GetLength()))
        return -1;
    const char *pEnd = m_pchData + GetLength() - nSub + 1;
    for (const char *p = m_pchData; (p = CUFindByte(p, pEnd, *pszSub)) != nullptr; ++p) {
        if (memcmp(p, pszSub, nSub) == 0)
            return static_cast<int>(p - m_pchData);
    }
    return -1;
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
