#include "CUI/OffScreenDC.h"

#include "Base/Lifetime.h"
#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CU/Prober.h"
#include "Drawing/DepthMemo.h"

#define CU_SOURCE "OffScreenDC"

namespace {

CCUIDepthMemo s_depth;
CCUProberLong s_bytes("\\CUI\\OffScreen", "Bytes", 0, "pixels of off-screen surfaces", "bytes");

long BytesOf(const CCUIBitmap &bitmap)
{
    return CUWrapMul(CUWrapMul(bitmap.Width(), bitmap.Height()), bitmap.Depth()) / 8;
}

}  // namespace

CCUIOffScreenDC::CCUIOffScreenDC() : m_memDC(nullptr)
{
    InitializeCriticalSection(&m_lock);
}

CCUIOffScreenDC::~CCUIOffScreenDC()
{
    // The DC first: it lets go of the bitmap.
    if (m_memDC)
        DeleteDC(m_memDC);
    s_bytes.Add(-BytesOf(m_bitmap));
    m_bitmap.Empty();
    DeleteCriticalSection(&m_lock);
}

HDC CCUIOffScreenDC::GetDC(HDC hDC, int cx, int cy)
{
    EnterCriticalSection(&m_lock);
    if (!Fits(hDC, cx, cy))
        Grow(hDC, cx, cy);
    return m_memDC;
}

void CCUIOffScreenDC::ReleaseDC()
{
    LeaveCriticalSection(&m_lock);
}

bool CCUIOffScreenDC::Fits(HDC hDC, int cx, int cy) const
{
    return m_memDC && cx <= m_bitmap.Width() && cy <= m_bitmap.Height() &&
           s_depth.Of(hDC) == m_bitmap.Depth();
}

void CCUIOffScreenDC::Grow(HDC hDC, int cx, int cy)
{
    if (!m_memDC) {
        m_memDC = CreateCompatibleDC(hDC);
        CU_ASSERT_TEXT(m_memDC, "m_memDC != 0");
        // Text drawn on a picture does not bring a box along.
        SetBkMode(m_memDC, TRANSPARENT);
    }
    const CCUIBitmap bitmap(CreateCompatibleBitmap(hDC, CUILarger(cx, m_bitmap.Width()),
                                                   CUILarger(cy, m_bitmap.Height())),
                            nullptr);
    // The old bitmap goes when the new one has taken its place in the DC: before that it cannot be
    // deleted. Without a new one it stays in use.
    if (!SelectObject(m_memDC, static_cast<HBITMAP>(bitmap))) {
        CUDump("No off-screen surface of %d by %d pixels\n", cx, cy);
        return;
    }
    s_bytes.Add(BytesOf(bitmap) - BytesOf(m_bitmap));
    m_bitmap = bitmap;
}

CCUIOffScreenDC *CUIGetOSDC()
{
    static CCUShared<CCUIOffScreenDC> s_dc;
    return &s_dc.Get();
}
