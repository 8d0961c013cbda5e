#include "Menu/MenuData.h"

#include "Base/Lock.h"
#include "CUI/Window.h"
#include "Menu/MenuHooks.h"

namespace {

// A menu that somebody put into itself has no end.
const int DEEPEST = 32;

CCULazyLock s_lock;  // of the list
CCUIMenuData *s_pFirst;

bool IsWithin(HMENU hRoot, HMENU hMenu, int nDepth)
{
    if (hRoot == hMenu)
        return true;
    const int nItems = nDepth < DEEPEST ? GetMenuItemCount(hRoot) : 0;
    for (int i = 0; i < nItems; ++i) {
        const HMENU hSub = GetSubMenu(hRoot, i);
        if (hSub && IsWithin(hSub, hMenu, nDepth + 1))
            return true;
    }
    return false;
}

// Those of the window and of all above it, to which its keys go as well.
void AddAccelerators(CCUIAccelerators &keys, HWND hWnd)
{
    for (; hWnd; hWnd = GetParent(hWnd)) {
        const CCUIWindow *const pWindow = CCUIWindow::FromHandle(hWnd);
        if (pWindow && pWindow->GetAccelerators())
            keys.Add(pWindow->GetAccelerators());
    }
}

}  // namespace

const CUIMenuHooks CCUIMenuData::HOOKS = {OnRecord, OnOpens,     OnMeasure,
                                          OnDraw,   OnCharacter, OnGoes};

CCUIMenuData::CCUIMenuData(HMENU &hRoot) : m_hRoot(hRoot)
{
    const CCULockGuard lock(s_lock);
    m_pNext = s_pFirst;
    s_pFirst = this;
    g_pMenuHooks = &HOOKS;
}

CCUIMenuData::~CCUIMenuData()
{
    Release();
    {
        const CCULockGuard lock(s_lock);
        CCUIMenuData **pp = &s_pFirst;
        while (*pp != this)
            pp = &(*pp)->m_pNext;
        *pp = m_pNext;
    }
    while (CCUIMenuPictures *const pPictures = m_pPictures) {
        m_pPictures = pPictures->m_pNext;
        delete pPictures;
    }
}

void CCUIMenuData::AddPictures(CCUIMenuPictures *pPictures)
{
    pPictures->m_pNext = m_pPictures;
    m_pPictures = pPictures;
}

void CCUIMenuData::MovePicturesTo(CCUIMenuData &data)
{
    CCUIMenuPictures **pp = &data.m_pPictures;
    while (*pp)
        pp = &(*pp)->m_pNext;
    *pp = m_pPictures;
    m_pPictures = nullptr;
}

void CCUIMenuData::SetAccelerators(const CCUIAccelerators &keys)
{
    m_keys.Empty();
    m_keys.Add(keys.GetKeys(), keys.GetCount());
}

// Items that have been taken out of the menu, or that could not be destroyed with it, are the
// system's to draw again.
void CCUIMenuData::Release()
{
    const CCULockGuard lock(s_lock);
    m_hRoot = nullptr;
    while (CCUIMenuPopup *const pPopup = m_pPopups) {
        pPopup->GiveBack();
        m_pPopups = pPopup->m_pNext;
        delete pPopup;
    }
}

// The first of all menus' popups for which `fits` holds.
template <typename Fits>
CCUIMenuPopup *CCUIMenuData::FindPopup(Fits fits)
{
    const CCULockGuard lock(s_lock);
    for (const CCUIMenuData *pData = s_pFirst; pData; pData = pData->m_pNext) {
        for (CCUIMenuPopup *pPopup = pData->m_pPopups; pPopup; pPopup = pPopup->m_pNext) {
            if (fits(*pPopup))
                return pPopup;
        }
    }
    return nullptr;
}

