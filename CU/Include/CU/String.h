#pragma once

/// @file
/// Strings, and their conversion to UTF-16 and back.

#include <stdarg.h>

#include "CU/Assert.h"
#include "CU/Platform.h"

/// What stands in front of a string's characters, in the same heap block.
struct CCUStringData
{
    /// How many strings share the block. 1: its owner may write. -1: locked, never shared.
    volatile LONG nRefs;
    int nDataLength;   ///< characters, the terminating NUL not counted
    int nAllocLength;  ///< capacity in characters, the terminating NUL not counted
};

/// The block of every empty string: locked, length 0, capacity 0, one NUL. Never counted or freed.
extern CU_API CCUStringData *const CUDataNil;
/// Its character. A string whose characters are at this address is empty and owns no block; an
/// empty string may also have a block of its own, as after `= ""` or locked.
extern CU_API const char *const CUPchNil;

/// A string of 8-bit characters in the ANSI code page. Copies share one heap block and write to it
/// only after taking a copy of their own, so that passing and returning by value costs one
/// interlocked increment and no allocation; the empty string never allocates.
///
/// The text ends in a NUL and may hold others: what takes its length from the string (copy, `+`,
/// `Mid`, `Find`, `Encode64`, ...) works on all of it, what takes a `const char *` reads to the
/// first NUL. A null `const char *` reads as "".
///
/// Capacity is exact, without slack: every `+=` that does not fit asks the heap for a block that is
/// longer by just that much. Where the heap has room behind the block this is cheap (10,000
/// characters one by one: some 60 times a growing buffer's time), where it moves the block each
/// time all of the text is copied each time (some 180 times). Build long texts with GetBuffer.
///
/// Blocks of up to 128 bytes cost the thread that started the program next to nothing: it keeps a
/// few of each size for its next strings.
///
/// One object is for one thread at a time; objects that share a block may be copied, changed and
/// destroyed on different threads. Contract breaches are reported with the source "String" and the
/// operation goes on, with a length that is possible: a negative one counts as 0, one past the
/// capacity is cut to it, and one beyond 2147483646 leaves the empty string. So nothing but SetAt
/// ever writes outside the block. Running out of memory is not reported to the caller.
class CU_API CCUString
{
public:
    /// The empty string.
    CCUString() { Init(); }
    /// Shares the source's block; a locked source is copied.
    CCUString(const CCUString &stringSrc) : m_pchData(stringSrc.m_pchData)
    {
        // The common case in place: one instruction on a block that is shared.
        if (GetData()->nRefs > 0 && GetData() != CUDataNil)
            InterlockedIncrement(&GetData()->nRefs);
        else
            CopyOf(stringSrc);
    }
    /// A copy of the text.
    /// @{
    CCUString(const char *psz);
    CCUString(const unsigned char *psz);
    /// @}
    /// Exactly nLength characters, NULs among them too; null is empty whatever the length. An
    /// impossible length is reported and gives the empty string.
    CCUString(const char *pch, int nLength);
    /// nRepeat times ch; empty when nRepeat is below 1.
    CCUString(char ch, int nRepeat);
    /// UTF-16 up to its NUL, converted to the ANSI code page; null reads as empty. Capacity is two
    /// characters for each of the source's, and more only where the code page needs it.
    /// @{
    CCUString(const unsigned short *pszWide);
    CCUString(const wchar_t *pszWide);
    /// @}
    ~CCUString()
    {
        if (GetData() != CUDataNil && LetGo(GetData()))
            FreeData();
    }

    /// Shares the source's block; copies into this string's own block when either is locked.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): one object has the same characters, too.
    CCUString &operator=(const CCUString &stringSrc)
    {
        if (m_pchData != stringSrc.m_pchData)
            AssignOther(stringSrc);
        return *this;
    }
    /// These keep this string's block where it is not shared and large enough.
    /// @{
    CCUString &operator=(const char *psz);
    CCUString &operator=(const unsigned char *psz);
    CCUString &operator=(const unsigned short *pszWide);
    CCUString &operator=(const wchar_t *pszWide);
    /// @}

