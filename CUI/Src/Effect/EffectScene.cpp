#include "Effect/EffectScene.h"

#include <string.h>

#include "Base/Wrap.h"
#include "CUI/BmpBlt.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"

// --- Surfaces ---

bool CCUIEffectSurface::Make(HDC hDC, int cx, int cy)
{
    return m_dc.Take(hDC, CreateCompatibleBitmap(hDC, cx, cy));
}

bool CCUIEffectSurface::MakeMask(int cx, int cy, BYTE **ppBits)
{
    struct
    {
        BITMAPINFOHEADER header;
        RGBQUAD colors[2];
    } info = {{sizeof(BITMAPINFOHEADER), cx, -cy, 1, 1, BI_RGB, 0, 0, 0, 0, 0},
              {{0, 0, 0, 0}, {0xFF, 0xFF, 0xFF, 0}}};
    void *pBits = nullptr;
    const HBITMAP hBitmap = CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO *>(&info),
                                             DIB_RGB_COLORS, &pBits, nullptr, 0);
    if (ppBits)
        *ppBits = static_cast<BYTE *>(pBits);
    return m_dc.Take(nullptr, hBitmap);
}

void CCUIEffectSurface::Copy(HDC hDC, int x, int y, int cx, int cy, int xFrom, int yFrom,
                             DWORD dwRop) const
{
    if (cx > 0 && cy > 0)
        BitBlt(hDC, x, y, cx, cy, m_dc, xFrom, yFrom, dwRop);
}

// --- Pictures ---

void CUIDrawEffectBackground(HDC hDC, const CUIEffectPicture &background, int cx, int cy)
{
    const CUIData &data = *CUIGetWinData();
    const DWORD cr = background.m_bColor ? background.m_cr : data.crSys[COLOR_WINDOW];
    CUIDCFillSolidRect(hDC, 0, 0, cx, cy, data.ResolveColor(cr));
    CUIBmpBitBlt(hDC, 0, 0, background.m_bitmap, 0, 0, 0, 0, background.m_bitmap, TRUE);
}

void CUIDrawEffectPicture(HDC hDC, HDC hMask, const CUIEffectPicture &picture, int cx, int cy)
{
    const CCUIBitmap &bitmap = picture.m_bitmap;
    const POINT at = {(cx - bitmap.Width()) / 2, (cy - bitmap.Height()) / 2};
    if (picture.m_bColor) {
        CUIDCFillSolidRect(hDC, 0, 0, cx, cy, CUIGetWinData()->ResolveColor(picture.m_cr));
        PatBlt(hMask, 0, 0, cx, cy, BLACKNESS);
    } else if (!picture.m_bKeyed) {
        CUIBmpBitBlt(hDC, at.x, at.y, bitmap, 0, 0, 0, 0, bitmap, TRUE);
        PatBlt(hMask, at.x, at.y, bitmap.Width(), bitmap.Height(), BLACKNESS);
    } else {
        const CCUISavedDC saved(hDC);
        const CCUIOwned<HBITMAP> mask(CUIBmpMakeMask(hDC, 0, 0, bitmap, picture.m_cr));
        CUIBmpTransparentBlt(hDC, at.x, at.y, bitmap, mask);
        if (hMask)
            CUIBmpBitBlt(hMask, at.x, at.y, mask, 0, 0, 0, 0, nullptr, 0);
    }
}

bool CCUIEffectScene::MakeOpaque(CCUIEffectSurface &surface, HDC hDC,
                                 const CUIEffectPicture &background,
                                 const CUIEffectPicture &picture) const
{
    if (!surface.Make(hDC, m_cx, m_cy))
        return false;
    CUIDrawEffectBackground(surface.DC(), background, m_cx, m_cy);
    CUIDrawEffectPicture(surface.DC(), nullptr, picture, m_cx, m_cy);
    return true;
}

bool CCUIEffectScene::MakeSprite(HDC hDC, const CUIEffectPicture &background, int cx, int cy)
{
    if (!m_first.Make(hDC, cx, cy))
        return false;
    if (!background.m_bitmap) {
        CUIDrawEffectBackground(m_first.DC(), background, cx, cy);
        return true;
    }
    PatBlt(m_first.DC(), 0, 0, cx, cy, BLACKNESS);
    if (!m_mask.MakeMask(cx, cy) || !m_second.Make(hDC, m_cx, m_cy))
        return false;
    PatBlt(m_mask.DC(), 0, 0, cx, cy, WHITENESS);
    CUIDrawEffectBackground(m_second.DC(), background, m_cx, m_cy);
    return true;
}

