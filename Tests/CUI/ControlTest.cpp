// Own-drawn controls and buttons: real windows, real messages, the system's own buttons beside
// them.
#include "CUI/Button.h"
#include "CUI/CommandMap.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "CUI/Separator.h"
#include "Support/DotsPerInch.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestBitmap.h"
#include "Support/TestCommand.h"
#include "Support/TestTimer.h"

#include <commctrl.h>

namespace {

// A window that writes down the commands that come to it.
struct CParent : CTestWindow
{
    explicit CParent(const char *className = nullptr)
        : CTestWindow(nullptr, WS_POPUP | WS_VISIBLE, className)
    {
        m_on[WM_COMMAND] = [&] {
            return m_told += Text("%u,%u ", LOWORD(m_wParam), HIWORD(m_wParam)), 0;
        };
        SetForegroundWindow(m_hWnd);
    }
};

struct CButton : CCUIButton
{
    explicit CButton(HWND hParent, UINT nID = 5, CUIButtonKind kind = CUI_BUTTON_PUSH,
                     const char *text = "&Text", RECT rect = {20, 20, 100, 50})
        : CCUIButton(kind)
    {
        CreateControl(hParent, nID, text, &rect);
    }
    using CCUIButton::SetState;

    CPixelMap Picture()
    {
        const RECT rect = ClientOf(m_hWnd);
        CTestSurface surface(CPixelMap(rect.right, rect.bottom, 0xFF00FF));
        SendMessageA(m_hWnd, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(HDC(surface)), 0);
        return surface.Read();
    }
};

}  // namespace

TEST(Control, IsPressedWhileMouseOrKeyHoldItAndClicksWhenTheyLetGo)
{
    CParent parent;
    CTestWindow other(parent, WS_CHILD | WS_VISIBLE);
    CButton button(parent);
    const LPARAM in = MAKELPARAM(5, 5), out = MAKELPARAM(-5, 5);
    const auto send = [&](UINT message, LPARAM lParam, WPARAM wParam = 0) {
        return [&, message, lParam, wParam] { Send(button, message, wParam, lParam); };
    };
    const std::map<char, std::function<void()>> inputs = {
        {'D', send(WM_LBUTTONDOWN, in)},       {'2', send(WM_LBUTTONDBLCLK, in)},
        {'U', send(WM_LBUTTONUP, in)},         {'u', send(WM_LBUTTONUP, out)},
        {'<', send(WM_MOUSEMOVE, out)},        {'>', send(WM_MOUSEMOVE, in)},
        {'o', [&] { SetCapture(other); }},     {'e', [&] { button.Enable(false); }},
        {'f', send(WM_KILLFOCUS, 0)},          {'S', send(WM_KEYDOWN, 1, VK_SPACE)},
        {'s', send(WM_KEYUP, 1, VK_SPACE)},    {'x', send(WM_KEYDOWN, 1, VK_ESCAPE)},
        {'r', send(WM_KEYDOWN, 1, VK_RETURN)},
    };
    const struct
    {
        const char *input, *pressed;
        bool bClicked;
    } rows[] = {{"D<>U", "1010", true}, {"D<u", "100", false}, {"U", "0", false},
                {"DoU", "100", false},  {"DeU", "100", false}, {"SSs", "110", true},
                {"Sxs", "100", false},  {"Sfs", "100", false}, {"2U", "10", true},
                {"r", "0", true}};
    for (const auto &row : rows) {
        std::string pressed;
        for (const char *p = row.input; *p; ++p) {
            inputs.at (*p)();
            pressed += (button.GetState() & CUI_STATE_PRESSED) ? '1' : '0';
        }
        EXPECT_EQ(row.pressed, pressed) << row.input;
        EXPECT_EQ(row.bClicked ? "5,0 " : "", parent.Told()) << row.input;
        EXPECT_NE(button.GetHandle(), GetCapture()) << row.input;
        ReleaseCapture();
        button.Enable(true);
    }
}

