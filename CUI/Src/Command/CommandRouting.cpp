// The way of a command from a window to its handler, and of its state into a menu.

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/Window.h"
#include "Menu/MenuHooks.h"
#include "Menu/MenuItem.h"

namespace {

// The states whose commands others refresh than menus.
const unsigned short NO_MENU_UPDATE = CUI_COMMAND_MINIMIZED | CUI_COMMAND_TIMER |
                                      CUI_COMMAND_HIDDEN | CUI_COMMAND_HIDDEN_DIALOG_CONTROL;

// Whether WM_COMMAND carries a command and not another notification of a control: 0 comes from
// menus and is the click of a control, 1 comes from accelerators.
bool IsCommand(UINT nCode, HWND hControl)
{
    return nCode == 0 || (nCode == 1 && !hControl);
}

// What the handler calls the command, with the shortcut that the item has.
CCUString NewText(CCUString sText, const CCUString &sOld)
{
    const int nTab = sOld.Find('\t');
    if (nTab >= 0 && sText.Find('\t') < 0)
        sText += sOld.Mid(nTab);
    return sText;
}

// Whether the item is still the command's, and the handler still there: every call of the handler
// may change that.
bool IsItemOf(HMENU hMenu, UINT nItem, unsigned int nID, const CCUICommandHandler *pHandler)
{
    return GetMenuItemID(hMenu, static_cast<int>(nItem)) == nID &&
           CCUICommandMap::Lookup(nID) == pHandler;
}

void UpdateItem(HMENU hMenu, UINT nItem, CCUICommandHandler *pHandler, unsigned int nID)
{
    const unsigned short nState = pHandler->GetState(nID);
    if (!IsItemOf(hMenu, nItem, nID, pHandler))
        return;
    CCUString sText;
    if (nState & CUI_COMMAND_TEXT)
        sText = pHandler->GetShortTT(nID);
    CUIMenuItem item;
    if (!IsItemOf(hMenu, nItem, nID, pHandler) || !item.Read(hMenu, nItem))
        return;
    const UINT nOldState = item.m_nState;
    item.m_nState &= ~static_cast<UINT>(MFS_DISABLED | MFS_CHECKED);
    item.m_nState |= (nState & CUI_COMMAND_ACTIVE) ? MFS_ENABLED : MFS_DISABLED;
    item.m_nState |= (nState & CUI_COMMAND_CHECKED) ? MFS_CHECKED : MFS_UNCHECKED;

    bool bWrite = false;
    if (item.HasText()) {
        const UINT nOldType = item.m_nType;
        item.m_nType &= ~static_cast<UINT>(MFT_RADIOCHECK);
        item.m_nType |= (nState & CUI_COMMAND_RADIO) ? MFT_RADIOCHECK : 0;
        const CCUString sOld = item.m_sText;
        if (nState & CUI_COMMAND_TEXT)
            item.m_sText = NewText(sText, sOld);
        bWrite = item.m_nType != nOldType || item.m_sText != sOld;
    }
    if (bWrite)
        item.Write(hMenu, nItem);
    else if (item.m_nState != nOldState)
        item.WriteState(hMenu, nItem);
}

}  // namespace

// The identifier's handler; those of no table have none, and are nothing to report.
CCUICommandHandler *CCUICommandMap::Find(unsigned int nID)
{
    return nID < FIRST_BASE ? nullptr : Lookup(nID);
}

int CCUICommandMap::Execute(unsigned int nID)
{
    CCUICommandHandler *const pHandler = Find(nID);
    if (!pHandler)
        return 0;
    if ((pHandler->GetState(nID) & CUI_COMMAND_ACTIVE) && Find(nID) == pHandler)
        pHandler->HandleCommand(nID);
    return 1;
}

// For a menu that opens. The handler that the command has afterwards, or null.
CCUICommandHandler *CCUICommandMap::Refresh(unsigned int nID)
{
    CCUICommandHandler *const pHandler = Find(nID);
    if (!pHandler)
        return nullptr;
    const bool bRefresh = !(pHandler->GetState(nID) & NO_MENU_UPDATE);
    if (bRefresh && Find(nID) == pHandler)
        pHandler->HandleUpdate(nID);
    return Find(nID);
}

void CCUICommandMap::UpdateMenu(HMENU hMenu)
{
    const int nCount = GetMenuItemCount(hMenu);
    for (int nItem = 0; nItem < nCount; ++nItem) {
        // Submenus have an identifier that no handler has.
        const unsigned int nID = GetMenuItemID(hMenu, nItem);
        if (CCUICommandHandler *const pHandler = Refresh(nID))
            UpdateItem(hMenu, static_cast<UINT>(nItem), pHandler, nID);
    }
}

void CCUIWindow::OnInitMenuPopup(HMENU hMenu, UINT, int bSystemMenu)
{
    CWatch watch(this);
    if (m_bRoutesCommands && !bSystemMenu)
        CCUICommandMap::UpdateMenu(hMenu);
    if (g_pMenuHooks && !bSystemMenu && !watch.IsGone() && m_hWnd)
        g_pMenuHooks->opens(hMenu, m_hWnd);
    // A handler may have closed the window.
    if (!watch.IsGone() && m_hWnd)
        Default();
}

void CCUIWindow::RouteCommand(UINT nCode, UINT nID, HWND hControl)
{
    CWatch watch(this);
    // What comes from a window further below was offered to its control there.
    const bool bOwn = hControl && GetParent(hControl) == m_hWnd;
    if ((bOwn && ReflectLastMessage(hControl, nullptr)) || watch.IsGone() || !m_hWnd)
        return;
    if (IsCommand(nCode, hControl)) {
        if (CCUIWindow *const pRouter = FindRouter()) {
            SendMessageA(*pRouter, WM_COMMAND, MAKEWPARAM(nID, nCode),
                         reinterpret_cast<LPARAM>(hControl));
            return;
        }
        if (CCUICommandMap::Execute(nID))
            return;
    }
    Default();
}

CCUIWindow *CCUIWindow::FindRouter() const
{
    HWND hWnd = m_hWnd;
    while (GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD) {
        hWnd = GetParent(hWnd);
        CCUIWindow *const pWindow = FromHandle(hWnd);
        if (pWindow && pWindow->m_bRoutesCommands)
            return pWindow;
    }
    return nullptr;
}
