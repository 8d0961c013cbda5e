#include "Frame/BarTip.h"

#include <commctrl.h>

#include "Base/Module.h"
#include "Base/SystemLibrary.h"

namespace {

TOOLINFOA Tool(HWND hBar)
{
    TOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.hwnd = hBar;
    return tool;
}

void Send(HWND hTip, UINT message, void *pArgument)
{
    SendMessageA(hTip, message, 0, reinterpret_cast<LPARAM>(pArgument));
}

void LoadControls()
{
    static bool s_bLoaded;
    if (s_bLoaded)
        return;
    s_bLoaded = true;
    const HMODULE hControls = CULoadSystemLibrary("comctl32.dll");
    const auto init = reinterpret_cast<decltype(&InitCommonControls)>(
        hControls ? GetProcAddress(hControls, "InitCommonControls") : nullptr);
    if (init)
        init();
}

}  // namespace

HWND CUIMakeBarTip(HWND hBar)
{
    LoadControls();
    const HWND hTip = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                                      WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, hBar,
                                      nullptr, CUInstance(), nullptr);
    TOOLINFOA tool = Tool(hBar);
    tool.lpszText = LPSTR_TEXTCALLBACKA;
    if (hTip)
        Send(hTip, TTM_ADDTOOLA, &tool);
    return hTip;
}

void CUIMoveBarTip(HWND hTip, HWND hBar, const RECT &rcItem)
{
    TOOLINFOA tool = Tool(hBar);
    tool.rect = rcItem;
    Send(hTip, TTM_POP, nullptr);
    Send(hTip, TTM_NEWTOOLRECTA, &tool);
}

void CUIRelayToBarTip(HWND hTip, HWND hBar, UINT message, WPARAM wParam, LPARAM lParam)
{
    MSG msg = {hBar, message, wParam, lParam, 0, {0, 0}};
    Send(hTip, TTM_RELAYEVENT, &msg);
}

void CUIAnswerBarTip(NMHDR *pHeader, const char *pszText)
{
    auto *const pInfo = reinterpret_cast<TOOLTIPTEXTA *>(pHeader);
    lstrcpynA(pInfo->szText, pszText, sizeof pInfo->szText);
    pInfo->lpszText = pInfo->szText;
}
