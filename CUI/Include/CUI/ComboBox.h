#pragma once

/// @file
/// The system's combo box.

#include "CUI/Platform.h"
#include "CUI/SystemControl.h"

/// A field with a list that drops down, and GetText and SetText for what the field shows. The list
/// is tall enough for SetDroppedRows items, whatever height a layout gives the control.
class CCUIComboBox : public CCUISystemControl
{
public:
    /// The usual style: a choice; and that of a field that takes any text.
    enum : DWORD
    {
        STYLE = WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST,  ///< the usual style
        STYLE_EDIT = WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWN |
                     CBS_AUTOHSCROLL  ///< a field that takes any text
    };
    /// Bound to no control.
    CCUIComboBox()
        : CCUISystemControl({"COMBOBOX", STYLE, 0, CB_GETITEMHEIGHT, false, 60, 14}), m_nRows(8)
    {
    }

    /// As those of CCUIListBox.
    /// @{
    int AddString(const char *pszText) { return Send(CB_ADDSTRING, 0, InText(pszText)); }
    int InsertString(int nItem, const char *pszText)
    {
        return Send(CB_INSERTSTRING, static_cast<WPARAM>(nItem), InText(pszText));
    }
    void DeleteString(int nItem) { Send(CB_DELETESTRING, static_cast<WPARAM>(nItem)); }
    void ResetContent() { Send(CB_RESETCONTENT); }
    int GetCount() const { return Send(CB_GETCOUNT); }
    CCUString GetItemText(int nItem) const
    {
        return FetchText(CB_GETLBTEXTLEN, CB_GETLBTEXT, static_cast<WPARAM>(nItem));
    }
    LPARAM GetItemData(int nItem) const { return Send(CB_GETITEMDATA, static_cast<WPARAM>(nItem)); }
    void SetItemData(int nItem, LPARAM lData)
    {
        Send(CB_SETITEMDATA, static_cast<WPARAM>(nItem), lData);
    }
    int FindString(const char *pszText, int nAfter = -1) const
    {
        return Send(CB_FINDSTRING, static_cast<WPARAM>(nAfter), InText(pszText));
    }
    int FindStringExact(const char *pszText, int nAfter = -1) const
    {
        return Send(CB_FINDSTRINGEXACT, static_cast<WPARAM>(nAfter), InText(pszText));
    }
    int GetCurSel() const { return Send(CB_GETCURSEL); }
    void SetCurSel(int nItem) { Send(CB_SETCURSEL, static_cast<WPARAM>(nItem)); }
    /// @}

    /// As high as the system makes the field.
    void GetNaturalSize(SIZE &size) override { MeasureField(size); }

    void DropDown(bool bDrop) { Send(CB_SHOWDROPDOWN, bDrop); }  ///< or closes the list
    /// Whether the list is open.
    bool IsDropped() const { return Send(CB_GETDROPPEDSTATE) != 0; }
    /// How many items the list shows before it scrolls; 8 at first.
    void SetDroppedRows(int nRows) { m_nRows = nRows; }
    /// The least width of the list.
    void SetDroppedWidth(int cx) { Send(CB_SETDROPPEDWIDTH, static_cast<WPARAM>(cx)); }
    /// The most characters of the field; 0: as many as it can hold.
    void SetLimit(int nCharacters) { Send(CB_LIMITTEXT, static_cast<WPARAM>(nCharacters)); }
    /// What is selected in the field; from nEnd on nothing is.
    /// @{
    void SetSelection(int nStart, int nEnd) { Send(CB_SETEDITSEL, 0, MAKELPARAM(nStart, nEnd)); }
    void GetSelection(int &nStart, int &nEnd) const
    {
        DWORD nFirst = 0, nLast = 0;
        Send(CB_GETEDITSEL, FromPointer<WPARAM>(&nFirst), &nLast);
        nStart = static_cast<int>(nFirst);
        nEnd = static_cast<int>(nLast);
    }
    /// @}

protected:
    /// The user has selected another item.
    virtual int OnSelChange() { return 0; }
    /// The user has changed the field's text.
    virtual int OnEditChange() { return 0; }
    /// The list is about to drop down, and was closed.
    /// @{
    virtual int OnDropDown() { return 0; }
    virtual int OnCloseUp() { return 0; }
    /// @}

    // The focus may be in the field, a window of its own. A list that is open is closed by Enter.
    bool IsReturnFor(HWND) const override { return !IsDropped(); }
    int OnControlCommand(UINT nCode) override
    {
        CWatch watch(this);
        switch (nCode) {
        case CBN_SELCHANGE: return OnSelChange();
        case CBN_EDITCHANGE: return OnEditChange();
        case CBN_DROPDOWN: {
            const int bHandled = OnDropDown();
            if (!watch.IsGone())
                MakeRoomForList(m_nRows);
            return bHandled;
        }
        case CBN_CLOSEUP: return OnCloseUp();
        case CBN_SETFOCUS:
            // The click that brings the field the focus passes the control by.
            SendMessageA(GetParent(m_hWnd), CUI_WM_CHILDFOCUS, FromPointer<WPARAM>(m_hWnd), 0);
            return 0;
        default: return 0;
        }
    }

private:
    CUI_API void MeasureField(SIZE &size);
    CUI_API void MakeRoomForList(int nRows);

    int m_nRows;
};
