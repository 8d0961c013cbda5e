#pragma once

#include "CUI/Platform.h"

// A memory DC that is kept between calls, made again only when the target's depth changes. It is
// not to be found selected with anything: who selects an object selects the old one back.
class CCUIBmpSharedDC
{
public:
    constexpr CCUIBmpSharedDC() : m_hDC(nullptr) {}
    ~CCUIBmpSharedDC();
    CCUIBmpSharedDC(const CCUIBmpSharedDC &) = delete;
    CCUIBmpSharedDC &operator=(const CCUIBmpSharedDC &) = delete;

    // The DC, compatible with hDC now; null, and reported, when it could not be made.
    HDC For(HDC hDC);

private:
    HDC m_hDC;
};

// The module's three, released at exit. For the user-interface thread.
extern CCUIBmpSharedDC g_bmpImageDC;
extern CCUIBmpSharedDC g_bmpMaskDC;
extern CCUIBmpSharedDC g_bmpWorkDC;
