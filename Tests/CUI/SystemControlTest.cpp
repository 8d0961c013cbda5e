// The typed classes over the system's controls, with the system's own messages beside them.
#include "CUI/ComboBox.h"
#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "CUI/Edit.h"
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
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
        PostMessageA(hWnd, message, 0, at);
    PumpWaiting();
}

std::string Got(const CCUString &s)
{
    return s.GetString();
}

template <typename Control, const char *NAME, bool OWN_CLASS>
struct CKind
{
    typedef Control Type;
    static const char *Name() { return NAME; }
    static const bool HAS_OWN_CLASS = OWN_CLASS;
};
#define NAMED(Type, name) const char NAME_OF_##Type[] = name
NAMED(Static, "Static");
NAMED(Edit, "Edit");
NAMED(ListBox, "ListBox");
NAMED(ComboBox, "ComboBox");
NAMED(ScrollBar, "ScrollBar");
NAMED(ProgressBar, "msctls_progress32");
NAMED(TrackBar, "msctls_trackbar32");
NAMED(SpinButton, "msctls_updown32");
NAMED(TabControl, "SysTabControl32");
NAMED(TreeView, "SysTreeView32");
NAMED(ListView, "SysListView32");
#undef NAMED

template <typename Kind>
struct SystemControl : testing::Test
{
};
using Kinds = testing::Types<
    CKind<CCUIStatic, NAME_OF_Static, false>, CKind<CCUIEdit, NAME_OF_Edit, true>,
    CKind<CCUIListBox, NAME_OF_ListBox, true>, CKind<CCUIComboBox, NAME_OF_ComboBox, true>,
    CKind<CCUIScrollBar, NAME_OF_ScrollBar, false>,
    CKind<CCUIProgressBar, NAME_OF_ProgressBar, false>,
    CKind<CCUITrackBar, NAME_OF_TrackBar, false>, CKind<CCUISpinButton, NAME_OF_SpinButton, false>,
    CKind<CCUITabControl, NAME_OF_TabControl, false>, CKind<CCUITreeView, NAME_OF_TreeView, true>,
    CKind<CCUIListView, NAME_OF_ListView, true>>;
TYPED_TEST_SUITE(SystemControl, Kinds);

}  // namespace

TYPED_TEST(SystemControl, IsMadeAsAControlWindowAndGoesWithItsObject)
{
    typedef typename TypeParam::Type Control;
    CParent parent;
    char szClass[32];
    {
        Control control;
        ASSERT_EQ(1, control.CreateControl(parent, 7, "text"));
        GetClassNameA(control, szClass, sizeof szClass);
        EXPECT_STRCASEEQ(TypeParam::Name(), szClass);
        EXPECT_EQ(control.GetHandle(), GetDlgItem(parent, 7));
        EXPECT_TRUE(LayoutData(control) && IsWindowVisible(control));
        // The system takes scroll bars away while there is nothing to scroll.
        EXPECT_EQ(0, LONG(Control::STYLE) & ~GetWindowLongA(control, GWL_STYLE) & ~WS_VSCROLL);
        RECT rect;
        GetWindowRect(control, &rect);
        EXPECT_TRUE(rect.right > rect.left && rect.bottom > rect.top);
        // A font that the user's settings have replaced is left for the new one.
        const HFONT hFont = control.GetFont();
        if (hFont) {
            EXPECT_EQ(CUIGetWinData()->hMenuFont, hFont);
            CUIGetWinData()->UpdateSysFonts();
            SendMessageA(control, WM_WININICHANGE, 0, 0);
            EXPECT_EQ(CUIGetWinData()->hMenuFont, control.GetFont());
        }
        // Nor is a hidden one shown by painting again.
        control.Show(false);
        control.SetRedraw(false);
        control.SetRedraw(true);
        EXPECT_FALSE(control.IsShown());
    }
    EXPECT_EQ(0, Children(parent));
    const int nGdi = GdiCount(), nWindows = WindowCount();
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(1, Control().CreateControl(parent, 7));
    EXPECT_NEAR(nGdi, GdiCount(), 1);
    EXPECT_EQ(nWindows, WindowCount());
    EXPECT_EQ(0, Children(parent));
}

