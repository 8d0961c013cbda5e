#include "CUI/ComboBox.h"

#include "Base/Wrap.h"

namespace {

// The list's frame, above and below.
const int FRAME = 2;

}  // namespace

void CCUIComboBox::MeasureField(SIZE &size)
{
    CCUISystemControl::GetNaturalSize(size);
    RECT window = {};
    GetWindowRect(m_hWnd, &window);
    size.cy = CUIHeight(window);
}

// A list drops down as far as the control was made taller than its field, which in a layout it
// never is.
void CCUIComboBox::MakeRoomForList(int nRows)
{
    RECT window = {}, dropped = {};
    GetWindowRect(m_hWnd, &window);
    Send(CB_GETDROPPEDCONTROLRECT, 0, &dropped);
    const int nCount = GetCount();
    const int nShown = nCount < 1 ? 1 : nCount < nRows ? nCount : nRows;
    const int cyList = nShown * Send(CB_GETITEMHEIGHT) + FRAME;
    if (dropped.bottom - window.bottom < cyList)
        SetWindowPos(m_hWnd, nullptr, 0, 0, CUIWidth(window), CUIHeight(window) + cyList,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}
