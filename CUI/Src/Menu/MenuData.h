#pragma once

#include "CU/Platform.h"
#include "CUI/Accelerators.h"
#include "Menu/MenuHooks.h"
#include "Menu/MenuPictures.h"
#include "Menu/MenuPopup.h"

// What stands behind a CCUIMenu. All there are can be asked for a menu or for item data, by any
// thread; the answer is used on the menu's own.
class CCUIMenuData
{
public:
    // For the object's menu. It becomes null when that goes: the system may give the handle to
    // another one.
    explicit CCUIMenuData(HMENU &hRoot);
    ~CCUIMenuData();
    CCUIMenuData(const CCUIMenuData &) = delete;
    CCUIMenuData &operator=(const CCUIMenuData &) = delete;

    void AddPictures(CCUIMenuPictures *pPictures);
    // Gives its pictures to another one.
    void MovePicturesTo(CCUIMenuData &data);
    void SetAccelerators(const CCUIAccelerators &keys);
    // Has nothing to do with the menu any more.
    void Release();

private:
    static CCUIMenuRecord *FindRecord(ULONG_PTR dwItemData, CCUIMenuPopup **ppPopup);
    template <typename Fits>
    static CCUIMenuPopup *FindPopup(Fits fits);
    static CCUIMenuData *FindOwner(HMENU hMenu);
    void DropDead();
    void Open(HMENU hMenu, HWND hWnd);

    static CCUIMenuRecord *OnRecord(ULONG_PTR dwItemData);
    static void OnOpens(HMENU hMenu, HWND hWnd);
    static int OnMeasure(MEASUREITEMSTRUCT &measure);
    static int OnDraw(const DRAWITEMSTRUCT &draw);
    static long OnCharacter(UINT nChar, HMENU hMenu);
    static void OnGoes(HMENU hMenu);

    static const CUIMenuHooks HOOKS;

    HMENU &m_hRoot;
    CCUIMenuPopup *m_pPopups = nullptr;       // those that have been opened
    CCUIMenuPictures *m_pPictures = nullptr;  // the latest first
    CCUIAccelerators m_keys;
    CCUIMenuData *m_pNext;
};
