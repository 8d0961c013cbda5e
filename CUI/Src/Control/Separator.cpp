#include "CUI/Separator.h"

#include "Base/Wrap.h"
#include "CUI/Data.h"

namespace {

const int ROOM = 6;  // pixels at 96 dots per inch

}  // namespace

CCUISeparator::CCUISeparator() = default;
CCUISeparator::~CCUISeparator() = default;

void CCUISeparator::GetNaturalSize(SIZE &size)
{
    size.cx = size.cy = Scaled(ROOM);
}

void CCUISeparator::Paint(HDC hDC, const RECT &rect)
{
    RECT line = rect;
    const bool bUpright = CUIHeight(rect) > CUIWidth(rect);
    // The edge is two pixels wide.
    if (bUpright)
        line.left = CUIWidth(rect) / 2 - 1;
    else
        line.top = CUIHeight(rect) / 2 - 1;
    DrawEdge(hDC, &line, EDGE_ETCHED, bUpright ? BF_LEFT : BF_TOP);
}

long CCUISeparator::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCHITTEST)
        return HTTRANSPARENT;
    return CCUIControl::OnMessage(message, wParam, lParam);
}

UINT CCUISeparator::OnGetDlgCode(const MSG *)
{
    return DLGC_STATIC;
}