TEST(Control, IsHotWithATipAndHelpWhileTheMouseIsOverIt)
{
    CParent parent;
    parent.RouteCommands(true);
    parent.m_on[WM_MENUSELECT] = [&] {
        return parent.m_told += Text("help%d ", SHORT(parent.m_wParam)), 0;
    };
    CTestCommand command(1000);
    CButton button(parent);
    button.SetFlat(true);
    button.SetCommand(1000);
    for (const bool bOver : {true, false}) {
        SetCursorPos(bOver ? 70 : 410, 50);
        EXPECT_TRUE(PumpUntil([&] { return bOver == !!(button.GetState() & CUI_STATE_HOT); }));
        HWND hTip = nullptr;
        do
            ASSERT_TRUE(hTip = FindWindowExA(nullptr, hTip, TOOLTIPS_CLASSA, nullptr));
        while (GetWindow(hTip, GW_OWNER) != parent);
        EXPECT_EQ(bOver, Send(hTip, TTM_GETTOOLCOUNT));
        EXPECT_EQ(bOver ? "help1000 " : "help0 ", parent.Told());
    }
    // The help goes with the button; and its owner may be gone before it comes.
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    button.Destroy();
    EXPECT_EQ("help1000 help0 ", parent.Told());
    const CHeapWatch heap;
    auto pButton = std::make_unique<CButton>(parent);
    pButton->SetCommand(1000);
    parent.m_on[WM_MENUSELECT] = [&] { return pButton.reset(), 0; };
    Send(*pButton, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(nullptr, pButton);
}

TEST(Control, FollowsItsCommandAndRepaintsOnlyWhatChanged)
{
    CReports reports;
    CTestPopup frame;
    CTestWindow panel(frame, WS_CHILD | WS_VISIBLE);  // that routes nothing
    CTestCommand command(1000);
    CButton button(panel), other(panel, 6);
    button.SetCommand(1000);
    const struct
    {
        unsigned short nState;
        const char *text, *shown;
        bool bDirty;
    } rows[] = {{0x142, "&b\tF5", "&b 1", true},
                {0x142, "&b\tF5", "&b 1", false},
                {0x142, "&c", "&c 1", true},
                {0, "c", "&c 0", true}};
    for (const auto &row : rows) {
        command.m_nState = row.nState;
        command.m_text = row.text;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ(row.shown,
                  TextOf(button) + Text(" %d", !!(button.GetState() & CUI_STATE_CHECKED)));
        EXPECT_EQ(row.bDirty, GetUpdateRect(button, nullptr, FALSE)) << &row - rows;
        UpdateWindow(button);
    }
    EXPECT_FALSE(IsWindowEnabled(button));
    command.m_nState = CUI_COMMAND_ACTIVE;
    CCUICommandMap::IdleUpdate();
    frame.RouteCommands(true);
    Click(button);
    EXPECT_EQ("0 ", command.Done());
    // Disabled with the focus, it passes that on, so that the keyboard is not lost.
    SetFocus(button);
    panel.m_on[CUI_WM_TABKEY] = [&] { return SetFocus(other), 1; };
    command.m_nState = 0;
    CCUICommandMap::IdleUpdate();
    EXPECT_EQ(other.GetHandle(), GetFocus());
    // What is said before there is a window counts from its start.
    CCUIButton early;
    early.SetCommand(1000);
    early.CreateControl(panel, 9, nullptr);
    EXPECT_FALSE(IsWindowEnabled(early));
    EXPECT_EQ(0, reports.Total());
}

TEST(Control, MayBeDeletedByItsOwnCommand)
{
    CTestPopup frame;
    frame.RouteCommands(true);
    CTestCommand command(1000);
    for (const auto kind : {CUI_BUTTON_PUSH, CUI_BUTTON_RADIO, CUI_BUTTON_REPEAT}) {
        for (const UINT message : {UINT{WM_LBUTTONDOWN}, UINT{WM_KEYDOWN}}) {
            const CHeapWatch heap;  // what is used of a dead button is wrong
            auto button = std::make_unique<CButton>(frame, 1000u, kind);
            command.m_onCommand = [&] { button.reset(); };
            button->SetCommand(kind == CUI_BUTTON_RADIO ? 0 : 1000);
            const HWND hWnd = *button;
            Send(hWnd, message, VK_SPACE, MAKELPARAM(2, 2));
            Send(hWnd, message + 1, VK_SPACE, MAKELPARAM(2, 2));
            EXPECT_EQ(nullptr, button);
        }
    }
    // Or while it is asked for its text; and a neighbour that goes does not keep its group.
    const CHeapWatch heap;
    auto pText = std::make_unique<CScripted<CCUIButton>>(CUI_BUTTON_RADIO);
    CScripted<CCUIControlWindow> neighbour;
    pText->CreateControl(frame, 5, "text");
    CreateTestWindow(neighbour, frame, WS_CHILD);
    CButton last(frame, 6, CUI_BUTTON_RADIO);
    neighbour.m_on[WM_GETDLGCODE] = [] { return DLGC_RADIOBUTTON; };
    neighbour.m_on[BM_SETCHECK] = [&] { return neighbour.Destroy(), 0; };
    last.SetCheck(BST_CHECKED);
    pText->Click();
    EXPECT_EQ(UINT(BST_UNCHECKED), last.GetCheck());
    pText->m_on[WM_GETTEXTLENGTH] = [&] { return pText.reset(), 0; };
    pText->SetText("new");
}

namespace {

// The same keys to a dialog of the system's buttons and to one whose buttons we have replaced.
std::string PlayDialog(bool bOurs)
{
    const struct
    {
        const char *text;
        DWORD style;
        CUIButtonKind kind;
    } controls[] = {{"&Check", BS_AUTOCHECKBOX | WS_TABSTOP, CUI_BUTTON_CHECK},
                    {"&One", BS_AUTORADIOBUTTON | WS_GROUP | WS_TABSTOP, CUI_BUTTON_RADIO},
                    {"&Two", BS_AUTORADIOBUTTON, CUI_BUTTON_RADIO},
                    {"T&hree", BS_AUTORADIOBUTTON | WS_DISABLED, CUI_BUTTON_RADIO},
                    {"&Go", BS_DEFPUSHBUTTON | WS_GROUP | WS_TABSTOP, CUI_BUTTON_PUSH},
                    {"&Push && pull", BS_PUSHBUTTON | WS_TABSTOP, CUI_BUTTON_PUSH}};
    CParent dialog("#32770");
    std::unique_ptr<CCUIButton> ours[std::size(controls)];
    for (size_t i = 0; i < std::size(controls); ++i) {
        const int nID = 100 + int(i);
        const HWND hWnd =
            MakePlain("BUTTON", dialog, nID, controls[i].style | WS_VISIBLE, controls[i].text);
        MoveWindow(hWnd, 10, int(i) * 20, 90, 18, FALSE);
        if (controls[i].style & BS_DEFPUSHBUTTON)
            Send(dialog, DM_SETDEFID, static_cast<WPARAM>(nID));
        Send(hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)));
    }
    SetFocus(GetDlgItem(dialog, 100));
    for (size_t i = std::size(controls); bOurs && i-- > 0;) {
        ours[i] = std::make_unique<CCUIButton>(controls[i].kind);
        EXPECT_TRUE(ours[i]->ReplaceControl(dialog, 100 + static_cast<UINT>(i)));
    }
    dialog.m_on[WM_COMMAND] = [&] {  // a system button also tells of more than clicks
        if (HIWORD(dialog.m_wParam) == BN_CLICKED)
            dialog.m_told += Text("%u ", LOWORD(dialog.m_wParam));
        return 0;
    };
    CheckRadioButton(dialog, 101, 103, 101);
    std::string record;
    const auto note = [&] {
        record += dialog.Told() + "@" + std::to_string(GetDlgCtrlID(GetFocus())) + ":";
        for (int nID = 100; nID < 106; ++nID) {
            const HWND hWnd = GetDlgItem(dialog, nID);
            const LONG nStyle = GetWindowLongA(hWnd, GWL_STYLE);
            record += Text("%u%s%s", IsDlgButtonChecked(dialog, nID),
                           (nStyle & WS_TABSTOP) && nID < 104 ? "t" : "",
                           (Send(hWnd, WM_GETDLGCODE) & DLGC_DEFPUSHBUTTON) ? "d" : "");
        }
        record += "\n";
    };
    const auto play = [&](UINT message, int nKey) {
        MSG msg = {GetFocus(), message, static_cast<WPARAM>(nKey), 1, 0, {}};
        if (!IsDialogMessageA(dialog, &msg))
            DispatchMessageA(&msg);
        note();
    };
    for (const int nKey : {VK_SPACE, VK_RETURN, VK_TAB, VK_DOWN, VK_DOWN, VK_UP, VK_TAB, VK_TAB,
                           VK_RETURN, VK_TAB, VK_SPACE})
    {
        play(WM_KEYDOWN, nKey);
        play(WM_KEYUP, nKey);
    }
    for (const char c : {'t', 'g', 'P', 'h', 'c'})
        play(WM_SYSCHAR, c);
    CheckDlgButton(dialog, 100, BST_CHECKED);
    Click(GetDlgItem(dialog, 101));
    note();
    for (const HWND hWnd : {GetDlgItem(dialog, 100), GetDlgItem(dialog, 105)}) {
        record += Text("%s %s %lx\n", TextOf(hWnd).c_str(), PlaceOf(hWnd).c_str(),
                       Send(hWnd, WM_GETFONT));
    }
    return record;
}

}  // namespace

