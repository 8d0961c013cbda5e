#include "CUI/Bitmap.h"

#include <stdlib.h>

#include "Base/KeepLastError.h"
#include "CU/Assert.h"
#include "CU/Prober.h"
#include "CUI/BmpBlt.h"
#include "CUI/BmpLoad.h"
#include "CUI/Data.h"

#define CU_SOURCE "Bitmap"

namespace {

const char *ToResourceID(UINT nID)
{
    return reinterpret_cast<const char *>(static_cast<ULONG_PTR>(nID & 0xFFFF));
}

CCUProberLong s_bitmaps("\\CUI\\Bitmaps", "Count", 0, "bitmaps that objects share or own");

CUIBitmapData *NewData(HBITMAP hBitmap)
{
    s_bitmaps.Add(1);
    return new CUIBitmapData{1, 0, 0, 0, nullptr, hBitmap};
}

CUIBitmapSource *NewSource(const CCUString &sName, const char *pszID, WORD wFlags, HINSTANCE hInst)
{
    return new CUIBitmapSource{sName, pszID, hInst, wFlags, nullptr, 0};
}

void DestroyData(CUIBitmapData *pData)
{
    s_bitmaps.Add(-1);
    if (pData->m_pSource) {
        CUIBmpDeleteObject(&pData->m_pSource->m_hPalette);
        delete pData->m_pSource;
    }
    CUIBmpDeleteObject(&pData->m_hBitmap);
    delete pData;
}

void RefreshDimensions(CUIBitmapData &data)
{
    data.m_nWidth = data.m_nHeight = data.m_nDepth = 0;
    if (!data.m_hBitmap)
        return;
    // For a DIB section Wine 8 tells the size of a BITMAP here, other systems that of a DIBSECTION,
    // which begins with a BITMAP.
    DIBSECTION section = {};
    const int nSize = GetObjectA(data.m_hBitmap, 0, nullptr);
    if (nSize == sizeof(BITMAP) || nSize == sizeof(DIBSECTION))
        GetObjectA(data.m_hBitmap, nSize, &section);
    data.m_nWidth = section.dsBm.bmWidth;
    data.m_nHeight = section.dsBm.bmHeight;
    data.m_nDepth = section.dsBm.bmPlanes * section.dsBm.bmBitsPixel;
    CU_ASSERT_TEXT(data.m_nWidth > 0 && data.m_nHeight > 0 && data.m_nDepth > 0,
                   "m_nWidth > 0 && m_nHeight > 0 && m_nDepth > 0");
}

// What to try when the first name finds nothing: the id that a text tells in decimal digits; an id
// or name that was given as such once more.
const char *SecondID(const CUIBitmapSource &source)
{
    if (source.m_sBitmap.IsEmpty())
        return source.m_pszID;
    const char *pszName = source.m_sBitmap;
    char *pEnd = nullptr;
    const unsigned long nID = strtoul(pszName, &pEnd, 10);
    return ToResourceID(pEnd == pszName + source.m_sBitmap.GetLength() ? nID : 0);
}

// The colours that a load replaces, as CUIBmpLoad takes them.
struct CSubstitution
{
    DWORD *m_pFrom;
    DWORD *m_pTo;
    int m_nCount;
};

HBITMAP LoadNamed(CUIBitmapSource &source, HINSTANCE hInst, const char *pszName,
                  const CSubstitution &map)
{
    return CUIBmpLoad(
        hInst, pszName, source.m_wFlags & CUIBMP_PALETTE ? &source.m_hPalette : nullptr,
        (source.m_wFlags & CUIBMP_SYSCOLORS) != 0, map.m_pFrom, map.m_pTo, map.m_nCount);
}

HBITMAP LoadResourceBitmap(CUIBitmapSource &source, const CSubstitution &map)
{
    CU_ASSERT_TEXT(source.m_wFlags & CUIBMP_RESOURCE, "m_wFlags & 0x08");
    CU_ASSERT_TEXT(source.m_sBitmap.GetLength() > 0 || source.m_pszID != nullptr,
                   "m_sBitmap.GetLength() > 0 || m_pszID != 0");
    const char *pszName = source.m_pszID;
    if (!source.m_sBitmap.IsEmpty())
        pszName = source.m_sBitmap;
    const HBITMAP hBitmap = LoadNamed(source, source.m_hInst, pszName, map);
    if (hBitmap)
        return hBitmap;
    const DWORD dwError = GetLastError();
    // The palette is made before the bitmap, which failed.
    CUIBmpDeleteObject(&source.m_hPalette);
    const char *pszSecond = SecondID(source);
    const HBITMAP hSecond = LoadNamed(source, source.m_hInst, pszSecond, map);
    // A text that spells no id failed as the name.
    if (!hSecond && !pszSecond)
        SetLastError(dwError);
    return hSecond;
}

HBITMAP LoadFileBitmap(CUIBitmapSource &source, const CSubstitution &map)
{
    CU_ASSERT_TEXT(source.m_wFlags & CUIBMP_FILE, "m_wFlags & 0x04");
    CU_ASSERT_TEXT(source.m_sBitmap.GetLength() > 0, "m_sBitmap.GetLength() > 0");
    return LoadNamed(source, nullptr, source.m_sBitmap, map);
}

// The caller holds the record: code that a trace calls may let go of the bitmap.
void LoadFromSource(CUIBitmapData &data, const CSubstitution &map)
{
    if (!data.m_pSource)
        return;
    CUIBitmapSource &source = *data.m_pSource;
    CUIBmpDeleteObject(&data.m_hBitmap);
    CUIBmpDeleteObject(&source.m_hPalette);
    if (source.m_wFlags & CUIBMP_RESOURCE)
        data.m_hBitmap = LoadResourceBitmap(source, map);
    else if (source.m_wFlags & CUIBMP_FILE)
        data.m_hBitmap = LoadFileBitmap(source, map);
    else
        SetLastError(ERROR_INVALID_PARAMETER);
    const CCUKeepLastError keepLastError;
    RefreshDimensions(data);
    source.m_dwColorStamp = CUIGetWinData()->dwColorStamp;
}

}  // namespace

