// The typed classes over the system's controls, with the system's own messages beside them.
#include "CUI/ComboBox.h"
#include "CUI/Control.h"
#include "CUI/ControlBar.h"
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
#include "Support/ChildProcess.h"
#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"
#include "Support/Threads.h"

namespace {

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

// One that comes with its control.
template <typename Control>
struct CMade : Control
{
    explicit CMade(HWND hParent, UINT nID = 1, DWORD dwStyle = 0, const char *pszText = nullptr,
                   const RECT *pRect = nullptr)
    {
        this->CreateControl(hParent, nID, pszText, dwStyle, pRect);
    }
};

template <typename Control>
CCUISystemControl *Make()
{
    return new Control;
}

CCUISystemControl *(*const KINDS[])() = {
    Make<CCUIStatic>,     Make<CCUIEdit>,        Make<CCUIListBox>,  Make<CCUIComboBox>,
    Make<CCUIScrollBar>,  Make<CCUIProgressBar>, Make<CCUITrackBar>, Make<CCUISpinButton>,
    Make<CCUITabControl>, Make<CCUITreeView>,    Make<CCUIListView>};

// Another program's control in a window of this one, until that closes it.
CHILD_PROCESS(Lender)
{
    static CCUIControlWindow::PropData s_data = {20, 0, 4, 0, 0};
    SetTimer(nullptr, 0, 1000, nullptr);
    const HWND hParent = HWND(strtoul(strrchr(GetCommandLineA(), ' '), nullptr, 10));
    const HWND hWnd = MakePlain("EDIT", hParent, 20, WS_VISIBLE);
    SetPropA(hWnd, g_sControlWindowProp, &s_data);
    for (MSG msg; IsWindow(hWnd) && GetMessageA(&msg, nullptr, 0, 0) > 0;)
        DispatchMessageA(&msg);
}

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
    int OnChange(int nPos) { return Told(Text("%d", nPos)); }
    int OnChange(int nPos, bool) { return Told(Text("%d", nPos)); }
    int OnDeltaPos(int, int &nDelta, bool &b) { return nDelta *= 5, Asked(b, "step"); }
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
    int OnEndLabelEdit(HTREEITEM, const char *psz, bool &b) override { return b = true, Told(psz); }
    int OnDeleteItem(HTREEITEM, LPARAM lData) override { return Told(Text("delete %ld", lData)); }
    void OnContextMenu(HWND, POINT &) override { Told("menu"); }
};
struct CList : CCUIListView, CRecord
{
    int OnSelChange(int n, bool b) override { return Told(Text("%c%d", b ? '+' : '-', n)); }
    int OnCheck(int n, bool b) override { return Told(Text("check %d %d", n, b)); }
    int OnItemActivate(int n) override { return Told(Text("activate %d", n)); }
    int OnColumnClick(int n) override { return Told(Text("column %d", n)); }
    int OnBeginLabelEdit(int n, bool &b) override { return Asked(b, Text("label %d", n)); }
    int OnEndLabelEdit(int, const char *psz, bool &b) override { return b = true, Told(psz); }
    int OnDeleteItem(int n) override { return Told(Text("delete %ld", GetItemData(n))); }
};

void Rename(HWND hLabel)
{
    SetWindowTextA(hLabel, "new");
    Input(hLabel, {VK_RETURN});
}

struct SystemControls : testing::Test
{
    CTestPopup parent;
};

}  // namespace

