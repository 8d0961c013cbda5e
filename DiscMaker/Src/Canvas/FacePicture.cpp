#include "Canvas/FacePicture.h"

#include "CU/Dump.h"

namespace {

const SIZE SIZE_WITHOUT_BACKGROUND = {514, 345};

}  // namespace

void CFacePicture::MakeAsLarge(const SIZE &size)
{
    if (m_dc && size.cx == m_size.cx && size.cy == m_size.cy)
        return;
    m_dc.Release();
    m_size = size;
    const CCUIWindowDC screen(nullptr);
    if (m_dc.Take(screen, CreateCompatibleBitmap(screen, size.cx, size.cy)))
        SetBkMode(m_dc, TRANSPARENT);
    else
        CUDump("DiscMaker: no picture of %ld x %ld: error %lu\n", size.cx, size.cy, GetLastError());
}

void CFacePicture::Draw(CLauncherFace &face, int nHotSpot)
{
    const CCUIBitmap &background = face.Background();
    MakeAsLarge(background ? SIZE{background.Width(), background.Height()}
                           : SIZE_WITHOUT_BACKGROUND);
    DrawPart(face, nHotSpot, {0, 0, m_size.cx, m_size.cy});
}

void CFacePicture::DrawPart(CLauncherFace &face, int nHotSpot, const RECT &part)
{
    if (!m_dc)
        return;
    const CCUISavedDC saved(m_dc);
    IntersectClipRect(m_dc, part.left, part.top, part.right, part.bottom);
    if (!face.Background())
        PatBlt(m_dc, part.left, part.top, part.right - part.left, part.bottom - part.top,
               WHITENESS);
    face.Draw(m_dc, nHotSpot, HotSpotNone);
}

SIZE CFacePicture::Measure(HFONT hFont, const CCUString &sText) const
{
    const CCUISelect font(m_dc, hFont);
    SIZE size = {};
    GetTextExtentPoint32A(m_dc, sText, sText.GetLength(), &size);
    return size;
}
