// The examples of the reference for controls and bars: each is named after its class.

#include "CUI/Button.h"
#include "CUI/Choosers.h"
#include "CUI/ComboBox.h"
#include "CUI/ControlBar.h"
#include "CUI/Edit.h"
#include "CUI/FrameWindow.h"
#include "CUI/LayoutWindow.h"
#include "CUI/ListBox.h"
#include "CUI/ListView.h"
#include "CUI/MessageBox.h"
#include "CUI/PrintPreview.h"
#include "CUI/ProgressBar.h"
#include "CUI/ScrollBar.h"
#include "CUI/Separator.h"
#include "CUI/SpinButton.h"
#include "CUI/Static.h"
#include "CUI/StatusBar.h"
#include "CUI/SystemControl.h"
#include "CUI/TabControl.h"
#include "CUI/ToolTip.h"
#include "CUI/TrackBar.h"
#include "CUI/TreeView.h"

enum : unsigned
{
    ID_SAVE = 1000,
    ID_PRINT
};

void ShowButton(CCUIButton &button, CCUIWindow &window)
{
    //! [CCUIButton]
    button.CreateControl(window, ID_SAVE, "&Save");
    button.SetCommand(ID_SAVE);  // enabled, named and carried out by the command's handler
    button.SetToolTip("Writes the text to its file");
    //! [CCUIButton]
}

void ShowChosenFiles(CCUIWindow &window, CCUIListBox &list)
{
    //! [CCUIChosenFiles]
    CCUIChosenFiles files;
    if (CUIChooseOpenFiles(&window, files, "Pictures|*.bmp|All files|*.*"))
        for (int i = 0; i < files.GetCount(); ++i)
            list.AddString(files.GetPath(i));
    //! [CCUIChosenFiles]
}

void ShowComboBox(CCUIComboBox &paper, CCUIWindow &window)
{
    //! [CCUIComboBox]
    paper.CreateControl(window, 1);
    paper.AddString("Matt");
    paper.AddString("Glossy");
    paper.SetCurSel(0);
    //! [CCUIComboBox]
}

//! [CCUIControlBar]
class CBarFrame : public CCUIFrameWindow
{
protected:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        const unsigned buttons[] = {ID_SAVE, 0, ID_PRINT};  // 0: a separator
        m_bar.CreateBar(*this, 1, "Main");
        m_bar.SetButtons(buttons, 3);
        AddBar(&m_bar);
        return CCUIFrameWindow::OnCreate(pCreate);
    }

private:
    CCUIControlBar m_bar;
};
//! [CCUIControlBar]

void ShowEdit(CCUIEdit &notes, CCUIWindow &window)
{
    //! [CCUIEdit]
    notes.CreateControl(window, 1, nullptr, CCUIEdit::STYLE_LINES);
    notes.SetLimit(10000);
    notes.Append("The first line\r\n");
    const CCUString sFirst = notes.GetLine(0);
    //! [CCUIEdit]
}

void ShowLayoutWindow(CCUIWindow &window, CCUILayoutWindow &row, CCUIEdit &field, CCUIButton &go)
{
    //! [CCUILayoutWindow]
    // A field that takes what is left beside a button of its natural size. row:
    // CCUILayoutWindow::Row
    row.SetGap(8);
    row.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 400, 26}, window, 0);
    field.SetLayoutFlags(CUI_PLACE_FILL | CUIPlaceWeight(1));
    field.CreateControl(row, 1);
    go.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
    go.CreateControl(row, 2, "&Go");
    //! [CCUILayoutWindow]
}

//! [CCUIListBox]
class CNames : public CCUIListBox
{
public:
    void FillIn()
    {
        AddString("Anna");
        AddString("Berta");
        SetCurSel(0);
    }

protected:
    int OnDblClk() override { return CUIMessageBox(this, GetItemText(GetCurSel())), 1; }
};
//! [CCUIListBox]

void ShowListView(CCUIListView &files)
{
    //! [CCUIListView]
    files.InsertColumn(0, "Name", 160);
    files.InsertColumn(1, "Size", 80, LVCFMT_RIGHT);
    const int nItem = files.AddItem("Harbour.bmp");
    files.SetItemText(nItem, 1, "120 KB");
    files.Select(nItem);
    //! [CCUIListView]
}

bool ShowMessageBox(CCUIWindow &window)
{
    //! [CCUIMessageBox]
    CCUIMessageBox box("Delete all pictures?", "Viewer", MB_ICONWARNING);
    box.AddButton(IDYES, "&Delete");
    box.AddButton(IDCANCEL);
    box.SetDefaultButton(IDCANCEL);
    return box.DoModal(&window) == IDYES;
    //! [CCUIMessageBox]
}

//! [CCUIPages]
// One page, with a frame along its margins.
class CFramePage : public CCUIPages
{
public:
    CUIPaper m_paper = {};