    /// In characters, without the terminating NUL.
    int GetLength() const { return GetData()->nDataLength; }
    /// Whether there is no character.
    bool IsEmpty() const { return GetData()->nDataLength == 0; }
    /// The characters that fit without another block.
    int GetAllocLength() const { return GetData()->nAllocLength; }
    /// The characters, for where nothing asks for a `const char *`, such as the arguments of a
    /// format and `text.GetString() + n` (`text + n` is ambiguous: it could append). Valid until
    /// the next call that changes or destroys this string.
    /// @{
    const char *GetString() const { return m_pchData; }
    operator const char *() const { return m_pchData; }
    /// @}

    /// The character at an index from 0 to GetLength(), where the terminating NUL is. An index
    /// outside is reported, and read all the same.
    /// @{
    char GetAt(int nIndex) const
    {
        CUAssertHolds(nIndex >= 0, "nIndex >= 0", "String", __LINE__);
        CUAssertHolds(nIndex <= GetData()->nDataLength, "nIndex <= GetData()->nDataLength",
                      "String", __LINE__);
        return m_pchData[nIndex];
    }
    char operator[](int nIndex) const { return GetAt(nIndex); }
    /// @}
    /// Stores a character at an index from 0 to GetLength() - 1. An index outside is reported, and
    /// stored to all the same: on the empty string, into the NUL that all empty strings share.
    void SetAt(int nIndex, char ch);

    /// Append; the text may be this string's own.
    /// @{
    CCUString &operator+=(const char *psz);
    CCUString &operator+=(char ch);
    CCUString &operator+=(const CCUString &string);
    /// @}

    /// @name Comparison
    /// Negative, 0 or positive; both texts are read to their first NUL.
    /// @{
    int Compare(const char *psz) const;          ///< by bytes
    int Compare(const CCUString &string) const;  ///< by bytes
    int CompareNoCase(const char *psz) const;    ///< by bytes, without case (C library's locale)
    int Collate(const char *psz) const;          ///< in the order of the C library's locale
    /// @}

    /// Parts of the text, each a block of its own. What reaches outside the text is cut to it.
    /// @{
    CCUString Mid(int nFirst) const;
    CCUString Mid(int nFirst, int nCount) const;
    CCUString Left(int nCount) const;
    CCUString Right(int nCount) const;
    /// @}
    /// The leading run of characters that are, or are not, in the set.
    /// @{
    CCUString SpanIncluding(const char *set) const;
    CCUString SpanExcluding(const char *set) const;
    /// @}

    /// The index of the first (ReverseFind: the last) match; -1: none. The terminating NUL is never
    /// found; the empty substring is found at 0, a null one nowhere. From nFirst on: what begins
    /// there or behind, the empty substring at once; a negative nFirst is 0.
    /// @{
    int Find(char ch) const;
    int Find(const char *pszSub) const;
    int Find(const char *pszSub, int nFirst) const;
    int ReverseFind(char ch) const;
    int FindOneOf(const char *set) const;
    /// @}

    /// @name Changes in place
    /// @{
    void MakeUpper();    ///< by the system's ANSI rules
    void MakeLower();    ///< by the system's ANSI rules
    void MakeReverse();  ///< the last character becomes the first
    void TrimRight();    ///< white space by the C library's isspace
    void TrimLeft();     ///< white space by the C library's isspace
    /// @}

    /// Replaces the text by a formatted one. Makes room for what the format suggests (each number
    /// 32 characters, each float 512, each `%c` 2, each text its length or width, cut to its
    /// precision) unless this string alone has a block with as much, and never grows: output beyond
    /// the capacity, such as "%10.3s" or "%.600f" in a string without room, is reported and cut.
    ///
    /// Expected are `%c %C %s %S %d %i %o %p %u %x %X %e %f %g %G %n` with flags, width, precision,
    /// `*` and one of h l F N L. Whatever else the system's C library writes, such as `%E` and
    /// `%I64d`, is reported and written all the same, but no room is made for it: make some with
    /// GetBuffer before. Its argument is taken for that of the next conversion when room is
    /// counted. A null text counts as one character, a wide one as one for each wide character.
    /// Arguments may point into this string.
    void Format(const char *pszFormat, ...) CU_PRINTF(2, 3);
    /// Does not compile: an object is among the arguments. Of a CCUString give GetString().
    template <typename... Args, typename = typename CUIfObject<CUHasObject<Args...>::VALUE>::Type>
    void Format(const char *, const Args &...)
    {
        static_assert(!CUHasObject<Args...>::VALUE, "a format takes no object: give GetString()");
    }

