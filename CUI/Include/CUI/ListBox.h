#pragma once

/// @file
/// The system's list box.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

/// A list of texts, of which one can be selected or, with LBS_EXTENDEDSEL, any.
class CCUIListBox : public CCUISystemControl
{
public:
    /// The usual style. LBS_SORT sorts.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT  ///< the usual style
    };
    /// Bound to no control.
    CCUIListBox()
        : CCUISystemControl({"LISTBOX", STYLE, WS_EX_CLIENTEDGE, LB_GETITEMHEIGHT, false, 60, 40})
    {
    }

    /// Adds an item, at the end or where it belongs, or in front of another. Its index; below 0 on
    /// failure.
    /// @{
    int AddString(const char *pszText) { return Send(LB_ADDSTRING, 0, InText(pszText)); }
    int InsertString(int nItem, const char *pszText)
    {
        return Send(LB_INSERTSTRING, static_cast<WPARAM>(nItem), InText(pszText));
    }
    /// @}
    /// Deletes an item.
    void DeleteString(int nItem) { Send(LB_DELETESTRING, static_cast<WPARAM>(nItem)); }
    void ResetContent() { Send(LB_RESETCONTENT); }  ///< deletes all
    /// How many there are.
    int GetCount() const { return Send(LB_GETCOUNT); }

    /// An item's text; "" where there is no such item.
    CCUString GetItemText(int nItem) const
    {
        return FetchText(LB_GETTEXTLEN, LB_GETTEXT, static_cast<WPARAM>(nItem));
    }
    /// A number or a pointer of the program's, 0 at first; -1 also where there is no such item.
    /// @{
    LPARAM GetItemData(int nItem) const { return Send(LB_GETITEMDATA, static_cast<WPARAM>(nItem)); }
    void SetItemData(int nItem, LPARAM lData)
    {
        Send(LB_SETITEMDATA, static_cast<WPARAM>(nItem), lData);
    }
    /// @}
    /// The first item behind nAfter, and then from the start, whose text begins with that one, or
    /// is that one, without regard to case; -1: none.
    /// @{
    int FindString(const char *pszText, int nAfter = -1) const
    {
        return Send(LB_FINDSTRING, static_cast<WPARAM>(nAfter), InText(pszText));
    }
    int FindStringExact(const char *pszText, int nAfter = -1) const
    {
        return Send(LB_FINDSTRINGEXACT, static_cast<WPARAM>(nAfter), InText(pszText));
    }
    /// @}

    /// The selected item of a list where that is one; -1: none. To set it tells nobody.
    /// @{
    int GetCurSel() const { return Send(LB_GETCURSEL); }
    void SetCurSel(int nItem) { Send(LB_SETCURSEL, static_cast<WPARAM>(nItem)); }
    /// @}
    /// Whether an item is selected; -1 sets all, of a list where any can be.
    /// @{
    bool IsSelected(int nItem) const { return Send(LB_GETSEL, static_cast<WPARAM>(nItem)) > 0; }
    void Select(int nItem, bool bSelect) { Send(LB_SETSEL, bSelect, static_cast<LPARAM>(nItem)); }
    /// @}
    /// How many are selected, where any can be; else -1.
    int GetSelCount() const { return Send(LB_GETSELCOUNT); }
    /// The first selected item from nItem on; -1: none.
    int FindSelected(int nItem) const
    {
        const int nCount = GetCount();
        while (nItem < nCount && !IsSelected(nItem))
            ++nItem;
        return nItem < nCount ? nItem : -1;
    }

    int GetTopIndex() const { return Send(LB_GETTOPINDEX); }  ///< the first item that is seen
    /// Scrolls so that the item is the first that is seen, or as near as can be.
    void SetTopIndex(int nItem) { Send(LB_SETTOPINDEX, static_cast<WPARAM>(nItem)); }
    /// Scrolls no further than it must.
    void EnsureVisible(int nItem)
    {
        RECT rect = {}, client = {};
        if (Send(LB_GETITEMRECT, static_cast<WPARAM>(nItem), &rect) == LB_ERR)
            return;
        GetClientRect(m_hWnd, &client);
        int nTop = nItem;
        if (rect.bottom > client.bottom) {
            // Items that the program draws may differ in height.
            LRESULT nRoom = client.bottom - (rect.bottom - rect.top);
            while (nTop > 0 &&
                   (nRoom -= Send(LB_GETITEMHEIGHT, static_cast<WPARAM>(nTop - 1))) >= 0)
                --nTop;
        }
        if (rect.top < client.top || rect.bottom > client.bottom)
            SetTopIndex(nTop);
    }
    /// The item at a point of the client area; -1: none.
    int HitTest(const POINT &point) const
    {
        const LRESULT nHit = Send(LB_ITEMFROMPOINT, 0, MAKELPARAM(point.x, point.y));
        return HIWORD(nHit) || LOWORD(nHit) >= GetCount() ? -1 : LOWORD(nHit);
    }
    /// The width that can be scrolled to, of one with WS_HSCROLL.
    void SetHorizontalExtent(int cx) { Send(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(cx)); }

protected:
    /// The user has selected or unselected items.
    virtual int OnSelChange() { return 0; }
    /// An item was clicked twice.
    virtual int OnDblClk() { return 0; }

    int OnControlCommand(UINT nCode) override
    {
        switch (nCode) {
        case LBN_SELCHANGE: return OnSelChange();
        case LBN_DBLCLK: return OnDblClk();
        default: return 0;
        }
    }
};
