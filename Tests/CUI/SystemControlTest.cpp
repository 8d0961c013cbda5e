// The typed classes over the system's controls, with the system's own messages beside them.
#include "CUI/ComboBox.h"
#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "CUI/Edit.h"
#include "CUI/LayoutWindow.h"
#include "CUI/ListBox.h"
#include "CUI/ListView.h"
#include "CUI/ProgressBar.h"
#include "CUI/ScrollBar.h"
#include "CUI/SpinButton.h"
#include "CUI/Static.h"
#include "CUI/TabControl.h"
#include "CUI/TrackBar.h"
#include "CUI/TreeView.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

// Writes down what comes to it, under names.
struct CParent : CCUIWindow
{
    CParent() { CreateTestWindow(*this, nullptr, WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN); }
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == CUI_WM_TABKEY || message == CUI_WM_CHILDFOCUS)
            m_told += Text(message == CUI_WM_TABKEY ? "tab %u " : "focus %u ",
                           GetDlgCtrlID(reinterpret_cast<HWND>(wParam)));
        return message == CUI_WM_TABKEY ? 1 : CCUIWindow::OnMessage(message, wParam, lParam);
    }
    std::string m_told;
};

int Children(HWND hParent)
{
    int nCount = 0;
    EnumChildWindows(hParent, CountWindow, reinterpret_cast<LPARAM>(&nCount));
    return nCount;
}

const void *LayoutData(HWND hWnd)
{
    return GetPropA(hWnd, g_sControlWindowProp);
}

// A key as the loop gets it, pressed in the window with the focus.
int PressKey(WPARAM nKey)
{
    MSG msg = {GetFocus(), WM_KEYDOWN, nKey, 1, 0, {}};
    return CCUIWindow::PerformPreTranslation(&msg);
}

void DoubleClick(HWND hWnd, RECT rect)
{
    const LPARAM at = MAKELPARAM(rect.left + 2, (rect.top + rect.bottom) / 2);
    POINT point = {LOWORD(at), HIWORD(at)};
    ClientToScreen(hWnd, &point);
    SetCursorPos(point.x, point.y);
    for (const int message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageA(hWnd, UINT(message), 0, at);
    PumpWaiting();
}

using Numbers = std::vector<long>;

// One that comes with its control.
template <typename Control>
struct CMade : Control
{
    explicit CMade(HWND hParent, UINT nID = 1, DWORD dwStyle = 0, const char *pszText = nullptr)
    {
        this->CreateControl(hParent, nID, pszText, dwStyle);
    }
};

template <typename Control>
CCUISystemControl *Make()
{
    return new Control;
}

struct CKind
{
    const char *className;
    CCUISystemControl *(*make)();
    LONG nStyle;
    bool bOwnClasses;
};
#define KIND(className, Type, bOwnClasses)                    \
    {                                                         \
        className, Make<Type>, LONG(Type::STYLE), bOwnClasses \
    }
const CKind KINDS[] = {KIND("Static", CCUIStatic, false),
                       KIND("Edit", CCUIEdit, true),
                       KIND("ListBox", CCUIListBox, true),
                       KIND("ComboBox", CCUIComboBox, true),
                       KIND("ScrollBar", CCUIScrollBar, false),
                       KIND("msctls_progress32", CCUIProgressBar, false),
                       KIND("msctls_trackbar32", CCUITrackBar, false),
                       KIND("msctls_updown32", CCUISpinButton, false),
                       KIND("SysTabControl32", CCUITabControl, false),
                       KIND("SysTreeView32", CCUITreeView, true),
                       KIND("SysListView32", CCUIListView, true)};

struct SystemControl : testing::TestWithParam<CKind>
{
    CParent m_parent;
    std::unique_ptr<CCUISystemControl> m_control{GetParam().make()};
};
INSTANTIATE_TEST_SUITE_P(Every, SystemControl, testing::ValuesIn(KINDS),
                         [](const auto &kind) { return std::string(kind.param.className); });

}  // namespace

