#include "Dialog/DialogPlace.h"

#include "Base/Wrap.h"
#include "CUI/Dialog.h"
#include "Window/Screen.h"

namespace {

// Where a length begins that is in the middle of the one range and, if it can be, in the other.
LONG Centered(LONG nLength, LONG nFrom, LONG nTo, LONG nFirst, LONG nEnd)
{
    return CUILarger(CUISmaller((nFrom + nTo - nLength) / 2, nEnd - nLength), nFirst);
}

}  // namespace

void CUICenterOnOwner(HWND hDialog, const SIZE &size)
{
    const HWND hOwner = GetWindow(hDialog, GW_OWNER);
    RECT around;
    const bool bOwner = hOwner && GetWindowRect(hOwner, &around);
    const RECT work = bOwner ? CUIScreenOf(around).work : CUIPrimaryScreen().work;
    if (!bOwner || !IsWindowVisible(hOwner) || IsIconic(hOwner))
        around = work;
    SetWindowPos(hDialog, nullptr,
                 Centered(size.cx, around.left, around.right, work.left, work.right),
                 Centered(size.cy, around.top, around.bottom, work.top, work.bottom), size.cx,
                 size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

void CCUIDialog::CenterOnOwner()
{
    const RECT rect = GetPlace();
    if (m_hWnd)
        CUICenterOnOwner(m_hWnd, {CUIWidth(rect), CUIHeight(rect)});
}