TEST(Control, DoesInADialogWhatTheSystemsButtonsDo)
{
    EXPECT_EQ(PlayDialog(false), PlayDialog(true));
}

TEST(Control, MnemonicsWorkOutsideOfDialogs)
{
    CParent parent;
    CButton a(parent, 5, CUI_BUTTON_PUSH, "&Go"), b(parent, 6, CUI_BUTTON_PUSH, "&Same"),
        c(parent, 7, CUI_BUTTON_CHECK, "&Same && more");
    MakePlain("STATIC", parent, 0, WS_VISIBLE | WS_TABSTOP, "&Name");
    MakePlain("EDIT", parent, 9, WS_VISIBLE | WS_TABSTOP);
    CTestWindow disabled(parent, WS_CHILD | WS_VISIBLE | WS_DISABLED);
    CButton inside(disabled, 8, CUI_BUTTON_PUSH, "&More");
    MakePlain("STATIC", parent, 0, WS_VISIBLE | SS_NOPREFIX, "a&more");
    SetFocus(a);
    CTestCommand command(1000);
    CButton late(parent, 10, CUI_BUTTON_PUSH, "&Late");
    command.m_nState = 0;
    late.SetCommand(1000);
    command.m_nState = CUI_COMMAND_ACTIVE;  // and no idle pass since
    const struct
    {
        char c;
        int bTaken, nFocus;
        const char *told;
    } rows[] = {{'g', 1, 5, "5,0 "},
                {'S', 1, 6, ""},
                {'s', 1, 7, ""},
                {'s', 1, 6, ""},
                {'m', 0, 6, ""},
                {'n', 1, 9, "9,256 "},
                {'l', 1, 1000, "9,512 1000,0 "}};
    for (const auto &row : rows) {
        MSG msg = {parent, WM_SYSCHAR, static_cast<WPARAM>(row.c), 1 << 29, 0, {}};
        EXPECT_EQ(row.bTaken, CUITranslateMnemonic(parent, &msg)) << row.c;
        EXPECT_EQ(row.nFocus, GetDlgCtrlID(GetFocus())) << row.c;
        EXPECT_EQ(row.told, parent.Told()) << row.c;
    }
}

