#pragma once

#include "CUI/Platform.h"
#include "LauncherFace.h"

// The launcher's face as pixels, of which only what has changed is drawn again.
class CFacePicture
{
public:
    CFacePicture() {}
    ~CFacePicture() { Release(); }
    CFacePicture(const CFacePicture &) = delete;
    CFacePicture &operator=(const CFacePicture &) = delete;

    // Makes the picture as large as the face is, or, without a background, as large as most are,
    // and draws it all. The lines are measured then, if they were not.
    void Draw(CLauncherFace &face, int nHotSpot);
    // Draws what is inside of a rectangle.
    void DrawPart(CLauncherFace &face, int nHotSpot, const RECT &part);
    // The size of a text in one of the face's fonts.
    SIZE Measure(HFONT hFont, const CCUString &sText) const;

    const SIZE &Size() const { return m_size; }
    // To copy from; null until it is drawn, or when there is no memory.
    HDC GetDC() const { return m_hDC; }

private:
    void MakeAsLarge(const SIZE &size);
    void Release();

    HDC m_hDC = nullptr;
    HBITMAP m_hBitmap = nullptr;
    HGDIOBJ m_hOld = nullptr;
    SIZE m_size = {};
};
