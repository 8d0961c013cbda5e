// A bar of buttons: places, states, mouse, keyboard, menus, docking.
#include "CUI/ControlBar.h"

#include "CUI/BmpState.h"
#include "CUI/CommandMap.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/Menu.h"
#include "Support/DotsPerInch.h"
#include "Support/ImportHook.h"
#include "Support/MenuItems.h"
#include "Support/Reports.h"
#include "Support/TestBitmap.h"
#include "Support/TestCommand.h"
#include "Support/TestSettings.h"
#include "Support/TipText.h"
#include "Support/UpdateArea.h"

namespace {

// Has three commands, and writes down what a bar tells its parent.
struct CParent : CTestWindow
{
    CParent() : CTestWindow(nullptr, WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN)
    {
        m_on[WM_COMMAND] = [&] {
            return m_told += Text("%u/%d ", UINT(m_wParam), GetDlgCtrlID(HWND(m_lParam))), 0;
        };
        m_on[WM_MENUSELECT] = [&] {
            return m_told += Text(m_lParam ? "menu%d " : "help%d ", SHORT(m_wParam)), 0;
        };
        m_on[CUI_WM_LAYOUT] = [&] { return m_told += Text("layout%ld ", m_lParam), 0; };
    }
    CTestCommand m_commands[3] = {CTestCommand(1000), CTestCommand(1001), CTestCommand(1002)};
};

// Along its parent's upper or left edge, with pictures of 16 by 15 pixels, so that a button has 23
// by 22 at 96 dots an inch.
struct CBar : CCUIControlBar
{
    explicit CBar(CParent &parent, const char *pszName = nullptr)
    {
        SetPictures(Strip(), 16);
        CreateBar(parent, 3, pszName);
        SetButtons(std::initializer_list<unsigned>({1000, 1001, 0, 1002, 1003}).begin(), 5);
        SetLength(200);
        parent.Told();
    }
    void SetLength(int n)
    {
        const int nThick = GetFixedSize();
        MoveWindow(m_hWnd, 0, 0, IsVertical() ? nThick : n, IsVertical() ? n : nThick, TRUE);
        UpdateWindow(m_hWnd);
    }
    void Mouse(UINT message, int nItem, int x = 1)
    {
        const RECT rc = nItem < 0 ? GetOverflowRect() : GetItemRect(nItem);
        SendMessageA(m_hWnd, message, 0, MAKELPARAM(rc.left + x, rc.top + 1));
    }
    std::string Places() const
    {
        std::string places;
        for (int i = 0; i < 7; ++i) {
            const RECT rc = i == 6 ? GetOverflowRect() : GetItemRect(i);
            places += IsRectEmpty(&rc) ? "- " : Text("%ld,%ld ", rc.left, rc.top);
        }
        return places;
    }
    void OnSetWindowState(UINT nState) override { m_nState = nState; }
    UINT m_nState = 0;
    static CCUIBitmap Strip() { return BitmapOf(TestPicture(64, 15, 5)); }
};

struct ControlBar : testing::Test
{
    CParent parent;
};

}  // namespace