TYPED_TEST(SystemControl, IsBoundToOneThatStays)
{
    typedef typename TypeParam::Type Control;
    CReports reports;
    CDumped dumped;
    CParent parent;
    Control control;
    const HWND hOther = MakePlain("BUTTON", parent, 8),
               hFirst = MakePlain(TypeParam::Name(), parent, 9);
    EXPECT_EQ(0, control.Bind(parent, 8));
    EXPECT_EQ(1, reports.Count("IsOfClass(hWnd)", "SystemControl"));
    EXPECT_EQ(0, control.Bind(parent, 10));
    EXPECT_NE(std::string::npos, dumped.m_text.find("No control 10"));
    WNDCLASSA own = {};
    GetClassInfoA(nullptr, TypeParam::Name(), &own);
    own.lpszClassName = "Own class";
    own.hInstance = GetModuleHandleA(nullptr);
    own.style &= ~UINT(CS_GLOBALCLASS);
    RegisterClassA(&own);
    const HWND hOwn = MakePlain("Own class", parent, 11);
    for (const HWND hWnd : {hFirst, TypeParam::HAS_OWN_CLASS ? hOwn : nullptr}) {
        if (!hWnd)
            continue;
        const LONG nProcedure = GetWindowLongA(hWnd, GWL_WNDPROC);
        Control second;
        ASSERT_EQ(1, second.Bind(parent, static_cast<UINT>(GetDlgCtrlID(hWnd))));
        EXPECT_EQ(1, control.Bind(parent, static_cast<UINT>(GetDlgCtrlID(hWnd))));
        EXPECT_TRUE(!second.GetHandle() && LayoutData(hWnd));
        EXPECT_EQ(hWnd, control.Unbind());
        EXPECT_EQ(1, second.Bind(parent, static_cast<UINT>(GetDlgCtrlID(hWnd))));
        EXPECT_TRUE(LayoutData(hWnd));
        second.~Control();
        new (&second) Control;
        EXPECT_TRUE(IsWindow(hWnd) && !LayoutData(hWnd));
        EXPECT_EQ(nProcedure, GetWindowLongA(hWnd, GWL_WNDPROC));
    }
    EXPECT_EQ(1, reports.Total());
    DestroyWindow(hOther);
    DestroyWindow(hOwn);
}

TEST(SystemControls, SayWhichClassIsMissing)
{
    struct CMissing : CCUISystemControl
    {
        CMissing() : CCUISystemControl({"NoSuchControl", 0, 0, 0, true, 1, 1}) {}
    } missing;
    CDumped dumped;
    CParent parent;
    EXPECT_EQ(0, missing.CreateControl(parent, 7));
    EXPECT_NE(std::string::npos, dumped.m_text.find("NoSuchControl"));
}