// Plain data, so that bitmaps may be made before and destroyed after everything else.
CUIBitmapData CCUIBitmap::nilData = {-1, 0, 0, 0, nullptr, nullptr};

CCUIBitmap::CCUIBitmap() : m_pchData(&nilData) {}

CCUIBitmap::CCUIBitmap(UINT nID, WORD wFlags, HINSTANCE hInst) : m_pchData(&nilData)
{
    Load(nID, wFlags, hInst);
}

CCUIBitmap::CCUIBitmap(const char *pszName, WORD wFlags, HINSTANCE hInst) : m_pchData(&nilData)
{
    Load(pszName, wFlags, hInst);
}

CCUIBitmap::CCUIBitmap(const CCUString &sName, WORD wFlags, HINSTANCE hInst) : m_pchData(&nilData)
{
    Load(sName, wFlags, hInst);
}

CCUIBitmap::CCUIBitmap(HBITMAP hBitmap, HPALETTE hPalette) : m_pchData(&nilData)
{
    Adopt(hBitmap, hPalette);
}

CCUIBitmap::CCUIBitmap(BITMAPINFOHEADER *pbih, WORD wFlags) : m_pchData(NewData(nullptr))
{
    CUIBitmapSource *pSource = NewSource(CCUString(), nullptr, 0, nullptr);
    m_pchData->m_pSource = pSource;
    m_pchData->m_hBitmap =
        CUIBmpCreateBitmap(pbih, wFlags & CUIBMP_PALETTE ? &pSource->m_hPalette : nullptr,
                           (wFlags & CUIBMP_SYSCOLORS) != 0, nullptr, nullptr, 0);
    RefreshDimensions(*m_pchData);
}

