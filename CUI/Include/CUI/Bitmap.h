#pragma once

/// @file
/// Bitmaps that know where they came from.

#include "CU/String.h"
#include "CUI/Platform.h"

/// @name How a bitmap is loaded
/// @{
const WORD CUIBMP_SYSCOLORS = 0x01;  ///< the four button greys become the system's button colours
const WORD CUIBMP_PALETTE = 0x02;    ///< a palette is made of the colour table and kept
const WORD CUIBMP_FILE = 0x04;       ///< the name is a file's path
const WORD CUIBMP_RESOURCE = 0x08;   ///< the name or id is a bitmap resource's
/// @}

/// Where a bitmap came from, and its palette.
struct CUIBitmapSource
{
    CCUString m_sBitmap;   ///< resource name or file path; empty when m_pszID names the resource
    const char *m_pszID;   ///< a numeric id, or the caller's name itself, which is not copied
    HINSTANCE m_hInst;     ///< module of the resource
    WORD m_wFlags;         ///< CUIBMP_...
    HPALETTE m_hPalette;   ///< owned; may be null
    DWORD m_dwColorStamp;  ///< CUIData's colour stamp at the end of the last load
};

/// What all copies of a bitmap share; dies with the last of them, and the GDI objects with it.
struct CUIBitmapData
{
    LONG m_nRefs;   ///< changed by interlocked calls only; -1 in the empty record alone
    int m_nWidth;   ///< pixels
    int m_nHeight;  ///< pixels
    int m_nDepth;   ///< planes times bits per pixel
    CUIBitmapSource *m_pSource;  ///< owned; null for a handle adopted without palette
    HBITMAP m_hBitmap;           ///< owned
};

/// A bitmap with an optional palette, as small as a handle. Copies share one record and count it
/// atomically, so that they may go to other threads; everything else is for the user-interface
/// thread. What cannot be loaded leaves an object that is null and can be used like any other.
/// Loaded bitmaps are device-dependent, of the screen's depth.
///
/// The constructors and Load with an id or a `const char *` name load a resource, whatever the
/// flags; such a name must live as long as the bitmap may be loaded again. Those with a CCUString
/// load what CUIBMP_FILE or CUIBMP_RESOURCE says, the resource where both are given, and nothing
/// without either. Only a CCUString, not a `const char *`, finds a resource that has a numeric id
/// by its decimal text as well: CCUString("200"). Without a module an id is one of the system's
/// bitmaps, and a resource's name the path of a file.
///
/// It converts to its bitmap and to its palette. Where a call takes any GDI object, and in
/// conditions, the compiler cannot choose: SelectObject(hDC, static_cast<HBITMAP>(bitmap)).
class CUI_API CCUIBitmap
{
public:
    /// Empty.
    CCUIBitmap();
    /// Shares the record.
    CCUIBitmap(const CCUIBitmap &bitmapSrc) : m_pchData(bitmapSrc.m_pchData)
    {
        // What the count was is read off the increment: a look at it before costs as much again.
        if (m_pchData == &nilData || InterlockedIncrement(&m_pchData->m_nRefs) <= 1)
            ShareNothing(bitmapSrc);
    }
    /// Load a bitmap, as said above; of an id the low 16 bits count.
    /// @{
    CCUIBitmap(UINT nID, WORD wFlags, HINSTANCE hInst);
    CCUIBitmap(const char *pszName, WORD wFlags, HINSTANCE hInst);
    CCUIBitmap(const CCUString &sName, WORD wFlags, HINSTANCE hInst);
    /// @}
    /// Takes both handles over. A null bitmap leaves the object empty, and the palette the
    /// caller's. No other CCUIBitmap may own them, and the bitmap must not stay selected into a DC:
    /// neither could be deleted with the object.
    CCUIBitmap(HBITMAP hBitmap, HPALETTE hPalette);
    /// Converts a packed DIB, which stays the caller's; see CUIBmpCreateBitmap for its layout. Only
    /// CUIBMP_SYSCOLORS (which rewrites the DIB's colour table) and CUIBMP_PALETTE count, for this
    /// conversion; the bitmap cannot be loaded again.
    CCUIBitmap(BITMAPINFOHEADER *pbih, WORD wFlags);
    ~CCUIBitmap();

    /// Releases what is held and shares the other one's record.
    CCUIBitmap &operator=(const CCUIBitmap &bitmapSrc);
    /// Takes the handle over, on the same terms, without palette. Null empties the object; the
    /// handle that the object has already changes nothing.
    CCUIBitmap &operator=(HBITMAP hBitmap);

    /// Release what is held and load as the constructors do.
    /// @{
    void Load(const CCUString &sName, WORD wFlags, HINSTANCE hInst);
    void Load(UINT nID, WORD wFlags, HINSTANCE hInst);
    void Load(const char *pszName, WORD wFlags, HINSTANCE hInst);
    /// @}
    /// Loads again from where the bitmap came from, with colour pFrom[i] of the colour table
    /// replaced by pTo[i] if CUIBMP_SYSCOLORS is among its flags (a count of 0: by the button
    /// colours of now). Other copies keep their picture. A bitmap made from a DIB, or adopted with
    /// a palette, is null afterwards; one adopted without palette stays as it is.
    void ReLoad(DWORD *pFrom, DWORD *pTo, int nCount);
    /// Releases the record and leaves the object empty.
    void Empty();

    bool IsNull() const;        ///< no bitmap handle
    int Width() const;          ///< pixels; 0 for a bitmap that is null
    int Height() const;         ///< pixels; 0 for a bitmap that is null
    int Depth() const;          ///< bits per pixel, of all planes; 0 for a bitmap that is null
    operator HBITMAP() const;   ///< stays the object's; null for a bitmap that is null
    operator HPALETTE() const;  ///< stays the object's; null when there is none
    /// The record, to be read only; the empty record for an empty object.
    const CUIBitmapData *GetData() const;

private:
    // The record of all empty bitmaps. Never counted, changed or freed.
    static CUIBitmapData nilData;

    void ShareNothing(const CCUIBitmap &bitmapSrc);
    void Adopt(HBITMAP hBitmap, HPALETTE hPalette);
    CCUIBitmap LoadNew(const CCUString &sName, const char *pszID, WORD wFlags, HINSTANCE hInst);

    CUIBitmapData *m_pchData;  // never null
};
