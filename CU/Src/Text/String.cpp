// The owning of a block: making, sharing, locking and freeing it, assigning, appending, writing
// into it. What is done with the text is in StringText.cpp, where blocks come from in
// StringBlock.cpp.

#include "CU/String.h"

#include <limits.h>
#include <string.h>

#include "Base/Compiler.h"
#include "Base/Sections.h"
#include "Text/Characters.h"
#include "Text/StringBlock.h"

#define CU_SOURCE "String"

namespace {

struct CNilBlock
{
    CCUStringData data;
    char chNul;
};

CNilBlock s_nilBlock = {{-1, 0, 0}, '\0'};

bool IsNil(const CCUStringData *pData)
{
    return pData == &s_nilBlock.data;
}

bool IsPossible(int nLength)
{
    return nLength > 0 && nLength <= CU_MAX_STRING_LENGTH;
}

}  // namespace

CCUStringData *const CUDataNil = &s_nilBlock.data;
const char *const CUPchNil = &s_nilBlock.chNul;

// Making and letting go of blocks.

int CCUString::SafeStrlen(const char *psz)
{
    return psz ? static_cast<int>(strlen(psz)) : 0;
}

void CCUString::AllocBuffer(int nLen)
{
    if (IsPossible(nLen)) {
        m_pchData = reinterpret_cast<char *>(CUNewStringBlock(nLen) + 1);
        return;
    }
    CU_ASSERT(nLen >= 0);
    CU_ASSERT_TEXT(nLen <= CU_MAX_STRING_LENGTH, "nLen <= 2147483647-1");
    Init();
}

// After LetGo has counted down. The count was 1, or -1 for a locked block. It must not have been 0:
// that shows as -1 here, since to look before counting down costs a tenth of the time of a copy.
void CCUString::FreeData()
{
    CU_ASSERT_TEXT(GetData()->nRefs != -1, "GetData()->nRefs != 0");
    CUFreeStringBlock(GetData());
}

void CCUString::Release()
{
    if (!IsNil(GetData()) && LetGo(GetData()))
        FreeData();
    Init();
}

void CCUString::Release(CCUStringData *pData)
{
    if (IsNil(pData) || !LetGo(pData))
        return;
    CU_ASSERT_TEXT(pData->nRefs != -1, "pData->nRefs != 0");
    CUFreeStringBlock(pData);
}

// Lets go of the block that this string has just copied its text from. Where it was locked, the
// new one is: the lock lasts until UnlockBuffer.
void CCUString::ReleaseOld(CCUStringData *pOldData)
{
    if (pOldData->nRefs < 0 && !IsNil(pOldData) && !IsNil(GetData()))
        GetData()->nRefs = -1;
    Release(pOldData);
}

void CCUString::SetLength(int nLength)
{
    if (IsNil(GetData()))
        return;  // its length is 0 already, and not to be written: all threads share it
    GetData()->nDataLength = nLength;
    m_pchData[nLength] = '\0';
}

bool CCUString::PointsInto(const void *p) const
{
    const char *pch = static_cast<const char *>(p);
    return !IsNil(GetData()) && pch >= m_pchData && pch <= m_pchData + GetAllocLength();
}

void CCUString::CopyBeforeWrite()
{
    if (GetData()->nRefs > 1) {
        // Let go of only after the copying: the other owners may do so at any time.
        CCUStringData *pOldData = GetData();
        const char *pchOld = m_pchData;
        AllocBuffer(pOldData->nDataLength);
        memcpy(m_pchData, pchOld, static_cast<size_t>(GetLength()));
        Release(pOldData);
    }
    CU_ASSERT(GetData()->nRefs <= 1);
}

void CCUString::AllocBeforeWrite(int nLen)
{
    if (GetData()->nRefs > 1 || nLen > GetData()->nAllocLength) {
        const bool bLocked = IsLocked();
        Release();
        AllocBuffer(nLen);
        if (bLocked && !IsNil(GetData()))
            GetData()->nRefs = -1;
    }
    CU_ASSERT(GetData()->nRefs <= 1);
}

void CCUString::AllocCopy(CCUString &dest, int nCopyLen, int nCopyIndex, int nExtraLen) const
{
    const int nNewLen = CUAddLengths(nCopyLen, nExtraLen);
    if (nNewLen == 0) {
        dest.Init();
        return;
    }
    dest.AllocBuffer(nNewLen);
    if (dest.GetLength() == nNewLen)
        memcpy(dest.m_pchData, m_pchData + nCopyIndex, static_cast<size_t>(nCopyLen));
}

// Construction and assignment.

