#include "Picture/Flatten.h"

#include "Model/SkinEntry.h"
#include "Picture/DibReader.h"
#include "Resource.h"

namespace {

UINT Mix(UINT nOver, UINT nUnder, UINT nAlpha)
{
    return (nOver * nAlpha + nUnder * (255 - nAlpha) + 127) / 255;
}

DWORD MixPixels(DWORD nOver, DWORD nUnder)
{
    const UINT nAlpha = AlphaOf(nOver);
    return MakePixel(Mix(RedOf(nOver), RedOf(nUnder), nAlpha),
                     Mix(GreenOf(nOver), GreenOf(nUnder), nAlpha),
                     Mix(BlueOf(nOver), BlueOf(nUnder), nAlpha));
}

DWORD PixelAt(const CPixels &pixels, LONGLONG x, LONGLONG y)
{
    const bool bInside = x >= 0 && y >= 0 && x < pixels.m_cx && y < pixels.m_cy;
    return bInside ? pixels.Row(static_cast<int>(y))[x] : 0xFFFFFFFF;
}

}  // namespace

void Flatten(CPixels &picture, const CPixels &under, const POINT &at)
{
    for (int y = 0; y < picture.m_cy; ++y) {
        for (int x = 0; x < picture.m_cx; ++x) {
            DWORD &nPixel = picture.Row(y)[x];
            if (AlphaOf(nPixel) == 0xFF)
                continue;
            nPixel = MixPixels(nPixel, PixelAt(under, static_cast<LONGLONG>(at.x) + x,
                                               static_cast<LONGLONG>(at.y) + y));
            picture.m_colors.clear();
        }
    }
}

void FindUnder(const CSkin &skin, SkinPicture picture, CPixels &under, POINT &at)
{
    under = CPixels();
    at = POINT();
    const CBlob &background = skin.m_pictures[PictureBackground];
    if (picture == PictureBackground || !background || skin.m_texts.empty())
        return;
    if (ReadDib(background->data(), background->size(), 0, under) != nullptr)
        under = CPixels();
    const auto &entries = skin.m_texts[0].m_entries;
    const auto found =
        entries.find(picture == PictureProduct ? IDS_PRODUCT_POS : IDS_HELP_ICON_POS);
    if (found != entries.end())
        ParsePoint(found->second.ToCodePage(1252), at);
}
