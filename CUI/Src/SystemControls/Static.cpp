#include "CUI/Static.h"

#include "Base/Wrap.h"
#include "Drawing/Look.h"

void CCUIStatic::MeasureContent(SIZE &size)
{
    RECT window = {}, client = {};
    GetWindowRect(m_hWnd, &window);
    GetClientRect(m_hWnd, &client);
    size = {CUIWidth(window), CUIHeight(window)};
    // With a picture the system has made it as large as that.
    if (GetIcon() || GetBitmap())
        return;
    const UINT nFormat = DT_EXPANDTABS | (HasStyle(SS_NOPREFIX) ? DT_NOPREFIX : 0U);
    const SIZE text = CUIMeasureText(m_hWnd, GetFont(), GetText(), nFormat);
    size.cx += text.cx - CUIWidth(client);
    size.cy += text.cy - CUIHeight(client);
}