TEST_P(SystemControl, IsMadeAsAControlWindowAndGoesWithItsObject)
{
    char szClass[32];
    CCUISystemControl &control = *m_control;
    ASSERT_EQ(1, control.CreateControl(m_parent, 7, "text"));
    GetClassNameA(control, szClass, sizeof szClass);
    EXPECT_STRCASEEQ(GetParam().className, szClass);
    EXPECT_EQ(control.GetHandle(), GetDlgItem(m_parent, 7));
    // The system takes scroll bars away while there is nothing to scroll.
    EXPECT_EQ(0, GetParam().nStyle & ~GetWindowLongA(control, GWL_STYLE) & ~WS_VSCROLL);
    RECT rect;
    GetClientRect(control, &rect);
    EXPECT_TRUE(LayoutData(control) && IsWindowVisible(control) && rect.right && rect.bottom);
    SIZE size = {};
    GetWindowRect(control, &rect);
    EXPECT_EQ(1, SendMessageA(control, CUI_WM_NATURALSIZE, 0, reinterpret_cast<LPARAM>(&size)));
    EXPECT_TRUE(size.cx == rect.right - rect.left && size.cy == rect.bottom - rect.top);
    // A font that the user's settings have replaced is left for the new one.
    CUIGetWinData()->UpdateSysFonts();
    SendMessageA(control, WM_WININICHANGE, 0, 0);
    EXPECT_TRUE(!control.GetFont() || control.GetFont() == CUIGetWinData()->hMenuFont);
    // Nor is a hidden one shown by painting again.
    control.Show(false);
    control.SetRedraw(false);
    control.SetRedraw(true);
    EXPECT_FALSE(control.IsShown());
    m_control.reset();
    const int nGdi = GdiCount(), nWindows = WindowCount();
    for (int i = 0; i < 200; ++i) {
        m_control.reset(GetParam().make());
        ASSERT_EQ(1, m_control->CreateControl(m_parent, 7));
    }
    m_control.reset();
    EXPECT_NEAR(nGdi, GdiCount(), 1);
    EXPECT_EQ(nWindows, WindowCount() + Children(m_parent));
}

TEST_P(SystemControl, IsBoundToOneThatStays)
{
    struct CMissing : CCUISystemControl
    {
        CMissing() : CCUISystemControl({"NoSuchControl", 0, 0, 0, true, 1, 1}) {}
    } missing;
    CReports reports;
    CDumped dumped;
    const char *const className = GetParam().className;
    WNDCLASSA own = {};
    GetClassInfoA(nullptr, className, &own);
    const std::string ownClass = std::string("Own ") + className;
    own.lpszClassName = ownClass.c_str();
    own.hInstance = GetModuleHandleA(nullptr);
    own.style &= ~UINT(CS_GLOBALCLASS);
    RegisterClassA(&own);
    MakePlain("BUTTON", m_parent, 8);
    MakePlain(className, m_parent, 9);
    MakePlain(GetParam().bOwnClasses ? ownClass.c_str() : className, m_parent, 10);
    EXPECT_FALSE(m_control->Bind(m_parent, 8) || m_control->Bind(m_parent, 11) ||
                 missing.CreateControl(m_parent, 12));
    EXPECT_NE(std::string::npos, dumped.m_text.find("NoSuchControl"));
    EXPECT_EQ(1, reports.Count("IsOfClass(hWnd)", "SystemControl"));
    EXPECT_NE(std::string::npos, dumped.m_text.find("No control 11"));
    for (const UINT nID : {9U, 10U}) {
        const HWND hWnd = GetDlgItem(m_parent, static_cast<int>(nID));
        const LONG nProcedure = GetWindowLongA(hWnd, GWL_WNDPROC);
        std::unique_ptr<CCUISystemControl> second(GetParam().make());
        EXPECT_TRUE(second->Bind(m_parent, nID) && m_control->Bind(m_parent, nID));
        EXPECT_TRUE(!second->GetHandle() && LayoutData(hWnd));
        EXPECT_EQ(hWnd, m_control->Unbind());
        EXPECT_TRUE(!LayoutData(hWnd) && second->Bind(m_parent, nID) && LayoutData(hWnd));
        second.reset();
        EXPECT_TRUE(IsWindow(hWnd) && !LayoutData(hWnd));
        EXPECT_EQ(nProcedure, GetWindowLongA(hWnd, GWL_WNDPROC));
    }
    EXPECT_EQ(1, reports.Total());
}