// Button, layouts and parent look for it, one after the other.
TEST(Control, MnemonicRefreshesTheCommandsOnceAKey)
{
    CParent parent;
    CCUILayoutWindow outer, inner;
    outer.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 90, 90}, parent, 1);
    inner.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 90, 90}, outer, 1);
    CButton button(inner, 5, CUI_BUTTON_PUSH, "&Go");
    CTestCommand command(1000);
    int nRefreshed = 0;
    command.m_onUpdate = [&] { ++nRefreshed; };
    MSG msg = {button, WM_SYSCHAR, 'x', 1 << 29, 0, {}};
    for (const int nKeys : {1, 2}) {
        EXPECT_FALSE(CCUIWindow::PerformPreTranslation(&msg));
        EXPECT_EQ(nKeys, nRefreshed);
    }
}

TEST(Control, RepeatsAsTheKeyboardDoesWhileItIsHeldDown)
{
    CFakeClock clock;
    PassStartTick(clock);
    CParent parent;
    CButton button(parent, 5, CUI_BUTTON_REPEAT);
    DWORD nDelay = 0, nSpeed = 0;
    SystemParametersInfoA(SPI_GETKEYBOARDDELAY, 0, &nDelay, 0);
    SystemParametersInfoA(SPI_GETKEYBOARDSPEED, 0, &nSpeed, 0);
    const DWORD nFirst = (nDelay + 1) * 250, nNext = 400 - nSpeed * 367 / 31;
    const auto clicks = [&](DWORD nTime) { return clock.Run(nTime), parent.Told().size() / 4; };
    Send(button, WM_LBUTTONDOWN, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, clicks(nFirst - 1));
    EXPECT_EQ(4u, clicks(1 + 3 * nNext));
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(-5, 5));
    EXPECT_EQ(0u, clicks(5 * nNext));
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, clicks(nNext));
}