TEST(SystemControls, HoldTextsAndDataAsTheSystemsMessagesSay)
{
    CParent parent;
    const std::string text(5000, 'x');
    const auto longText = text.c_str();
    const auto check = [&](auto &list, UINT nSelect, UINT nData) {
        list.CreateControl(parent, 7);
        EXPECT_EQ(0, list.AddString("b"));
        EXPECT_EQ(1, list.AddString(longText));
        EXPECT_EQ(0, list.InsertString(0, "A"));
        list.SetItemData(2, 77);
        list.SetCurSel(2);
        EXPECT_EQ(2, list.Send(nSelect));
        EXPECT_EQ(77, list.Send(nData, 2));
        EXPECT_EQ(77, list.GetItemData(2));
        EXPECT_TRUE(text == Got(list.GetItemText(2)) && list.GetItemText(9).IsEmpty());
        EXPECT_EQ(2, list.FindString("XX"));
        EXPECT_EQ(-1, list.FindStringExact("xx"));
        list.DeleteString(0);
        EXPECT_EQ(2, list.GetCount());
        EXPECT_EQ(1, list.GetCurSel());
        list.ResetContent();
        EXPECT_EQ(0, list.GetCount());
    };
    CCUIListBox listBox;
    CCUIComboBox comboBox;
    check(listBox, LB_GETCURSEL, LB_GETITEMDATA);
    check(comboBox, CB_GETCURSEL, CB_GETITEMDATA);

    CCUIListBox many;
    many.CreateControl(parent, 8, nullptr, CCUIListBox::STYLE | LBS_EXTENDEDSEL);
    SetWindowPos(many, nullptr, 0, 0, 50, 60, SWP_NOMOVE);
    for (int i = 0; i < 50; ++i)
        many.AddString(Text("%d", i).c_str());
    many.Select(3, true);
    many.Select(40, true);
    EXPECT_EQ(2, many.GetSelCount());
    EXPECT_EQ(40, many.FindSelected(4));
    for (const int nItem : {40, 3}) {
        many.EnsureVisible(nItem);
        RECT rect, client;
        many.Send(LB_GETITEMRECT, static_cast<WPARAM>(nItem), &rect);
        GetClientRect(many, &client);
        EXPECT_TRUE(rect.top >= 0 && rect.bottom <= client.bottom) << nItem;
        EXPECT_EQ(nItem, many.HitTest({3, rect.top + 1}));
    }

    CCUIEdit edit;
    edit.CreateControl(parent, 9, "one\r\ntwo", CCUIEdit::STYLE_LINES);
    edit.Append("\r\nthree");
    edit.SetSelection(1, 3);
    int nStart = 0, nEnd = 0;
    edit.GetSelection(nStart, nEnd);
    EXPECT_EQ(MAKELONG(1, 3), edit.Send(EM_GETSEL));
    EXPECT_TRUE(nStart == 1 && nEnd == 3);
    EXPECT_EQ("three", Got(edit.GetLine(2)));
    edit.ReplaceSelection("f");
    EXPECT_TRUE(edit.IsModified() && edit.CanUndo());
    EXPECT_EQ("of\r\ntwo\r\nthree", Got(edit.GetText()));
    edit.SetText(longText);
    EXPECT_EQ(text, Got(edit.GetText()));

    CCUITabControl tab;
    tab.CreateControl(parent, 10);
    EXPECT_EQ(0, tab.AddItem(longText, -1, 5));
    EXPECT_EQ(1, tab.AddItem("b"));
    tab.SetItemText(1, "c");
    tab.SetItemData(1, 6);
    tab.SetCurSel(1);
    EXPECT_EQ(1, tab.Send(TCM_GETCURSEL));
    EXPECT_TRUE(text == Got(tab.GetItemText(0)) && "c" == Got(tab.GetItemText(1)));
    EXPECT_TRUE(tab.GetItemData(0) == 5 && tab.GetItemData(1) == 6 && tab.GetCount() == 2);
    RECT page, client;
    GetClientRect(tab, &client);
    tab.GetPageRect(page);
    EXPECT_TRUE(page.top > client.top + 5 && page.bottom < client.bottom);
}