TEST(SystemControls, HoldTextsOfAnyLength)
{
    CParent parent;
    const std::string text(5000, 'x');
    const auto pszText = text.c_str();
    CMade<CCUIListBox> listBox(parent, 1);
    CMade<CCUIComboBox> comboBox(parent, 2);
    CMade<CCUIEdit> edit(parent, 3, 0, pszText);
    CMade<CCUITabControl> tab(parent, 4);
    CMade<CCUIListView> list(parent, 5);
    CMade<CCUITreeView> tree(parent, 6);
    listBox.AddString(pszText);
    comboBox.AddString(pszText);
    tab.AddItem(pszText);
    list.InsertColumn(0, "Name", 50);
    list.InsertColumn(1, "Size", 60);
    list.AddItem("a");
    list.SetItemText(0, 1, pszText);
    const HTREEITEM hItem = tree.InsertItem(nullptr, pszText);
    for (const CCUString &sText :
         {listBox.GetItemText(0), comboBox.GetItemText(0), edit.GetText(), tab.GetItemText(0),
          list.GetItemText(0, 1), tree.GetItemText(hItem)})
        EXPECT_STREQ(pszText, sText);
    EXPECT_TRUE(listBox.GetItemText(9).IsEmpty() && list.GetItemText(9).IsEmpty());
}

TEST(SystemControls, FindAndShowWhatIsAskedFor)
{
    CParent parent;
    CCUIListBox many;
    const RECT small = {0, 0, 50, 60};
    many.CreateControl(parent, 8, nullptr, CCUIListBox::STYLE | LBS_EXTENDEDSEL, &small);
    for (int i = 0; i < 50; ++i)
        many.AddString(Text("%d", i).c_str());
    many.Select(3, true);
    many.Select(40, true);
    EXPECT_EQ((Numbers{2, 40}), (Numbers{many.GetSelCount(), many.FindSelected(4)}));
    for (const int nItem : {40, 3}) {
        many.EnsureVisible(nItem);
        RECT rect;
        many.Send(LB_GETITEMRECT, WPARAM(nItem), &rect);
        EXPECT_TRUE(rect.top >= 0 && rect.bottom <= 60 && many.HitTest({3, rect.top + 1}) == nItem);
    }
    CMade<CCUIEdit> edit(parent, 9, CCUIEdit::STYLE_LINES, "one\r\ntwo");
    edit.Append("\r\nthree");
    edit.SetSelection(1, 3);
    edit.ReplaceSelection("f");
    EXPECT_STREQ("of\r\ntwo\r\nthree", edit.GetText());
    EXPECT_TRUE(edit.IsModified() && edit.CanUndo() && edit.GetLine(2) == "three");
    const auto rising = [](LPARAM a, LPARAM b) { return int(a - b); };
    CMade<CCUIListView> list(parent, 7);
    list.SetExtendedStyle(LVS_EX_CHECKBOXES);
    list.AddItem("b", -1, 2);
    list.AddItem("a", -1, 1);
    list.Select(1);
    list.SetCheck(1, true);
    list.SortItems(rising);
    EXPECT_TRUE(list.GetCheck(0) && !list.GetCheck(1) && list.GetFocused() == 0);
    EXPECT_EQ((Numbers{1, 1, 0}),
              (Numbers{list.FindItem("B"), list.FindItemData(2), list.FindSelected()}));
    CMade<CCUITreeView> tree(parent, 8, CCUITreeView::STYLE | TVS_CHECKBOXES);
    const HTREEITEM hRoot = tree.InsertItem(nullptr, "root");
    const HTREEITEM hB = tree.InsertItem(hRoot, "b", 0, -1, 2);
    const HTREEITEM hA = tree.InsertItem(hRoot, "a", 0, -1, 3);
    tree.SortChildren(hRoot, rising);
    EXPECT_TRUE(tree.GetNextItem(hB) == hA && tree.FindChild(hRoot, "a") == hA);
    tree.SetCheck(hA, true);
    EXPECT_TRUE(tree.GetCheck(hA) && !tree.GetCheck(hB));
}