    /// The characters for writing, room for at least nMinBufLength and a NUL; the text stays. Call
    /// ReleaseBuffer before anything else: until then the length is stale. A negative length is
    /// reported and asks for no room; one beyond 2147483646 is reported and leaves the empty
    /// string, without room.
    char *GetBuffer(int nMinBufLength);
    /// Sets the length after writing; -1: up to the first NUL. One past the capacity is reported
    /// and cut to it, one below -1 empties the text.
    void ReleaseBuffer(int nNewLength = -1);
    /// GetBuffer and ReleaseBuffer in one: the length is set before the characters are written. A
    /// negative length is reported and empties the text.
    char *GetBufferSetLength(int nNewLength);
    /// Gives back capacity beyond the text; of a shared block that has some, this string takes a
    /// copy.
    void FreeExtra();
    /// Until UnlockBuffer the block belongs to this string alone: copies take blocks of their own,
    /// Empty keeps it, and so does an assignment that fits (one that does not takes a larger block,
    /// locked as well). An empty string without a block has nothing to lock. Returns the
    /// characters, for writing up to GetAllocLength(); unlocking what is not locked is reported and
    /// does nothing else.
    /// @{
    char *LockBuffer();
    void UnlockBuffer();
    /// @}
    /// Takes the text away, and lets go of the block unless it is locked.
    void Empty();

    /// The text up to its first NUL as UTF-16 in the bytes of the result: GetLength() is two for
    /// each wide character, the terminating wide NUL included.
    CCUString ConvertToWide() const;
    /// This string: it is 8-bit already.
    CCUString ConvertToANSI() const;
    /// Base64 of all bytes, with "=" padding, without line breaks.
    CCUString Encode64() const;
    /// The bytes that the characters of the Base64 alphabet stand for; all other characters are
    /// skipped, left-over bits dropped. Never fails.
    CCUString Decode64() const;

protected:
    /// What stands in front of the characters.
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): it lets counts come to any value.
    CCUStringData *GetData() const { return reinterpret_cast<CCUStringData *>(m_pchData) - 1; }
    /// Points at the empty block, and lets go of nothing.
    void Init() { m_pchData = const_cast<char *>(CUPchNil); }
    /// 0 for null.
    static int SafeStrlen(const char *psz);

    /// Points at a new block of exactly nLen characters, of which only the NUL is written; the old
    /// one stays with the caller. An impossible length is reported and gives the empty string.
    void AllocBuffer(int nLen);
    /// Lets go of the block and points at the empty one.
    void Release();
    /// Lets go of a block that this string does not point at any more.
    static void Release(CCUStringData *pData);
    /// Makes the block this string's own: with its text, or with room for nLen and any text.
    /// @{
    void CopyBeforeWrite();
    void AllocBeforeWrite(int nLen);
    /// @}
    /// A block of nCopyLen + nExtraLen in dest, with nCopyLen characters from nCopyIndex.
    void AllocCopy(CCUString &dest, int nCopyLen, int nCopyIndex, int nExtraLen) const;
    /// Sets the text, which may be a part of this string's own.
    void AssignCopy(int nSrcLen, const char *src);
    /// Points at a new block with both texts; the old one stays with the caller.
    void ConcatCopy(int nSrc1Len, const char *src1, int nSrc2Len, const char *src2);
    /// Appends, in a new block only where the text does not fit or the old one is shared.
    void ConcatInPlace(int nSrcLen, const char *src);
    /// Format with its arguments as a list.
    void FormatV(const char *pszFormat, va_list args) CU_PRINTF(2, 0);

    char *m_pchData;  ///< the first character; never null

