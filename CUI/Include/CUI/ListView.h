#pragma once

/// @file
/// The system's list view.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

#include <commctrl.h>

/// A list of items, in columns or as icons. Column 0 has the items' own texts.
class CCUIListView : public CCUISystemControl
{
public:
    /// The usual style: columns. LVS_SINGLESEL: one selected item at the most; LVS_EDITLABELS:
    /// texts can be edited in place; LVS_SHAREIMAGELISTS: image lists stay when the control goes.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | LVS_REPORT | LVS_SHOWSELALWAYS  ///< the usual style
    };
    /// Bound to no control.
    CCUIListView()
        : CCUISystemControl(
              {WC_LISTVIEWA, STYLE, WS_EX_CLIENTEDGE, LVM_GETITEMSPACING, true, 100, 60})
    {
    }

    /// LVS_ICON, LVS_SMALLICON, LVS_LIST or LVS_REPORT.
    void SetView(DWORD dwView) { ModifyStyle(LVS_TYPEMASK, dwView); }
    /// LVS_EX_ bits: LVS_EX_CHECKBOXES, LVS_EX_FULLROWSELECT and so on. With Internet Explorer 3.
    void SetExtendedStyle(DWORD dwStyle)
    {
        Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(dwStyle));
    }
    /// The images: LVSIL_NORMAL, LVSIL_SMALL or LVSIL_STATE. Returns the list before.
    HIMAGELIST SetImageList(HIMAGELIST hImages, int nKind = LVSIL_SMALL)
    {
        return reinterpret_cast<HIMAGELIST>(
            Send(LVM_SETIMAGELIST, static_cast<WPARAM>(nKind), hImages));
    }

    /// A column, aligned by LVCFMT_LEFT, LVCFMT_RIGHT or LVCFMT_CENTER. Its index; -1 on failure.
    int InsertColumn(int nColumn, const char *pszText, int cx, int nFormat = LVCFMT_LEFT)
    {
        LVCOLUMNA column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
        column.pszText = InText(pszText);
        column.cx = cx;
        column.fmt = nFormat;
        column.iSubItem = nColumn;
        return Send(LVM_INSERTCOLUMNA, static_cast<WPARAM>(nColumn), &column);
    }
    /// Deletes a column, with its texts.
    void DeleteColumn(int nColumn) { Send(LVM_DELETECOLUMN, static_cast<WPARAM>(nColumn)); }
    /// In pixels.
    int GetColumnWidth(int nColumn) const
    {
        return Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(nColumn));
    }
    /// Also LVSCW_AUTOSIZE (its texts) and LVSCW_AUTOSIZE_USEHEADER (its heading too).
    void SetColumnWidth(int nColumn, int cx)
    {
        Send(LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(nColumn), MAKELPARAM(cx, 0));
    }

    /// An item, with the image of that index in the list (-1: none) and a number or pointer of the
    /// program's. Its index; -1 on failure.
    int InsertItem(int nItem, const char *pszText, int nImage = -1, LPARAM lData = 0)
    {
        LVITEMA item = Record(nItem, LVIF_TEXT | LVIF_IMAGE | LVIF_PARAM);
        item.pszText = InText(pszText);
        item.iImage = nImage;
        item.lParam = lData;
        return Send(LVM_INSERTITEMA, 0, &item);
    }
    /// InsertItem at the end.
    int AddItem(const char *pszText, int nImage = -1, LPARAM lData = 0)
    {
        return InsertItem(GetCount(), pszText, nImage, lData);
    }
    /// Deletes an item.
    void DeleteItem(int nItem) { Send(LVM_DELETEITEM, static_cast<WPARAM>(nItem)); }
    /// Deletes all items.
    void DeleteAllItems() { Send(LVM_DELETEALLITEMS); }
    /// How many there are.
    int GetCount() const { return Send(LVM_GETITEMCOUNT); }
    /// Room for so many items, to be made before they are added; of one with LVS_OWNERDATA, which
    /// needs Internet Explorer 3, its items.
    void SetCount(int nCount) { Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(nCount)); }

    /// An item's text; "" where there is no such item.
    CCUString GetItemText(int nItem, int nColumn = 0) const
    {
        LVITEMA item = Record(nItem, LVIF_TEXT);
        item.iSubItem = nColumn;
        return FetchText(LVM_GETITEMTEXTA, static_cast<WPARAM>(nItem), &item, item.pszText,
                         item.cchTextMax);
    }
    /// Gives an item another text.
    void SetItemText(int nItem, int nColumn, const char *pszText)
    {
        LVITEMA item = Record(nItem, LVIF_TEXT);
        item.iSubItem = nColumn;
        item.pszText = InText(pszText);
        Send(LVM_SETITEMTEXTA, static_cast<WPARAM>(nItem), &item);
    }
    /// The number or pointer that an item was given; 0 where there is no such item.
    LPARAM GetItemData(int nItem) const
    {
        LVITEMA item = Record(nItem, LVIF_PARAM);
        Send(LVM_GETITEMA, 0, &item);
        return item.lParam;
    }
    /// Gives an item another number or pointer.
    void SetItemData(int nItem, LPARAM lData)
    {
        LVITEMA item = Record(nItem, LVIF_PARAM);
        item.lParam = lData;
        Send(LVM_SETITEMA, 0, &item);
    }
    /// Gives an item another image; see InsertItem.
    void SetItemImage(int nItem, int nImage)
    {
        LVITEMA item = Record(nItem, LVIF_IMAGE);
        item.iImage = nImage;
        Send(LVM_SETITEMA, 0, &item);
    }

    /// How many items are selected.
    int GetSelCount() const { return Send(LVM_GETSELECTEDCOUNT); }
    /// Whether the item is selected.
    bool IsSelected(int nItem) const { return GetState(nItem, LVIS_SELECTED) != 0; }
    /// The first selected item behind nAfter; -1: none.
    int FindSelected(int nAfter = -1) const { return Next(nAfter, LVNI_SELECTED); }
    int GetFocused() const
    {
        return Next(-1, LVNI_FOCUSED);
    }  ///< where the keyboard is; -1: nowhere
    /// Selects an item, which becomes the focused one, or unselects it; -1: all. To set it tells as
    /// the user's choice does.
    void Select(int nItem, bool bSelect = true)
    {
        const UINT nStates = bSelect && nItem >= 0 ? LVIS_SELECTED | LVIS_FOCUSED : LVIS_SELECTED;
        SetState(nItem, bSelect ? nStates : 0, nStates);
    }
    /// Of a list with check boxes.
    /// @{
    bool GetCheck(int nItem) const { return IsCheck(GetState(nItem, LVIS_STATEIMAGEMASK)); }
    void SetCheck(int nItem, bool bCheck)
    {
        SetState(nItem, INDEXTOSTATEIMAGEMASK(bCheck ? 2U : 1U), LVIS_STATEIMAGEMASK);
    }
    /// @}
    /// Scrolls no further than it must for the item to be seen.
    void EnsureVisible(int nItem) { Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(nItem), FALSE); }
    void Update(int nItem) { Send(LVM_UPDATE, static_cast<WPARAM>(nItem)); }  ///< repaints it
    /// The first item behind nAfter whose text is that one, or begins with it, or whose data are
    /// those; -1: none.
    /// @{
    int FindItem(const char *pszText, bool bBeginning = false, int nAfter = -1) const
    {
        LVFINDINFOA find = {};
        find.flags = bBeginning ? LVFI_STRING | LVFI_PARTIAL : LVFI_STRING;
        find.psz = InText(pszText);
        return Send(LVM_FINDITEMA, static_cast<WPARAM>(nAfter), &find);
    }
    int FindItemData(LPARAM lData, int nAfter = -1) const
    {
        LVFINDINFOA find = {};
        find.flags = LVFI_PARAM;
        find.lParam = lData;
        return Send(LVM_FINDITEMA, static_cast<WPARAM>(nAfter), &find);
    }
    /// @}
    /// Sorts by what compare(LPARAM, LPARAM) says of two items' data: below 0 where the first goes
    /// first, above 0 where the second does.
    template <typename Compare>
    void SortItems(Compare compare)
    {
        Send(LVM_SORTITEMS, FromPointer<WPARAM>(&compare),
             FromPointer<LPARAM>(&CallCompare<Compare>));
    }
    /// Begins to edit a text in place: the field, or null. The list needs the focus.
    HWND EditLabel(int nItem)
    {
        return reinterpret_cast<HWND>(Send(LVM_EDITLABELA, static_cast<WPARAM>(nItem)));
    }
    /// The place of an item, or of a part of it (LVIR_LABEL and so on), in client pixels; false:
    /// there is none.
    bool GetItemRect(int nItem, RECT &rect, int nPart = LVIR_BOUNDS) const
    {
        rect.left = nPart;
        return Send(LVM_GETITEMRECT, static_cast<WPARAM>(nItem), &rect) != 0;
    }
    /// The item at a point of the client area; -1: none.
    int HitTest(const POINT &point) const
    {
        LVHITTESTINFO hit = {};
        hit.pt = point;
        return Send(LVM_HITTEST, 0, &hit);
    }

