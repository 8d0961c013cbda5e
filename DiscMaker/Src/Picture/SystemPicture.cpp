#include "Picture/SystemPicture.h"

#include <objbase.h>
#include <ocidl.h>
#include <olectl.h>
#include <string.h>

#include "Base/GdiGuards.h"
#include "Base/SystemLibrary.h"

namespace {

// Both libraries are loaded at the first picture and stay. Where a function is missing bFound
// becomes false.
template <typename Function>
void Find(HMODULE hLibrary, const char *pszName, Function *&function, bool &bFound)
{
    function = CUFindFunction<Function>(hLibrary, pszName);
    bFound = bFound && function;
}

struct COle
{
    HRESULT(WINAPI *createStream)(HGLOBAL, BOOL, IStream **);
    HRESULT(WINAPI *loadPicture)(IStream *, LONG, BOOL, REFIID, void **);
    bool m_bThere = true;

    COle()
    {
        Find(CULoadSystemLibrary("ole32.dll"), "CreateStreamOnHGlobal", createStream, m_bThere);
        Find(CULoadSystemLibrary("oleaut32.dll"), "OleLoadPicture", loadPicture, m_bThere);
    }
};

const COle &Ole()
{
    static const COle s_ole;
    return s_ole;
}

// An interface, given back at the end.
template <typename T>
class CInterface
{
public:
    CInterface() : m_p(nullptr) {}
    ~CInterface()
    {
        if (m_p)
            m_p->Release();
    }
    CInterface(const CInterface &) = delete;
    CInterface &operator=(const CInterface &) = delete;
    T **Receive() { return &m_p; }
    T *operator->() const { return m_p; }
    operator T *() const { return m_p; }

private:
    T *m_p;
};

// The stream owns the copy.
bool MakeStream(const CBytes &file, CInterface<IStream> &stream)
{
    if (!Ole().m_bThere || file.empty())
        return false;
    const HGLOBAL hGlobal = GlobalAlloc(GMEM_MOVEABLE, file.size());
    if (!hGlobal)
        return false;
    memcpy(GlobalLock(hGlobal), file.data(), file.size());
    GlobalUnlock(hGlobal);
    if (SUCCEEDED(Ole().createStream(hGlobal, TRUE, stream.Receive())))
        return true;
    GlobalFree(hGlobal);
    return false;
}

// --- GDI+, by its flat functions: the headers want C++ classes that Windows 98 does not have ---

const int GDIPLUS_ARGB = 0x26200A;
const UINT GDIPLUS_READ = 1;

struct CGdiPlusStartup
{
    UINT32 m_nVersion;
    void *m_pCallback;
    BOOL m_bNoThread;
    BOOL m_bNoCodecs;
};

struct CGdiPlusBits
{
    UINT m_cx;
    UINT m_cy;
    INT m_nStride;
    INT m_nFormat;
    void *m_pBits;
    UINT_PTR m_nReserved;
};

struct CGdiPlus
{
    int(WINAPI *startup)(ULONG_PTR *, const CGdiPlusStartup *, void *);
    int(WINAPI *fromStream)(IStream *, void **);
    int(WINAPI *width)(void *, UINT *);
    int(WINAPI *height)(void *, UINT *);
    int(WINAPI *lockBits)(void *, const RECT *, UINT, INT, CGdiPlusBits *);
    int(WINAPI *unlockBits)(void *, CGdiPlusBits *);
    int(WINAPI *dispose)(void *);
    bool m_bThere = true;

