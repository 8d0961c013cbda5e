#pragma once

/// @file
/// Bitmaps that know where they came from.

#include "CU/String.h"
#include "CUI/Platform.h"
#include "CUI/ResourceName.h"

/// @name How a bitmap is loaded
/// @{
const WORD CUIBMP_SYSCOLORS = 0x01;  ///< the four button greys become the system's button colours
const WORD CUIBMP_PALETTE = 0x02;    ///< a palette is made of the colour table and kept
const WORD CUIBMP_FILE = 0x04;       ///< a CCUString is a file's path; of other names it is ignored
const WORD CUIBMP_RESOURCE = 0x08;   ///< a CCUString is a resource's name; others are so anyway
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
/// What the constructors and Load look for follows from the type of the name, then the flags:
///
///     name            flags              with a module             module null
///     id              any                the resource              the system's bitmap (OBM_...)
///     const char *    any                the resource              the file of that path
///     CCUString       CUIBMP_RESOURCE    the resource, else that   the file, else the system's
///                                        of the id it spells       bitmap of the id it spells
///     CCUString       CUIBMP_FILE        the file                  the file
///     CCUString       neither            nothing                   nothing
///
/// So a path in quotes is a file only as CCUString("photo.bmp"), CUIBMP_FILE. A CCUString spells an
/// id in decimal digits, "200", after blanks and a sign if need be, of which the low 16 bits count;
/// "#200" names the resource of an id in both types. With both flags CUIBMP_FILE is ignored. A wide
/// text counts as the CCUString that is made of it, MAKEINTRESOURCE as the id. A `const char *`
/// must live as long as the bitmap may be loaded again.
///
/// Why a bitmap is null the thread's last error tells, right after the constructor, Load or ReLoad:
/// what the system said of a file that it did not open or a resource that it did not find;
/// ERROR_INVALID_DATA, what is there is no bitmap, or not all of one; ERROR_NOT_ENOUGH_MEMORY;
/// ERROR_INVALID_PARAMETER, no flag or source says what to load. After a success it tells nothing.
/// A file that cannot be loaded is traced, too.
///
/// It converts to its bitmap and to its palette; what takes any GDI object, such as SelectObject,
/// and conditions get the bitmap.
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
    template <typename Wide>
    CCUIBitmap(const Wide *pszName, WORD wFlags, HINSTANCE hInst) : CCUIBitmap()
    {
        Load(pszName, wFlags, hInst);
    }
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
    template <typename Wide>
    void Load(const Wide *pszName, WORD wFlags, HINSTANCE hInst)
    {
        if (CUIResourceName::IsID(pszName))
            Load(CUIResourceName::OnlyID(pszName), wFlags, hInst);
        else
            Load(CCUString(pszName), wFlags, hInst);
    }
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
    /// The bitmap, where any GDI object is taken.
    operator HGDIOBJ() const { return m_pchData->m_hBitmap; }
    /// Whether there is a bitmap.
    explicit operator bool() const { return m_pchData->m_hBitmap != nullptr; }
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

/// Does not compile: the object deletes its bitmap by itself. Empty() does it before.
void DeleteObject(const CCUIBitmap &bitmap) = delete;