protected:
    /// An item was selected or unselected; two calls where another one is; nItem -1: all.
    virtual int OnSelChange(int /*nItem*/, bool /*bSelected*/) { return 0; }
    /// An item was checked or unchecked.
    virtual int OnCheck(int /*nItem*/, bool /*bChecked*/) { return 0; }
    /// An item was clicked twice, or Enter was pressed on it.
    virtual int OnItemActivate(int /*nItem*/) { return 0; }
    /// A column's heading was clicked.
    virtual int OnColumnClick(int /*nColumn*/) { return 0; }
    /// A text is about to be edited in place, or not if bRefuse is set.
    virtual int OnBeginLabelEdit(int /*nItem*/, bool & /*bRefuse*/) { return 0; }
    /// It was edited; null: in vain. The item keeps its text unless bAccept is set.
    virtual int OnEndLabelEdit(int /*nItem*/, const char * /*pszText*/, bool & /*bAccept*/)
    {
        return 0;
    }
    /// The user has begun to drag the selected items.
    virtual int OnBeginDrag(int /*nItem*/) { return 0; }
    /// An item is deleted, also with the control, but not any more by the object's destructor. Its
    /// data may be asked for.
    virtual int OnDeleteItem(int /*nItem*/) { return 0; }

    int OnReturn() override
    {
        const int nItem = GetFocused();
        return nItem >= 0 ? OnItemActivate(nItem) : 0;
    }
    int OnControlNotify(NMHDR *pHeader, long &result) override
    {
        const auto &list = *reinterpret_cast<const NMLISTVIEW *>(pHeader);
        const auto &label = *reinterpret_cast<const NMLVDISPINFOA *>(pHeader);
        bool bAnswer = false;
        int bHandled = 0;
        switch (pHeader->code) {
        case LVN_ITEMCHANGED: return OnItemChanged(list);
        case LVN_COLUMNCLICK: return OnColumnClick(list.iSubItem);
        case LVN_BEGINLABELEDITA: bHandled = OnBeginLabelEdit(label.item.iItem, bAnswer); break;
        case LVN_ENDLABELEDITA:
            bHandled = OnEndLabelEdit(label.item.iItem, label.item.pszText, bAnswer);
            break;
        case LVN_BEGINDRAG: return OnBeginDrag(list.iItem);
        case LVN_DELETEITEM: return OnDeleteItem(list.iItem);
        case NM_DBLCLK: {
            const int nItem = HitTest(GetMessagePoint());
            return nItem >= 0 ? OnItemActivate(nItem) : 0;
        }
        default: break;
        }
        result = bAnswer;
        return bHandled;
    }
    void OnDestroy() override
    {
        CWatch watch(this);
        DeleteAllItems();  // while that is heard of
        if (!watch.IsGone())
            CCUISystemControl::OnDestroy();
    }