TEST_F(SystemControls, AreControlWindowsThatGoWithTheirObjectsOrStay)
{
    CReports reports;
    for (const auto make : KINDS) {
        std::unique_ptr<CCUISystemControl> pControl(make()), pBound(make()), pOther(make());
        CCUISystemControl &control = *pControl;
        ASSERT_EQ(1, control.CreateControl(parent, 7, "text"));
        char szClass[32];
        GetClassNameA(control, szClass, sizeof szClass);
        SCOPED_TRACE(szClass);
        const RECT rect = RectOf(control);
        SIZE size = {};
        EXPECT_EQ(1, SendMessageA(control, CUI_WM_NATURALSIZE, 0, reinterpret_cast<LPARAM>(&size)));
        EXPECT_EQ(Of({0, 0, size.cx, size.cy}), Of(rect));
        EXPECT_FALSE(IsRectEmpty(&rect));
        EXPECT_TRUE(GetPropA(control, g_sControlWindowProp));
        EXPECT_TRUE(IsWindowVisible(control));
        // A font that the user's settings have replaced is left for the new one.
        CUIGetWinData()->UpdateSysFonts();
        SendMessageA(control, WM_WININICHANGE, 0, 0);
        EXPECT_TRUE(!control.GetFont() || control.GetFont() == CUIGetWinData()->hMenuFont);
        // Nor is a hidden one shown by painting again.
        control.Show(false);
        control.SetRedraw(false);
        control.SetRedraw(true);
        EXPECT_FALSE(control.IsShown());
        pControl.reset();
        EXPECT_EQ(nullptr, GetWindow(parent, GW_CHILD));
        const HWND hWnd = MakePlain(szClass, parent, 9);
        const LONG nProcedure = GetWindowLongA(hWnd, GWL_WNDPROC);
        EXPECT_EQ(1, pOther->Bind(parent, 9));
        EXPECT_EQ(1, pBound->Bind(parent, 9));
        EXPECT_EQ(nullptr, pOther->GetHandle());
        EXPECT_TRUE(GetPropA(hWnd, g_sControlWindowProp));
        pBound.reset();
        EXPECT_TRUE(IsWindow(hWnd));
        EXPECT_FALSE(GetPropA(hWnd, g_sControlWindowProp));
        EXPECT_EQ(nProcedure, GetWindowLongA(hWnd, GWL_WNDPROC));
        DestroyWindow(hWnd);
    }
    CCUIEdit edit;
    MakePlain("BUTTON", parent, 8);
    EXPECT_EQ("IsOfClass(hWnd)",
              reports.Of("SystemControl", [&] { EXPECT_FALSE(edit.Bind(parent, 8)); }));
    EXPECT_FALSE(edit.Bind(parent, 11));
    WNDCLASSA own = {};
    GetClassInfoA(nullptr, "Edit", &own);
    own.lpszClassName = "Own Edit";
    RegisterClassA(&own);
    MakePlain("Own Edit", parent, 10);
    EXPECT_TRUE(edit.Bind(parent, 10));
    EXPECT_EQ(1, reports.Total());
    // A system without the class.
    CDumped dumped;
    CCUIListView list;
    WNDCLASSA kept = {};
    GetClassInfoA(GetModuleHandleA("comctl32.dll"), WC_LISTVIEWA, &kept);
    UnregisterClassA(WC_LISTVIEWA, kept.hInstance);
    EXPECT_EQ(0, list.CreateControl(parent, 13));
    EXPECT_EQ(nullptr, list.GetHandle());
    EXPECT_EQ(0U, dumped.m_text.find("No control of class SysListView32, gle: ")) << dumped.m_text;
    RegisterClassA(&kept);
}

TEST_F(SystemControls, LeaveWindowsOfOtherThreadsAndProgramsAlone)
{
    CDumped dumped;
    CCUIControlBar bar, other;
    const CMade<CCUIEdit> edit(parent, 14);
    bar.CreateBar(parent, 11);
    other.CreateBar(parent, 12);
    const CChildProcess lender("Lender", Text("%u", UINT(bar.GetHandle())).c_str());
    ASSERT_TRUE(PumpUntil([&] { return GetPropA(GetDlgItem(bar, 20), g_sControlWindowProp); }));
    const HWND hWnd = GetDlgItem(bar, 20);
    bar.AddControl(hWnd, 0);
    other.AddControl(hWnd, 0);
    EXPECT_EQ(bar.GetHandle(), GetParent(hWnd));
    EXPECT_FALSE(CCUIEdit().Bind(bar, 20));
    EXPECT_FALSE(CCUIControl().ReplaceControl(bar, 20));
    CCUIWindow().Attach(hWnd);
    const auto take = [&](int) {
        EXPECT_FALSE(CCUIEdit().Bind(parent, 14));
        bar.AddControl(edit, 0);
    };
    CThreads::Run(1, take, PumpWaiting);
    EXPECT_EQ(parent.GetHandle(), GetParent(edit));
    EXPECT_EQ(7, std::count(dumped.m_text.begin(), dumped.m_text.end(), '\n')) << dumped.m_text;
    // What a layout is to read of it is in its own program.
    CCUILayoutWindow layout(CCUILayoutWindow::Column);
    layout.Create(nullptr, "", WS_CHILD, {0, 0, 50, 50}, parent, 13);
    SetParent(hWnd, layout);
    Send(layout, CUI_WM_LAYOUT, 0, CUI_LAYOUT_ALL);
    EXPECT_EQ(0, layout.GetMinimumSize().cy);
    PostMessageA(hWnd, WM_CLOSE, 0, 0);
    EXPECT_TRUE(PumpUntil([&] { return !lender.IsRunning(); }));
}

