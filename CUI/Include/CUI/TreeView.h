#pragma once

/// @file
/// The system's tree view.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

#include <commctrl.h>
#include <string.h>

/// A tree of items. A null item is none, as a parent the tree's invisible root. A click with the
/// right button asks the tree for its context menu (OnContextMenu), as it does other windows.
class CCUITreeView : public CCUISystemControl
{
public:
    /// The usual style. TVS_EDITLABELS: texts can be edited in place; TVS_CHECKBOXES, with Internet
    /// Explorer 3: items can be checked.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT |
                TVS_SHOWSELALWAYS  ///< the usual style
    };
    /// Bound to no control.
    CCUITreeView()
        : CCUISystemControl({WC_TREEVIEWA, STYLE, WS_EX_CLIENTEDGE, TVM_GETINDENT, true, 80, 60})
    {
    }

    /// An item, behind another one of its parent, or TVI_FIRST, TVI_LAST, TVI_SORT; with images of
    /// those indexes in the list (a selected one below 0: the same), and a number or pointer of the
    /// program's. Null on failure.
    HTREEITEM InsertItem(HTREEITEM hParent, const char *pszText, int nImage = 0, int nSelected = -1,
                         LPARAM lData = 0, HTREEITEM hAfter = TVI_LAST)
    {
        TVINSERTSTRUCTA insert = {};
        insert.hParent = hParent;
        insert.hInsertAfter = hAfter;
        insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_PARAM;
        insert.item.pszText = InText(pszText);
        insert.item.iImage = nImage;
        insert.item.iSelectedImage = nSelected < 0 ? nImage : nSelected;
        insert.item.lParam = lData;
        return Item(Send(TVM_INSERTITEMA, 0, &insert));
    }
    void DeleteItem(HTREEITEM hItem) { Send(TVM_DELETEITEM, 0, hItem); }  ///< and all in it
    /// Deletes all items.
    void DeleteAllItems() { Send(TVM_DELETEITEM, 0, TVI_ROOT); }
    /// How many there are.
    int GetCount() const { return Send(TVM_GETCOUNT); }

    /// An item's text; "" where there is no such item.
    CCUString GetItemText(HTREEITEM hItem) const
    {
        TVITEMA item = Record(hItem, TVIF_TEXT);
        return FetchText(TVM_GETITEMA, 0, &item, item.pszText, item.cchTextMax);
    }
    /// Gives an item another text.
    void SetItemText(HTREEITEM hItem, const char *pszText)
    {
        TVITEMA item = Record(hItem, TVIF_TEXT);
        item.pszText = InText(pszText);
        Send(TVM_SETITEMA, 0, &item);
    }
    /// The number or pointer that an item was given; 0 where there is no such item.
    LPARAM GetItemData(HTREEITEM hItem) const
    {
        TVITEMA item = Record(hItem, TVIF_PARAM);
        Send(TVM_GETITEMA, 0, &item);
        return item.lParam;
    }
    /// Gives an item another number or pointer.
    void SetItemData(HTREEITEM hItem, LPARAM lData)
    {
        TVITEMA item = Record(hItem, TVIF_PARAM);
        item.lParam = lData;
        Send(TVM_SETITEMA, 0, &item);
    }
    /// Gives an item another image; see InsertItem.
    void SetItemImage(HTREEITEM hItem, int nImage, int nSelected = -1)
    {
        TVITEMA item = Record(hItem, TVIF_IMAGE | TVIF_SELECTEDIMAGE);
        item.iImage = nImage;
        item.iSelectedImage = nSelected < 0 ? nImage : nSelected;
        Send(TVM_SETITEMA, 0, &item);
    }
    /// The images; not owned. Returns the list before.
    HIMAGELIST SetImageList(HIMAGELIST hImages)
    {
        return reinterpret_cast<HIMAGELIST>(Send(TVM_SETIMAGELIST, TVSIL_NORMAL, hImages));
    }

    /// The way through the tree; null at its ends.
    /// @{
    HTREEITEM GetRoot() const { return Next(TVGN_ROOT, nullptr); }  ///< the first of the root
    HTREEITEM GetParentItem(HTREEITEM hItem) const { return Next(TVGN_PARENT, hItem); }
    HTREEITEM GetChildItem(HTREEITEM hItem) const { return Next(TVGN_CHILD, hItem); }
    HTREEITEM GetNextItem(HTREEITEM hItem) const { return Next(TVGN_NEXT, hItem); }
    HTREEITEM GetPrevItem(HTREEITEM hItem) const { return Next(TVGN_PREVIOUS, hItem); }
    /// @}
    /// The first child with that text; null: none.
    HTREEITEM FindChild(HTREEITEM hParent, const char *pszText) const
    {
        HTREEITEM hItem = hParent ? GetChildItem(hParent) : GetRoot();
        while (hItem && GetItemText(hItem) != pszText)
            hItem = GetNextItem(hItem);
        return hItem;
    }

    /// The selected item. To set it tells as the user's choice does.
    /// @{
    HTREEITEM GetSelection() const { return Next(TVGN_CARET, nullptr); }
    void SelectItem(HTREEITEM hItem) { Send(TVM_SELECTITEM, TVGN_CARET, hItem); }
    /// @}
    /// Shows or hides the children: TVE_EXPAND, TVE_COLLAPSE or TVE_TOGGLE.
    void Expand(HTREEITEM hItem, UINT nCode = TVE_EXPAND) { Send(TVM_EXPAND, nCode, hItem); }
    /// Whether the children are shown.
    bool IsExpanded(HTREEITEM hItem) const { return (GetState(hItem) & TVIS_EXPANDED) != 0; }
    /// Scrolls, and in a tree expands, no further than it must for the item to be seen.
    void EnsureVisible(HTREEITEM hItem) { Send(TVM_ENSUREVISIBLE, 0, hItem); }
    /// Of a tree with check boxes.
    /// @{
    bool GetCheck(HTREEITEM hItem) const { return (GetState(hItem) >> 12) == 2; }
    void SetCheck(HTREEITEM hItem, bool bCheck)
    {
        TVITEMA item = Record(hItem, TVIF_STATE);
        item.stateMask = TVIS_STATEIMAGEMASK;
        item.state = INDEXTOSTATEIMAGEMASK(bCheck ? 2U : 1U);
        Send(TVM_SETITEMA, 0, &item);
    }
    /// @}
    /// Begins to edit a text in place: the field, or null. The tree needs the focus.
    HWND EditLabel(HTREEITEM hItem)
    {
        return reinterpret_cast<HWND>(Send(TVM_EDITLABELA, 0, hItem));
    }
    /// Sorts the children of an item: by their texts, or by what compare(LPARAM, LPARAM) says of
    /// two items' data: below 0 where the first goes first, above 0 where the second does.
    /// @{
    void SortChildren(HTREEITEM hParent) { Send(TVM_SORTCHILDREN, 0, hParent); }
    template <typename Compare>
    void SortChildren(HTREEITEM hParent, Compare compare)
    {
        TVSORTCB sort = {hParent, CallCompare<Compare>, FromPointer<LPARAM>(&compare)};
        Send(TVM_SORTCHILDRENCB, 0, &sort);
    }
    /// @}
    /// The place of an item's text, in client pixels; false: it is not shown.
    bool GetItemRect(HTREEITEM hItem, RECT &rect) const
    {
        // The message takes the item from where it writes the answer to.
        memcpy(&rect, &hItem, sizeof(HTREEITEM));
        return Send(TVM_GETITEMRECT, TRUE, &rect) != 0;
    }
    /// The item at a point of the client area, with its image and text; null: none.
    HTREEITEM HitTest(const POINT &point) const
    {
        TVHITTESTINFO hit = {point, 0, nullptr};
        Send(TVM_HITTEST, 0, &hit);
        return hit.flags & TVHT_ONITEM ? hit.hItem : nullptr;
    }

