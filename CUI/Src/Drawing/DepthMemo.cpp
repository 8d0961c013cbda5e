#include "Drawing/DepthMemo.h"

#include "Base/Lock.h"
#include "CUI/Data.h"

namespace {

const DWORD KEPT_FOR = 100;  // milliseconds

}  // namespace

int CCUIDepthMemo::Of(HDC hDC)
{
    const CCUTryLock lock(m_nLock);
    if (!lock.IsTaken())
        return GetDeviceCaps(hDC, BITSPIXEL);
    const DWORD dwNow = GetTickCount();
    const HGDIOBJ hBitmap = GetCurrentObject(hDC, OBJ_BITMAP);
    if (hDC != m_hDC || hBitmap != m_hBitmap || dwNow - m_dwAsked > KEPT_FOR ||
        CUIGetWinData()->bWin9x) {
        m_hDC = hDC;
        m_hBitmap = hBitmap;
        m_dwAsked = dwNow;
        m_nBits = GetDeviceCaps(hDC, BITSPIXEL);
    }
    return m_nBits;
}