private:
    static bool IsCheck(UINT nState) { return (nState & LVIS_STATEIMAGEMASK) >> 12 == 2; }
    static LVITEMA Record(int nItem, UINT nMask)
    {
        LVITEMA item = {};
        item.mask = nMask;
        item.iItem = nItem;
        return item;
    }
    int Next(int nAfter, UINT nFlags) const
    {
        return Send(LVM_GETNEXTITEM, static_cast<WPARAM>(nAfter), MAKELPARAM(nFlags, 0));
    }
    UINT GetState(int nItem, UINT nMask) const
    {
        return static_cast<UINT>(
            Send(LVM_GETITEMSTATE, static_cast<WPARAM>(nItem), static_cast<LPARAM>(nMask)));
    }
    void SetState(int nItem, UINT nState, UINT nMask)
    {
        LVITEMA item = {};
        item.state = nState;
        item.stateMask = nMask;
        Send(LVM_SETITEMSTATE, static_cast<WPARAM>(nItem), &item);
    }
    int OnItemChanged(const NMLISTVIEW &list)
    {
        CWatch watch(this);
        const UINT nChanged = list.uChanged & LVIF_STATE ? list.uOldState ^ list.uNewState : 0;
        int bHandled = 0;
        if (nChanged & LVIS_SELECTED)
            bHandled = OnSelChange(list.iItem, (list.uNewState & LVIS_SELECTED) != 0);
        // A new item's first state was none.
        if (!watch.IsGone() && (nChanged & LVIS_STATEIMAGEMASK) &&
            (list.uOldState & LVIS_STATEIMAGEMASK))
            bHandled |= OnCheck(list.iItem, IsCheck(list.uNewState));
        return bHandled;
    }
};