TEST_F(SystemControls, FindItemsAndHoldTextsOfAnyLength)
{
    const std::string text(20000, 'x');
    const RECT small = {0, 0, 50, 60};
    const DWORD dwDrawn = LBS_EXTENDEDSEL | LBS_OWNERDRAWVARIABLE | LBS_HASSTRINGS;
    parent.m_on[WM_MEASUREITEM] = [&] {
        auto &measure = *reinterpret_cast<MEASUREITEMSTRUCT *>(parent.m_lParam);
        return measure.itemHeight = measure.itemID % 2 ? 25 : 10, 1L;
    };
    CMade<CCUIListBox> many(parent, 8, CCUIListBox::STYLE | dwDrawn, nullptr, &small);
    for (int i = 0; i < 50; ++i)
        many.AddString(text.substr(0, size_t(i) * 100).c_str());
    many.EnsureVisible(40);
    EXPECT_EQ("38 40", Text("%d %d", many.GetTopIndex(), many.HitTest({3, 36})));
    many.EnsureVisible(3);
    EXPECT_EQ(3, many.GetTopIndex());
    many.Select(40, true);
    EXPECT_EQ("40 4000", Text("%d %d", many.FindSelected(4), many.GetItemText(40).GetLength()));
    many.AddString(text.c_str());
    EXPECT_EQ(text, many.GetItemText(50).GetString());
    EXPECT_EQ(text, CMade<CCUIStatic>(parent, 1, 0, text.c_str()).GetText().GetString());
    EXPECT_EQ(text, CMade<CCUIEdit>(parent, 1, 0, text.c_str()).GetLine(0).GetString());
    CMade<CCUIEdit> edit(parent, 9, CCUIEdit::STYLE_LINES, "one\r\ntwo");
    edit.Append("\r\nthree");
    EXPECT_STREQ("three", edit.GetLine(2));
    EXPECT_EQ(" 0", Text("%s %d", edit.GetLine(3).GetString(), edit.GetLineLength(3)));
    const auto rising = [](LPARAM a, LPARAM b) { return int(a - b); };
    CMade<CCUIListView> list(parent, 7);
    list.SetExtendedStyle(LVS_EX_CHECKBOXES);
    list.AddItem("b", -1, 2);
    list.AddItem(text.c_str(), -1, 1);
    list.SetCheck(1, true);
    list.SortItems(rising);
    EXPECT_EQ("1 0", Text("%d %d", list.GetCheck(0), list.GetCheck(1)));
    EXPECT_EQ(text, list.GetItemText(0).GetString());
    EXPECT_EQ("1 1", Text("%d %d", list.FindItem("B"), list.FindItemData(2)));
    CMade<CCUITreeView> tree(parent, 8, CCUITreeView::STYLE | TVS_CHECKBOXES);
    const HTREEITEM hB = tree.InsertItem(nullptr, "b");
    const HTREEITEM hA = tree.InsertItem(nullptr, text.c_str());
    tree.SetCheck(hA, true);
    EXPECT_TRUE(tree.FindChild(nullptr, text.c_str()) == hA);
    EXPECT_EQ("1 0", Text("%d %d", tree.GetCheck(hA), tree.GetCheck(hB)));
}