    int GetPageCount() override { return 1; }
    void DrawPage(HDC hDC, int /*nPage*/) override
    {
        Rectangle(hDC, m_paper.margins.left, m_paper.margins.top,
                  m_paper.size.cx - m_paper.margins.right,
                  m_paper.size.cy - m_paper.margins.bottom);
    }
};
//! [CCUIPages]

void PrintPages(CCUIWindow &window, CFramePage &pages)
{
    //! [CCUIPrinter]
    CCUIPrinter printer;
    if (printer.Choose(&window)) {
        pages.m_paper = printer.GetPaper();
        printer.Print("Frame", pages);
    }
    //! [CCUIPrinter]
}

void ShowPages(CCUIFrameWindow &frame, CCUIPrintPreview &preview, CFramePage &pages)
{
    //! [CCUIPrintPreview]
    CCUIPrinter printer;
    printer.OpenDefault();  // without one there are usual papers
    pages.m_paper = printer.GetPaper();
    preview.SetPages(&pages, pages.m_paper);
    preview.CreateControl(frame, 1, "");
    frame.SetClient(&preview);
    //! [CCUIPrintPreview]
}

void ShowProgressBar(CCUIProgressBar &bar, CCUIWindow &window)
{
    //! [CCUIProgressBar]
    bar.CreateControl(window, 1);
    bar.SetRange(0, 250);
    bar.SetPos(100);
    //! [CCUIProgressBar]
}

//! [CCUIScrollBar]
class CZoom : public CCUIScrollBar
{
public:
    void FillIn() { SetRange(10, 400, 50); }

protected:
    int OnChange(int nPos) override { return SetWindowTextA(GetParent(*this), Percent(nPos)), 1; }

private:
    static CCUString Percent(int nPos)
    {
        CCUString sText;
        sText.Format("%d %%", nPos);
        return sText;
    }
};
//! [CCUIScrollBar]

void ShowSeparator(CCUISeparator &line, CCUILayoutWindow &column)
{
    //! [CCUISeparator]
    line.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_FIT);
    line.CreateControl(column, 0, nullptr);
    //! [CCUISeparator]
}

void ShowSpinButton(CCUISpinButton &spin, CCUIDialog &dialog)
{
    //! [CCUISpinButton]
    spin.Bind(dialog, 1003);  // its buddy is the field before it in the template
    spin.SetRange(1, 99);
    spin.SetPos(2);
    //! [CCUISpinButton]
}

void ShowStatic(CCUIStatic &label, CCUIWindow &window)
{
    //! [CCUIStatic]
    label.CreateControl(window, 0, "&Name:");  // before the field that Alt+N goes to
    //! [CCUIStatic]
}

void ShowStatusBar(CCUIFrameWindow &frame, CCUIStatusBar &bar)
{
    //! [CCUIStatusBar]
    bar.CreateBar(frame, 2);
    bar.SetText(0, "Ready");
    const int nLine = bar.AddPane(CUI_PANE_FIT, 60);
    bar.SetText(nLine, "Line 1");
    frame.SetStatusBar(&bar);
    //! [CCUIStatusBar]
}

//! [CCUISystemControl]
// A class over a control of the system that has none yet.
class CHotKeyField : public CCUISystemControl
{
public:
    CHotKeyField() : CCUISystemControl({HOTKEY_CLASSA, WS_TABSTOP, 0, 0, true, 60, 14}) {}
    WORD GetKey() const { return static_cast<WORD>(Send(HKM_GETHOTKEY)); }
};
//! [CCUISystemControl]

//! [CCUITabControl]
class CPages : public CCUITabControl
{
public:
    void FillIn()
    {
        AddItem("Picture");
        AddItem("Paper");
    }

protected:
    int OnSelChange() override
    {
        for (int i = 0; i < 2; ++i)
            m_pages[i].Show(i == GetCurSel());
        return 1;
    }

private:
    CCUIWindow m_pages[2];
};
//! [CCUITabControl]

//! [CCUIToolTip]
class CCornerWindow : public CCUIWindow
{
protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        const RECT corner = {0, 0, 20, 20};
        if (message == WM_CREATE)
            m_tip.SetTool(*this, &corner, "Drag here");
        m_tip.Relay(*this, message, wParam, lParam);
        return CCUIWindow::WindowProc(message, wParam, lParam);
    }

private:
    CCUIToolTip m_tip;
};
//! [CCUIToolTip]

//! [CCUITrackBar]
class CVolume : public CCUITrackBar
{
public:
    void FillIn()
    {
        SetRange(0, 10);
        SetPos(7);
    }

protected:
    int OnChange(int nPos, bool bDragging) override { return !bDragging && nPos > 9; }
};
//! [CCUITrackBar]

void ShowTreeView(CCUITreeView &tree)
{
    //! [CCUITreeView]
    const HTREEITEM hDisc = tree.InsertItem(nullptr, "Disc");
    tree.InsertItem(hDisc, "Pictures");
    tree.Expand(hDisc);
    tree.SelectItem(hDisc);
    //! [CCUITreeView]
}
