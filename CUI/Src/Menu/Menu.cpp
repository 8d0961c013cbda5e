#include "CUI/Menu.h"

#include "CU/Assert.h"
#include "CU/Dump.h"
#include "Menu/MenuData.h"
#include "Menu/MenuItem.h"

#define CU_SOURCE "Menu"

namespace {

HMENU LoadPopup(HINSTANCE hInstance, const char *name, int nIndex)
{
    const HMENU hBar = LoadMenuA(hInstance, name);
    if (!hBar || nIndex == CUI_MENU_BAR)
        return hBar;
    const HMENU hPopup = GetSubMenu(hBar, nIndex);
    if (hPopup)
        RemoveMenu(hBar, static_cast<UINT>(nIndex), MF_BYPOSITION);
    DestroyMenu(hBar);
    return hPopup;
}

// What the system says of a change; a refusal is traced.
int Done(const char *pszWhat, BOOL bDone)
{
    if (!bDone)
        CUDump("CCUIMenu: %s failed, error %lu\n", pszWhat, GetLastError());
    return bDone != FALSE;
}

// An item by its command: in a menu or a popup below it.
struct CPlace
{
    HMENU hMenu = nullptr;
    UINT nItem = 0;

    bool Find(HMENU hIn, UINT nID, int nDepth = 0)
    {
        const int nItems = nDepth < 32 ? GetMenuItemCount(hIn) : 0;
        for (int i = 0; i < nItems; ++i) {
            const HMENU hSub = GetSubMenu(hIn, i);
            if (hSub ? Find(hSub, nID, nDepth + 1) : GetMenuItemID(hIn, i) == nID) {
                if (!hSub) {
                    hMenu = hIn;
                    nItem = static_cast<UINT>(i);
                }
                return true;
            }
        }
        return false;
    }
};

}  // namespace

CCUIMenu::CCUIMenu(CUIMenuKind kind)
    : CCUIMenu(kind == CUI_MENU_BAR ? CreateMenu() : CreatePopupMenu())
{
    Done("creation", m_hMenu != nullptr);
}

CCUIMenu::CCUIMenu() : CCUIMenu(CUI_MENU_POPUP) {}

CCUIMenu::CCUIMenu(HINSTANCE hInstance, const char *name, int nIndex)
    : CCUIMenu(LoadPopup(hInstance, name, nIndex))
{
}

CCUIMenu::CCUIMenu(HMENU hMenu) : m_hMenu(hMenu), m_pData(new CCUIMenuData(m_hMenu)) {}

CCUIMenu::~CCUIMenu()
{
    if (m_hMenu && IsMenu(m_hMenu))
        DestroyMenu(m_hMenu);
    delete m_pData;
}

HMENU CCUIMenu::Detach()
{
    const HMENU hMenu = m_hMenu;
    m_pData->Release();
    return hMenu;
}

int CCUIMenu::Insert(int nPlace, UINT nID, const char *pszText)
{
    return Done("InsertMenu", InsertMenuA(m_hMenu, static_cast<UINT>(nPlace),
                                          MF_BYPOSITION | MF_STRING, nID, pszText));
}

int CCUIMenu::InsertSeparator(int nPlace)
{
    return Done("InsertMenu", InsertMenuA(m_hMenu, static_cast<UINT>(nPlace),
                                          MF_BYPOSITION | MF_SEPARATOR, 0, nullptr));
}

int CCUIMenu::InsertPopup(int nPlace, const char *pszText, CCUIMenu &popup)
{
    CU_ASSERT(popup.GetHandle());
    if (!popup.m_hMenu ||
        !Done("InsertMenu",
              InsertMenuA(m_hMenu, static_cast<UINT>(nPlace), MF_BYPOSITION | MF_POPUP,
                          reinterpret_cast<UINT_PTR>(popup.m_hMenu), pszText)))
        return 0;
    popup.m_pData->MovePicturesTo(*m_pData);
    popup.Detach();
    return 1;
}

int CCUIMenu::RemoveAt(int nPlace)
{
    return DeleteMenu(m_hMenu, static_cast<UINT>(nPlace), MF_BYPOSITION) != FALSE;
}

int CCUIMenu::Remove(UINT nID)
{
    CPlace place;
    return place.Find(m_hMenu, nID) && DeleteMenu(place.hMenu, place.nItem, MF_BYPOSITION);
}

int CCUIMenu::SetText(UINT nID, const char *pszText)
{
    CPlace place;
    CUIMenuItem item;
    if (!place.Find(m_hMenu, nID) || !item.Read(place.hMenu, place.nItem) || !item.HasText())
        return 0;
    item.m_sText = pszText;
    item.Write(place.hMenu, place.nItem);
    return 1;
}

CCUString CCUIMenu::GetText(UINT nID) const
{
    CPlace place;
    CUIMenuItem item;
    if (place.Find(m_hMenu, nID))
        item.Read(place.hMenu, place.nItem);
    return item.m_sText;
}

int CCUIMenu::Enable(UINT nID, bool bEnable)
{
    const UINT nState = bEnable ? MF_ENABLED : MF_GRAYED;
    return EnableMenuItem(m_hMenu, nID, MF_BYCOMMAND | nState) != -1;
}

int CCUIMenu::Check(UINT nID, bool bCheck)
{
    const UINT nState = bCheck ? MF_CHECKED : MF_UNCHECKED;
    return CheckMenuItem(m_hMenu, nID, MF_BYCOMMAND | nState) != static_cast<DWORD>(-1);
}

int CCUIMenu::CheckRadio(UINT nFirst, UINT nLast, UINT nID)
{
    CPlace place;
    return place.Find(m_hMenu, nID) &&
           CheckMenuRadioItem(place.hMenu, nFirst, nLast, nID, MF_BYCOMMAND);
}

int CCUIMenu::SetDefault(UINT nID)
{
    CPlace place;
    return place.Find(m_hMenu, nID) && SetMenuDefaultItem(place.hMenu, place.nItem, TRUE);
}

int CCUIMenu::SetPictures(const CCUIBitmap &strip, const UINT *pIDs, int nCount, int nDpi)
{
    CU_ASSERT(nCount > 0 && pIDs);
    if (nCount <= 0 || !pIDs)
        return 0;
    auto *const pPictures = new CCUIMenuPictures;
    pPictures->m_given = strip;
    pPictures->m_nDpi = nDpi;
    for (int i = 0; i < nCount; ++i) {
        if (pIDs[i])
            pPictures->m_ids.Add(pIDs[i]);
    }
    const int nPictures = pPictures->m_ids.Count();
    if (nPictures == 0 || strip.Width() < nPictures) {
        CUDump("CCUIMenu: %d pictures do not come from a strip of %d pixels\n", nPictures,
               strip.Width());
        delete pPictures;
        return 0;
    }
    m_pData->AddPictures(pPictures);
    return 1;
}

void CCUIMenu::SetAccelerators(const CCUIAccelerators &keys)
{
    m_pData->SetAccelerators(keys);
}