TEST(SystemControls, HoldItemsOfListsAndTreesAsTheSystemsMessagesSay)
{
    CParent parent;
    const std::string text(5000, 'x');
    CCUIListView list;
    list.CreateControl(parent, 7);
    EXPECT_EQ(0, list.InsertColumn(0, "Name", 50));
    EXPECT_EQ(1, list.InsertColumn(1, "Size", 60, LVCFMT_RIGHT));
    list.SetExtendedStyle(LVS_EX_CHECKBOXES);
    EXPECT_EQ(0, list.AddItem("b", -1, 2));
    EXPECT_EQ(1, list.AddItem("a", -1, 1));
    list.SetItemText(1, 1, text.c_str());
    EXPECT_TRUE(text == Got(list.GetItemText(1, 1)) && "a" == Got(list.GetItemText(1)));
    list.Select(1);
    list.SetCheck(1, true);
    EXPECT_EQ(1, list.Send(LVM_GETNEXTITEM, WPARAM(-1), LVNI_SELECTED | LVNI_FOCUSED));
    EXPECT_EQ(LVIS_SELECTED | LVIS_FOCUSED | INDEXTOSTATEIMAGEMASK(2),
              list.Send(LVM_GETITEMSTATE, 1, LPARAM(-1)));
    EXPECT_TRUE(list.GetCheck(1) && !list.GetCheck(0) && list.GetFocused() == 1);
    list.SortItems([](LPARAM a, LPARAM b) { return int(a - b); });
    EXPECT_TRUE(list.FindItem("B") == 1 && list.FindItemData(2) == 1 && list.FindSelected() == 0);
    EXPECT_EQ(2, list.GetItemData(1));
    list.Select(-1);
    EXPECT_EQ(2, list.GetSelCount());
    EXPECT_EQ(60, list.GetColumnWidth(1));
    list.SetView(LVS_LIST);
    EXPECT_EQ(LVS_LIST, GetWindowLongA(list, GWL_STYLE) & LVS_TYPEMASK);

    CCUITreeView tree;
    tree.CreateControl(parent, 8, nullptr, CCUITreeView::STYLE | TVS_CHECKBOXES);
    const HTREEITEM hRoot = tree.InsertItem(nullptr, "root", 0, -1, 1);
    const HTREEITEM hB = tree.InsertItem(hRoot, text.c_str(), 0, -1, 2);
    const HTREEITEM hA = tree.InsertItem(hRoot, "a", 0, -1, 3);
    EXPECT_EQ(LRESULT(hA), tree.Send(TVM_GETNEXTITEM, TVGN_NEXT, hB));
    EXPECT_TRUE(text == Got(tree.GetItemText(hB)) && tree.GetItemData(hB) == 2);
    EXPECT_TRUE(tree.FindChild(hRoot, "a") == hA && tree.FindChild(nullptr, "root") == hRoot);
    tree.SortChildren(hRoot);
    EXPECT_EQ(hA, tree.GetChildItem(hRoot));
    tree.SortChildren(hRoot, [](LPARAM a, LPARAM b) { return int(a - b); });
    EXPECT_TRUE(tree.GetNextItem(hB) == hA && tree.GetPrevItem(hA) == hB);
    tree.Expand(hRoot);
    tree.SetCheck(hA, true);
    EXPECT_TRUE(tree.IsExpanded(hRoot) && tree.GetCheck(hA) && !tree.GetCheck(hB));
    tree.SelectItem(hA);
    EXPECT_TRUE(tree.GetSelection() == hA && tree.GetParentItem(hA) == hRoot);
    EXPECT_EQ(3, tree.GetCount());
}