TEST_F(SystemControls, TellTheirObjectsWhatUsersDo)
{
    CMade<CPlain<CCUIEdit>> edit(parent, 1);
    CMade<CPlain<CCUISpinButton>> spin(parent, 7);
    edit.SetLimit(1);
    SetFocus(edit);
    for (int i = 0; i < 2; ++i)
        SendMessageA(edit, WM_CHAR, 'x', 1);
    EXPECT_EQ(1, PressKey(VK_RETURN));
    const std::string told = edit.Taken();
    EXPECT_EQ("change max ", told.substr(0, 11));
    EXPECT_EQ("return ", told.substr(told.size() - 7));

    CMade<CPlain<CCUIListBox>> list(parent, 3);
    list.AddString("a");
    SetFocus(list);
    Input(list, {VK_DOWN});
    DoubleClick(list, {0, 0, 9, 9});
    EXPECT_EQ("select select double ", list.Taken());

    CMade<CPlain<CCUIComboBox>> combo(parent, 4, CCUIComboBox::STYLE_EDIT);
    for (int i = 0; i < 20; ++i)
        combo.AddString("item");
    SetFocus(combo);
    combo.DropDown(true);
    EXPECT_EQ(8, ClientOf(FindWindowA("ComboLBox", nullptr)).bottom / combo.Send(CB_GETITEMHEIGHT));
    EXPECT_EQ(0, PressKey(VK_RETURN));
    combo.DropDown(false);
    Input(GetFocus(), {VK_DOWN});
    SendMessageA(GetFocus(), WM_CHAR, 'x', 1);
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_EQ("drop close select edit return ", combo.Taken());
    EXPECT_STREQ("item", combo.GetItemText(19));

    CMade<CPlain<CCUIScrollBar>> bar(parent, 5, SBS_VERT);
    bar.SetRange(-100000, 100000, 1000);
    bar.SetLine(7);
    bar.SetPos(50000);
    for (const int nCode : {SB_LINEUP, SB_PAGEDOWN, SB_BOTTOM, SB_LINEDOWN, SB_TOP, SB_ENDSCROLL})
        SendMessageA(parent, WM_VSCROLL, WPARAM(nCode), reinterpret_cast<LPARAM>(bar.GetHandle()));
    EXPECT_EQ("49993 50993 99001 -100000 ", bar.Taken());

    CMade<CPlain<CCUITrackBar>> track(parent, 6);
    track.SetRange(-5, 70000);
    track.SetPos(60000);
    Input(track, {VK_RIGHT, VK_END});
    EXPECT_EQ("60001 70000 ", track.Taken());

    spin.SetRange(0, 1000000);
    spin.SetPos(123456);
    EXPECT_EQ(123456, spin.GetPos());
    spin.SetRange(0, 50);
    spin.SetPos(40);
    EXPECT_STREQ("40", edit.GetText());
    Click(spin, 2, 2);
    EXPECT_EQ("step 45 ", spin.Taken().substr(0, 8));
    spin.m_bRefuse = true;
    Click(spin, 2, 2);
    EXPECT_EQ(45, spin.GetPos());

    CMade<CPlain<CCUITabControl>> tab(parent, 8);
    tab.AddItem("first");
    tab.AddItem("second");
    RECT second;
    tab.Send(TCM_GETITEMRECT, 1, &second);
    for (const bool bRefuse : {true, false}) {
        tab.m_bRefuse = bRefuse;
        Click(tab, second.left + 3, second.top + 3);
    }
    EXPECT_EQ("leave leave select ", tab.Taken());
    EXPECT_STREQ("second", tab.GetItemText(1));
}

TEST_F(SystemControls, TellWhatBecomesOfItems)
{
    const RECT rect = {0, 0, 150, 100};
    RECT row = {};
    CMade<CTree> tree(parent, 1, CCUITreeView::STYLE | TVS_EDITLABELS, nullptr, &rect);
    const HTREEITEM hRoot = tree.InsertItem(nullptr, "r", 0, -1, 1);
    const HTREEITEM hChild = tree.InsertItem(hRoot, "c", 0, -1, 2);
    SetFocus(tree);
    tree.Taken();
    Input(tree, {VK_HOME});
    tree.m_bRefuse = true;
    Input(tree, {VK_RIGHT});
    tree.SelectItem(hChild);
    EXPECT_FALSE(tree.EditLabel(hRoot));
    EXPECT_EQ(hRoot, tree.GetSelection());
    EXPECT_FALSE(tree.IsExpanded(hRoot));
    tree.m_bRefuse = false;
    Input(tree, {VK_RIGHT});
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_TRUE(tree.GetItemRect(hRoot, row));
    EXPECT_EQ("open r to c label r open r opened r activate r ", tree.Taken());
    DoubleClick(tree, row);
    EXPECT_EQ("activate r ", tree.Taken());
    EXPECT_TRUE(tree.IsExpanded(hRoot));
    for (const int message : {WM_RBUTTONDOWN, WM_RBUTTONUP})
        PostMessageA(tree, UINT(message), 0, MAKELPARAM(30, row.top + 2));
    PumpWaiting();
    EXPECT_EQ("menu ", tree.Taken());
    Rename(tree.EditLabel(hRoot));
    EXPECT_EQ("label r new ", tree.Taken());
    EXPECT_STREQ("new", tree.GetItemText(hRoot));
    tree.Destroy();
    EXPECT_NE(std::string::npos, tree.Taken().find("delete 2"));

    CMade<CList> list(parent, 2, CCUIListView::STYLE | LVS_EDITLABELS, nullptr, &rect);
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
    Click(GetWindow(list, GW_CHILD), 20, 5);  // the header
    EXPECT_EQ("column 0 ", list.Taken());
    Rename(list.EditLabel(1));
    EXPECT_NE(std::string::npos, list.Taken().find("label 1 new "));
    EXPECT_STREQ("new", list.GetItemText(1));
    list.Destroy();
    EXPECT_NE(std::string::npos, list.Taken().find("delete 6"));
}

