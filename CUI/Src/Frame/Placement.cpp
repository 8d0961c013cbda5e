#include "Frame/Placement.h"

#include <stdio.h>

#include "Base/Wrap.h"

#include "Window/Screen.h"

namespace {

// Pixels of the caption that must be seen to take the window there.
const LONG LEAST_SEEN = 64;
// No coordinates of windows are beyond this.
const LONG FARTHEST = 32767;
const int LEAST_DPI = 24;
const int MOST_DPI = 2400;

void Move(RECT &rect, LONG x, LONG y)
{
    rect.left += x;
    rect.right += x;
    rect.top += y;
    rect.bottom += y;
}

// The system counts normal places from the work area of the primary screen.
POINT WorkspaceOrigin()
{
    const RECT work = CUIPrimaryScreen().work;
    return {work.left, work.top};
}

// Whether the user can take the window by its caption.
bool IsWithinReach(const RECT &rect, const RECT &work)
{
    const LONG nSeen = CUISmaller(rect.right, work.right) - CUILarger(rect.left, work.left);
    const LONG nCaption = GetSystemMetrics(SM_CYCAPTION);
    return nSeen >= CUISmaller(LEAST_SEEN, rect.right - rect.left) && rect.top >= work.top &&
           rect.top + nCaption <= work.bottom;
}

// The part of a range that keeps its length, as far as there is room.
void Fit(LONG &nFrom, LONG &nTo, LONG nFirst, LONG nEnd)
{
    const LONG nLength = CUISmaller(nTo - nFrom, nEnd - nFirst);
    nFrom = CUILarger(CUISmaller(nFrom, nEnd - nLength), nFirst);
    nTo = nFrom + nLength;
}

bool IsSound(const CCUIPlacement &placement)
{
    const RECT &rect = placement.rect;
    return rect.left >= -FARTHEST && rect.left < rect.right && rect.right <= FARTHEST &&
           rect.top >= -FARTHEST && rect.top < rect.bottom && rect.bottom <= FARTHEST &&
           placement.nDpi >= LEAST_DPI && placement.nDpi <= MOST_DPI;
}

}  // namespace

CCUIPlacement CUIPlacementOf(const WINDOWPLACEMENT &placement)
{
    CCUIPlacement result = {placement.rcNormalPosition, false, 0};
    const POINT origin = WorkspaceOrigin();
    Move(result.rect, origin.x, origin.y);
    const bool bMinimized = placement.showCmd == SW_SHOWMINIMIZED;
    result.bMaximized = bMinimized ? (placement.flags & WPF_RESTORETOMAXIMIZED) != 0
                                   : placement.showCmd == SW_SHOWMAXIMIZED;
    return result;
}

WINDOWPLACEMENT CUIToShow(const CCUIPlacement &placement, int nShow)
{
    WINDOWPLACEMENT result = {};
    result.length = sizeof result;
    result.rcNormalPosition = placement.rect;
    const POINT origin = WorkspaceOrigin();
    Move(result.rcNormalPosition, -origin.x, -origin.y);
    result.showCmd = static_cast<UINT>(nShow);
    switch (nShow) {
    case SW_SHOWMINIMIZED:
    case SW_MINIMIZE:
    case SW_SHOWMINNOACTIVE:
        if (placement.bMaximized)
            result.flags = WPF_RESTORETOMAXIMIZED;
        break;
    case SW_SHOWNORMAL:
    case SW_SHOW:
    case SW_SHOWDEFAULT:
        result.showCmd = placement.bMaximized ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL;
        break;
    default: break;
    }
    return result;
}

CCUString CUIPlacementText(const CCUIPlacement &placement)
{
    CCUString sText;
    sText.Format("%ld,%ld,%ld,%ld,%d,%d", placement.rect.left, placement.rect.top,
                 placement.rect.right, placement.rect.bottom, placement.bMaximized ? 1 : 0,
                 placement.nDpi);
    return sText;
}

bool CUIReadPlacement(const char *pszText, CCUIPlacement &placement)
{
    int nMaximized = 0;
    RECT &rect = placement.rect;
    const int nRead = sscanf(pszText, "%ld,%ld,%ld,%ld,%d,%d", &rect.left, &rect.top, &rect.right,
                             &rect.bottom, &nMaximized, &placement.nDpi);
    placement.bMaximized = nMaximized != 0;
    return nRead == 6 && IsSound(placement);
}

void CUIFitPlacement(CCUIPlacement &placement, int nDpi)
{
    RECT &rect = placement.rect;
    const bool bGrows = nDpi > placement.nDpi;
    rect.right = rect.left + MulDiv(rect.right - rect.left, nDpi, placement.nDpi);
    rect.bottom = rect.top + MulDiv(rect.bottom - rect.top, nDpi, placement.nDpi);
    placement.nDpi = nDpi;
    const RECT work = CUIScreenOf(rect).work;
    // What the user has moved partly out of the screen stays there; what has grown out of it does
    // not, nor what was made on a larger one.
    const bool bTooLarge = CUIWidth(rect) > CUIWidth(work) || CUIHeight(rect) > CUIHeight(work);
    if (!bGrows && !bTooLarge && IsWithinReach(rect, work))
        return;
    Fit(rect.left, rect.right, work.left, work.right);
    Fit(rect.top, rect.bottom, work.top, work.bottom);
}
