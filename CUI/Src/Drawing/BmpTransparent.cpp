#include "CUI/BmpBlt.h"

#include "CUI/Data.h"

#include "Base/GdiGuards.h"
#include "Drawing/BmpArgs.h"
#include "Drawing/BmpSharedDC.h"

namespace {

// Image and mask in the shared DCs, and the target's colours set to turn the mask's ones into all
// ones and its zeros into all zeros.
class CTransparentSource
{
public:
    CTransparentSource(HDC hDC, HBITMAP hImage, HBITMAP hMask)
        : m_hImageDC(UseMonoColors(hDC)),
          m_hMaskDC(g_bmpMaskDC.For(hDC)),
          m_image(m_hImageDC, hImage),
          m_mask(m_hMaskDC, hMask)
    {
    }
    // What is drawn and what is there, inverted twice, is what was there; the mask keeps that from
    // happening where it is 0. The blit is called with the source DC and the raster operation.
    template <typename Blit>
    void Draw(Blit blit) const
    {
        blit(m_hImageDC, SRCINVERT);
        blit(m_hMaskDC, SRCAND);
        blit(m_hImageDC, SRCINVERT);
    }

private:
    static HDC UseMonoColors(HDC hDC)
    {
        SetBkColor(hDC, CUIGetWinData()->crMonoBkgnd);
        SetTextColor(hDC, CUIGetWinData()->crMonoText);
        return g_bmpImageDC.For(hDC);
    }
    HDC m_hImageDC;
    HDC m_hMaskDC;
    CCUISelect m_image;
    CCUISelect m_mask;
};

}  // namespace

void CUIBmpTransparentBlt(HDC hDC, UINT x, UINT y, HBITMAP hImage, HBITMAP hMask)
{
    CUIBmpTransparentBltFull(hDC, x, y, hImage, hMask, 0, 0, 0, 0);
}

void CUIBmpTransparentBltFull(HDC hDC, UINT x, UINT y, HBITMAP hImage, HBITMAP hMask, UINT xSrc,
                              UINT ySrc, UINT cx, UINT cy)
{
    if (!hImage || !hMask)
        return;
    CUIBmpDefaultSize(hImage, cx, cy);
    const CTransparentSource source(hDC, hImage, hMask);
    source.Draw([=](HDC hSourceDC, DWORD dwRop) {
        BitBlt(hDC, CUIBmpInt(x), CUIBmpInt(y), CUIBmpInt(cx), CUIBmpInt(cy), hSourceDC,
               CUIBmpInt(xSrc), CUIBmpInt(ySrc), dwRop);
    });
}

void CUIBmpTransparentStretchBltFull(HDC hDC, UINT x, UINT y, UINT cx, UINT cy, HBITMAP hImage,
                                     HBITMAP hMask, UINT xSrc, UINT ySrc, UINT cxSrc, UINT cySrc)
{
    if (!hImage || !hMask)
        return;
    CUIBmpDefaultSize(hImage, cxSrc, cySrc);
    const CTransparentSource source(hDC, hImage, hMask);
    source.Draw([=](HDC hSourceDC, DWORD dwRop) {
        StretchBlt(hDC, CUIBmpInt(x), CUIBmpInt(y), CUIBmpInt(cx), CUIBmpInt(cy), hSourceDC,
                   CUIBmpInt(xSrc), CUIBmpInt(ySrc), CUIBmpInt(cxSrc), CUIBmpInt(cySrc), dwRop);
    });
}