TEST(Control, OpensItsMenuBelowAndStaysDownMeanwhile)
{
    CTestPopup frame;
    CTestCommand command(1001);
    frame.RouteCommands(true);
    CButton button(frame, 5, CUI_BUTTON_SPLIT);
    CCUIMenu menu;
    menu.Append(1001, "item");
    button.SetDropMenu(&menu);
    SetFocus(button);
    const CPixelMap closed = button.Picture();
    int nArrow = 0;  // pixels of its triangle, to the right of the text
    for (int i = 0; i < closed.cx * closed.cy; ++i)
        nArrow += i % closed.cx > 64 && closed.At(i % closed.cx, i / closed.cx) == 0;
    EXPECT_EQ(16, nArrow);
    CPixelMap open;
    frame.m_on[WM_INITMENUPOPUP] = [&] {
        open = button.Picture();
        for (const int nKey : {VK_DOWN, VK_RETURN})
            PostMessageA(frame, WM_KEYDOWN, static_cast<WPARAM>(nKey), 1);
        return frame.Default();
    };
    Send(button, WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
    PumpWaiting();
    EXPECT_EQ("0 ", command.Done());
    EXPECT_FALSE(open == closed || open.cx == 0);
    EXPECT_EQ(closed, button.Picture());
    // The click that closes it does not open it again.
    frame.m_on[WM_INITMENUPOPUP] = [&] {
        PostMessageA(button, WM_LBUTTONDOWN, 0, MAKELPARAM(75, 9));
        PostMessageA(frame, WM_KEYDOWN, VK_SHIFT, 1);
        return frame.Default();
    };
    Send(button, WM_LBUTTONDOWN, 0, MAKELPARAM(75, 9));
    MSG msg;
    EXPECT_FALSE(PeekMessageA(&msg, button, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE));
    frame.m_on.clear();
    Click(button);  // beside the arrow
    EXPECT_EQ("", command.Done());
}

TEST(Control, ShowsEachStateAndWhatIsBehind)
{
    CParent parent;
    parent.m_on[WM_CTLCOLORSTATIC] = [&] {
        SetBkColor(reinterpret_cast<HDC>(parent.m_wParam), RGB(0, 128, 0));
        static const HBRUSH s_hGreen = CreateSolidBrush(RGB(0, 128, 0));
        return reinterpret_cast<long>(s_hGreen);
    };
    CPixelMap picture(32, 16, 0xFF00FF);
    picture.Set(20, 8, 0x0000FF);
    const CCUIBitmap bitmap = BitmapOf(picture);
    int nGdi = 0;
    for (const int nLook : {0, 1, 2, 0, 1}) {
        const bool bFlat = nLook == 1, bMark = nLook == 2;
        CButton button(parent, 5, bMark ? CUI_BUTTON_CHECK : CUI_BUTTON_PUSH);
        button.SetFlat(bFlat);
        button.SetPicture(bitmap, 1, 16, 0xFF00FF);
        std::vector<CPixelMap> seen;
        for (const unsigned nState : {0u, 2u, 4u, 8u, 16u, 64u}) {
            button.SetState(nState, true);
            const CPixelMap map = button.Picture();
            // A raised one does not show the mouse, nor a flat one what is the default.
            const bool bSame = (nState == 2 && !bFlat) || (nState == 64 && nLook);
            EXPECT_EQ(bSame, std::find(seen.begin(), seen.end(), map) != seen.end()) << nState;
            seen.push_back(map);
            button.SetState(nState, false);
        }
        EXPECT_EQ(nLook ? RGB(0, 128, 0) : GetSysColor(COLOR_BTNFACE), seen[0].At(4, 4));
        EXPECT_EQ(0, seen[0].Count(0xFF00FF));
        EXPECT_EQ(1, seen[0].Count(0x0000FF));
        {
            const CDotsPerInch dpi(192);
            button.SetPicture(bitmap, 1, 16, 0xFF00FF);
            EXPECT_EQ(4, button.Picture().Count(0x0000FF));
        }
        button.SetPicture(bitmap, 1, 16, 0xFF00FF);
        button.Enable(false);
        const CPixelMap disabled = button.Picture();
        EXPECT_EQ(0, disabled.Count(0x0000FF));
        EXPECT_EQ(disabled, WindowPixels(button)) << "as what it paints elsewhere";
        nGdi = nLook == 2 ? GdiCount() : nGdi;  // what all share is there
    }
    EXPECT_EQ(nGdi, GdiCount());
}

// A page of a thousand units, of which the right half is filled, and then not cleaned up.
TEST(Control, IsShownRightWhateverItsPaintingLeavesInTheDC)
{
    struct CPage : CCUIControl
    {
        void Paint(HDC hDC, const RECT &rect) override
        {
            SaveDC(hDC);
            SetMapMode(hDC, MM_ANISOTROPIC);
            SetWindowExtEx(hDC, 1000, 1000, nullptr);
            SetViewportExtEx(hDC, rect.right, rect.bottom, nullptr);
            const RECT half = {500, 0, 1000, 1000};
            FillRect(hDC, &half, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        }
    };
    CParent parent;
    CPage page;
    const RECT rect = {0, 0, 40, 20};
    page.SetWindowColor(0xFFFFFF);
    page.CreateControl(parent, 5, "", &rect);
    const CPixelMap shown = WindowPixels(page);
    EXPECT_EQ(20 * 20, shown.Count(0));
    EXPECT_EQ(20 * 20, shown.Count(0xFFFFFF));
    EXPECT_EQ(0u, shown.At(20, 0));
}

TEST(Control, IsMirroredAllButItsText)
{
    CParent parent;
    std::vector<int> columns[2];  // where the text's pixels lie, from column to column
    for (const bool bMirrored : {false, true}) {
        SetWindowLongA(parent, GWL_EXSTYLE, bMirrored ? 0x00400000 : 0);
        CButton button(parent, 5, CUI_BUTTON_CHECK, "FL");
        UpdateWindow(button);
        const LONG x = RectOf(parent).left + (bMirrored ? 110 : 37), y = RectOf(parent).top + 20;
        const CPixelMap map = WindowPixels(nullptr, {x, y, x + 63, y + 30});  // all but the mark
        for (int i = 0; i < 63 * 30; ++i) {
            if (map.At(i / 30, i % 30) == GetSysColor(COLOR_BTNTEXT))
                columns[bMirrored].push_back(i % 30);
        }
    }
    EXPECT_LT(4u, columns[0].size());
    EXPECT_EQ(columns[0], columns[1]);
}
