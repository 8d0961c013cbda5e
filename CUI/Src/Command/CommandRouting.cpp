// The way of a command from a window to its handler, and of its state into a menu.

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/Window.h"

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

CCUString TextOf(HMENU hMenu, UINT nItem, UINT nLength)
{
    CCUString sText;
    GetMenuStringA(hMenu, nItem, sText.GetBuffer(static_cast<int>(nLength)),
                   static_cast<int>(nLength) + 1, MF_BYPOSITION);
    sText.ReleaseBuffer();
    return sText;
}

// What the handler calls the command, with the shortcut that the item has.
CCUString NewText(const CCUString &sOld, CCUICommandHandler *pHandler, unsigned int nID)
{
    CCUString sText = pHandler->GetShortTT(nID);
    const int nTab = sOld.Find('\t');
    if (nTab >= 0 && sText.Find('\t') < 0)
        sText += sOld.Mid(nTab);
    return sText;
}

void UpdateItem(HMENU hMenu, UINT nItem, CCUICommandHandler *pHandler, unsigned int nID)
{
    const unsigned short nState = pHandler->GetState(nID);
    MENUITEMINFOA item = {};
    item.cbSize = sizeof item;
    item.fMask = MIIM_ID | MIIM_STATE | MIIM_TYPE;
    // The handler may have changed the menu.
    if (!GetMenuItemInfoA(hMenu, nItem, TRUE, &item) || item.wID != nID)
        return;
    const UINT nOldState = item.fState;
    item.fState &= ~static_cast<UINT>(MFS_DISABLED | MFS_CHECKED);
    item.fState |= (nState & CUI_COMMAND_ACTIVE) ? MFS_ENABLED : MFS_DISABLED;
    item.fState |= (nState & CUI_COMMAND_CHECKED) ? MFS_CHECKED : MFS_UNCHECKED;
    item.fMask = item.fState == nOldState ? 0 : MIIM_STATE;

    CCUString sText;
    const UINT nRadio = (nState & CUI_COMMAND_RADIO) ? MFT_RADIOCHECK : 0;
    const bool bMark = (item.fType & MFT_RADIOCHECK) != nRadio;
    const bool bPlain = !(item.fType & (MFT_BITMAP | MFT_OWNERDRAW | MFT_SEPARATOR));
    if (bPlain && (bMark || (nState & CUI_COMMAND_TEXT))) {
        const CCUString sOld = TextOf(hMenu, nItem, item.cch);
        sText = (nState & CUI_COMMAND_TEXT) ? NewText(sOld, pHandler, nID) : sOld;
        // The system sets both, or none.
        if (bMark || sText != sOld)
            item.fMask |= MIIM_TYPE;
        item.fType = (item.fType & ~static_cast<UINT>(MFT_RADIOCHECK)) | nRadio;
        item.dwTypeData = sText.GetBuffer(0);
    }
    if (item.fMask)
        SetMenuItemInfoA(hMenu, nItem, TRUE, &item);
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
    if (!watch.IsGone())
        Default();
}

void CCUIWindow::RouteCommand(UINT nCode, UINT nID, HWND hControl)
{
    CWatch watch(this);
    // What comes from a window further below was offered to its control there.
    const bool bOwn = hControl && GetParent(hControl) == m_hWnd;
    if ((bOwn && ReflectLastMessage(hControl, nullptr)) || watch.IsGone())
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