// --- Shapes ---

void CCUIEffectScene::ClearShape(bool bOutside)
{
    m_bOutside = bOutside;
    m_shape.Empty();
}

void CCUIEffectScene::AddToShape(int left, int top, int right, int bottom)
{
    if (left >= right || top >= bottom)
        return;
    RECT *const pLast = m_shape.Count() ? &m_shape[m_shape.Count() - 1] : nullptr;
    if (pLast && pLast->left == left && pLast->right == right && pLast->bottom == top)
        pLast->bottom = bottom;
    else
        m_shape.Add({left, top, right, bottom});
}

void CCUIEffectScene::KeepShape()
{
    m_region.Take(MakeRegion());
}

// In pieces: of more rectangles than some thousand Windows 95 makes no region, and Wine 8 takes
// time with the square of their number.
HRGN CCUIEffectScene::MakeRegion() const
{
    const int PIECE = 16;
    struct
    {
        RGNDATAHEADER header;
        RECT rects[PIECE];
    } data;
    HRGN hRegion = nullptr;
    for (int i = 0; i < m_shape.Count(); i += PIECE) {
        const DWORD nCount = static_cast<DWORD>(CUISmaller(PIECE, m_shape.Count() - i));
        data.header = {sizeof data.header, RDH_RECTANGLES, nCount, 0, {0, 0, m_cx, m_cy}};
        memcpy(data.rects, &m_shape[i], nCount * sizeof(RECT));
        const HRGN hPiece =
            ExtCreateRegion(nullptr, sizeof data, reinterpret_cast<const RGNDATA *>(&data));
        if (hRegion) {
            CombineRgn(hRegion, hRegion, hPiece, RGN_OR);
            DeleteObject(hPiece);
        } else {
            hRegion = hPiece;
        }
    }
    return hRegion;
}

void CCUIEffectScene::DrawAround(const CCUIEffectSurface &surface, HDC hDC, const RECT &rect,
                                 const RECT &rcInner) const
{
    const auto copy = [&](int left, int top, int right, int bottom) {
        surface.Copy(hDC, rect.left + left, rect.top + top, right - left, bottom - top, left, top);
    };
    copy(0, 0, m_cx, rcInner.top);
    copy(0, rcInner.top, rcInner.left, rcInner.bottom);
    copy(rcInner.right, rcInner.top, m_cx, rcInner.bottom);
    copy(0, rcInner.bottom, m_cx, m_cy);
}

void CCUIEffectScene::DrawShape(HDC hDC, const RECT &rect) const
{
    if (m_shape.Count() > 1) {
        const CCUIOwned<HRGN> region(MakeRegion());
        DrawThrough(region, hDC, rect, 0);
        return;
    }
    const RECT rc = m_shape.Count() ? m_shape[0] : RECT{0, 0, 0, 0};
    const CCUIEffectSurface &inside = m_bOutside ? m_first : m_second;
    inside.Copy(hDC, rect.left + rc.left, rect.top + rc.top, CUIWidth(rc), CUIHeight(rc), rc.left,
                rc.top);
    DrawAround(m_bOutside ? m_second : m_first, hDC, rect, rc);
}

void CCUIEffectScene::DrawKept(HDC hDC, const RECT &rect, int nRight) const
{
    DrawThrough(m_region, hDC, rect, nRight);
}

void CCUIEffectScene::DrawThrough(HRGN hRegion, HDC hDC, const RECT &rect, int nRight) const
{
    // Regions are in the device's coordinates.
    POINT at = {rect.left, rect.top};
    LPtoDP(hDC, &at, 1);
    at.x += nRight;
    OffsetRgn(hRegion, at.x, at.y);
    const HRGN hBefore = GetClipRgn(hDC, m_clip) > 0 ? static_cast<HRGN>(m_clip) : nullptr;
    ExtSelectClipRgn(hDC, hRegion, RGN_AND);
    m_second.Copy(hDC, rect.left, rect.top, m_cx, m_cy, 0, 0);
    SelectClipRgn(hDC, hBefore);
    ExtSelectClipRgn(hDC, hRegion, RGN_DIFF);
    m_first.Copy(hDC, rect.left, rect.top, m_cx, m_cy, 0, 0);
    SelectClipRgn(hDC, hBefore);
    OffsetRgn(hRegion, -at.x, -at.y);
}
