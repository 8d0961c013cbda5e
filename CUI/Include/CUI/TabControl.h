#pragma once

/// @file
/// The system's tab control.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

#include <commctrl.h>

/// A row of tabs, and below it the room for the page of the one that is selected.
class CCUITabControl : public CCUISystemControl
{
public:
    /// The usual style. What is shown on a page is a sibling behind it, or a child of it.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | WS_CLIPSIBLINGS  ///< the usual style
    };
    /// Bound to no control.
    CCUITabControl() : CCUISystemControl({WC_TABCONTROLA, STYLE, 0, 0, true, 120, 80}) {}

    /// A tab, with the image of that index in the list (-1: none) and a number or pointer of the
    /// program's. Its index; -1 on failure.
    int InsertItem(int nItem, const char *pszText, int nImage = -1, LPARAM lData = 0)
    {
        TCITEMA item = {};
        item.mask = TCIF_TEXT | TCIF_IMAGE | TCIF_PARAM;
        item.pszText = InText(pszText);
        item.iImage = nImage;
        item.lParam = lData;
        return Send(TCM_INSERTITEMA, static_cast<WPARAM>(nItem), &item);
    }
    /// InsertItem at the end.
    int AddItem(const char *pszText, int nImage = -1, LPARAM lData = 0)
    {
        return InsertItem(GetCount(), pszText, nImage, lData);
    }
    /// Deletes an item.
    void DeleteItem(int nItem) { Send(TCM_DELETEITEM, static_cast<WPARAM>(nItem)); }
    /// Deletes all items.
    void DeleteAllItems() { Send(TCM_DELETEALLITEMS); }
    /// How many there are.
    int GetCount() const { return Send(TCM_GETITEMCOUNT); }

    /// An item's text; "" where there is no such item.
    CCUString GetItemText(int nItem) const
    {
        TCITEMA item = {};
        item.mask = TCIF_TEXT;
        return FetchText(TCM_GETITEMA, static_cast<WPARAM>(nItem), &item, item.pszText,
                         item.cchTextMax);
    }
    /// Gives an item another text.
    void SetItemText(int nItem, const char *pszText)
    {
        TCITEMA item = {};
        item.mask = TCIF_TEXT;
        item.pszText = InText(pszText);
        Send(TCM_SETITEMA, static_cast<WPARAM>(nItem), &item);
    }
    /// The number or pointer that an item was given; 0 where there is no such item.
    LPARAM GetItemData(int nItem) const
    {
        TCITEMA item = {};
        item.mask = TCIF_PARAM;
        Send(TCM_GETITEMA, static_cast<WPARAM>(nItem), &item);
        return item.lParam;
    }
    /// Gives an item another number or pointer.
    void SetItemData(int nItem, LPARAM lData)
    {
        TCITEMA item = {};
        item.mask = TCIF_PARAM;
        item.lParam = lData;
        Send(TCM_SETITEMA, static_cast<WPARAM>(nItem), &item);
    }
    /// The images; not owned. Returns the list before.
    HIMAGELIST SetImageList(HIMAGELIST hImages)
    {
        return reinterpret_cast<HIMAGELIST>(Send(TCM_SETIMAGELIST, 0, hImages));
    }

    /// The tab that is selected; -1: none. To set it tells nobody.
    /// @{
    int GetCurSel() const { return Send(TCM_GETCURSEL); }
    void SetCurSel(int nItem) { Send(TCM_SETCURSEL, static_cast<WPARAM>(nItem)); }
    /// @}
    /// The tab at a point of the client area; -1: none.
    int HitTest(const POINT &point) const
    {
        TCHITTESTINFO hit = {point, 0};
        return Send(TCM_HITTEST, 0, &hit);
    }
    /// The room of a page, in client pixels.
    void GetPageRect(RECT &rect) const
    {
        GetClientRect(m_hWnd, &rect);
        Send(TCM_ADJUSTRECT, FALSE, &rect);
    }

protected:
    /// The selected tab is about to be left by the user, or not if bRefuse is set.
    virtual int OnSelChanging(bool & /*bRefuse*/) { return 0; }
    /// Another tab was selected by the user.
    virtual int OnSelChange() { return 0; }

    int OnControlNotify(NMHDR *pHeader, long &result) override
    {
        switch (pHeader->code) {
        case TCN_SELCHANGE: return OnSelChange();
        case TCN_SELCHANGING: {
            bool bRefuse = false;
            const int bHandled = OnSelChanging(bRefuse);
            result = bRefuse;
            return bHandled;
        }
        default: return 0;
        }
    }
};
