#pragma once

#include "Base/Lifetime.h"
#include "CUI/Platform.h"

// A memory DC that is kept between calls and made again only when the target's depth changes. Who
// selects something into it (CCUISelectKept) or changes a colour puts the old one back.
class CCUIBmpSharedDC : private CCULastCall
{
public:
    constexpr CCUIBmpSharedDC() : CCULastCall(), m_hDC(nullptr), m_nBits(0) {}
    CCUIBmpSharedDC(const CCUIBmpSharedDC &) = delete;
    CCUIBmpSharedDC &operator=(const CCUIBmpSharedDC &) = delete;

    // The DC, compatible with hDC now; null, and reported, when it could not be made.
    HDC &For(HDC hDC);
    // Deletes the DC; the next call of For makes another one.
    void Release();

private:
    HDC m_hDC;
    int m_nBits;  // its BITSPIXEL
};

// The module's three, released at exit; who draws still later makes them again. For the
// user-interface thread.
extern CCUIBmpSharedDC g_bmpImageDC;
extern CCUIBmpSharedDC g_bmpMaskDC;
extern CCUIBmpSharedDC g_bmpWorkDC;
