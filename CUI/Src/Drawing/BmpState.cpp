#include "CUI/BmpState.h"

#include "Base/GdiGuards.h"
#include "Base/Lifetime.h"
#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "Bitmap/Dib.h"
#include "Drawing/RasterOps.h"

namespace {

// What is kept from one drawing to the next, released at exit; who draws still later makes it
// again.
class CStateCache : private CCULastCall
{
public:
    constexpr CStateCache() : CCULastCall() {}
    CStateCache(const CStateCache &) = delete;
    CStateCache &operator=(const CStateCache &) = delete;

    void Prepare(DWORD crFace, DWORD crHilite);
    void Release();
    HDC &BitmapDC() { return m_hBitmapDC; }
    HDC &MaskDC() { return m_hMaskDC; }
    HBRUSH Pattern() const { return m_hbrPattern; }

private:
    HDC m_hBitmapDC = nullptr;
    HDC m_hMaskDC = nullptr;
    DWORD m_crFace = 0;
    DWORD m_crHilite = 0;
    HBRUSH m_hbrPattern = nullptr;
};

// A checkerboard of 8 by 8, face and highlight colour.
HBRUSH MakePattern(DWORD crFace, DWORD crHilite)
{
    struct
    {
        BITMAPINFOHEADER header;
        RGBQUAD colors[2];
    } info = {{sizeof(BITMAPINFOHEADER), 8, 8, 1, 1, BI_RGB, 0, 0, 0, 0, 0},
              {CUIToQuad(crFace), CUIToQuad(crHilite)}};
    DWORD bits[8];  // the lowest row first, each aligned to a double word
    for (int nRow = 0; nRow < 8; ++nRow)
        bits[nRow] = nRow % 2 == 0 ? 0xAA : 0x55;
    const CCUIWindowDC screen(nullptr);
    const CCUIOwned<HBITMAP> bitmap(CreateDIBitmap(screen, &info.header, CBM_INIT, bits,
                                                   reinterpret_cast<BITMAPINFO *>(&info),
                                                   DIB_RGB_COLORS));
    return CreatePatternBrush(bitmap);
}

void CStateCache::Release()
{
    DeleteDC(m_hBitmapDC);
    DeleteDC(m_hMaskDC);
    DeleteObject(m_hbrPattern);
    m_hBitmapDC = m_hMaskDC = nullptr;
    m_hbrPattern = nullptr;
}

void CStateCache::Prepare(DWORD crFace, DWORD crHilite)
{
    if (!m_hBitmapDC)
        m_hBitmapDC = CreateCompatibleDC(nullptr);
    if (!m_hMaskDC)
        m_hMaskDC = CreateCompatibleDC(nullptr);
    if (m_hbrPattern && crFace == m_crFace && crHilite == m_crHilite)
        return;
    m_crFace = crFace;
    m_crHilite = crHilite;
    DeleteObject(m_hbrPattern);
    m_hbrPattern = MakePattern(crFace, crHilite);
    CUAtLast(*this, [](CCULastCall &call) { static_cast<CStateCache &>(call).Release(); });
}

CStateCache s_cache;

// One drawing. Meanwhile the image is selected into the cache's bitmap DC, and a monochrome bitmap
// of the area's size into its mask DC.
class CStateDrawing
{
public:
    CStateDrawing(HDC hDC, const CUIBmpStateRects &rects);
    void DrawImage() const;
    void DrawEmbossed(DWORD crFace, DWORD crHilite, DWORD crShadow) const;
    void DrawOverlay(DWORD crFace, DWORD crHilite, bool bShift) const;

private:
    void MakeMask(DWORD crFace, DWORD crHilite, bool bShift) const;
    void BlitImage(HDC hDC, int x, int y, DWORD dwRop) const;
    void FillWhereImage(DWORD cr, int nOffset) const;
    void UseMonoColors() const;