TEST_F(SystemControls, MayBeDeletedByWhatTheyTell)
{
    auto *const pEdit = new CMade<CPlain<CCUIEdit>>(parent, 1);
    pEdit->m_onTold = [=] { delete pEdit; };
    auto *const pList = new CMade<CList>(parent, 2);
    pList->m_onTold = [=] { delete pList; };
    auto *const pBound = new CPlain<CCUIListBox>;
    const HWND hBound = MakePlain("LISTBOX", parent, 3, LBS_NOTIFY);
    pBound->Bind(parent, 3);
    pBound->AddString("a");
    pBound->m_onTold = [=] { delete pBound; };
    const HWND hEdit = *pEdit;
    SendMessageA(hEdit, WM_CHAR, 'x', 1);
    pList->AddItem("a");
    pList->Select(0);
    SendMessageA(hBound, WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_EQ("1 0", Text("%d %d", IsWindow(hEdit), IsWindowVisible(hEdit)));
    PumpWaiting();
    EXPECT_EQ("0 1", Text("%d %d", IsWindow(hEdit), IsWindow(hBound)));
    EXPECT_EQ(nullptr, CCUIWindow::FromHandle(hBound));
}

TEST_F(SystemControls, PassTabOnAndLetTextsHaveIt)
{
    const auto tell = [&](const char *what) {
        const HWND hChild = reinterpret_cast<HWND>(parent.m_wParam);
        return parent.m_told += Text("%s %d ", what, GetDlgCtrlID(hChild)), 1;
    };
    parent.m_on[CUI_WM_TABKEY] = [&] { return tell("tab"); };
    parent.m_on[CUI_WM_CHILDFOCUS] = [&] { return tell("focus"); };
    CMade<CCUIComboBox> combo(parent, 4, CCUIComboBox::STYLE_EDIT);
    SetFocus(GetWindow(combo, GW_CHILD));
    EXPECT_EQ(1, PressKey(VK_TAB));
    CMade<CCUIEdit> edit(parent, 5, CCUIEdit::STYLE_LINES, "");
    SetFocus(edit);
    EXPECT_EQ(1, PressKey(VK_TAB));
    edit.SetWantTab(true);
    EXPECT_EQ(1, PressKey(VK_TAB));
    edit.SetReadOnly(true);
    PressKey(VK_TAB);
    EXPECT_STREQ("\t", edit.GetText());
    edit.Enable(false);
    EXPECT_EQ("focus 4 tab 4 focus 5 tab 5 tab 5 tab 5 ", parent.Told());
    EXPECT_EQ(parent.GetHandle(), GetFocus());

    // The dialog has its own way for Tab; it must get there.
    CCUIDialog dialog(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(500));
    CCUIComboBox choice;
    dialog.DoModeless(nullptr);
    choice.Bind(dialog, 1003);
    SetFocus(GetWindow(choice, GW_CHILD));
    EXPECT_EQ(1, PressKey(VK_TAB));
    EXPECT_EQ(GetDlgItem(dialog, 1004), GetFocus());
}

TEST_F(SystemControls, AreColoredAsTheyAreTold)
{
    ExpectNoGdiLeft(20, [&] {
        CMade<CCUIStatic> label(parent, 1, 0, "text");
        label.SetWindowColor(RGB(255, 0, 0));
        label.SetTextColor(RGB(0, 0, 255));
        const CPixelMap map = WindowPixels(label);
        EXPECT_EQ(RGB(255, 0, 0), map.At(map.cx - 1, 0));
        EXPECT_LT(0, map.Count(RGB(0, 0, 255)));
    });
}