TEST_F(ControlBar, PutsItsItemsAlongItsSideAndWhatHasNoRoomIntoAMenu)
{
    parent.m_commands[1].m_text = "one";
    CBar bar(parent);
    const auto places = [&](int nLength) { return bar.SetLength(nLength), bar.Places(); };
    EXPECT_EQ("8,2 31,2 54,2 62,2 - - 94,2 ", places(109));
    // A window keeps its size; it has no room in an upright bar that is narrower.
    const HWND hEdit = MakePlain("EDIT", bar, 77);
    SetWindowPos(hEdit, nullptr, 0, 0, 30, 18, SWP_NOMOVE);
    bar.AddControl(hEdit, 1001);
    EXPECT_FALSE(IsWindowVisible(hEdit));
    EXPECT_EQ("8,2 31,2 54,2 62,2 85,2 108,4 - ", places(200));
    EXPECT_TRUE(IsWindowVisible(hEdit));
    bar.SetSide(CUI_BAR_LEFT);
    EXPECT_EQ("2,8 2,30 2,52 2,60 2,82 - 2,125 ", places(140));
    // The menu has the commands that are hidden, as they stand.
    bar.SetLength(70);
    std::string menu, opened;
    const CFakePopup track("TrackPopupMenuEx", [&](HMENU hMenu, UINT, int x, int y, auto...) {
        opened += Text("%d,%d ", x, y);
        menu = ItemsOf(hMenu);
        return int(GetMenuItemID(hMenu, 0));
    });
    bar.Mouse(WM_LBUTTONDOWN, -1);
    EXPECT_EQ("tip one", menu);
    EXPECT_NE(std::string::npos, parent.Told().find("1002/3 "));
    SetCursorPos(30, 22);
    Send(bar, WM_SETCURSOR, WPARAM(bar.GetHandle()), HTCLIENT);
    EXPECT_EQ(LoadCursorA(nullptr, IDC_SIZEALL), GetCursor());
    SetCursorPos(500, 500);
    // A menu of its own opens from an arrow: beside an upright bar, else below, or to the left.
    CCUIMenu own;
    bar.SetDropDown(1000, &own);
    bar.Mouse(WM_LBUTTONDOWN, 0, 24);
    DestroyWindow(hEdit);
    bar.SetSide(CUI_BAR_TOP);
    EXPECT_EQ("8,2 43,2 66,2 74,2 97,2 - - ", places(200));
    bar.Mouse(WM_LBUTTONDOWN, 0, 24);
    SetWindowLongA(bar, GWL_EXSTYLE, MIRRORED);
    bar.Mouse(WM_LBUTTONDOWN, 0, 24);
    EXPECT_EQ("35,75 47,28 18,44 202,44 ", opened);
    {
        // What has its size needs no DC to be laid out.
        int nMeasured = 0;
        const CFakeCall<HDC(HWND)> dc("GetDC", [&](HWND hWnd) {
            nMeasured += !hWnd;
            return dc.Original(hWnd);
        });
        bar.SetSide(CUI_BAR_LEFT);
        bar.SetSide(CUI_BAR_TOP);
        EXPECT_EQ(0, nMeasured);
    }
    // Pictures stretch to the dots of the screen, as far as they are drawn for fewer.
    const CDotsPerInch dpi(192);
    for (const int nDpi : {96, 192, 400}) {
        bar.SetPictures(CBar::Strip(), 16, nDpi);
        const RECT rc = bar.GetItemRect(1);
        EXPECT_EQ(nDpi == 96 ? 44 : 29, rc.bottom - rc.top);
    }
}

TEST_F(ControlBar, ShowsWhatTheHandlersSayAndRepaintsOnlyWhatThatChanges)
{
    CBar bar(parent);
    parent.m_commands[1].m_nState = 0;
    CCUICommandMap::IdleUpdate();
    EXPECT_EQ("31,2,54,24", UpdateArea(bar));
    // Part by part; the button whose command has no handler is disabled.
    const COLORREF crFace = GetSysColor(COLOR_BTNFACE), crLight = GetSysColor(COLOR_BTNHIGHLIGHT),
                   crShadow = GetSysColor(COLOR_BTNSHADOW);
    CTestSurface expected(CPixelMap(200, 26));
    RECT rcAll = ClientOf(bar), rcGrip = {3, 3, 6, 23}, rcLine = {57, 4, 62, 22};
    FillRect(expected, &rcAll, CUIGetWinData()->hbrBtnFace);
    CUIDCDraw3dRect(expected, &rcGrip, crLight, crShadow, 0, 0);
    DrawEdge(expected, &rcLine, EDGE_ETCHED, BF_LEFT);
    const auto draw = [&](int nItem, int nShift, unsigned nLook, int nEdge) {
        const RECT rc = bar.GetItemRect(nItem);
        const int x = rc.left + 3 + nShift, nSource = 16 * (nItem - (nItem > 2));
        CUIBmpStateRects rects = {rc, {x, 5, x + 17, 20}, {nSource, 0, nSource + 16, 15}};
        FillRect(expected, &rc, CUIGetWinData()->hbrBtnFace);
        CUIBmpDrawState(expected, &rects.rcArea, CBar::Strip(), nLook, crFace, crLight, crShadow);
        if (nEdge)
            CUIDCDraw3dRect(expected, &rc, nEdge > 0 ? crLight : crShadow,
                            nEdge > 0 ? crShadow : crLight, 0, 0);
    };
    for (const int nItem : {0, 1, 3, 4})
        draw(nItem, 0, nItem % 3 ? CUIBMPSTATE_DISABLED : 0, 0);
    EXPECT_EQ(expected.Read(), WindowPixels(bar));
    // Under the mouse, held down, left and let go.
    const int rows[][4] = {{WM_MOUSEMOVE, 0, 0, 1}, {WM_LBUTTONDOWN, 0, 1, -1},
                           {WM_MOUSEMOVE, 1, 0, 1}, {WM_LBUTTONUP, 1, 0, 0},
                           {WM_MOUSEMOVE, 0, 0, 1}, {WM_MOUSELEAVE, 0, 0, 0}};
    for (const auto &[nMessage, nItem, nShift, nEdge] : rows) {
        bar.Mouse(static_cast<UINT>(nMessage), nItem);
        draw(0, nShift, 0, nEdge);
        EXPECT_EQ(expected.Read(), WindowPixels(bar)) << nMessage << " " << nItem;
    }
    parent.m_commands[0].m_nState |= CUI_COMMAND_CHECKED;
    CCUICommandMap::IdleUpdate();
    draw(0, 1, CUIBMPSTATE_OVERLAY, -1);
    EXPECT_EQ(expected.Read(), WindowPixels(bar));
    // Texts are asked for where they are shown, and again when the handler says so.
    bar.ShowTexts(true);
    const auto width = [&] {
        CCUICommandMap::IdleUpdate();
        return bar.GetItemRect(0).right - bar.GetItemRect(0).left;
    };
    const LONG cxText = width();
    parent.m_commands[0].m_text = "t";
    EXPECT_EQ(cxText, width());
    parent.m_commands[0].m_nState |= CUI_COMMAND_TEXT;
    EXPECT_GT(cxText, width());
    // A handler that puts other buttons into the bar while it is asked.
    parent.m_commands[0].m_onState = [&] { bar.RemoveAll(), bar.AddButton(1003, 0); };
    bar.RefreshCommands();
    EXPECT_EQ("8,2 - - - - - - ", bar.Places());
}