// The copy constructor's rarer cases.
void CCUString::CopyOf(const CCUString &stringSrc)
{
    CU_ASSERT(stringSrc.GetData()->nRefs != 0);
    if (stringSrc.GetData()->nRefs >= 0) {
        CU_ASSERT(stringSrc.GetData() != CUDataNil);
        m_pchData = stringSrc.m_pchData;
        InterlockedIncrement(&GetData()->nRefs);
        return;
    }
    Init();
    if (!IsNil(stringSrc.GetData()))
        AssignCopy(stringSrc.GetLength(), stringSrc.m_pchData);
}

CCUString::CCUString(const char *psz) : CCUString(psz, SafeStrlen(psz)) {}

CCUString::CCUString(const unsigned char *psz) : CCUString(reinterpret_cast<const char *>(psz)) {}

CCUString::CCUString(const char *pch, int nLength)
{
    AllocBuffer(pch ? nLength : 0);
    memcpy(m_pchData, pch ? pch : "", static_cast<size_t>(GetLength()));
}

CCUString::CCUString(char ch, int nRepeat)
{
    AllocBuffer(nRepeat < 1 ? 0 : nRepeat);
    memset(m_pchData, ch, static_cast<size_t>(GetLength()));
}

#if defined(CU_EXPORTS)
// operator= is inline in the header, and the compiler (GCC 12, clang 14) exports no such function.
// Programs that were linked with an earlier version, where it was not inline, import it: so it is
// compiled here once more, and exported by hand.
CU_USED static CCUString &(CCUString::*const ASSIGN)(const CCUString &) = &CCUString::operator=;
CU_EXPORT_BY_HAND("_ZN9CCUStringaSERKS_")
#endif

// Assignment of a string that does not share this one's block.
void CCUString::AssignOther(const CCUString &stringSrc)
{
    CU_ASSERT(stringSrc.GetData()->nRefs != 0);
    if (IsLocked() || stringSrc.GetData()->nRefs < 0) {
        AssignCopy(stringSrc.GetLength(), stringSrc.m_pchData);
        return;
    }
    CU_ASSERT(stringSrc.GetData() != CUDataNil);
    Release();
    m_pchData = stringSrc.m_pchData;
    InterlockedIncrement(&GetData()->nRefs);
}

CCUString &CCUString::operator=(const char *psz)
{
    AssignCopy(SafeStrlen(psz), psz);
    return *this;
}

CCUString &CCUString::operator=(const unsigned char *psz)
{
    return *this = reinterpret_cast<const char *>(psz);
}

void CCUString::AssignCopy(int nSrcLen, const char *src)
{
    // AllocBeforeWrite lets go of a shared block. Where src lies in it, `keep` holds it meanwhile.
    CCUString keep;
    if (GetData()->nRefs > 1 && PointsInto(src))
        keep = *this;
    AllocBeforeWrite(nSrcLen);
    const int nLength = CUCutLength(nSrcLen, GetAllocLength());
    if (nLength > 0)
        memmove(m_pchData, src, static_cast<size_t>(nLength));
    SetLength(nLength);
}

void CCUString::Empty()
{
    if (GetData()->nDataLength == 0)
        return;
    if (GetData()->nRefs >= 0)
        Release();
    else
        *this = CUPchNil;
    CU_ASSERT(GetData()->nDataLength == 0);
    CU_ASSERT(GetData()->nRefs < 0 || GetData()->nAllocLength == 0);
}

void CCUString::SetAt(int nIndex, char ch)
{
    CU_ASSERT(nIndex >= 0);
    CU_ASSERT(nIndex < GetData()->nDataLength);
    CopyBeforeWrite();
    m_pchData[nIndex] = ch;
}

// Concatenation.

void CCUString::ConcatCopy(int nSrc1Len, const char *src1, int nSrc2Len, const char *src2)
{
    const int nNewLen = CUAddLengths(nSrc1Len, nSrc2Len);
    if (nNewLen == 0)
        return;
    AllocBuffer(nNewLen);
    if (GetLength() != nNewLen)
        return;
    memcpy(m_pchData, src1, static_cast<size_t>(nSrc1Len));
    if (nSrc2Len == 1)
        m_pchData[nSrc1Len] = *src2;
    else
        memcpy(m_pchData + nSrc1Len, src2, static_cast<size_t>(nSrc2Len));
}

// Has the heap make the block longer, which it often does without moving it. Not for a shared
// block, nor for one in which src lies: src would be lost when the block moves.
bool CCUString::GrowAlone(int nLength, const char *src)
{
    const bool bOwn = GetData()->nRefs == 1 || IsLocked();
    if (!bOwn || !IsPossible(nLength) || PointsInto(src))
        return false;
    CCUStringData *pGrown = CUGrowStringBlock(GetData(), nLength);
    if (!pGrown)
        return false;
    m_pchData = reinterpret_cast<char *>(pGrown + 1);
    return true;
}

