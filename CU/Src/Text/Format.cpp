// Formatting, in two passes over the format: the first estimates the length of the text, for which
// room is made; the second writes, and cuts what exceeds that room.

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#include "CU/String.h"
#include "Text/Characters.h"

#define CU_SOURCE "String"

namespace {

// What an integer and a floating-point number are expected to take, in characters.
const int NUMBER_LENGTH = 32;
const int FLOAT_LENGTH = 512;
// The largest width or precision that is believed of an argument after an unknown conversion.
const int MOST_UNSURE = 1 << 24;

int Max(int n1, int n2)
{
    return n1 > n2 ? n1 : n2;
}

bool IsModifier(char ch)
{
    return ch == 'h' || ch == 'l' || ch == 'F' || ch == 'N' || ch == 'L';
}

bool IsPlainType(char ch)
{
    return ch == 'c' || ch == 'd' || ch == 'i' || ch == 'u' || ch == 'x' || ch == 's';
}

// The length of a text of which no more than nMost characters will be read; null is empty.
template <typename Char>
int TextLength(const Char *psz, int nMost)
{
    int nLength = 0;
    while (psz && nLength < nMost && psz[nLength])
        ++nLength;
    return nLength;
}

// NOLINTBEGIN(clang-analyzer-valist.Uninitialized): it does not follow a list through a pointer.

// Sums up the longest text that a format and its arguments are expected to give.
class CFormatEstimate
{
public:
    // Uses the arguments up. The buffer of the string to be written is from pOwn to pOwnEnd.
    CFormatEstimate(const char *pszFormat, va_list *pArgs, const char *pOwn, const char *pOwnEnd)
        : m_p(pszFormat),
          m_pArgs(pArgs),
          m_pOwn(pOwn),
          m_pOwnEnd(pOwnEnd),
          m_nMaxLen(0),
          m_bReadsOwn(false),
          m_bUnsure(false),
          m_bPlain(true)
    {
        Walk();
    }
    int MaxLen() const { return m_nMaxLen; }
    // Whether an argument points into that buffer, or may do so.
    bool ReadsOwn() const { return m_bReadsOwn || m_bUnsure; }
    // Whether the format has nothing but text, "%%" and %c %d %i %u %x %s without flags, width and
    // so on, and no text is null.
    bool IsPlain() const { return m_bPlain; }

private:
    struct CItem
    {
        int nWidth;
        int nPrecision;
        char chModifier;
    };

    void Walk();
    CItem ReadItem();
    bool ReadFlags(int &nWidth);
    int ReadNumber();
    int ReadStar();
    const char *ReadPointer();
    int ItemLength(const CItem &item);
    int StringLength(const CItem &item);
    static int FitString(const CItem &item, int nItemLen);