    CGdiPlus()
    {
        const HMODULE hLibrary = CULoadSystemLibrary("gdiplus.dll");
        Find(hLibrary, "GdiplusStartup", startup, m_bThere);
        Find(hLibrary, "GdipCreateBitmapFromStream", fromStream, m_bThere);
        Find(hLibrary, "GdipGetImageWidth", width, m_bThere);
        Find(hLibrary, "GdipGetImageHeight", height, m_bThere);
        Find(hLibrary, "GdipBitmapLockBits", lockBits, m_bThere);
        Find(hLibrary, "GdipBitmapUnlockBits", unlockBits, m_bThere);
        Find(hLibrary, "GdipDisposeImage", dispose, m_bThere);
        const CGdiPlusStartup start = {1, nullptr, FALSE, FALSE};
        ULONG_PTR nToken;
        m_bThere = m_bThere && startup(&nToken, &start, nullptr) == 0;
    }
};

const CGdiPlus &GdiPlus()
{
    static const CGdiPlus s_gdiPlus;
    return s_gdiPlus;
}

bool CopyBits(const CGdiPlus &gdi, void *pBitmap, CPixels &pixels)
{
    UINT cx = 0;
    UINT cy = 0;
    if (gdi.width(pBitmap, &cx) != 0 || gdi.height(pBitmap, &cy) != 0 || !pixels.Create(cx, cy))
        return false;
    CGdiPlusBits bits = {};
    // Where it is and how large it is; that is no RECT with a right and a bottom.
    const RECT whole = {0, 0, pixels.m_cx, pixels.m_cy};
    if (gdi.lockBits(pBitmap, &whole, GDIPLUS_READ, GDIPLUS_ARGB, &bits) != 0)
        return false;
    for (int y = 0; y < pixels.m_cy; ++y)
        memcpy(pixels.Row(y), static_cast<const BYTE *>(bits.m_pBits) + y * bits.m_nStride,
               cx * sizeof(DWORD));
    gdi.unlockBits(pBitmap, &bits);
    return true;
}

bool ReadWithGdiPlus(const CBytes &file, CPixels &pixels)
{
    const CGdiPlus &gdi = GdiPlus();
    CInterface<IStream> stream;
    void *pBitmap = nullptr;
    if (!gdi.m_bThere || !MakeStream(file, stream) || gdi.fromStream(stream, &pBitmap) != 0)
        return false;
    const bool bCopied = CopyBits(gdi, pBitmap, pixels);
    gdi.dispose(pBitmap);
    return bCopied;
}

// --- OLE ---

const IID PICTURE_IID = {
    0x7BF80980, 0xBF32, 0x101A, {0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB}};

bool CopyBitmap(HBITMAP hBitmap, CPixels &pixels)
{
    BITMAP bitmap = {};
    if (!GetObjectA(hBitmap, sizeof bitmap, &bitmap) ||
        !pixels.Create(bitmap.bmWidth, bitmap.bmHeight))
        return false;
    BITMAPINFO info = pixels.Info();
    const CCUIWindowDC hScreen(nullptr);
    if (!GetDIBits(hScreen, hBitmap, 0, static_cast<UINT>(pixels.m_cy), pixels.m_pixels.data(),
                   &info, DIB_RGB_COLORS))
        return false;
    for (DWORD &nPixel : pixels.m_pixels)
        nPixel |= OPAQUE_PIXEL;
    return true;
}

bool ReadWithOle(const CBytes &file, CPixels &pixels)
{
    CInterface<IStream> stream;
    CInterface<IPicture> picture;
    OLE_HANDLE nHandle = 0;
    short nType = PICTYPE_UNINITIALIZED;
    // Its handle stays the picture's.
    return MakeStream(file, stream) &&
           SUCCEEDED(Ole().loadPicture(stream, static_cast<LONG>(file.size()), FALSE, PICTURE_IID,
                                       reinterpret_cast<void **>(picture.Receive()))) &&
           SUCCEEDED(picture->get_Type(&nType)) && nType == PICTYPE_BITMAP &&
           SUCCEEDED(picture->get_Handle(&nHandle)) &&
           CopyBitmap(reinterpret_cast<HBITMAP>(static_cast<ULONG_PTR>(nHandle)), pixels);
}

}  // namespace

bool ReadWithSystem(const CBytes &file, CPixels &pixels)
{
    return ReadWithGdiPlus(file, pixels) || ReadWithOle(file, pixels);
}