private:
    friend CU_API CCUString operator+(const CCUString &string1, const CCUString &string2);
    friend CU_API CCUString operator+(const CCUString &string, const char *psz);
    friend CU_API CCUString operator+(const char *psz, const CCUString &string);
    friend CU_API CCUString operator+(const CCUString &string, char ch);
    friend CU_API CCUString operator+(char ch, const CCUString &string);

    // One owner of the block less; whether that was its last one.
    static bool LetGo(CCUStringData *pData) { return InterlockedDecrement(&pData->nRefs) <= 0; }
    void FreeData();
    void CopyOf(const CCUString &stringSrc);
    void AssignOther(const CCUString &stringSrc);
    bool IsLocked() const { return GetData()->nRefs < 0 && GetData() != CUDataNil; }
    bool PointsInto(const void *p) const;
    void ReleaseOld(CCUStringData *pOldData);
    bool GrowAlone(int nLength, const char *src);
    void SetLength(int nLength);
    void ConvertFromWide(const unsigned short *pszWide, int nCapacity);
    void PrintV(int nMaxLen, bool bPlain, const char *pszFormat, va_list argListSave)
        CU_PRINTF(4, 0);
};

/// Both texts, in a block of exactly their length.
/// @{
CU_API CCUString operator+(const CCUString &string1, const CCUString &string2);
CU_API CCUString operator+(const CCUString &string, const char *psz);
CU_API CCUString operator+(const char *psz, const CCUString &string);
CU_API CCUString operator+(const CCUString &string, char ch);
CU_API CCUString operator+(char ch, const CCUString &string);
/// @}

/// By bytes up to the first NUL, as CCUString::Compare.
/// @{
CU_API bool operator==(const CCUString &s1, const CCUString &s2);
CU_API bool operator==(const CCUString &s1, const char *s2);
CU_API bool operator==(const char *s1, const CCUString &s2);
CU_API bool operator!=(const CCUString &s1, const CCUString &s2);
CU_API bool operator!=(const CCUString &s1, const char *s2);
CU_API bool operator!=(const char *s1, const CCUString &s2);
CU_API bool operator<(const CCUString &s1, const CCUString &s2);
CU_API bool operator<(const CCUString &s1, const char *s2);
CU_API bool operator<(const char *s1, const CCUString &s2);
CU_API bool operator>(const CCUString &s1, const CCUString &s2);
CU_API bool operator>(const CCUString &s1, const char *s2);
CU_API bool operator>(const char *s1, const CCUString &s2);
CU_API bool operator<=(const CCUString &s1, const CCUString &s2);
CU_API bool operator<=(const CCUString &s1, const char *s2);
CU_API bool operator<=(const char *s1, const CCUString &s2);
CU_API bool operator>=(const CCUString &s1, const CCUString &s2);
CU_API bool operator>=(const CCUString &s1, const char *s2);
CU_API bool operator>=(const char *s1, const CCUString &s2);
/// @}

/// ANSI code page from NUL-terminated UTF-16. `count` is the room at mbstr in bytes, the NUL
/// included. Returns the bytes written with the NUL, or 0: no room (what is there already has no
/// NUL), wcstr null, or a count from 2^31 on, which is reported. A null mbstr with a count of 0
/// asks for the bytes needed.
CU_API int CUWideToMultiByteString(char *mbstr, const unsigned short *wcstr, unsigned int count);
/// The other way; room and result are in 16-bit characters.
CU_API int CUMultiByteToWideString(unsigned short *wcstr, const char *mbstr, unsigned int count);

/// The same for callers that hold another 16-bit character type, such as wchar_t.
/// @{
template <typename Wide>
inline int CUWideToMultiByteString(char *mbstr, const Wide *wcstr, unsigned int count)
{
    static_assert(sizeof(Wide) == sizeof(unsigned short), "UTF-16 expected");
    return CUWideToMultiByteString(mbstr, reinterpret_cast<const unsigned short *>(wcstr), count);
}
template <typename Wide>
inline int CUMultiByteToWideString(Wide *wcstr, const char *mbstr, unsigned int count)
{
    static_assert(sizeof(Wide) == sizeof(unsigned short), "UTF-16 expected");
    return CUMultiByteToWideString(reinterpret_cast<unsigned short *>(wcstr), mbstr, count);
}
/// @}
