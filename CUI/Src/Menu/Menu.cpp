#include "CUI/Menu.h"

CCUIMenu::CCUIMenu() : m_hMenu(CreatePopupMenu()) {}

CCUIMenu::CCUIMenu(HMENU hMenu) : m_hMenu(hMenu) {}

CCUIMenu::CCUIMenu(HINSTANCE hInstance, const char *name, int nIndex) : m_hMenu(nullptr)
{
    const HMENU hBar = LoadMenuA(hInstance, name);
    if (!hBar)
        return;
    m_hMenu = GetSubMenu(hBar, nIndex);
    if (m_hMenu)
        RemoveMenu(hBar, static_cast<UINT>(nIndex), MF_BYPOSITION);
    DestroyMenu(hBar);
}

CCUIMenu::~CCUIMenu()
{
    if (m_hMenu)
        DestroyMenu(m_hMenu);
}