TEST_F(ControlBar, PressesWhatTheMouseGoesDownAndUpOn)
{
    auto bar = std::make_unique<CBar>(parent);
    parent.m_commands[1].m_text = "&Save && go\tCtrl+S";
    parent.m_commands[2].m_nState = 0;
    bar->RefreshCommands();
    // Down on the first, over the others, and up on the last.
    const auto press = [&](const std::vector<int> &way) {
        bar->Mouse(WM_LBUTTONDOWN, way.front());
        for (size_t i = 1; i < way.size(); ++i)
            bar->Mouse(WM_MOUSEMOVE, way[i]);
        bar->Mouse(WM_LBUTTONUP, way.back());
        return parent.Told();
    };
    EXPECT_EQ("1001/3 ", press({1}));
    EXPECT_EQ("1000/3 ", press({0, 1, 0}));
    EXPECT_EQ("", press({3}) + press({0, 1}));
    bar->Mouse(WM_LBUTTONDOWN, 0);
    ReleaseCapture();
    bar->Mouse(WM_LBUTTONUP, 0);
    EXPECT_EQ("", parent.Told());
    // Under the mouse a button has its help and its tip.
    bar->Mouse(WM_MOUSEMOVE, 1);
    bar->Mouse(WM_MOUSEMOVE, 1, 2);
    EXPECT_EQ("Save & go", TipOf(*bar));
    bar->Mouse(WM_MOUSEMOVE, 3);
    SendMessageA(*bar, WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ("help1001 help1002 help0 ", parent.Told());
    // A command goes to the target, which may end the bar.
    CTestWindow target;
    bar->SetCommandTarget(target);
    target.m_on[WM_COMMAND] = [&] { return bar.reset(), 0; };
    press({1});
    EXPECT_FALSE(bar);
}

TEST_F(ControlBar, GoesFromButtonToButtonByTheKeyboardAndGivesTheFocusBack)
{
    parent.m_commands[1].m_nState = 0;
    CBar bar(parent), second(parent);
    SetForegroundWindow(parent);
    SetFocus(parent);
    EXPECT_TRUE(CCUIControlBar::ActivateNext(parent));
    Input(GetFocus(), {VK_RIGHT, VK_DOWN, VK_END, VK_HOME, VK_LEFT});
    EXPECT_EQ("help1000 help1002 help1000 help1002 help1000 help1002 ", parent.Told());
    SetWindowLongA(bar, GWL_EXSTYLE, MIRRORED);
    Input(bar, {VK_RIGHT, VK_LEFT, VK_SPACE});
    EXPECT_EQ("help1000 help1002 help0 1002/3 ", parent.Told());
    EXPECT_EQ(parent.GetHandle(), GetFocus());
    EXPECT_TRUE(CCUIControlBar::ActivateNext(parent, true));
    EXPECT_EQ(second.GetHandle(), GetFocus());
    Input(second, {VK_ESCAPE});
    EXPECT_EQ(parent.GetHandle(), GetFocus());
    EXPECT_EQ(0, Send(bar, WM_NOTIFY));
    EXPECT_EQ(0, Send(bar, WM_USER + 0x35, 7));
    EXPECT_EQ(7U, bar.m_nState);
    // A window in the bar is a stop of its own, which Tab leaves.
    const HWND hEdit = MakePlain("EDIT", bar, 77, WS_TABSTOP);
    CTestCommand command(1005);
    bar.AddControl(hEdit, 1005);
    SetFocus(bar);
    Input(bar, {VK_END});
    parent.Told();
    EXPECT_TRUE(PressKey(VK_TAB));
    EXPECT_EQ(Text("%u/77 help1000 ", UINT(MAKEWPARAM(77, EN_KILLFOCUS))), parent.Told());
    // So does the focus when its command is disabled, or back out of the bar.
    for (const bool bOthers : {true, false}) {
        for (const int i : {0, 2})
            parent.m_commands[i].m_nState = bOthers ? CUI_COMMAND_ACTIVE : 0;
        command.m_nState = CUI_COMMAND_ACTIVE;
        CCUICommandMap::IdleUpdate();
        SetFocus(hEdit);
        command.m_nState = 0;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ(bOthers ? bar.GetHandle() : parent.GetHandle(), GetFocus()) << bOthers;
    }
}

TEST_F(ControlBar, DocksWhereItIsDraggedAndRemembersThat)
{
    const CTestSettings settings;
    MoveWindow(parent, 50, 50, 300, 300, FALSE);
    CBar bar(parent, "main");
    PumpWaiting();
    parent.Told();
    const auto drag = [&](std::initializer_list<POINT> way, UINT last, int yFrom = 5) {
        for (const POINT &to : way)
            PostMessageA(bar, WM_MOUSEMOVE, 0, MAKELPARAM(to.x, to.y));
        PostMessageA(bar, last, VK_ESCAPE, 0);
        SendMessageA(bar, WM_LBUTTONDOWN, 0, MAKELPARAM(3, yFrom));
        EXPECT_EQ(nullptr, GetCapture());
        PumpWaiting();
        return parent.Told();
    };
    EXPECT_EQ("", drag({{100, 20}, {150, 150}}, WM_LBUTTONUP));
    EXPECT_EQ("", drag({{150, 290}}, WM_LBUTTONUP, 500)) << "not of the bar";
    EXPECT_EQ("layout3 layout3 layout3 ", drag({{5, 150}, {150, 290}}, WM_KEYDOWN));
    EXPECT_EQ("layout3 ", drag({{290, 150}, {280, 5}}, WM_LBUTTONUP));
    CCUIControlBar same;
    same.CreateBar(parent, 5, "main");
    EXPECT_EQ(CUI_BAR_RIGHT, same.GetSide());
    std::string sides;
    const CFakePopup track("TrackPopupMenuEx", [&](HMENU hMenu, auto...) {
        sides = ItemsOf(hMenu);
        return 1 + CUI_BAR_LEFT;
    });
    SendMessageA(bar, WM_CONTEXTMENU, 0, -1);
    EXPECT_EQ("&Top &Unten &Left &Right checked radiolayout3 ", sides + parent.Told());
    EXPECT_EQ(CUI_BAR_LEFT, bar.GetSide());
    bar.ShowBar(false);
    CCUIControlBar later;
    ASSERT_TRUE(later.CreateBar(parent, 4, "main", CUI_BAR_BOTTOM));
    EXPECT_FALSE(later.IsBarShown() || IsWindowVisible(later));
    // What cannot be kept, or is missing, is told, and the bar goes on.
    CDumped dumped;
    std::string refused;
    const CFakeCall<LONG(HKEY, LPCSTR, DWORD, DWORD, const BYTE *, DWORD)> set(
        "RegSetValueExA", [&](HKEY hKey, LPCSTR pszName, auto... more) -> LONG {
            return refused == pszName ? ERROR_ACCESS_DENIED : set.Original(hKey, pszName, more...);
        });
    for (const char *pszName : {"Side", "Shown"}) {
        refused = pszName;
        bar.ShowBar(true);
        EXPECT_EQ("Unable to keep the state of bar main, gle: 5\n", dumped.m_text);
        dumped.m_text = "";
    }
    const CFakeCall<LONG(HKEY, LPCSTR, DWORD, LPSTR, DWORD, REGSAM, void *, HKEY *, DWORD *)>
        create("RegCreateKeyExA", [](auto...) { return ERROR_ACCESS_DENIED; });
    bar.ShowBar(false);
    bar.SetPictures(CCUIBitmap(), 16);
    EXPECT_EQ(
        "Unable to open settings Software\\CUITests\\Own\\Bars\\main, gle: 5\n"
        "CCUIControlBar: no picture comes from a strip of 0 pixels\n",
        dumped.m_text);
    EXPECT_FALSE(IsWindowVisible(bar));
}
