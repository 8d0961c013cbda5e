// The string's block: its making, sharing, locking and growing, and what assigns and appends.

#include "CU/String.h"

#include <limits.h>
#include <string.h>

#include "Text/Characters.h"
#include "Text/StringBlock.h"

#define CU_SOURCE "String"

namespace {

struct CNilBlock
{
    CCUStringData data;
    char chNul;
};

CNilBlock g_nilBlock = {{-1, 0, 0}, '\0'};

bool IsNil(const CCUStringData *pData)
{
    return pData == &g_nilBlock.data;
}

bool IsPossible(int nLength)
{
    return nLength > 0 && nLength <= CU_MAX_STRING_LENGTH;
}

}  // namespace

CCUStringData *const CUDataNil = &g_nilBlock.data;
const char *const CUPchNil = &g_nilBlock.chNul;

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

// A locked block's count has gone from -1 to -2, that of a block nobody owned from 0 to -1: not to
// read it before saves a tenth of the time of a copy.
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
        return;  // its length can only be 0, and threads share it
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
        // The other owners may let go of the old block meanwhile: this string does so last.
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
// Inline in the header, where the compiler exports nothing: for programs that were linked before.
__attribute__((used)) static CCUString &(CCUString::*const s_pAssign)(const CCUString &) =
    &CCUString::operator=;
asm(".section .drectve\n.ascii \" -export:\\\"_ZN9CCUStringaSERKS_\\\"\"\n.text");
#endif

// Assignment of other characters than this string's own.
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
    // A text inside this string's own shared block must outlive the other owners of the block.
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

// Has the heap lengthen the block, which it often does on the spot. Only for a block that is this
// string's alone, and a text to append that does not move with it.
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
        // Only now: the text may come from the old block.
        ReleaseOld(pOldData);
        return;
    }
    // It may be left over behind this string's own text.
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
        const int nKept = CUCutLength(nOldLen, GetAllocLength());
        memcpy(m_pchData, pchOld, static_cast<size_t>(nKept));
        SetLength(nKept);
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
        // Past the capacity and its NUL there is nothing to read: one more means too long.
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
    // A block that others share keeps its count: they would free it under each other's hands.
    if (IsLocked())
        GetData()->nRefs = 1;
}
