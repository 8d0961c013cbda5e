#pragma once

#include "Base/GdiGuards.h"
#include "CUI/Platform.h"
#include "LauncherFace.h"

// The launcher's face as pixels, of which only what has changed is drawn again.
class CFacePicture
{
public:
    // Makes the picture as large as the face is, or, without a background, as large as most are,
    // and draws it all. The lines are measured then, if they were not.
    void Draw(CLauncherFace &face, int nHotSpot);
    // Draws what is inside of a rectangle.
    void DrawPart(CLauncherFace &face, int nHotSpot, const RECT &part);
    // The size of a text in one of the face's fonts.
    SIZE Measure(HFONT hFont, const CCUString &sText) const;

    const SIZE &Size() const { return m_size; }
    // To copy from; null until it is drawn, or when there is no memory.
    HDC GetDC() const { return m_dc; }

private:
    void MakeAsLarge(const SIZE &size);

    CCUIBitmapDC m_dc;
    SIZE m_size = {};
};