namespace {

// Writes down what it is told, and answers as it is told; m_onTold may delete it.
struct CRecord
{
    int Told(const std::string &what)
    {
        *m_pTold += what + " ";
        const auto function = m_onTold;
        function();
        return 1;
    }
    std::string Taken() { return std::exchange(*m_pTold, ""); }
    std::shared_ptr<std::string> m_pTold = std::make_shared<std::string>();
    std::function<void()> m_onTold = [] {};
    bool m_bRefuse = false;
};

struct CEditRecord : CCUIEdit, CRecord
{
    int OnChange() override { return Told("change"); }
    int OnMaxText() override { return Told("max"); }
    int OnReturn() override { return Told("return"); }
};
struct CStaticRecord : CCUIStatic, CRecord
{
    int OnClick() override { return Told("click"); }
    int OnDblClk() override { return Told("double"); }
};
struct CListBoxRecord : CCUIListBox, CRecord
{
    int OnSelChange() override { return Told(Text("select %d", GetCurSel())); }
    int OnDblClk() override { return Told("double"); }
    int OnReturn() override { return Told("return"); }
};
struct CComboRecord : CCUIComboBox, CRecord
{
    int OnSelChange() override { return Told(Text("select %d", GetCurSel())); }
    int OnEditChange() override { return Told("edit"); }
    int OnDropDown() override { return Told("drop"); }
    int OnCloseUp() override { return Told("close"); }
    int OnReturn() override { return Told("return"); }
};
struct CScrollRecord : CCUIScrollBar, CRecord
{
    int OnChange(int nPos) override { return Told(Text("%d", nPos)); }
};
struct CTrackRecord : CCUITrackBar, CRecord
{
    int OnChange(int nPos, bool) override { return Told(Text("%d", nPos)); }
};
struct CSpinRecord : CCUISpinButton, CRecord
{
    int OnDeltaPos(int nPos, int &nDelta, bool &bRefuse) override
    {
        bRefuse = m_bRefuse;
        nDelta *= 5;
        return Told(Text("%d by %d", nPos, nDelta));
    }
    int OnChange(int nPos) override { return Told(Text("%d", nPos)); }
};
struct CTabRecord : CCUITabControl, CRecord
{
    int OnSelChanging(bool &bRefuse) override
    {
        bRefuse = m_bRefuse;
        return Told("from");
    }
    int OnSelChange() override { return Told(Text("to %d", GetCurSel())); }
};
struct CTreeRecord : CCUITreeView, CRecord
{
    std::string Name(HTREEITEM hItem) { return hItem ? Got(GetItemText(hItem)) : "none"; }
    int OnSelChanging(HTREEITEM hItem, bool &bRefuse) override
    {
        bRefuse = m_bRefuse;
        return Told("selecting " + Name(hItem));
    }
    int OnSelChange(HTREEITEM hItem) override { return Told("select " + Name(hItem)); }
    int OnExpanding(HTREEITEM hItem, bool bExpand, bool &bRefuse) override
    {
        bRefuse = m_bRefuse;
        return Told((bExpand ? "expanding " : "closing ") + Name(hItem));
    }
    int OnExpanded(HTREEITEM hItem, bool) override { return Told("expanded " + Name(hItem)); }
    int OnItemActivate(HTREEITEM hItem) override { return Told("activate " + Name(hItem)); }
    int OnBeginLabelEdit(HTREEITEM hItem, bool &bRefuse) override
    {
        bRefuse = m_bRefuse;
        return Told("label " + Name(hItem));
    }
    int OnEndLabelEdit(HTREEITEM, const char *pszText, bool &bAccept) override
    {
        bAccept = true;
        return Told(std::string("is ") + (pszText ? pszText : "null"));
    }
    int OnDeleteItem(HTREEITEM, LPARAM lData) override { return Told(Text("delete %ld", lData)); }
};
struct CListRecord : CCUIListView, CRecord
{
    int OnSelChange(int nItem, bool bOn) override
    {
        return Told(Text("%c%d", bOn ? '+' : '-', nItem));
    }
    int OnCheck(int nItem, bool bOn) override { return Told(Text("check %d %d", nItem, bOn)); }
    int OnItemActivate(int nItem) override { return Told(Text("activate %d", nItem)); }
    int OnColumnClick(int nColumn) override { return Told(Text("column %d", nColumn)); }
    int OnBeginLabelEdit(int nItem, bool &bRefuse) override
    {
        bRefuse = m_bRefuse;
        return Told(Text("label %d", nItem));
    }
    int OnEndLabelEdit(int, const char *pszText, bool &bAccept) override
    {
        bAccept = true;
        return Told(std::string("is ") + (pszText ? pszText : "null"));
    }
    int OnDeleteItem(int nItem) override { return Told(Text("delete %ld", GetItemData(nItem))); }
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
    CEditRecord edit;
    edit.CreateControl(parent, 1);
    edit.SetLimit(1);
    SetFocus(edit);
    for (int i = 0; i < 2; ++i)
        SendMessageA(edit, WM_CHAR, 'x', 1);
    EXPECT_EQ(1, PressKey(VK_RETURN));
    const std::string told = edit.Taken();
    EXPECT_TRUE(told.find("change max ") == 0 && told.find("return ") == told.size() - 7) << told;