    const char *m_p;
    va_list *m_pArgs;
    const char *m_pOwn;
    const char *m_pOwnEnd;
    int m_nMaxLen;
    bool m_bReadsOwn;
    // Met an unknown conversion. It is not known whether it has taken an argument, so each further
    // argument may be a part of another one.
    bool m_bUnsure;
    bool m_bPlain;
};

void CFormatEstimate::Walk()
{
    for (; *m_p; ++m_p) {
        const char *pText = m_p;
        while (*m_p && *m_p != '%')
            ++m_p;
        m_nMaxLen = CUSum(m_nMaxLen, static_cast<int>(m_p - pText));
        if (!*m_p)
            return;
        if (*++m_p == '%') {
            m_nMaxLen = CUSum(m_nMaxLen, 1);
            continue;
        }
        const char *pItem = m_p;
        const CItem item = ReadItem();
        if (m_p != pItem || !IsPlainType(*m_p))
            m_bPlain = false;
        m_nMaxLen = CUSum(m_nMaxLen, ItemLength(item));
        if (!*m_p)
            return;
    }
}

// Reads up to the conversion character.
CFormatEstimate::CItem CFormatEstimate::ReadItem()
{
    CItem item = {0, 0, '\0'};
    if (!ReadFlags(item.nWidth))
        item.nWidth = ReadNumber();
    CU_ASSERT_TEXT(item.nWidth >= 0, "nWidth >= 0");
    if (*m_p == '.') {
        ++m_p;
        if (*m_p == '*') {
            item.nPrecision = ReadStar();
            ++m_p;
        } else {
            item.nPrecision = ReadNumber();
        }
        CU_ASSERT_TEXT(item.nPrecision >= 0, "nPrecision >= 0");
    }
    if (IsModifier(*m_p))
        item.chModifier = *m_p++;
    return item;
}

// True when the width came from an argument.
bool CFormatEstimate::ReadFlags(int &nWidth)
{
    bool bWidth = false;
    for (;; ++m_p) {
        switch (*m_p) {
        case '#':  // "0x"
            m_nMaxLen = CUSum(m_nMaxLen, 2);
            break;
        case '*':
            nWidth = ReadStar();
            bWidth = true;
            break;
        case '-':
        case '+':
        case '0':
        case ' ': break;
        default: return bWidth;
        }
    }
}

// Reads as atoi does, without its undefined result for a number that is too large.
int CFormatEstimate::ReadNumber()
{
    // A letter, as mostly, starts no number: saves the call.
    if (*m_p >= 'A')
        return 0;
    const int nNumber = static_cast<int>(strtol(m_p, nullptr, 10));
    while (*m_p >= '0' && *m_p <= '9')
        ++m_p;
    return nNumber;
}

int CFormatEstimate::ReadStar()
{
    const int nNumber = va_arg(*m_pArgs, int);
    // It may be half of a double: a nonsense width must not exhaust the heap.
    return m_bUnsure && nNumber > MOST_UNSURE ? 0 : nNumber;
}

const char *CFormatEstimate::ReadPointer()
{
    const char *p = va_arg(*m_pArgs, const char *);
    if (p >= m_pOwn && p <= m_pOwnEnd)
        m_bReadsOwn = true;
    return p;
}

int CFormatEstimate::ItemLength(const CItem &item)
{
    switch (*m_p) {
    case 'c':
    case 'C': va_arg(*m_pArgs, int); return FitString(item, 2);
    case 's':
    case 'S': return FitString(item, Max(1, StringLength(item)));
    case 'd':
    case 'i':
    case 'o':
    case 'p':
    case 'u':
    case 'x':
    case 'X': va_arg(*m_pArgs, int); return Max(NUMBER_LENGTH, CUSum(item.nWidth, item.nPrecision));
    case 'e':
    case 'f':
    case 'g':
    case 'G':
        va_arg(*m_pArgs, double);
        return Max(FLOAT_LENGTH, CUSum(item.nWidth, item.nPrecision));
    case 'n': ReadPointer(); return 0;
    default:
        CU_ASSERT_TEXT(false, "0");
        m_bUnsure = true;
        return 0;
    }
}

int CFormatEstimate::StringLength(const CItem &item)
{
    const char *psz = ReadPointer();
    if (!psz)
        m_bPlain = false;
    // With a precision the text may lack its NUL, so no more than that is read.
    const int nMost = item.nPrecision > 0 ? item.nPrecision : INT_MAX;
    const bool bWide = item.chModifier == 'l' || (*m_p == 'S' && item.chModifier != 'h');
    const wchar_t *pwsz = reinterpret_cast<const wchar_t *>(psz);
    // After an unknown conversion this may be no pointer at all, and must not be followed blindly.
    const UINT nSeen = static_cast<UINT>(nMost);
    if (m_bUnsure && (bWide ? IsBadStringPtrW(pwsz, nSeen) : IsBadStringPtrA(psz, nSeen)))
        return 0;
    return bWide ? TextLength(pwsz, nMost) : TextLength(psz, nMost);
}

// The width first, then the precision, which so cuts a larger width as well: "%10.3s" is expected
// to give 3 characters, though it gives 10.
int CFormatEstimate::FitString(const CItem &item, int nItemLen)
{
    nItemLen = Max(nItemLen, item.nWidth);
    if (item.nPrecision != 0 && nItemLen >= item.nPrecision)
        nItemLen = item.nPrecision;
    return nItemLen;
}

// NOLINTEND(clang-analyzer-valist.Uninitialized)

// Writes plain formats (CFormatEstimate::IsPlain), several times as fast as the C library's
// formatter. Most formats are plain.
class CPlainWriter
{
public:
    CPlainWriter(char *pch, int nRoom) : m_pch(pch), m_nRoom(nRoom), m_nLength(0) {}
    // Returns the length of the whole text. What of it exceeds the room is not written, nor a NUL.
    int Write(const char *pszFormat, va_list args);

private:
    void Put(char ch)
    {
        if (m_nLength < m_nRoom)
            m_pch[m_nLength] = ch;
        ++m_nLength;
    }
    void PutText(const char *psz)
    {
        while (*psz)
            Put(*psz++);
    }
    template <unsigned int nBase>
    void PutNumber(unsigned int n);
    void PutSigned(int n);

