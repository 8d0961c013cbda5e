// Own-drawn controls and buttons: real windows, real messages, the system's own buttons beside
// them.
#include "CUI/Button.h"
#include "CUI/CommandMap.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "Support/DotsPerInch.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/MenuItems.h"
#include "Support/Reports.h"
#include "Support/TestBitmap.h"
#include "Support/TestCommand.h"
#include "Support/TestTimer.h"
#include "Support/TipText.h"

namespace {

// A window that writes down the clicks that it is told of.
struct CParent : CScripted<>
{
    explicit CParent(int nDialog = 0)
    {
        if (nDialog)
            Attach(CreateDialogParamA(nullptr, MAKEINTRESOURCEA(nDialog), nullptr, nullptr, 0));
        else
            CreateTestWindow(*this, nullptr, WS_POPUP | WS_VISIBLE);
        m_on[WM_COMMAND] = [&] {
            if (HIWORD(m_wParam) == BN_CLICKED)
                m_told += Text("%u ", LOWORD(m_wParam));
            return 0;
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

protected:
    // What it leaves in the DC is nobody's trouble.
    void Paint(HDC hDC, const RECT &rect) override
    {
        CCUIButton::Paint(hDC, rect);
        SetMapMode(hDC, MM_ANISOTROPIC);
        SetViewportExtEx(hDC, 3, 5, nullptr);
    }
};

// The same keys to a dialog of the system's buttons and to one whose buttons we have replaced.
std::string PlayDialog(bool bOurs)
{
    const CUIButtonKind kinds[] = {CUI_BUTTON_CHECK, CUI_BUTTON_RADIO, CUI_BUTTON_RADIO,
                                   CUI_BUTTON_RADIO, CUI_BUTTON_PUSH,  CUI_BUTTON_PUSH};
    CParent dialog(502);
    std::unique_ptr<CCUIButton> ours[6];
    SetFocus(GetDlgItem(dialog, 100));
    for (UINT i = 6; bOurs && i-- > 0;) {
        ours[i] = std::make_unique<CCUIButton>(kinds[i]);
        EXPECT_TRUE(ours[i]->ReplaceControl(dialog, 100 + i));
    }
    if (bOurs) {
        // One that has a window stays as it is.
        CReports reports;
        CCUIButton button;
        button.CreateControl(dialog, 9, "");
        EXPECT_EQ("m_hWnd == 0",
                  reports.Of("Window", [&] { EXPECT_FALSE(button.ReplaceControl(dialog, 105)); }));
        EXPECT_EQ(nullptr, button.GetFont());
    }
    CheckRadioButton(dialog, 101, 103, 101);
    std::string record;
    const auto note = [&] {
        record += dialog.Told() + "@" + std::to_string(GetDlgCtrlID(GetFocus())) + ":";
        for (int nID = 100; nID < 106; ++nID) {
            const HWND hWnd = GetDlgItem(dialog, nID);
            const LONG nStyle = GetWindowLongA(hWnd, GWL_STYLE);
            record += TextOf(hWnd) + PlaceOf(hWnd);
            record +=
                Text(" %d %lx%s%s ", Send(hWnd, WM_GETFONT) == Send(dialog, WM_GETFONT),
                     Send(hWnd, BM_GETSTATE) & 0xF, (nStyle & WS_TABSTOP) && nID < 104 ? "t" : "",
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
    return record;
}

struct Control : testing::Test
{
    CParent parent;
    CTestCommand command{1000};
};

}  // namespace

TEST_F(Control, IsPressedWhileMouseOrKeyHoldItAndClicksWhenTheyLetGo)
{
    CButton button(parent);
    const LPARAM in = MAKELPARAM(5, 5), out = MAKELPARAM(-5, 5);
    const std::map<char, std::array<long, 3>> messages = {
        {'D', {WM_LBUTTONDOWN, 0, in}}, {'2', {WM_LBUTTONDBLCLK, 0, in}},
        {'U', {WM_LBUTTONUP, 0, in}},   {'u', {WM_LBUTTONUP, 0, out}},
        {'<', {WM_MOUSEMOVE, 0, out}},  {'>', {WM_MOUSEMOVE, 0, in}},
        {'S', {WM_KEYDOWN, VK_SPACE}},  {'s', {WM_KEYUP, VK_SPACE}},
        {'x', {WM_KEYDOWN, VK_ESCAPE}}, {'r', {WM_KEYDOWN, VK_RETURN}},
        {'f', {WM_KILLFOCUS}}};
    // o: another window takes the mouse; e: disabled, .: enabled. "!" behind what leaves it
    // pressed, and what it tells.
    std::string record;
    for (const char c : std::string("D<>U.D<u.U.DoU.DeU.SSs.Sxs.Sfs.2U.r.")) {
        if (c == 'o') {
            SetCapture(parent);
        } else if (c == 'e' || c == '.') {
            EXPECT_TRUE(c == 'e' || GetCapture() != button);
            button.Enable(c == '.');
        } else {
            const auto [message, wParam, lParam] = messages.at(c);
            Send(button, UINT(message), WPARAM(wParam), lParam);
        }
        record += c + std::string((button.GetState() & CUI_STATE_PRESSED) ? "!" : "");
        record += parent.Told();
    }
    EXPECT_EQ("D!<>!U5 .D!<u.U.D!oU.D!eU.S!S!s5 .S!xs.S!fs.2!U5 .r5 .", record);
}

TEST_F(Control, IsHotWithATipAndHelpWhileTheMouseIsOverIt)
{
    parent.RouteCommands(true);
    parent.m_on[WM_MENUSELECT] = [&] {
        return parent.m_told += Text("help%d ", SHORT(parent.m_wParam)), 0;
    };
    CButton button(parent);
    button.SetFlat(true);
    button.SetCommand(1000);
    for (const bool bOver : {true, false}) {
        SetCursorPos(bOver ? 70 : 410, 50);
        EXPECT_TRUE(PumpUntil([&] { return bOver == !!(button.GetState() & CUI_STATE_HOT); }));
        EXPECT_EQ(bOver ? "tip" : "", TipOf(button));
        EXPECT_EQ(bOver ? "help1000 " : "help0 ", parent.Told());
    }
    // Both follow the command; a tip that says what the button says is none.
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    std::string tips;
    for (const bool bOwn : {true, false}) {
        button.SetCommand(0);
        button.SetToolTip(bOwn ? "own" : nullptr);
        command.m_text = "&Text";
        button.SetCommand(1000);
        tips += TipOf(button) + ";";
    }
    EXPECT_EQ("help1000 help0 help1000 help0 help1000 own;;", parent.Told() + tips);
    Click(button);
    EXPECT_NE(button.GetHandle(), GetFocus()) << "flat";
    button.Enable(false);
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    button.Enable(true);
    // The help goes with the button; and its owner may be gone before it comes.
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    button.Destroy();
    EXPECT_EQ("1000 help0 help1000 help0 ", parent.Told());
    const CHeapWatch heap;
    auto pButton = std::make_unique<CButton>(parent);
    pButton->SetCommand(1000);
    parent.m_on[WM_MENUSELECT] = [&] { return pButton.reset(), 0; };
    Send(*pButton, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(nullptr, pButton);
}

TEST_F(Control, FollowsItsCommandAndRepaintsOnlyWhatChanged)
{
    CReports reports;
    CTestPopup frame;
    CTestWindow panel(frame, WS_CHILD | WS_VISIBLE);  // that routes nothing
    CButton button(panel, 5, CUI_BUTTON_CHECK), other(panel, 6);
    button.SetCommand(1000);
    std::string shown;
    for (const char *text : {"&b\tF5", "&b\tF5", "&c", ""}) {
        command.m_nState = *text ? 0x142 : 0;
        command.m_text = text;
        CCUICommandMap::IdleUpdate();
        shown += TextOf(button) + Text(" %ld%s;", Send(button, BM_GETCHECK),
                                       GetUpdateRect(button, nullptr, FALSE) ? " painted" : "");
        UpdateWindow(button);
    }
    EXPECT_EQ("&b 1 painted;&b 1;&c 1 painted;&c 0 painted;", shown);
    command.m_nState = CUI_COMMAND_ACTIVE;
    CCUICommandMap::IdleUpdate();
    frame.RouteCommands(true);
    Click(button);
    EXPECT_EQ("0 ", command.Done());
    EXPECT_EQ(0, Send(button, BM_GETCHECK)) << "the handler does not say so";
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
    EXPECT_EQ(75, ClientOf(early).right) << "as large as by nature";
    EXPECT_EQ(0, reports.Total());
}

TEST_F(Control, MayBeDeletedByItsOwnCommand)
{
    CTestPopup frame;
    frame.RouteCommands(true);
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
}

TEST_F(Control, DoesInADialogWhatTheSystemsButtonsDo)
{
    EXPECT_EQ(PlayDialog(false), PlayDialog(true));
}

TEST_F(Control, MnemonicsWorkOutsideOfDialogs)
{
    CButton a(parent, 5, CUI_BUTTON_PUSH, "&Go"), b(parent, 6, CUI_BUTTON_PUSH, "&Same"),
        c(parent, 7, CUI_BUTTON_CHECK, "&Same && more");
    MakePlain("STATIC", parent, 0, WS_VISIBLE | WS_TABSTOP, "&Name");
    MakePlain("EDIT", parent, 9, WS_VISIBLE | WS_TABSTOP);
    CTestWindow disabled(parent, WS_CHILD | WS_VISIBLE | WS_DISABLED);
    CButton inside(disabled, 8, CUI_BUTTON_PUSH, "&More");
    MakePlain("STATIC", parent, 0, WS_VISIBLE | SS_NOPREFIX, "a&more");
    SetFocus(a);
    CButton late(parent, 10, CUI_BUTTON_PUSH, "&Late");
    command.m_nState = 0;
    late.SetCommand(1000);
    command.m_nState = CUI_COMMAND_ACTIVE;  // and no idle pass since
    std::string record;
    for (const char ch : {'g', 'S', 's', 's', 'm', 'n', 'l'}) {
        MSG msg = {parent, WM_SYSCHAR, static_cast<WPARAM>(ch), 1 << 29, 0, {}};
        record += Text("%c%d ", ch, CUITranslateMnemonic(parent, &msg));
        record += Text("@%d ", GetDlgCtrlID(GetFocus())) + parent.Told();
    }
    EXPECT_EQ("g1 @5 5 S1 @6 s1 @7 s1 @6 m0 @6 n1 @9 l1 @1000 1000 ", record);
}

TEST_F(Control, RepeatsAsTheKeyboardDoesWhileItIsHeldDown)
{
    CFakeClock clock;
    PassStartTick(clock);
    CButton button(parent, 5, CUI_BUTTON_REPEAT);
    DWORD nDelay = 0, nSpeed = 0;
    SystemParametersInfoA(SPI_GETKEYBOARDDELAY, 0, &nDelay, 0);
    SystemParametersInfoA(SPI_GETKEYBOARDSPEED, 0, &nSpeed, 0);
    const DWORD nFirst = (nDelay + 1) * 250, nNext = 400 - nSpeed * 367 / 31;
    const auto clicks = [&](DWORD nTime) { return clock.Run(nTime), parent.Told().size() / 2; };
    Send(button, WM_LBUTTONDOWN, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, clicks(nFirst - 1));
    EXPECT_EQ(4u, clicks(1 + 3 * nNext));
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(-5, 5));
    EXPECT_EQ(0u, clicks(5 * nNext));
    Send(button, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(1u, clicks(nNext));
    Send(button, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(0u, clicks(5 * nNext));
}

TEST_F(Control, OpensItsMenuBelowAndStaysDownMeanwhile)
{
    CTestPopup frame;
    frame.RouteCommands(true);
    CCUIMenu menu;
    menu.Append(1000, "item");
    std::string opened;
    const CFakePopup track("TrackPopupMenuEx", [&](HMENU h, UINT n, int x, int y, auto... more) {
        opened += Text("%d,%d ", x, y);
        return track.Original(h, n, x, y, more...);
    });
    for (const bool bSplit : {true, false}) {
        CButton button(frame, 5, bSplit ? CUI_BUTTON_SPLIT : CUI_BUTTON_DROPDOWN, "");
        button.SetDropMenu(&menu);
        const CPixelMap closed = button.Picture();
        const CPixelMap arrow = WindowPixels(button, {68, 10, 77, 20});
        EXPECT_EQ(16, arrow.Count(OnScreen(GetSysColor(COLOR_BTNTEXT))));
        CPixelMap open;
        frame.m_on[WM_INITMENUPOPUP] = [&] {
            open = button.Picture();
            for (const int nKey : {VK_DOWN, VK_RETURN})
                PostMessageA(frame, WM_KEYDOWN, static_cast<WPARAM>(nKey), 1);
            return frame.Default();
        };
        Send(button, WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
        PumpWaiting();
        SetWindowLongA(button, GWL_EXSTYLE, 0x00400000);  // mirrored
        Input(button, {VK_F4});
        SetWindowLongA(button, GWL_EXSTYLE, 0);
        PumpWaiting();
        EXPECT_EQ("0 0 ", command.Done());
        EXPECT_FALSE(open == closed || open.cx == 0);
        EXPECT_EQ(bSplit, open.At(1, 1) == closed.At(1, 1)) << "all of it is down";
        EXPECT_EQ(closed, button.Picture());
        // The click that closes it does not open it again.
        frame.m_on[WM_INITMENUPOPUP] = [&] {
            PostMessageA(button, WM_LBUTTONDOWN, 0, MAKELPARAM(75, 9));
            PostMessageA(frame, WM_KEYDOWN, VK_SHIFT, 1);
            return frame.Default();
        };
        Send(button, WM_LBUTTONDOWN, 0, MAKELPARAM(bSplit ? 75 : 9, 9));
        MSG msg;
        EXPECT_FALSE(PeekMessageA(&msg, button, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE));
        frame.m_on.clear();
        if (bSplit)
            Click(button);  // beside the arrow
        button.Enable(false);
        Input(button, {VK_F4});
        EXPECT_EQ("30,70 110,70 30,70 ", std::exchange(opened, ""));
    }
}

TEST_F(Control, DrawsEachStateAndWhatIsBehind)
{
    const COLORREF crBehind = RGB(0, 128, 0);
    parent.m_on[WM_CTLCOLORSTATIC] = [&] {
        SetBkColor(reinterpret_cast<HDC>(parent.m_wParam), crBehind);
        static const HBRUSH s_hBehind = CreateSolidBrush(crBehind);
        return reinterpret_cast<long>(s_hBehind);
    };
    // A raised one does not show the mouse, nor a flat one what is the default.
    const auto PUSH = CUI_BUTTON_PUSH, CHECK = CUI_BUTTON_CHECK, RADIO = CUI_BUTTON_RADIO;
    const UINT UP = EDGE_RAISED, DOWN = EDGE_SUNKEN, SLIGHT = BDR_SUNKENOUTER;
    const std::tuple<CUIButtonKind, bool, unsigned, UINT, UINT> rows[] = {
        {PUSH, 0, 2, UP, 0},       {PUSH, 0, 4, DOWN, 0},    {PUSH, 0, 8, UP, 0},
        {PUSH, 0, 16, DOWN, 0},    {PUSH, 0, 64, UP, 0},     {PUSH, 1, 4, SLIGHT, 0},
        {CHECK, 1, 16, SLIGHT, 0}, {PUSH, 1, 72, 0, 0},      {PUSH, 1, 2, BDR_RAISEDINNER, 0},
        {CHECK, 0, 24, 0, 0x400},  {RADIO, 0, 16, 0, 0x404}, {CHECK, 0, 32, 0, 0x408},
        {CHECK, 0, 4, 0, 0x200}};
    ExpectNoGdiLeft(1, [&] {
        for (const auto &[kind, bFlat, nState, nEdge, nMark] : rows) {
            CButton button(parent, 5, kind, "");
            button.SetFlat(bFlat);
            UpdateWindow(button);
            button.SetState(nState, true);
            const bool bRaised = nEdge && !bFlat, bLit = !nMark && nState == 16;
            const COLORREF cr = bRaised ? GetSysColor(COLOR_BTNFACE) : crBehind,
                           crLight = bLit ? GetSysColor(COLOR_BTNHIGHLIGHT) : cr;
            const HBRUSH hBrush =
                CreateSolidBrush(((cr ^ crLight) & 0xFEFEFE) / 2 + (cr & crLight));
            const LONG n = bFlat ? 2 : 4;
            CTestSurface expected(CPixelMap(80, 30));
            RECT rc = {0, 0, 80, 30}, rcMark = {0, 8, 13, 21}, rcFocus = {n, n, 80 - n, 30 - n};
            FillRect(expected, &rc, bRaised && !bLit ? CUIGetWinData()->hbrBtnFace : hBrush);
            DeleteObject(hBrush);
            if (bRaised && (nState & (CUI_STATE_DEFAULT | CUI_STATE_FOCUSED))) {
                CUIDCDrawRect(expected, &rc, GetSysColor(COLOR_WINDOWFRAME));
                InflateRect(&rc, -1, -1);
            }
            if (nEdge)
                DrawEdge(expected, &rc, nEdge, BF_RECT | (bFlat ? 0 : BF_SOFT));
            if (nMark)
                DrawFrameControl(expected, &rcMark, DFC_BUTTON, nMark);
            if ((nState & CUI_STATE_FOCUSED) && !nMark)
                DrawFocusRect(expected, &rcFocus);
            EXPECT_EQ(expected.Read(), WindowPixels(button)) << kind << " " << nState;
            button.Enable(false);
            EXPECT_EQ(button.Picture(), WindowPixels(button)) << "as what it paints elsewhere";
        }
    });
}

TEST_F(Control, HasItsPictureBesideTheTextWhereItIsToBe)
{
    CPixelMap strip(32, 16, 0xFF00FF);
    strip.Set(16, 0, 0x0000FF);  // at the corner of the second one
    CTestSurface surface(CPixelMap(1, 1));
    RECT rcText = {};
    SelectObject(surface, CUIGetWinData()->hMenuFont);
    DrawTextA(surface, "A text", -1, &rcText, DT_CALCRECT);
    CButton button(parent, 5, CUI_BUTTON_PUSH, "A text");
    const auto corner = [&] {
        const CPixelMap map = button.Picture();
        EXPECT_EQ(0, map.Count(0xFF00FF)) << "which lets the button shine through";
        const auto at =
            std::find(map.pixels.begin(), map.pixels.end(), 0x0000FF) - map.pixels.begin();
        return Text("%d,%d", int(at) % map.cx, int(at) / map.cx);
    };
    const LONG x = rcText.right, y = rcText.bottom;
    button.SetPicture(BitmapOf(strip), 1, 16, 0xFF00FF);
    const std::tuple<CUIPicturePlace, LONG, LONG, LONG, LONG> rows[] = {
        {CUI_PICTURE_LEFT, x + 43, 26, 11, 5},
        {CUI_PICTURE_RIGHT, x + 43, 26, x + 16, 5},
        {CUI_PICTURE_ABOVE, x + 22, y + 31, 11 + (x - 16) / 2, 5},
        {CUI_PICTURE_BELOW, x + 22, y + 31, 11 + (x - 16) / 2, y + 10}};
    for (const auto &[place, cx, cy, xPicture, yPicture] : rows) {
        SIZE size = {};
        button.SetPicturePlace(place);
        button.GetNaturalSize(size);
        EXPECT_EQ(Text("%ld,%ld", cx, cy), Text("%ld,%ld", size.cx, size.cy));
        MoveWindow(button, 0, 0, size.cx, size.cy, FALSE);
        for (const int nDown : {1, 0}) {
            button.SetState(CUI_STATE_PRESSED, nDown);
            EXPECT_EQ(Text("%ld,%ld", xPicture + nDown, yPicture + nDown), corner());
        }
    }
    // What changes is painted, and its size told.
    button.SetLayoutFlags(CUI_PLACE_FIT);
    parent.m_on[CUI_WM_LAYOUT] = [&] { return parent.m_told += "size ", 0; };
    const std::function<void()> changes[] = {
        [&] { button.SetFont(static_cast<HFONT>(GetStockObject(SYSTEM_FONT))); },
        [&] { button.SetPicturePlace(CUI_PICTURE_RIGHT); },
        [&] { Send(button, WM_WININICHANGE); },
        [&] { button.SetText(""); },
        [&] { button.SetPicture(BitmapOf(strip)); },
        [&] { Send(button, WM_SYSCOLORCHANGE); }};
    for (const auto &change : changes) {
        UpdateWindow(button);
        change();
        EXPECT_TRUE(GetUpdateRect(button, nullptr, FALSE)) << &change - changes;
    }
    EXPECT_EQ("size size size size size ", parent.Told());
    button.SetFlat(true);
    SIZE size = {};
    button.GetNaturalSize(size);
    EXPECT_EQ(38, size.cx) << "without a text";
    const CDotsPerInch dpi(192);
    button.SetPicture(BitmapOf(strip));
    EXPECT_EQ(4, button.Picture().Count(0x0000FF));
    button.Enable(false);
    EXPECT_EQ(0, button.Picture().Count(0x0000FF));
}

TEST_F(Control, IsMirroredAllButItsText)
{
    std::vector<int> columns[2];  // where the text's pixels lie, from column to column
    for (const bool bMirrored : {false, true}) {
        SetWindowLongA(parent, GWL_EXSTYLE, bMirrored ? 0x00400000 : 0);
        CButton button(parent, 5, CUI_BUTTON_CHECK, "FL");
        const LONG x = RectOf(parent).left + (bMirrored ? 110 : 37), y = RectOf(parent).top + 20;
        CPixelMap map;  // all but the mark, once the screen has it
        EXPECT_TRUE(PumpUntil([&] {
            map = WindowPixels(nullptr, {x, y, x + 63, y + 30});
            const int nText = map.Count(GetSysColor(COLOR_BTNTEXT));
            return nText > 0 && nText < 63 * 15;
        }));
        for (int i = 0; i < 63 * 30; ++i) {
            if (map.At(i / 30, i % 30) == GetSysColor(COLOR_BTNTEXT))
                columns[bMirrored].push_back(i % 30);
        }
        CButton first(parent, 6, CUI_BUTTON_RADIO), second(parent, 7, CUI_BUTTON_RADIO),
            third(parent, 8, CUI_BUTTON_RADIO);
        Input(second, {VK_RIGHT});
        EXPECT_EQ(bMirrored ? 6 : 8, GetDlgCtrlID(GetFocus()));
    }
    EXPECT_LT(4u, columns[0].size());
    EXPECT_EQ(columns[0], columns[1]);
}