    HDC m_hDC;
    CUIBmpStateRects m_rects;
    int m_cx, m_cy;  // of the area
    int m_x, m_y;    // of the image in it
};

CStateDrawing::CStateDrawing(HDC hDC, const CUIBmpStateRects &rects)
    : m_hDC(hDC), m_rects(rects), m_cx(CUIWidth(rects.rcArea)), m_cy(CUIHeight(rects.rcArea))
{
    // An image that cannot be centred exactly stands further left, but never further up: the 1 is
    // subtracted from the free width only.
    const int cxFree = CUWrapSub(CUIWidth(rects.rcCenter), CUIWidth(rects.rcSource));
    const int cyFree = CUWrapSub(CUIHeight(rects.rcCenter), CUIHeight(rects.rcSource));
    m_x = CUWrapAdd(CUWrapAdd(cxFree, -1) / 2, CUWrapSub(rects.rcCenter.left, rects.rcArea.left));
    m_y = CUWrapAdd(cyFree / 2, CUWrapSub(rects.rcCenter.top, rects.rcArea.top));
}

void CStateDrawing::BlitImage(HDC hDC, int x, int y, DWORD dwRop) const
{
    const RECT &source = m_rects.rcSource;
    BitBlt(hDC, x, y, CUIWidth(source), CUIHeight(source), s_cache.BitmapDC(), source.left,
           source.top, dwRop);
}

void CStateDrawing::DrawImage() const
{
    BlitImage(m_hDC, CUWrapAdd(m_rects.rcArea.left, m_x), CUWrapAdd(m_rects.rcArea.top, m_y),
              SRCCOPY);
}

// Makes the mask 1 where nothing of the image is to be seen: around it and where it has one of its
// background colours. With bShift it is 0 as well where the embossed look has its second copy, one
// pixel further right and down.
void CStateDrawing::MakeMask(DWORD crFace, DWORD crHilite, bool bShift) const
{
    const HDC hMaskDC = s_cache.MaskDC();
    PatBlt(hMaskDC, 0, 0, m_cx, m_cy, WHITENESS);
    const CCUIBkColor face(s_cache.BitmapDC(), crFace);
    BlitImage(hMaskDC, m_x, m_y, SRCCOPY);
    SetBkColor(s_cache.BitmapDC(), crHilite);
    BlitImage(hMaskDC, m_x, m_y, SRCPAINT);
    if (bShift)
        BitBlt(hMaskDC, 1, 1, CUWrapAdd(m_cx, -1), CUWrapAdd(m_cy, -1), hMaskDC, 0, 0, SRCAND);
}

void CStateDrawing::UseMonoColors() const
{
    SetTextColor(m_hDC, CUIGetWinData()->crMonoText);
    SetBkColor(m_hDC, CUIGetWinData()->crMonoBkgnd);
}

void CStateDrawing::FillWhereImage(DWORD cr, int nOffset) const
{
    const CCUIOwned<HBRUSH> fill(CreateSolidBrush(cr));
    const CCUISelect brush(m_hDC, fill);
    BitBlt(m_hDC, CUWrapAdd(m_rects.rcArea.left, nOffset), CUWrapAdd(m_rects.rcArea.top, nOffset),
           CUWrapAdd(m_cx, -2), CUWrapAdd(m_cy, -2), s_cache.MaskDC(), 0, 0, CUI_ROP_PSDPXAX);
}

void CStateDrawing::DrawEmbossed(DWORD crFace, DWORD crHilite, DWORD crShadow) const
{
    MakeMask(crFace, crHilite, false);
    UseMonoColors();
    FillWhereImage(crHilite, 1);
    FillWhereImage(crShadow, 0);
}

void CStateDrawing::DrawOverlay(DWORD crFace, DWORD crHilite, bool bShift) const
{
    const CCUISelect brush(m_hDC, s_cache.Pattern());
    MakeMask(crFace, crHilite, bShift);
    UseMonoColors();
    BitBlt(m_hDC, m_rects.rcArea.left, m_rects.rcArea.top, m_cx, m_cy, s_cache.MaskDC(), 0, 0,
           CUI_ROP_DSPDXAX);
}

}  // namespace

void CUIBmpDrawState(HDC hDC, RECT *prc, HBITMAP hBmp, DWORD dwFlags, DWORD crFace, DWORD crHilite,
                     DWORD crShadow)
{
    const CUIBmpStateRects rects = {prc[0], prc[1], prc[2]};
    const CCUISavedDC saved(hDC);
    s_cache.Prepare(crFace, crHilite);
    const CCUISelectKept image(s_cache.BitmapDC(), hBmp);
    const CCUIOwned<HBITMAP> maskBitmap(
        CreateBitmap(CUIWidth(rects.rcArea), CUIHeight(rects.rcArea), 1, 1, nullptr));
    const CCUISelectKept mask(s_cache.MaskDC(), maskBitmap);
    if (!image || !maskBitmap || !mask) {
        CUDump("CUIBmpDraw error drawing bitmap.\n");
        return;
    }
    const bool bDisabled = (dwFlags & CUIBMPSTATE_DISABLED) != 0;
    const CStateDrawing drawing(hDC, rects);
    if (bDisabled)
        drawing.DrawEmbossed(crFace, crHilite, crShadow);
    else
        drawing.DrawImage();
    if (dwFlags & CUIBMPSTATE_OVERLAY)
        drawing.DrawOverlay(crFace, crHilite, bDisabled);
}
