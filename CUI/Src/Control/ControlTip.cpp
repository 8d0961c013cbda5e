#include "Control/ControlTip.h"

#include "Base/Lifetime.h"
#include "CUI/ToolTip.h"

namespace {

CCUShared<CCUIToolTip> s_toolTip;

}  // namespace

CCUIToolTip &CUIControlTip()
{
    return s_toolTip.Get();
}

void CUIHideControlTip(HWND hWnd)
{
    CCUIToolTip *const pToolTip = s_toolTip.IfMade();
    if (pToolTip && hWnd && pToolTip->GetTool() == hWnd)
        pToolTip->SetTool(nullptr, nullptr, nullptr);
}

void CUIRelayToControlTip(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (CCUIToolTip *const pToolTip = s_toolTip.IfMade())
        pToolTip->Relay(hWnd, message, wParam, lParam);
}