CCUIMenuRecord *CCUIMenuData::FindRecord(ULONG_PTR dwItemData, CCUIMenuPopup **ppPopup)
{
    CCUIMenuRecord *pRecord = nullptr;
    *ppPopup = FindPopup([&](const CCUIMenuPopup &popup) {
        pRecord = popup.Record(dwItemData);
        return pRecord != nullptr;
    });
    return pRecord;
}

// The object whose menu, or a popup below it, that is now.
CCUIMenuData *CCUIMenuData::FindOwner(HMENU hMenu)
{
    const CCULockGuard lock(s_lock);
    CCUIMenuData *pData = s_pFirst;
    while (pData && !(pData->m_hRoot && IsWithin(pData->m_hRoot, hMenu, 0)))
        pData = pData->m_pNext;
    return pData;
}

// Lets go of the popups that somebody has destroyed.
void CCUIMenuData::DropDead()
{
    for (CCUIMenuPopup **pp = &m_pPopups; *pp;) {
        CCUIMenuPopup *const pPopup = *pp;
        if (IsMenu(pPopup->GetMenu())) {
            pp = &pPopup->m_pNext;
        } else {
            *pp = pPopup->m_pNext;
            delete pPopup;
        }
    }
}

void CCUIMenuData::Open(HMENU hMenu, HWND hWnd)
{
    CCUIMenuPopup *pPopup = m_pPopups;
    while (pPopup && pPopup->GetMenu() != hMenu)
        pPopup = pPopup->m_pNext;
    if (!pPopup) {
        DropDead();
        pPopup = new CCUIMenuPopup(hMenu);
        pPopup->m_pNext = m_pPopups;
        m_pPopups = pPopup;
    }
    for (CCUIMenuPictures *pPictures = m_pPictures; pPictures; pPictures = pPictures->m_pNext)
        pPictures->Refresh();
    if (m_keys.GetCount()) {
        pPopup->Prepare(m_pPictures, m_keys);
        return;
    }
    CCUIAccelerators keys;
    AddAccelerators(keys, hWnd);
    pPopup->Prepare(m_pPictures, keys);
}

CCUIMenuRecord *CCUIMenuData::OnRecord(ULONG_PTR dwItemData)
{
    CCUIMenuPopup *pPopup = nullptr;
    return FindRecord(dwItemData, &pPopup);
}

// Under the lock, which no user code is called with: other threads must not find half a popup.
void CCUIMenuData::OnOpens(HMENU hMenu, HWND hWnd)
{
    const CCULockGuard lock(s_lock);
    if (CCUIMenuData *const pData = FindOwner(hMenu))
        pData->Open(hMenu, hWnd);
}

int CCUIMenuData::OnMeasure(MEASUREITEMSTRUCT &measure)
{
    CCUIMenuPopup *pPopup = nullptr;
    const CCUIMenuRecord *const pRecord = FindRecord(measure.itemData, &pPopup);
    if (pRecord)
        pPopup->Measure(*pRecord, measure);
    return pRecord != nullptr;
}

int CCUIMenuData::OnDraw(const DRAWITEMSTRUCT &draw)
{
    CCUIMenuPopup *pPopup = nullptr;
    const CCUIMenuRecord *const pRecord = FindRecord(draw.itemData, &pPopup);
    if (pRecord)
        pPopup->Draw(*pRecord, draw);
    return pRecord != nullptr;
}

long CCUIMenuData::OnCharacter(UINT nChar, HMENU hMenu)
{
    const CCUIMenuPopup *const pPopup =
        FindPopup([&](const CCUIMenuPopup &popup) { return popup.GetMenu() == hMenu; });
    return pPopup ? pPopup->Character(nChar) : 0;
}

void CCUIMenuData::OnGoes(HMENU hMenu)
{
    const CCULockGuard lock(s_lock);
    for (CCUIMenuData *pData = s_pFirst; pData; pData = pData->m_pNext) {
        if (pData->m_hRoot == hMenu)
            pData->m_hRoot = nullptr;
    }
}