namespace {

// Writes down what it is told, and refuses what it is told to; m_onTold may delete it.
struct CRecord
{
    int Told(const std::string &what)
    {
        *m_pTold += what + " ";
        const auto function = m_onTold;
        function();
        return 1;
    }
    int Asked(bool &bRefuse, const std::string &what)
    {
        bRefuse = m_bRefuse;
        return Told(what);
    }
    std::string Taken() { return std::exchange(*m_pTold, ""); }
    std::shared_ptr<std::string> m_pTold = std::make_shared<std::string>();
    std::function<void()> m_onTold = [] {};
    bool m_bRefuse = false;
};

// With the functions that its base has.
template <typename Base>
struct CPlain : Base, CRecord
{
    int OnDblClk() { return Told("double"); }
    int OnChange() { return Told("change"); }
    int OnMaxText() { return Told("max"); }
    int OnReturn() { return Told("return"); }
    int OnSelChange() { return Told("select"); }
    int OnSelChanging(bool &bRefuse) { return Asked(bRefuse, "leave"); }
    int OnEditChange() { return Told("edit"); }
    int OnDropDown() { return Told("drop"); }
    int OnCloseUp() { return Told("close"); }
};
template <typename Base>
struct CMoved : Base, CRecord
{
    int OnChange(int nPos) { return Told(Text("%d", nPos)); }
    int OnChange(int nPos, bool) { return Told(Text("%d", nPos)); }
    int OnDeltaPos(int, int &nDelta, bool &bRefuse)
    {
        nDelta *= 5;
        return Asked(bRefuse, "step");
    }
};
struct CTree : CCUITreeView, CRecord
{
    std::string Name(HTREEITEM h) { return GetItemText(h).GetString(); }
    int OnSelChanging(HTREEITEM h, bool &b) override { return Asked(b, "to " + Name(h)); }
    int OnSelChange(HTREEITEM h) override { return Told("at " + Name(h)); }
    int OnExpanding(HTREEITEM h, bool, bool &b) override { return Asked(b, "open " + Name(h)); }
    int OnExpanded(HTREEITEM h, bool) override { return Told("opened " + Name(h)); }
    int OnItemActivate(HTREEITEM h) override { return Told("activate " + Name(h)); }
    int OnBeginLabelEdit(HTREEITEM h, bool &b) override { return Asked(b, "label " + Name(h)); }
    int OnEndLabelEdit(HTREEITEM, const char *psz, bool &bAccept) override
    {
        bAccept = true;
        return Told(psz);
    }
    int OnDeleteItem(HTREEITEM, LPARAM lData) override { return Told(Text("delete %ld", lData)); }
};
struct CList : CCUIListView, CRecord
{
    int OnSelChange(int n, bool b) override { return Told(Text("%c%d", b ? '+' : '-', n)); }
    int OnCheck(int n, bool b) override { return Told(Text("check %d %d", n, b)); }
    int OnItemActivate(int n) override { return Told(Text("activate %d", n)); }
    int OnColumnClick(int n) override { return Told(Text("column %d", n)); }
    int OnBeginLabelEdit(int n, bool &b) override { return Asked(b, Text("label %d", n)); }
    int OnEndLabelEdit(int, const char *psz, bool &bAccept) override
    {
        bAccept = true;
        return Told(psz);
    }
    int OnDeleteItem(int n) override { return Told(Text("delete %ld", GetItemData(n))); }
};

void Input(HWND hWnd, std::initializer_list<WPARAM> keys)
{
    for (const WPARAM nKey : keys)
        SendMessageA(hWnd, WM_KEYDOWN, nKey, 1);
}

void Click(HWND hWnd, int x, int y)
{
    SendMessageA(hWnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    SendMessageA(hWnd, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
}

}  // namespace

TEST(SystemControls, TellTheirObjectsWhatUsersDo)
{
    CParent parent;
    const RECT rect = {0, 0, 60, 60};
    CMade<CPlain<CCUIEdit>> edit(parent, 1);
    CMade<CMoved<CCUISpinButton>> spin(parent, 7);
    edit.SetLimit(1);
    SetFocus(edit);
    for (int i = 0; i < 2; ++i)
        SendMessageA(edit, WM_CHAR, 'x', 1);
    EXPECT_EQ(1, PressKey(VK_RETURN));
    const std::string told = edit.Taken();
    EXPECT_TRUE(told.find("change max ") == 0 && told.find("return ") == told.size() - 7) << told;

    CPlain<CCUIListBox> list;
    list.CreateControl(parent, 3, nullptr, 0, &rect);
    list.AddString("a");
    list.AddString("b");
    SetFocus(list);
    Input(list, {VK_DOWN, VK_DOWN});
    DoubleClick(list, {0, 0, 9, 9});
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_EQ("select select select double return ", list.Taken());

    CMade<CPlain<CCUIComboBox>> combo(parent, 4, CCUIComboBox::STYLE_EDIT);
    for (int i = 0; i < 20; ++i)
        combo.AddString("item");
    SetFocus(combo);
    combo.DropDown(true);
    RECT dropped = {};
    GetClientRect(FindWindowA("ComboLBox", nullptr), &dropped);
    EXPECT_EQ(8, dropped.bottom / combo.Send(CB_GETITEMHEIGHT));
    EXPECT_EQ(0, PressKey(VK_RETURN));
    combo.DropDown(false);
    Input(GetFocus(), {VK_DOWN});
    SendMessageA(GetFocus(), WM_CHAR, 'x', 1);
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_EQ("drop close select edit return ", combo.Taken());

    CMade<CMoved<CCUIScrollBar>> bar(parent, 5, SBS_VERT);
    bar.SetRange(-100000, 100000, 1000);
    bar.SetLine(7);
    bar.SetPos(50000);
    for (const int nCode : {SB_LINEUP, SB_PAGEDOWN, SB_BOTTOM, SB_LINEDOWN, SB_TOP, SB_ENDSCROLL})
        SendMessageA(parent, WM_VSCROLL, WPARAM(nCode), reinterpret_cast<LPARAM>(bar.GetHandle()));
    EXPECT_EQ("49993 50993 99001 -100000 ", bar.Taken());
    EXPECT_EQ(-100000, bar.GetPos());

    CMade<CMoved<CCUITrackBar>> track(parent, 6);
    track.SetRange(-5, 70000);
    track.SetSteps(2, 300);
    track.SetPos(60000);
    Input(track, {VK_RIGHT, VK_NEXT, VK_END});
    EXPECT_EQ("60002 60302 70000 ", track.Taken());

    spin.SetRange(0, 50);
    spin.SetPos(40);
    EXPECT_STREQ("40", edit.GetText());
    RECT arrows;
    GetClientRect(spin, &arrows);
    Click(spin, 2, 2);
    EXPECT_EQ("step 45 ", spin.Taken().substr(0, 8));
    spin.m_bRefuse = true;
    Click(spin, 2, arrows.bottom - 2);
    EXPECT_EQ(45, spin.GetPos());
    spin.SetRange(0, 1000000);
    spin.SetPos(123456);
    EXPECT_EQ(123456, spin.GetPos());

    CMade<CPlain<CCUITabControl>> tab(parent, 8);
    tab.AddItem("first");
    tab.AddItem("second");
    RECT second;
    tab.Send(TCM_GETITEMRECT, 1, &second);
    tab.m_bRefuse = true;
    Click(tab, second.left + 3, second.top + 3);
    tab.m_bRefuse = false;
    Click(tab, second.left + 3, second.top + 3);
    EXPECT_EQ("leave leave select ", tab.Taken());
}

TEST(SystemControls, TellWhatBecomesOfItems)
{
    CParent parent;
    const RECT rect = {0, 0, 150, 100};
    RECT row = {};
    CTree tree;
    tree.CreateControl(parent, 1, nullptr, CCUITreeView::STYLE | TVS_EDITLABELS, &rect);
    const HTREEITEM hRoot = tree.InsertItem(nullptr, "r", 0, -1, 1);
    const HTREEITEM hChild = tree.InsertItem(hRoot, "c", 0, -1, 2);
    SetFocus(tree);
    tree.Taken();
    Input(tree, {VK_HOME});
    tree.m_bRefuse = true;
    Input(tree, {VK_RIGHT});
    tree.SelectItem(hChild);
    EXPECT_FALSE(tree.EditLabel(hRoot));
    EXPECT_TRUE(tree.GetSelection() == hRoot && !tree.IsExpanded(hRoot));
    tree.m_bRefuse = false;
    Input(tree, {VK_RIGHT});
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_TRUE(tree.GetItemRect(hRoot, row));
    EXPECT_EQ("open r to c label r open r opened r activate r ", tree.Taken());
    DoubleClick(tree, row);
    EXPECT_EQ("activate r ", tree.Taken());
    EXPECT_TRUE(tree.IsExpanded(hRoot));
    const HWND hTreeLabel = tree.EditLabel(hRoot);
    SetWindowTextA(hTreeLabel, "new");
    SendMessageA(hTreeLabel, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ("label r new ", tree.Taken());
    EXPECT_STREQ("new", tree.GetItemText(hRoot));
    tree.Destroy();
    EXPECT_NE(std::string::npos, tree.Taken().find("delete 2"));

    CList list;
    list.CreateControl(parent, 2, nullptr, CCUIListView::STYLE | LVS_EDITLABELS, &rect);
    list.InsertColumn(0, "Name", 60);
    list.SetExtendedStyle(LVS_EX_CHECKBOXES);
    list.AddItem("a", -1, 5);
    list.AddItem("b", -1, 6);
    SetFocus(list);
    list.Select(0);
    list.Taken();
    Input(list, {VK_DOWN, VK_SPACE});
    EXPECT_EQ("-0 +1 check 1 1 ", list.Taken());
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_TRUE(list.GetItemRect(0, row, LVIR_LABEL));
    DoubleClick(list, row);
    EXPECT_EQ("activate 1 -1 +0 activate 0 ", list.Taken());
    const HWND hHeader = GetWindow(list, GW_CHILD);
    Click(hHeader, 20, 5);
    EXPECT_EQ("column 0 ", list.Taken());
    const HWND hListLabel = list.EditLabel(1);
    SetWindowTextA(hListLabel, "new");
    SendMessageA(hListLabel, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_NE(std::string::npos, list.Taken().find("label 1 new "));
    EXPECT_STREQ("new", list.GetItemText(1));
    list.Destroy();
    EXPECT_NE(std::string::npos, list.Taken().find("delete 6"));
}

TEST(SystemControls, MayBeDeletedByWhatTheyTell)
{
    struct CBad : CCUIEdit
    {
        int OnCreate(CREATESTRUCTA *) override { return delete this, -1; }
    };
    CParent parent;
    {
        const CHeapWatch heap;
        EXPECT_EQ(0, (new CBad)->CreateControl(parent, 1));
    }
    auto *const pEdit = new CMade<CPlain<CCUIEdit>>(parent, 1);
    pEdit->m_onTold = [=] { delete pEdit; };
    auto *const pList = new CMade<CList>(parent, 2);
    pList->m_onTold = [=] { delete pList; };
    auto *const pBound = new CPlain<CCUIListBox>;
    const HWND hBound = CreateWindowA("LISTBOX", "", WS_CHILD | LBS_NOTIFY, 0, 0, 9, 9, parent,
                                      reinterpret_cast<HMENU>(3), nullptr, nullptr);
    pBound->Bind(parent, 3);
    pBound->AddString("a");
    pBound->m_onTold = [=] { delete pBound; };
    const HWND hEdit = *pEdit;
    SendMessageA(hEdit, WM_CHAR, 'x', 1);
    pList->AddItem("a");
    pList->Select(0);
    SendMessageA(hBound, WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_TRUE(IsWindow(hEdit) && !IsWindowVisible(hEdit));
    PumpWaiting();
    EXPECT_EQ(1, Children(parent));
    EXPECT_TRUE(IsWindow(hBound) && !CCUIWindow::FromHandle(hBound));
}

TEST(SystemControls, PassTabOnAndLetTextsHaveIt)
{
    CParent parent;
    CMade<CCUIComboBox> combo(parent, 4, CCUIComboBox::STYLE_EDIT);
    SetFocus(GetWindow(combo, GW_CHILD));
    EXPECT_EQ(1, PressKey(VK_TAB));
    EXPECT_EQ("focus 4 tab 4 ", parent.m_told);
    CMade<CCUIEdit> edit(parent, 5, CCUIEdit::STYLE_LINES, "");
    SetFocus(edit);
    EXPECT_EQ(1, PressKey(VK_TAB));
    edit.SetWantTab(true);
    EXPECT_EQ(1, PressKey(VK_TAB));
    edit.SetReadOnly(true);
    PressKey(VK_TAB);
    EXPECT_STREQ("\t", edit.GetText());
    edit.Enable(false);
    EXPECT_EQ("focus 4 tab 4 focus 5 tab 5 tab 5 tab 5 ", parent.m_told);
    EXPECT_EQ(parent.GetHandle(), GetFocus());

    // The dialog has its own way for Tab; it must get there.
    CCUIDialog dialog(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(500));
    CCUIEdit field;
    CCUIComboBox choice;
    dialog.DoModeless(nullptr);
    EXPECT_TRUE(field.Bind(dialog, 1001) && choice.Bind(dialog, 1003));
    SetFocus(GetWindow(choice, GW_CHILD));
    EXPECT_EQ(1, PressKey(VK_TAB));
    EXPECT_EQ(GetDlgItem(dialog, 1004), GetFocus());
    SetFocus(field);
    EXPECT_EQ(1, PressKey(VK_TAB));
    EXPECT_EQ(GetNextDlgTabItem(dialog, field, FALSE), GetFocus());
    dialog.Destroy();
}

TEST(SystemControls, AreColoredAsTheyAreTold)
{
    CParent parent;
    CMade<CCUIStatic> label(parent, 1, 0, "text");
    label.SetWindowColor(RGB(255, 0, 0));
    label.SetTextColor(RGB(0, 0, 255));
    const HDC hDC = GetDC(label);
    const auto hBrush = reinterpret_cast<HBRUSH>(SendMessageA(
        parent, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hDC), LPARAM(label.GetHandle())));
    LOGBRUSH brush = {};
    GetObjectA(hBrush, sizeof brush, &brush);
    EXPECT_EQ(RGB(255, 0, 0), brush.lbColor);
    EXPECT_TRUE(GetBkColor(hDC) == RGB(255, 0, 0) && GetTextColor(hDC) == RGB(0, 0, 255));
    ReleaseDC(label, hDC);
}
