#pragma once

/// @file
/// A place in memory to paint in.

#include "CUI/Bitmap.h"
#include "CUI/Platform.h"

/// A memory DC with a bitmap that only grows, to paint a picture before it is shown. It starts with
/// a transparent background mode and is cleared by nobody: it holds what was last drawn, and what a
/// user selects or sets on it stays for the next one.
class CUI_API CCUIOffScreenDC
{
public:
    /// Without a DC: the first GetDC makes it.
    CCUIOffScreenDC();
    ~CCUIOffScreenDC();
    CCUIOffScreenDC(const CCUIOffScreenDC &) = delete;
    CCUIOffScreenDC &operator=(const CCUIOffScreenDC &) = delete;

    /// Waits until no other thread has the DC and returns it, compatible with hDC and at least cx
    /// by cy pixels (as large as before when there is no memory for more; null, and reported, when
    /// there is no DC). Each call of GetDC is paired with one of ReleaseDC on the same thread. A
    /// thread may nest them: an inner call that needs a larger picture or another depth replaces
    /// the outer call's picture by an empty one. Which depth a handle has is remembered for 100 ms.
    /// @{
    HDC GetDC(HDC hDC, int cx, int cy);
    void ReleaseDC();
    /// @}

private:
    bool Fits(HDC hDC, int cx, int cy) const;
    void Grow(HDC hDC, int cx, int cy);

    HDC m_memDC;
    CCUIBitmap m_bitmap;
    CRITICAL_SECTION m_lock;
};

/// The one object of the process, for any thread. All other threads must be done with it before the
/// process exits, which releases it.
CUI_API CCUIOffScreenDC *CUIGetOSDC();
