#pragma once

#include "CUI/Button.h"
#include "CUI/ControlWindow.h"
#include "Model/Problem.h"
#include "Window/PropertyRows.h"
#include "Window/TextField.h"

class CPropertyGrid;

// The window around a table of properties.
class CPropertyHost
{
public:
    // The user has chosen the selected row (bChosen), perhaps once more, or what it says has
    // changed.
    virtual void OnPropertyRow(const PropertyRow &row, bool bChosen) = 0;
    // Something is to be chosen for a row.
    virtual void OnPropertyButton(const PropertyRow &row) = 0;

protected:
    ~CPropertyHost() = default;
};

// A table of two columns, names and values, in groups. The value of the selected row is edited in
// place, and counts as it is typed.
//
//     Up, Down, Page Up, Page Down    other rows
//     F4, Alt+Down                    what the button "..." does
//     Escape                          takes back what was typed in this row
class CPropertyGrid : public CCUIControlWindow
{
public:
    // Both must outlive it.
    CPropertyGrid(CDocument &document, CPropertyHost &host);
    ~CPropertyGrid() override;

    int CreateGrid(HWND hParent, UINT nID);

    // Shows what the document has now: of a part of it, or all (null).
    void Read(const SkinPart *pPart);
    // Marks the rows that problems are about.
    void SetProblems(const CProblems &problems);

    // Shows and selects the row of what problems call so, an entry, a picture or the icon, if there
    // is one; bEdit: a text gets the focus, to be typed over.
    void SelectEntry(UINT nEntry, bool bEdit);
    const PropertyRow *Selected() const;

    int PreTranslateMessage(MSG *pMsg) override;

protected:
    int OnCreate(CREATESTRUCTA *pCreate) override;
    void OnSize(UINT nType, int cx, int cy) override;
    void OnPaint(HDC hDC) override;
    int OnEraseBkgnd(HDC hDC) override;
    void OnLButtonDown(UINT nFlags, POINT &point) override;
    void OnLButtonUp(UINT nFlags, POINT &point) override;
    void OnLButtonDblClk(UINT nFlags, POINT &point) override;
    void OnMouseMove(UINT nFlags, POINT &point) override;
    int OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage) override;
    void OnCaptureChanged(HWND hNew) override;
    void OnMouseWheel(UINT nFlags, int nDelta, POINT &point) override;
    void OnVScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    void OnSetFocus(HWND hOld) override;
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override;
    void OnSysColorChange() override;
    void OnWinIniChange(WPARAM nAction, const char *section) override;

private:
    int RowCount() const { return static_cast<int>(m_rows.size()); }
    const PropertyRow &Row(int nRow) const { return m_rows[static_cast<size_t>(nRow)]; }
    RECT RowRect(int nRow) const;
    int RowAt(int y) const;
    bool IsOnDivider(const POINT &point) const;
    int FindRow(UINT nEntry) const;
    int NextRow(int nFrom, int nBy) const;

    void MeasureRows();
    void Rearrange();
    void ScrollTo(int nPos);
    void PlaceEditor();
    void LoadEditor(bool bChosen);
    void SelectRow(int nRow);
    void FocusEditor();
    bool TranslateKey(WPARAM nKey);
    void TakeText();
    void KeepBefore();
    void PutBack();
    void PressButton();
    void InvalidateRow(int nRow);
    bool HasFault(int nRow) const;

    void PaintRow(HDC hDC, int nRow) const;
    void PaintHeading(HDC hDC, const RECT &rect, const CCUString &sText) const;
    void PaintValue(HDC hDC, RECT rect, int nRow) const;

    CDocument &m_document;
    CPropertyHost &m_host;
    CTextField m_edit;
    CCUIButton m_button;
    std::vector<PropertyRow> m_rows;
    std::vector<bool> m_problems;         // of each row
    std::unique_ptr<CWideText> m_before;  // what the row had when it was selected, or read
    int m_nSelected = -1;
    int m_cyRow = 20;
    int m_cxNames = 110;
    int m_nPos = 0;  // pixels scrolled
    int m_nWheel = 0;
    bool m_bDragging = false;  // the line between the columns
    bool m_bLoading = false;   // the editor's text comes from the document
    bool m_bTaking = false;    // the document's text comes from the editor
};