void CCUString::ConcatInPlace(int nSrcLen, const char *src)
{
    if (nSrcLen <= 0)
        return;
    CCUStringData *pOldData = GetData();
    const int nOldLen = pOldData->nDataLength;
    const bool bFits = pOldData->nRefs <= 1 && nSrcLen <= pOldData->nAllocLength - nOldLen;
    if (!bFits && !GrowAlone(CUAddLengths(nOldLen, nSrcLen), src)) {
        ConcatCopy(nOldLen, m_pchData, nSrcLen, src);
        CU_ASSERT(pOldData != 0);
        // Only now: src may lie in the old block.
        ReleaseOld(pOldData);
        return;
    }
    // memmove: src may lie in this block, behind the text.
    memmove(m_pchData + nOldLen, src, static_cast<size_t>(nSrcLen));
    SetLength(nOldLen + nSrcLen);
    CU_ASSERT(GetData()->nDataLength <= GetData()->nAllocLength);
}

CCUString &CCUString::operator+=(const char *psz)
{
    ConcatInPlace(SafeStrlen(psz), psz);
    return *this;
}

CCUString &CCUString::operator+=(char ch)
{
    ConcatInPlace(1, &ch);
    return *this;
}

CCUString &CCUString::operator+=(const CCUString &string)
{
    ConcatInPlace(string.GetLength(), string.m_pchData);
    return *this;
}

CCUString operator+(const CCUString &string1, const CCUString &string2)
{
    CCUString result;
    result.ConcatCopy(string1.GetLength(), string1, string2.GetLength(), string2);
    return result;
}

CCUString operator+(const CCUString &string, const char *psz)
{
    CCUString result;
    result.ConcatCopy(string.GetLength(), string, CCUString::SafeStrlen(psz), psz ? psz : "");
    return result;
}

CCUString operator+(const char *psz, const CCUString &string)
{
    CCUString result;
    result.ConcatCopy(CCUString::SafeStrlen(psz), psz ? psz : "", string.GetLength(), string);
    return result;
}

CCUString operator+(const CCUString &string, char ch)
{
    CCUString result;
    result.ConcatCopy(string.GetLength(), string, 1, &ch);
    return result;
}

CCUString operator+(char ch, const CCUString &string)
{
    CCUString result;
    result.ConcatCopy(1, &ch, string.GetLength(), string);
    return result;
}

// Buffer access.

char *CCUString::GetBuffer(int nMinBufLength)
{
    CU_ASSERT(nMinBufLength >= 0);
    CCUStringData *pOldData = GetData();
    if (pOldData->nRefs > 1 || nMinBufLength > pOldData->nAllocLength) {
        const char *pchOld = m_pchData;
        const int nOldLen = pOldData->nDataLength;
        AllocBuffer(nMinBufLength > nOldLen ? nMinBufLength : nOldLen);
        const int nCopied = CUCutLength(nOldLen, GetAllocLength());
        memcpy(m_pchData, pchOld, static_cast<size_t>(nCopied));
        SetLength(nCopied);
        ReleaseOld(pOldData);
    }
    CU_ASSERT(GetData()->nRefs <= 1);
    CU_ASSERT(m_pchData != 0);
    return m_pchData;
}

void CCUString::ReleaseBuffer(int nNewLength)
{
    CopyBeforeWrite();
    if (nNewLength == -1) {
        // Where the block has no NUL, the text counts as one character longer than the capacity.
        const int nRoom = GetAllocLength() + 1;
        const char *pNul = CUFindByte(m_pchData, m_pchData + nRoom, '\0');
        nNewLength = pNul ? static_cast<int>(pNul - m_pchData) : nRoom;
    }
    CU_ASSERT(nNewLength <= GetData()->nAllocLength);
    SetLength(CUCutLength(nNewLength, GetAllocLength()));
}

char *CCUString::GetBufferSetLength(int nNewLength)
{
    CU_ASSERT(nNewLength >= 0);
    GetBuffer(nNewLength);
    SetLength(CUCutLength(nNewLength, GetAllocLength()));
    return m_pchData;
}

void CCUString::FreeExtra()
{
    CU_ASSERT(GetData()->nDataLength <= GetData()->nAllocLength);
    if (GetData()->nDataLength != GetData()->nAllocLength) {
        CCUStringData *pOldData = GetData();
        const char *pchOld = m_pchData;
        AllocBuffer(pOldData->nDataLength);
        memcpy(m_pchData, pchOld, static_cast<size_t>(GetLength()));
        CU_ASSERT(m_pchData[GetData()->nDataLength] == '\0');
        ReleaseOld(pOldData);
    }
    CU_ASSERT(GetData() != 0);
}

char *CCUString::LockBuffer()
{
    char *pch = GetBuffer(0);
    if (!IsNil(GetData()))
        GetData()->nRefs = -1;
    return pch;
}

void CCUString::UnlockBuffer()
{
    CU_ASSERT(GetData()->nRefs == -1);
    // Not for a block that was not locked: with a count of 1 a shared one would be freed too early.
    if (IsLocked())
        GetData()->nRefs = 1;
}
