// Converting between the ANSI code page and UTF-16.

#include <string.h>
#include <wchar.h>

#include "CU/String.h"
#include "Text/Characters.h"

#define CU_SOURCE "String"

namespace {

const wchar_t *Wide(const unsigned short *pszWide)
{
    return reinterpret_cast<const wchar_t *>(pszWide);
}

// Room for the converted text: double-byte code pages need two bytes for a wide character.
int ConvertedLength(const unsigned short *pszWide)
{
    return pszWide ? CUToLength(2LL * static_cast<long long>(wcslen(Wide(pszWide)))) : 0;
}

}  // namespace

int CUWideToMultiByteString(char *mbstr, const unsigned short *wcstr, unsigned int count)
{
    if (count == 0 && mbstr)
        return 0;
    const int result = WideCharToMultiByte(CP_ACP, 0, Wide(wcstr), -1, mbstr,
                                           static_cast<int>(count), nullptr, nullptr);
    CU_ASSERT_TEXT(mbstr == nullptr || result <= static_cast<int>(count),
                   "mbstr == 0 || result <= (int)count");
    if (mbstr && result > 0)
        mbstr[result - 1] = '\0';
    return result;
}

int CUMultiByteToWideString(unsigned short *wcstr, const char *mbstr, unsigned int count)
{
    if (count == 0 && wcstr)
        return 0;
    const int result = MultiByteToWideChar(CP_ACP, 0, mbstr, -1, reinterpret_cast<wchar_t *>(wcstr),
                                           static_cast<int>(count));
    CU_ASSERT_TEXT(wcstr == nullptr || result <= static_cast<int>(count),
                   "wcstr == 0 || result <= (int)count");
    if (wcstr && result > 0)
        memset(wcstr + (result - 1), 0, sizeof *wcstr);
    return result;
}

// Sets the text. The caller has made room for nCapacity characters in a block that is not shared;
// less room means that the length was impossible, which was reported.
void CCUString::ConvertFromWide(const unsigned short *pszWide, int nCapacity)
{
    if (GetAllocLength() < nCapacity)
        return;
    const int nRoom = GetAllocLength() + 1;
    if (CUWideToMultiByteString(m_pchData, pszWide, static_cast<unsigned int>(nRoom)) <= 0) {
        // The room was too small: the system's ANSI code page is UTF-8, which takes up to three
        // bytes (possible from Windows 10 1903 on).
        m_pchData[0] = '\0';
        const int nNeeded = CUWideToMultiByteString(nullptr, pszWide, 0);
        if (nNeeded > nRoom) {
            GetBuffer(nNeeded - 1);
            CUWideToMultiByteString(m_pchData, pszWide, static_cast<unsigned int>(nNeeded));
        }
    }
    ReleaseBuffer(-1);
}

CCUString::CCUString(const unsigned short *pszWide)
{
    const int nCapacity = ConvertedLength(pszWide);
    AllocBuffer(nCapacity);
    if (nCapacity > 0)
        ConvertFromWide(pszWide, nCapacity);
}

CCUString::CCUString(const wchar_t *pszWide)
    : CCUString(reinterpret_cast<const unsigned short *>(pszWide))
{
}

CCUString &CCUString::operator=(const unsigned short *pszWide)
{
    const int nCapacity = ConvertedLength(pszWide);
    if (nCapacity == 0)
        return *this = "";
    // The source may be what ConvertToWide has left in this very string.
    if (PointsInto(pszWide))
        return *this = CCUString(pszWide);
    AllocBeforeWrite(nCapacity);
    ConvertFromWide(pszWide, nCapacity);
    return *this;
}

CCUString &CCUString::operator=(const wchar_t *pszWide)
{
    return *this = reinterpret_cast<const unsigned short *>(pszWide);
}

CCUString CCUString::ConvertToWide() const
{
    CCUString result;
    const int nWide = MultiByteToWideChar(CP_ACP, 0, m_pchData, -1, nullptr, 0);
    if (nWide <= 0)
        return result;
    const int nBytes = CUToLength(2LL * nWide);
    char *pch = result.GetBufferSetLength(nBytes);
    if (result.GetLength() < nBytes)
        return result;
    CUMultiByteToWideString(reinterpret_cast<unsigned short *>(pch), m_pchData,
                            static_cast<unsigned int>(nWide));
    result.ReleaseBuffer(nBytes);
    return result;
}

CCUString CCUString::ConvertToANSI() const
{
    return *this;
}