CCUIBitmap::~CCUIBitmap()
{
    Empty();
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the same object has the same record.
CCUIBitmap &CCUIBitmap::operator=(const CCUIBitmap &bitmapSrc)
{
    if (m_pchData == bitmapSrc.m_pchData)
        return *this;
    CUIBitmapData *pData = bitmapSrc.m_pchData;
    Empty();
    if (pData != &nilData) {
        InterlockedIncrement(&pData->m_nRefs);
        m_pchData = pData;
    }
    return *this;
}

CCUIBitmap &CCUIBitmap::operator=(HBITMAP hBitmap)
{
    // Its own handle would be deleted before it is taken over.
    if (!hBitmap || hBitmap != m_pchData->m_hBitmap)
        Adopt(hBitmap, nullptr);
    return *this;
}

void CCUIBitmap::Load(const CCUString &sName, WORD wFlags, HINSTANCE hInst)
{
    LoadNew(sName, nullptr, wFlags, hInst);
}

void CCUIBitmap::Load(UINT nID, WORD wFlags, HINSTANCE hInst)
{
    LoadNew(CCUString(), ToResourceID(nID), static_cast<WORD>(wFlags | CUIBMP_RESOURCE), hInst);
}

void CCUIBitmap::Load(const char *pszName, WORD wFlags, HINSTANCE hInst)
{
    LoadNew(CCUString(), pszName, static_cast<WORD>(wFlags | CUIBMP_RESOURCE), hInst);
}

void CCUIBitmap::ReLoad(DWORD *pFrom, DWORD *pTo, int nCount)
{
    // What the other copies show stays: this one goes on with a record of its own.
    const CUIBitmapSource *pSource = m_pchData->m_pSource;
    const bool bDetach = pSource && m_pchData->m_nRefs >= 2;
    // Another owner of the record, since code that a trace calls may delete this object.
    const CCUIBitmap hold =
        bDetach ? LoadNew(pSource->m_sBitmap, pSource->m_pszID, pSource->m_wFlags, pSource->m_hInst)
                : *this;
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): the count keeps the record.
    LoadFromSource(*hold.m_pchData, {pFrom, pTo, nCount});
}

void CCUIBitmap::Empty()
{
    if (m_pchData == &nilData)
        return;
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): it lets counts come to any value.
    CU_ASSERT(m_pchData->m_nRefs > 0);
    if (InterlockedDecrement(&m_pchData->m_nRefs) <= 0)
        DestroyData(m_pchData);
    m_pchData = &nilData;
}

bool CCUIBitmap::IsNull() const
{
    return !m_pchData->m_hBitmap;
}

int CCUIBitmap::Width() const
{
    return m_pchData->m_nWidth;
}

int CCUIBitmap::Height() const
{
    return m_pchData->m_nHeight;
}

int CCUIBitmap::Depth() const
{
    return m_pchData->m_nDepth;
}

CCUIBitmap::operator HBITMAP() const
{
    return m_pchData->m_hBitmap;
}

CCUIBitmap::operator HPALETTE() const
{
    return m_pchData->m_pSource ? m_pchData->m_pSource->m_hPalette : nullptr;
}

const CUIBitmapData *CCUIBitmap::GetData() const
{
    return m_pchData;
}

// Ends a copy of an empty bitmap, or of one whose record nobody holds any more: that copy becomes
// empty.
void CCUIBitmap::ShareNothing(const CCUIBitmap &bitmapSrc)
{
    if (m_pchData == &nilData) {
        CU_ASSERT_TEXT(nilData.m_nRefs < 1, "bitmapSrc.m_pchData != &nilData");
        return;
    }
    InterlockedDecrement(&m_pchData->m_nRefs);
    m_pchData = &nilData;
    CU_ASSERT(bitmapSrc.m_pchData == &nilData);
}

void CCUIBitmap::Adopt(HBITMAP hBitmap, HPALETTE hPalette)
{
    Empty();
    if (!hBitmap)
        return;
    m_pchData = NewData(hBitmap);
    if (hPalette) {
        m_pchData->m_pSource = NewSource(CCUString(), nullptr, 0, nullptr);
        m_pchData->m_pSource->m_hPalette = hPalette;
    }
    RefreshDimensions(*m_pchData);
}

// Returns another owner of the record, since code that a trace calls may delete this object.
CCUIBitmap CCUIBitmap::LoadNew(const CCUString &sName, const char *pszID, WORD wFlags,
                               HINSTANCE hInst)
{
    // Made before the old record goes, which the name may be a part of.
    CUIBitmapData *pData = NewData(nullptr);
    pData->m_pSource = NewSource(sName, pszID, wFlags, hInst);
    Empty();
    m_pchData = pData;
    CCUIBitmap hold(*this);
    LoadFromSource(*pData, {nullptr, nullptr, 0});
    return hold;
}
