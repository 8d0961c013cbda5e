// The comparisons of strings, in one source so that the operators need no second call.

#include "CU/String.h"

#include <string.h>

#include "Text/StringScan.h"

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
    // A word at an address that its size divides lies in one page: where its first byte may be
    // read, the rest may, beyond the text's end too.
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

// What two strings mostly are asked for is whether they are equal.
inline int CompareStrings(const CCUString &s1, const CCUString &s2)
{
    if (s1.GetLength() == s2.GetLength() && AreSame(s1, s2, s1.GetLength()))
        return 0;
    return CompareBytes(s1, s2);
}

}  // namespace

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