    CStaticRecord label;
    label.CreateControl(parent, 2, "text");
    Click(label, 1, 1);
    SendMessageA(label, WM_LBUTTONDBLCLK, 0, 0);
    EXPECT_EQ("click double ", label.Taken());

    CListBoxRecord list;
    list.CreateControl(parent, 3, nullptr, 0, &rect);
    list.AddString("a");
    list.AddString("b");
    SetFocus(list);
    Input(list, {VK_DOWN, VK_DOWN});
    DoubleClick(list, {0, 0, 9, 9});
    EXPECT_EQ(1, PressKey(VK_RETURN));
    EXPECT_EQ("select 0 select 1 select 0 double return ", list.Taken());

    CComboRecord combo;
    combo.CreateControl(parent, 4, nullptr, CCUIComboBox::STYLE_EDIT);
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
    EXPECT_EQ("drop close select 0 edit return ", combo.Taken());

    CScrollRecord bar;
    bar.CreateControl(parent, 5, nullptr, SBS_VERT);
    bar.SetRange(-100000, 100000, 1000);
    bar.SetLine(7);
    bar.SetPos(50000);
    for (const int nCode : {SB_LINEUP, SB_PAGEDOWN, SB_BOTTOM, SB_LINEDOWN, SB_TOP, SB_ENDSCROLL})
        SendMessageA(parent, WM_VSCROLL, WPARAM(nCode), reinterpret_cast<LPARAM>(bar.GetHandle()));
    EXPECT_EQ("49993 50993 99001 -100000 ", bar.Taken());
    EXPECT_EQ(-100000, bar.GetPos());

    CTrackRecord track;
    track.CreateControl(parent, 6);
    track.SetRange(-5, 70000);
    track.SetSteps(2, 300);
    track.SetPos(60000);
    Input(track, {VK_RIGHT, VK_NEXT, VK_END});
    EXPECT_EQ("60002 60302 70000 ", track.Taken());

    CSpinRecord spin;
    spin.CreateControl(parent, 7);
    spin.SetBuddy(edit);
    spin.SetRange(0, 50);
    spin.SetPos(40);
    EXPECT_EQ("40", Got(edit.GetText()));
    RECT arrows;
    GetClientRect(spin, &arrows);
    Click(spin, 2, 2);
    EXPECT_EQ("40 by 5 45 ", spin.Taken().substr(0, 11));
    spin.m_bRefuse = true;
    Click(spin, 2, arrows.bottom - 2);
    EXPECT_EQ(45, spin.GetPos());
    spin.SetRange(0, 1000000);
    spin.SetPos(123456);
    EXPECT_EQ(123456, spin.GetPos());

    CTabRecord tab;
    tab.CreateControl(parent, 8);
    tab.AddItem("first");
    tab.AddItem("second");
    RECT second;
    tab.Send(TCM_GETITEMRECT, 1, &second);
    tab.m_bRefuse = true;
    Click(tab, second.left + 3, second.top + 3);
    tab.m_bRefuse = false;
    Click(tab, second.left + 3, second.top + 3);
    EXPECT_EQ("from from to 1 ", tab.Taken());

