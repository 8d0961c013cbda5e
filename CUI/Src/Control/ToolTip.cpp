#include "CUI/ToolTip.h"

#include <commctrl.h>

#include "Base/Module.h"
#include "CU/Dump.h"
#include "Command/CommandText.h"
#include "SystemControls/CommonControls.h"

namespace {

// The widest tip, in sixths of the screen; what is wider is wrapped.
const int WIDEST = 2;

// The record of the first comctl32.dll, which all later ones take.
TOOLINFOA ToolOf(HWND hTool)
{
    TOOLINFOA tool = {};
    tool.cbSize = CCSIZEOF_STRUCT(TOOLINFOA, lpszText);
    tool.hwnd = hTool;
    return tool;
}

HWND TopLevelOf(HWND hWnd)
{
    while (hWnd && (GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD))
        hWnd = GetParent(hWnd);
    return hWnd;
}

}  // namespace

CCUIToolTip::CCUIToolTip() : m_hTip(nullptr), m_hTool(nullptr) {}

CCUIToolTip::~CCUIToolTip()
{
    if (m_hTip && IsWindow(m_hTip))
        DestroyWindow(m_hTip);
}

void CCUIToolTip::SetTool(HWND hTool, const RECT *prc, const char *pszText)
{
    RemoveTool();
    if (!hTool || !pszText || !*pszText || !MakeWindow(hTool))
        return;
    TOOLINFOA tool = ToolOf(hTool);
    if (prc)
        tool.rect = *prc;
    else
        GetClientRect(hTool, &tool.rect);
    // Plain already: Wine 8 underlines what the system leaves out.
    CCUString sText = CUIPlainCommandText(pszText);
    tool.lpszText = sText.GetBuffer(0);
    if (SendMessageA(m_hTip, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool)))
        m_hTool = hTool;
}

void CCUIToolTip::RemoveTool()
{
    if (!m_hTool)
        return;
    TOOLINFOA tool = ToolOf(m_hTool);
    m_hTool = nullptr;
    if (IsWindow(m_hTip))
        SendMessageA(m_hTip, TTM_DELTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

void CCUIToolTip::Relay(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!m_hTool || hWnd != m_hTool)
        return;
    MSG msg = {hWnd, message, wParam, lParam, 0, {}};
    SendMessageA(m_hTip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&msg));
}

bool CCUIToolTip::MakeWindow(HWND hTool)
{
    const HWND hOwner = TopLevelOf(hTool);
    if (m_hTip && IsWindow(m_hTip)) {
        if (GetWindow(m_hTip, GW_OWNER) == hOwner)
            return true;
        DestroyWindow(m_hTip);
    }
    static bool s_bMissing;
    m_hTip = nullptr;
    if (s_bMissing)
        return false;
    if (CUILoadCommonControls())
        m_hTip = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                                 WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, hOwner,
                                 nullptr, CUInstance(), nullptr);
    if (!m_hTip) {
        s_bMissing = true;
        CUDump("No tooltips, gle: %lu\n", GetLastError());
        return false;
    }
    // Older ones than Internet Explorer 3's have lines of any length only.
    SendMessageA(m_hTip, TTM_SETMAXTIPWIDTH, 0, GetSystemMetrics(SM_CXSCREEN) * WIDEST / 6);
    return true;
}