protected:
    /// The selection is about to change, or not if bRefuse is set; it has changed; null: to none.
    /// @{
    virtual int OnSelChanging(HTREEITEM /*hNew*/, bool & /*bRefuse*/) { return 0; }
    virtual int OnSelChange(HTREEITEM /*hNew*/) { return 0; }
    /// @}
    /// Children are about to be shown (the time to insert them) or hidden, or not if bRefuse is
    /// set; they have been.
    /// @{
    virtual int OnExpanding(HTREEITEM /*hItem*/, bool /*bExpand*/, bool & /*bRefuse*/) { return 0; }
    virtual int OnExpanded(HTREEITEM /*hItem*/, bool /*bExpanded*/) { return 0; }
    /// @}
    /// An item was clicked twice, or Enter was pressed on it. Handled, a click does not expand it.
    virtual int OnItemActivate(HTREEITEM /*hItem*/) { return 0; }
    /// A text is about to be edited in place, or not if bRefuse is set.
    virtual int OnBeginLabelEdit(HTREEITEM /*hItem*/, bool & /*bRefuse*/) { return 0; }
    /// It was edited; null: in vain. The item keeps its text unless bAccept is set.
    virtual int OnEndLabelEdit(HTREEITEM /*hItem*/, const char * /*pszText*/, bool & /*bAccept*/)
    {
        return 0;
    }
    /// The user has begun to drag an item.
    virtual int OnBeginDrag(HTREEITEM /*hItem*/) { return 0; }
    /// An item is deleted, also with the control, but not any more by the object's destructor.
    virtual int OnDeleteItem(HTREEITEM /*hItem*/, LPARAM /*lData*/) { return 0; }

    int OnReturn() override
    {
        const HTREEITEM hItem = GetSelection();
        return hItem ? OnItemActivate(hItem) : 0;
    }
    int OnControlNotify(NMHDR *pHeader, long &result) override
    {
        auto &tree = *reinterpret_cast<NMTREEVIEWA *>(pHeader);
        const auto &label = *reinterpret_cast<const NMTVDISPINFOA *>(pHeader);
        bool bAnswer = false;
        int bHandled = 0;
        switch (pHeader->code) {
        case TVN_SELCHANGINGA: bHandled = OnSelChanging(tree.itemNew.hItem, bAnswer); break;
        case TVN_SELCHANGEDA: return OnSelChange(tree.itemNew.hItem);
        case TVN_ITEMEXPANDINGA:
            bHandled = OnExpanding(tree.itemNew.hItem, tree.action == TVE_EXPAND, bAnswer);
            break;
        case TVN_ITEMEXPANDEDA: return OnExpanded(tree.itemNew.hItem, tree.action == TVE_EXPAND);
        case TVN_BEGINLABELEDITA: bHandled = OnBeginLabelEdit(label.item.hItem, bAnswer); break;
        case TVN_ENDLABELEDITA:
            bHandled = OnEndLabelEdit(label.item.hItem, label.item.pszText, bAnswer);
            break;
        case TVN_BEGINDRAGA: return OnBeginDrag(tree.itemNew.hItem);
        case TVN_DELETEITEMA: return OnDeleteItem(tree.itemOld.hItem, tree.itemOld.lParam);
        case NM_RCLICK:
            // Else the tree would ask its parent for a context menu, not itself.
            result = 1;
            SendMessageA(m_hWnd, WM_CONTEXTMENU, FromPointer<WPARAM>(m_hWnd),
                         static_cast<LPARAM>(GetMessagePos()));
            return 1;
        case NM_DBLCLK: {
            const HTREEITEM hItem = HitTest(GetMessagePoint());
            bHandled = hItem ? OnItemActivate(hItem) : 0;
            bAnswer = true;
            break;
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
    static HTREEITEM Item(LRESULT nResult) { return reinterpret_cast<HTREEITEM>(nResult); }
    static TVITEMA Record(HTREEITEM hItem, UINT nMask)
    {
        TVITEMA item = {};
        item.mask = nMask | TVIF_HANDLE;
        item.hItem = hItem;
        return item;
    }
    HTREEITEM Next(WPARAM nWay, HTREEITEM hItem) const
    {
        return Item(Send(TVM_GETNEXTITEM, nWay, hItem));
    }
    UINT GetState(HTREEITEM hItem) const
    {
        TVITEMA item = Record(hItem, TVIF_STATE);
        item.stateMask = TVIS_EXPANDED | TVIS_STATEIMAGEMASK;
        Send(TVM_GETITEMA, 0, &item);
        return item.state & item.stateMask;
    }
};
