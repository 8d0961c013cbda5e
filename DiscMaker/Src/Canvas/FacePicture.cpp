#include "Canvas/FacePicture.h"

#include "Base/GdiGuards.h"
#include "CU/Dump.h"

namespace {

const SIZE SIZE_WITHOUT_BACKGROUND = {514, 345};

}  // namespace

void CFacePicture::Release()
{
    if (!m_hDC)
        return;
    SelectObject(m_hDC, m_hOld);
    DeleteObject(m_hBitmap);
    DeleteDC(m_hDC);
    m_hDC = nullptr;
}

void CFacePicture::MakeAsLarge(const SIZE &size)
{
    if (m_hDC && size.cx == m_size.cx && size.cy == m_size.cy)
        return;
    Release();
    m_size = size;
    const CCUIWindowDC screen(nullptr);
    m_hBitmap = CreateCompatibleBitmap(screen, size.cx, size.cy);
    m_hDC = m_hBitmap ? CreateCompatibleDC(screen) : nullptr;
    if (!m_hDC) {
        CUDump("DiscMaker: no picture of %ld x %ld: error %lu\n", size.cx, size.cy, GetLastError());
        if (m_hBitmap)
            DeleteObject(m_hBitmap);
        m_hBitmap = nullptr;
        return;
    }
    m_hOld = SelectObject(m_hDC, m_hBitmap);
    SetBkMode(m_hDC, TRANSPARENT);
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
    if (!m_hDC)
        return;
    const CCUISavedDC saved(m_hDC);
    IntersectClipRect(m_hDC, part.left, part.top, part.right, part.bottom);
    if (!face.Background())
        PatBlt(m_hDC, part.left, part.top, part.right - part.left, part.bottom - part.top,
               WHITENESS);
    face.Draw(m_hDC, nHotSpot, HotSpotNone);
}

SIZE CFacePicture::Measure(HFONT hFont, const CCUString &sText) const
{
    const CCUISelect font(m_hDC, hFont);
    SIZE size = {};
    GetTextExtentPoint32A(m_hDC, sText, sText.GetLength(), &size);
    return size;
}