    CCUIProgressBar progress;
    progress.CreateControl(parent, 9);
    progress.SetRange(-10, 100000);
    progress.SetPos(70000);
    EXPECT_EQ(70000, progress.OffsetPos(5));
    EXPECT_EQ(70005, progress.Send(PBM_GETPOS));
}

TEST(SystemControls, TellWhatBecomesOfItems)
{
    CParent parent;
    const RECT rect = {0, 0, 150, 100};
    RECT row = {};
    CTreeRecord tree;
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
    EXPECT_EQ("expanding r selecting c label r expanding r expanded r activate r ", tree.Taken());
    DoubleClick(tree, row);
    EXPECT_EQ("activate r ", tree.Taken());
    EXPECT_TRUE(tree.IsExpanded(hRoot));
    const HWND hTreeLabel = tree.EditLabel(hRoot);
    SetWindowTextA(hTreeLabel, "new");
    SendMessageA(hTreeLabel, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ("label r is new ", tree.Taken());
    EXPECT_EQ("new", Got(tree.GetItemText(hRoot)));
    tree.Destroy();
    EXPECT_NE(std::string::npos, tree.Taken().find("delete 2"));

    CListRecord list;
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
    list.m_bRefuse = true;
    EXPECT_FALSE(list.EditLabel(1));
    list.m_bRefuse = false;
    const HWND hListLabel = list.EditLabel(1);
    SetWindowTextA(hListLabel, "new");
    SendMessageA(hListLabel, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_NE(std::string::npos, list.Taken().find("label 1 label 1 is new "));
    EXPECT_EQ("new", Got(list.GetItemText(1)));
    list.Destroy();
    EXPECT_NE(std::string::npos, list.Taken().find("delete 6"));
}

TEST(SystemControls, MayBeDeletedByWhatTheyTell)
{
    CParent parent;
    auto *const pEdit = new CEditRecord;
    pEdit->CreateControl(parent, 1);
    pEdit->m_onTold = [=] { delete pEdit; };
    auto *const pList = new CListRecord;
    pList->CreateControl(parent, 2);
    pList->m_onTold = [=] { delete pList; };
    auto *const pBound = new CListBoxRecord;
    const HWND hBound = CreateWindowA("LISTBOX", "", WS_CHILD | LBS_NOTIFY, 0, 0, 9, 9, parent,
                                      reinterpret_cast<HMENU>(3), nullptr, nullptr);
    pBound->Bind(parent, 3);
    pBound->AddString("a");
    pBound->m_onTold = [=] { delete pBound; };
    SendMessageA(*pEdit, WM_CHAR, 'x', 1);
    pList->AddItem("a");
    pList->Select(0);
    SendMessageA(hBound, WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_FALSE(IsWindowVisible(GetDlgItem(parent, 1)));
    PumpWaiting();
    EXPECT_EQ(1, Children(parent));
    EXPECT_TRUE(IsWindow(hBound) && !CCUIWindow::FromHandle(hBound));
}

TEST(SystemControls, PassTabOnAndLetTextsHaveIt)
{
    CParent parent;
    CCUIComboBox combo;
    combo.CreateControl(parent, 4, nullptr, CCUIComboBox::STYLE_EDIT);
    SetFocus(GetWindow(combo, GW_CHILD));
    EXPECT_EQ(1, PressKey(VK_TAB));
    EXPECT_EQ("focus 4 tab 4 ", parent.m_told);
    CCUIEdit edit;
    edit.CreateControl(parent, 5, "", CCUIEdit::STYLE_LINES);
    SetFocus(edit);
    EXPECT_EQ(1, PressKey(VK_TAB));
    edit.SetWantTab(true);
    EXPECT_EQ(1, PressKey(VK_TAB));
    edit.SetReadOnly(true);
    PressKey(VK_TAB);
    EXPECT_EQ("\t", Got(edit.GetText()));
    EXPECT_EQ("focus 4 tab 4 focus 5 tab 5 tab 5 ", parent.m_told);
    edit.Enable(false);
    EXPECT_NE(edit.GetHandle(), GetFocus());

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
    CCUIStatic label;
    label.CreateControl(parent, 1, "text");
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
