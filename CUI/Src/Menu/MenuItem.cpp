#include "Menu/MenuItem.h"

#include "Menu/MenuHooks.h"
#include "Menu/MenuRecord.h"

// Of Windows 98 and 2000.
#if !defined(MIIM_STRING)
#define MIIM_STRING 0x00000040
#define MIIM_FTYPE 0x00000100
#endif

const CUIMenuHooks *volatile g_pMenuHooks;

bool CUIMenuItem::Read(HMENU hMenu, UINT nItem)
{
    MENUITEMINFOA info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_ID | MIIM_STATE | MIIM_TYPE | MIIM_DATA | MIIM_SUBMENU;
    if (!GetMenuItemInfoA(hMenu, nItem, TRUE, &info))
        return false;
    m_nID = info.wID;
    m_bSubmenu = info.hSubMenu != nullptr;
    m_nType = info.fType;
    m_nState = info.fState;
    m_dwData = info.dwItemData;
    m_pRecord = nullptr;
    if ((m_nType & MFT_OWNERDRAW) && g_pMenuHooks)
        m_pRecord = g_pMenuHooks->record(m_dwData);
    m_bText = m_pRecord || !(m_nType & (MFT_BITMAP | MFT_OWNERDRAW | MFT_SEPARATOR));
    m_sText.Empty();
    const int nLength = m_bText ? GetMenuStringA(hMenu, nItem, nullptr, 0, MF_BYPOSITION) : 0;
    if (nLength > 0) {
        GetMenuStringA(hMenu, nItem, m_sText.GetBuffer(nLength), nLength + 1, MF_BYPOSITION);
        m_sText.ReleaseBuffer();
    }
    if (m_pRecord && m_sText.IsEmpty())
        m_sText = m_pRecord->m_sText;
    return true;
}

void CUIMenuItem::GiveBack()
{
    m_pRecord = nullptr;
    m_dwData = 0;  // led to the record
}

void CUIMenuItem::WriteState(HMENU hMenu, UINT nItem) const
{
    MENUITEMINFOA info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STATE;
    info.fState = m_nState;
    SetMenuItemInfoA(hMenu, nItem, TRUE, &info);
}

void CUIMenuItem::Write(HMENU hMenu, UINT nItem) const
{
    MENUITEMINFOA info = {};
    info.cbSize = sizeof info;
    info.fState = m_nState;
    CCUString sText = m_sText;
    info.dwTypeData = sText.GetBuffer(0);
    if (m_pRecord) {
        m_pRecord->m_sText = m_sText;
        m_pRecord->m_cxText = -1;
        info.fType = m_nType | MFT_OWNERDRAW;
        info.dwItemData = reinterpret_cast<ULONG_PTR>(m_pRecord);
        info.fMask = MIIM_STATE | MIIM_FTYPE | MIIM_STRING | MIIM_DATA;
        if (SetMenuItemInfoA(hMenu, nItem, TRUE, &info))
            return;
        // Windows 95 and NT 4 take the data for the text.
        info.dwTypeData = reinterpret_cast<char *>(m_pRecord);
    } else {
        info.fType = m_nType & ~static_cast<UINT>(MFT_OWNERDRAW);
        info.dwItemData = m_dwData;
    }
    info.fMask = MIIM_STATE | MIIM_TYPE | MIIM_DATA;
    SetMenuItemInfoA(hMenu, nItem, TRUE, &info);
}