    char *m_pch;
    int m_nRoom;
    int m_nLength;
};

int CPlainWriter::Write(const char *pszFormat, va_list args)
{
    for (const char *p = pszFormat; *p; ++p) {
        if (*p != '%' || *++p == '%') {
            Put(*p);
            continue;
        }
        switch (*p) {
        case 'c': Put(static_cast<char>(va_arg(args, int))); break;
        case 's': PutText(va_arg(args, const char *)); break;
        case 'u': PutNumber<10>(va_arg(args, unsigned int)); break;
        case 'x': PutNumber<16>(va_arg(args, unsigned int)); break;
        default: PutSigned(va_arg(args, int)); break;
        }
    }
    return m_nLength;
}

template <unsigned int nBase>
void CPlainWriter::PutNumber(unsigned int n)
{
    char szDigits[16];
    char *p = szDigits + sizeof szDigits - 1;
    *p = '\0';
    do {
        *--p = "0123456789abcdef"[n % nBase];
        n /= nBase;
    } while (n != 0);
    PutText(p);
}

void CPlainWriter::PutSigned(int n)
{
    if (n < 0)
        Put('-');
    PutNumber<10>(n < 0 ? 0 - static_cast<unsigned int>(n) : static_cast<unsigned int>(n));
}

// Both functions write as much of the text as nRoom characters hold, and a NUL at pch[nRoom] at the
// latest. They return whether that was all of it.

bool PrintPlain(char *pch, int nRoom, const char *pszFormat, va_list args)
{
    const int nLength = CPlainWriter(pch, nRoom).Write(pszFormat, args);
    const bool bCut = nLength > nRoom;
    pch[bCut ? nRoom : nLength] = '\0';
    return !bCut;
}

// By the system's runtime: the language's vsnprintf brings a formatter of its own along.
bool PrintByRuntime(char *pch, int nRoom, const char *pszFormat, va_list args)
{
    pch[nRoom] = '\0';
    const int nWritten = _vsnprintf(pch, static_cast<size_t>(nRoom) + 1, pszFormat, args);
    // Negative for a text that is cut and for one that cannot be written, as when a wide character
    // is not in the code page. Only the first fills the buffer, over the NUL at its end.
    const bool bCut = nWritten < 0 ? pch[nRoom] != '\0' : nWritten > nRoom;
    pch[nRoom] = '\0';
    return !bCut;
}

}  // namespace

void CCUString::Format(const char *pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void CCUString::FormatV(const char *pszFormat, va_list args)
{
    if (!pszFormat)
        pszFormat = "";
    va_list estimated;
    va_copy(estimated, args);
    const CFormatEstimate estimate(pszFormat, &estimated, m_pchData, m_pchData + GetAllocLength());
    va_end(estimated);
    const bool bReadsOwn = estimate.ReadsOwn() || PointsInto(pszFormat);
    if (!bReadsOwn) {
        PrintV(estimate.MaxLen(), estimate.IsPlain(), pszFormat, args);
        return;
    }
    // Writing here would change what is still to be read, so another string is written. It gets the
    // room that GetBuffer would make in this one: the text is cut at the same length either way.
    const bool bKeepsBlock = GetData()->nRefs <= 1 && estimate.MaxLen() <= GetAllocLength();
    const int nRoom = bKeepsBlock ? GetAllocLength() : GetLength();
    CCUString text;
    if (nRoom > estimate.MaxLen())
        text.AllocBuffer(nRoom);
    text.PrintV(estimate.MaxLen(), estimate.IsPlain(), pszFormat, args);
    if (bKeepsBlock) {
        AssignCopy(text.GetLength(), text.m_pchData);
        return;
    }
    CCUStringData *pOldData = GetData();
    m_pchData = text.m_pchData;
    text.Init();
    ReleaseOld(pOldData);
}

// Writes the text, with room for nMaxLen characters or for what the block has.
void CCUString::PrintV(int nMaxLen, bool bPlain, const char *pszFormat, va_list argListSave)
{
    GetBuffer(nMaxLen);
    // All empty strings share one block, which nobody may write to.
    char chNone = '\0';
    char *pch = GetData() == CUDataNil ? &chNone : m_pchData;
    const bool bFits = bPlain ? PrintPlain(pch, GetAllocLength(), pszFormat, argListSave)
                              : PrintByRuntime(pch, GetAllocLength(), pszFormat, argListSave);
    CU_ASSERT_TEXT(bFits, "_vstprintf(m_pchData, pszFormat, argListSave) <= GetAllocLength()");
    ReleaseBuffer(-1);
}
