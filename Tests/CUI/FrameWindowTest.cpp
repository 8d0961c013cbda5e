// A frame, its children and what the user and the system do to it.
#include "Base/GdiGuards.h"
#include "CUI/Button.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/ControlBar.h"
#include "CUI/Data.h"
#include "CUI/LayoutWindow.h"
#include "CUI/StatusBar.h"
#include "CUI/WindowClass.h"
#include "FrameFixture.h"
#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"

namespace {

class CBar : public CScripted<CCUIControlWindow>, public CCUIHelpText
{
public:
    CBar(HWND hFrame, int nSize, DWORD style = WS_VISIBLE)
    {
        SetFixedSize(nSize);
        Create(nullptr, "", style | WS_CHILD, {0, 0, 1, 1}, hFrame, 1);
        m_on[WM_WINDOWPOSCHANGING] = [this] { return ++m_nMoves, Default(); };
    }
    ~CBar() override { m_on.clear(), Destroy(); }
    void ShowHelp(const CCUString &sText) override { m_help += Text("[%s]", sText.GetString()); }
    void ClearHelp() override { m_help += "clear"; }

    CUIBarSide GetSide() const { return m_side; }

    int m_nMoves = 0;
    CUIBarSide m_side = CUI_BAR_LEFT;
    std::string m_help;
};

class CCommand final : public CCUICommandHandler
{
public:
    CCommand() : CCUICommandHandler(1700, 1) {}
    void HandleCommand(unsigned int) override { ++m_nDone; }
    CCUString GetLongTT(unsigned int) override { return "Opens a file"; }
    int m_nDone = 0;
};

// A window's place, in its parent's client pixels or on the screen.
std::string PlaceOf(HWND hWnd)
{
    RECT rc = {};
    GetWindowRect(hWnd, &rc);
    if (GetWindowLongA(hWnd, GWL_STYLE) & WS_CHILD)
        MapWindowPoints(nullptr, GetParent(hWnd), reinterpret_cast<POINT *>(&rc), 2);
    return Text("%ld,%ld,%ld,%ld", rc.left, rc.top, rc.right, rc.bottom);
}

// What strips of these thicknesses leave of the frame's client area.
std::string Rest(HWND hFrame, LONG left, LONG top, LONG right, LONG bottom)
{
    RECT rc;
    GetClientRect(hFrame, &rc);
    return Text("%ld,%ld,%ld,%ld", left, top, rc.right - right, rc.bottom - bottom);
}

// With all that a frame can have.
class CFullFrame : public CTestFrame
{
public:
    CFullFrame()
    {
        AddBar(&m_bar, CUI_BAR_TOP);
        SetStatusBar(&m_status);
        SetClient(&m_client);
        SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
        SetAccelerators(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
    }
    CBar m_bar{*this, 20}, m_status{*this, 10}, m_client{*this, 0};
};

void PressKey(HWND hWnd, WPARAM nKey)
{
    MSG msg = {hWnd, WM_KEYDOWN, nKey, 1, 0, {}};
    CCUIWindow::PerformPreTranslation(&msg);
}

}  // namespace

TEST(FrameWindow, PutsBarsAroundItsClientAndMovesOnlyWhatStandsWrong)
{
    CTestWindow stranger;
    CTestFrame frame;
    CBar top(frame, 30), hidden(frame, 10, 0), left(frame, 40), right(frame, 7), below(frame, 5),
        status(frame, 20), client(frame, 0), elsewhere(stranger, 5);
    EXPECT_EQ(1, frame.AddBar(&top, CUI_BAR_TOP));
    EXPECT_EQ(0, frame.AddBar(&elsewhere, CUI_BAR_TOP));
    frame.AddBar(&hidden, CUI_BAR_TOP);
    frame.AddBar(&left, CUI_BAR_LEFT);
    frame.AddBar(&right, CUI_BAR_RIGHT);
    frame.AddBar(&below, CUI_BAR_BOTTOM);
    frame.SetStatusBar(&status, nullptr);
    frame.SetClient(&client);
    RECT rc;
    GetClientRect(frame, &rc);
    EXPECT_EQ(Text("0,%ld,%ld,%ld", rc.bottom - 20, rc.right, rc.bottom), PlaceOf(status));
    EXPECT_EQ(Text("40,%ld,%ld,%ld", rc.bottom - 25, rc.right - 7, rc.bottom - 20), PlaceOf(below));
    const CFailingCall<HDWP(int)> begin("BeginDeferWindowPos");
    const struct
    {
        const char *what;
        std::function<void()> act;
        LONG nLeft, nTop;
        const char *moves;  // of client and top
    } steps[] = {
        {"again", [&] { frame.Layout(); }, 40, 30, "0 0"},
        {"wider", [&] { left.SetFixedSize(50); }, 50, 30, "1 0"},
        {"shown", [&] { ShowWindow(hidden, SW_SHOWNA), PumpWaiting(); }, 50, 40, "1 0"},
        {"no step", [&] { CFailPlan::Start(1), MoveWindow(frame, 0, 0, 500, 350, FALSE); }, 50, 40,
         "1 1"},
        {"destroyed", [&] { hidden.Destroy(); }, 50, 30, "1 0"},
        {"other side", [&] { frame.AddBar(&left, CUI_BAR_TOP); }, 0, 80, "1 0"},
        {"its own side", [&] { frame.AddBar(&left); }, 50, 30, "1 0"},
        {"removed", [&] { frame.RemoveBar(&left); }, 0, 30, "1 0"},
    };
    for (const auto &step : steps) {
        client.m_nMoves = top.m_nMoves = 0;
        step.act();
        EXPECT_EQ(Rest(frame, step.nLeft, step.nTop, 7, 25), PlaceOf(client)) << step.what;
        EXPECT_EQ(step.moves, Text("%d %d", client.m_nMoves, top.m_nMoves)) << step.what;
    }
    top.SetFixedSize(5000);
    GetClientRect(client, &rc);
    EXPECT_EQ(0, rc.bottom) << "no room";
    // Without end, were there no limit.
    int nSizes = 0;
    below.m_on[WM_SIZE] = [&] { return below.SetFixedSize(5 + ++nSizes % 2), 0; };
    top.SetFixedSize(30);
    EXPECT_LE(nSizes, 8);
}

TEST(FrameWindow, SurvivesWhateverGoesMeanwhileAndAClassThatTheSystemRefuses)
{
    CReports reports;
    auto frame = std::make_unique<CTestFrame>();
    auto bar = std::make_unique<CBar>(*frame, 20), client = std::make_unique<CBar>(*frame, 0),
         detached = std::make_unique<CBar>(*frame, 30);
    frame->AddBar(bar.get(), CUI_BAR_TOP);
    frame->SetStatusBar(bar.get(), bar.get());
    frame->SetClient(client.get());
    frame->AddBar(detached.get(), CUI_BAR_TOP);
    detached->Detach();
    detached.reset();
    bar.reset();
    EXPECT_EQ(Rest(*frame, 0, 0, 0, 0), PlaceOf(*client));
    SendMessageA(*frame, WM_MENUSELECT, MAKEWPARAM(1700, 0), 1);
    client->m_on[WM_SIZE] = [&] { return frame.reset(), 0; };
    MoveWindow(*frame, 0, 0, 300, 200, FALSE);
    EXPECT_FALSE(frame || client->Exist());
    for (const UINT message : {0x10U, 0x11U}) {  // WM_CLOSE, WM_QUERYENDSESSION
        frame = std::make_unique<CTestFrame>();
        frame->m_onQuery = [&] { return frame.reset(), true; };
        SendMessageA(*frame, message, 0, 0);
    }
    EXPECT_EQ(0, reports.Total());
    UnregisterClassA("pzl-FrameWindow", GetModuleHandleA(nullptr));
    g_nRegisteredClasses = 0;
    const CFakeCall<ATOM(const WNDCLASSA *)> refuse("RegisterClassA", [](auto) { return 0; });
    EXPECT_EQ("CUIWindowClassRegister(CUI_CLASS_FRAMEWINDOW)",
              reports.Of("FrameWindow", [] { EXPECT_FALSE(CTestFrame().Exist()); }));
    g_nRegisteredClasses = 0;
}

TEST(FrameWindow, NamesDocumentAndProgramInItsTitle)
{
    CTestFrame frame;
    const char *const rows[][2] = {{"C:\\a.b\\Letter.txt", "Letter.txt - Program"},
                                   {"d:x", "x* - Program"},
                                   {"Untitled", "Untitled - Program"},
                                   {"", "Program"}};
    for (const auto &row : rows) {
        frame.SetDocument(row[0]);
        frame.SetModified((&row - rows) % 2);
        char szTitle[256] = "";
        GetWindowTextA(frame, szTitle, sizeof szTitle);
        EXPECT_STREQ(row[1], szTitle);
    }
}

TEST(FrameWindow, ClosesWhenAskedAndTheMainFrameEndsTheProgram)
{
    CTestFrame main, other;
    EnableWindow(other, FALSE);
    SendMessageA(other, WM_CLOSE, 0, 0);
    EXPECT_EQ("", other.m_asked) << "disabled";
    EnableWindow(other, TRUE);
    other.m_onQuery = [&] { return SendMessageA(other, WM_QUERYENDSESSION, 0, 0) != 0; };
    SendMessageA(other, WM_CLOSE, 0, 0);
    EXPECT_EQ("close?", other.m_asked) << "not while it is asked";
    EXPECT_TRUE(other.Exist());
    other.m_onQuery = main.m_onQuery;
    EXPECT_EQ(1, SendMessageA(other, WM_QUERYENDSESSION, 0, 0));
    SendMessageA(other, WM_CLOSE, 0, 0);
    EXPECT_FALSE(other.Exist() || CTestFrame::TakeQuit());
    SendMessageA(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(CTestFrame::TakeQuit());
    CScripted<CCUIFrameWindow> failing;
    failing.m_on[WM_CREATE] = [] { return -1; };
    EXPECT_FALSE(failing.CreateFrame("x") || CTestFrame::TakeQuit());
}

TEST(FrameWindow, KeepsItsPlaceAndFindsAScreenForIt)
{
    const CTestSettings settings;
    RECT work;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    const int nDpi = CUIGetWinData()->cyPixelsPerInch;
    const std::string dpi = Text(",%d", nDpi), half = Text(",%d", nDpi / 2);
    const LONG r = work.right, b = work.bottom;
    const struct
    {
        std::string kept, place;
        bool bMaximized;
        int nShow;
    } rows[] = {
        {"100,90,400,290,0" + dpi, "100,90,400,290", false, SW_SHOWNORMAL},
        {"100,90,400,290,1" + dpi, "100,90,400,290", true, SW_SHOWDEFAULT},
        {"100,90,400,290,1" + dpi, "100,90,400,290", true, SW_SHOWMINIMIZED},
        {"100,90,400,290,0" + dpi, "100,90,400,290", true, SW_SHOWMAXIMIZED},
        {"100,90,250,190,0" + half, "100,90,400,290", false, SW_SHOWNORMAL},
        {"-200,90,100,290,0" + dpi, "-200,90,100,290", false, SW_SHOWNORMAL},
        {"-290,90,10,290,0" + dpi, "0,90,300,290", false, SW_SHOWNORMAL},
        {"5000,-30,19000,9000,0" + dpi, Text("0,0,%ld,%ld", r, b), false, SW_SHOWNORMAL},
        {"1,2,3,4", "40,50,440,350", false, SW_SHOWNORMAL},
        {"100,90,90,290,0" + dpi, "40,50,440,350", false, SW_SHOWNORMAL},
        {"100,90,400,290,0,0", "40,50,440,350", false, SW_SHOWNORMAL},
    };
    for (const auto &row : rows) {
        CTestSettings::Set("Placement", row.kept);
        CTestFrame frame;
        frame.ShowKept("Test", row.nShow);
        EXPECT_EQ(row.nShow == SW_SHOWMINIMIZED, IsIconic(frame) != 0);
        frame.BringToFront();
        EXPECT_EQ(row.bMaximized, IsZoomed(frame) != 0) << row.kept;
        EXPECT_TRUE(IsWindowVisible(frame) && (row.bMaximized || row.place == PlaceOf(frame)));
        SendMessageA(frame, WM_ENDSESSION, TRUE, 0);
        EXPECT_FALSE(frame.Exist());
        EXPECT_EQ(row.place + (row.bMaximized ? ",1" : ",0") + dpi,
                  CTestSettings::Get("Placement"));
    }
}

TEST(FrameWindow, CoversTheScreenAndComesBackAsItWas)
{
    const CTestSettings settings;
    CCommand command;
    const int cx = GetSystemMetrics(SM_CXSCREEN), cy = GetSystemMetrics(SM_CYSCREEN);
    const std::string screen = Text("0,0,%d,%d ", cx, cy), full = screen + screen + "000 0";
    for (const int nMaximized : {0, 1}) {
        const std::string kept = Text("100,90,400,290,%d,96", nMaximized);
        CTestSettings::Set("Placement", kept);
        CFullFrame frame;
        frame.ShowKept("Test");
        const HMENU hMenu = GetMenu(frame);
        const auto look = [&] {
            PumpWaiting();
            return PlaceOf(frame) + " " + PlaceOf(frame.m_client) +
                   Text(" %d%d%d %lx", GetMenu(frame) == hMenu, IsWindowVisible(frame.m_bar),
                        IsWindowVisible(frame.m_status),
                        GetWindowLongA(frame, GWL_STYLE) & WS_CAPTION);
        };
        const std::string before = look();
        const std::function<void(bool)> set = [&](bool bFull) { frame.SetFullScreen(bFull); };
        const std::function<void(bool)> steps[] = {
            set,
            [&](bool bFull) {
                bFull ? set(true) : PressKey(frame.m_client, VK_F7);
                PressKey(frame.m_client, bFull ? VK_F7 : VK_ESCAPE);
            },
            // Whoever is told asks for the other one.
            [&](bool bFull) {
                frame.m_onFull = [&, bFull] { frame.SetFullScreen(bFull); };
                frame.SetFullScreen(!bFull), set(bFull);
            },
            [&](bool bFull) {
                ShowWindow(frame, SW_MINIMIZE);
                SendMessageA(frame, WM_DISPLAYCHANGE, 32, 0);
                EXPECT_TRUE(IsIconic(frame));
                ShowWindow(frame, SW_RESTORE), set(bFull);
            }};
        for (const auto &step : steps) {
            frame.m_asked.clear();
            step(true);
            EXPECT_EQ(full, look());
            step(false);
            EXPECT_EQ(before, look());
            EXPECT_EQ("full|back|", frame.m_asked.substr(0, 10));
        }
        set(true);
        EXPECT_EQ(hMenu, frame.GetMenu());
        frame.Destroy();
        EXPECT_EQ(kept, CTestSettings::Get("Placement"));
        EXPECT_FALSE(IsMenu(hMenu));
    }
    EXPECT_EQ(4, command.m_nDone);
}

TEST(FrameWindow, ShowsTheHelpOfMenuItemsAndGivesTheFocusBack)
{
    CReports reports;
    CCommand command;
    CTestWindow other(nullptr, WS_POPUP | WS_VISIBLE);
    CFullFrame frame;
    frame.BringToFront();
    EXPECT_EQ(frame.m_client.GetHandle(), GetFocus());
    const auto goAndComeBack = [&](bool bShown) {
        SetForegroundWindow(other);
        EXPECT_EQ(other.GetHandle(), GetFocus());
        ShowWindow(frame.m_bar, bShown ? SW_SHOWNA : SW_HIDE);
        SetForegroundWindow(frame);
        return GetFocus();
    };
    SetFocus(frame.m_bar);
    EXPECT_EQ(frame.m_bar.GetHandle(), goAndComeBack(true));
    EXPECT_EQ(frame.m_client.GetHandle(), goAndComeBack(false));
    EnableWindow(frame, FALSE);
    PressKey(frame.m_client, VK_F7);
    EXPECT_EQ(0, command.m_nDone) << "a dialog is open";
    const UINT items[][2] = {{1700, MF_HILITE}, {1700, MF_POPUP}, {999, 0}, {1701, 0}, {0, 0xFFFF}};
    for (const auto &item : items)
        SendMessageA(frame, WM_MENUSELECT, MAKEWPARAM(item[0], item[1]), item[1] != 0xFFFF);
    EXPECT_EQ("[Opens a file][][][]clear", frame.m_status.m_help);
    EXPECT_EQ(0, reports.Total());
}

TEST(FrameWindow, HoldsControlBarsAndAStatusBarTogether)
{
    CCommand command;
    CTestFrame frame;
    CCUIControlBar bar, second;
    CCUIStatusBar status;
    CCUILayoutWindow client(CCUILayoutWindow::Row);
    const unsigned ids[] = {1700};
    for (CCUIControlBar *pBar : {&bar, &second}) {
        pBar->CreateBar(frame, 1);
        pBar->SetButtons(ids, 1);
        frame.AddBar(pBar);
    }
    status.CreateBar(frame, 2);
    status.SetText(0, "Ready");
    frame.SetStatusBar(&status);
    client.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 0, 0}, frame, 3);
    frame.SetClient(&client);
    frame.BringToFront();
    const LONG nThick = bar.GetFixedSize(), nStatus = status.GetFixedSize();
    EXPECT_EQ(Rest(frame, 0, 2 * nThick, 0, nStatus), PlaceOf(client));
    // A button under the mouse, or lit by the keyboard, has its help in the status bar.
    const auto shown = [&] {
        const auto look = [&] {
            UpdateWindow(status);
            return ReadPixels(CCUIWindowDC(status), 200, nStatus);
        };
        const CPixelMap before = look();
        status.ShowHelp("Opens a file");
        return look() == before;
    };
    SendMessageA(second, WM_MOUSEMOVE, 0, MAKELPARAM(12, 8));
    EXPECT_TRUE(shown());
    SendMessageA(second, WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(shown());
    for (const HWND hExpected : {bar.GetHandle(), second.GetHandle(), client.GetHandle()}) {
        PressKey(GetFocus(), VK_F6);
        EXPECT_EQ(hExpected, GetFocus());
        EXPECT_EQ(hExpected != client.GetHandle(), shown());
        status.ClearHelp();
    }
    CCUIButton button;
    button.SetCommand(1700);
    button.CreateControl(client, 1700, "&Open");
    CCUICommandMap::IdleUpdate();
    MSG msg = {bar, WM_SYSCHAR, 'o', 0, 0, {}};
    EXPECT_TRUE(CCUIWindow::PerformPreTranslation(&msg));
    EXPECT_EQ(1, command.m_nDone);
}

TEST(FrameWindow, OpensWhatIsDroppedAndWhatACommandLineNames)
{
    CTestFrame frame;
    // As the shell sends it: where the names begin, a point, two flags, the names.
    const std::string longName = "D:\\" + std::string(400, 'n');
    const std::string drop =
        "\x14" + std::string(19, 0) + "C:\\one.txt" + std::string(1, 0) + longName;
    const auto send = [&] {
        const HGLOBAL hDrop = GlobalAlloc(GHND, drop.size() + 2);
        memcpy(GlobalLock(hDrop), drop.data(), drop.size());
        GlobalUnlock(hDrop);
        SendMessageA(frame, WM_DROPFILES, reinterpret_cast<WPARAM>(hDrop), 0);
    };
    SendMessageA(frame, WM_DROPFILES, 0x1234, 0);
    send();
    EXPECT_EQ("C:\\one.txt|" + longName + "|", frame.m_asked);
    EnableWindow(frame, FALSE);
    send(), frame.OnCommandLine("p a.txt", "");
    EnableWindow(frame, TRUE);
    EXPECT_EQ("C:\\one.txt|" + longName + "|", frame.m_asked) << "a dialog is open";
    frame.m_asked.clear();
    frame.OnCommandLine(
        "\"C:\\my programs\\p.exe\"  \"a b.txt\" /x -y C:\\d\\..\\e.txt\t\\\\s\\t\\f "
        "\"\" q\"r s\".txt",
        "C:\\in");
    EXPECT_EQ("C:\\in\\a b.txt|C:\\e.txt|\\\\s\\t\\f|C:\\in\\qr s.txt|", frame.m_asked);
}

TEST(FrameWindow, PassesOnWhatIsSaidOfPalettes)
{
    const CCUIOwned<HPALETTE> palette(CreateHalftonePalette(nullptr));
    CTestFrame frame;
    CCUIControl plain, picture;
    const RECT rc = {0, 0, 20, 20};
    plain.CreateControl(frame, 1, "", &rc);
    picture.CreateControl(frame, 2, "", &rc);
    frame.BringToFront();
    std::string realized;
    UINT nChanged = 3;
    int nCaps = RC_PALETTE;
    const CFakeCall<UINT(HDC)> realize("RealizePalette", [&](HDC hDC) {
        const bool bIts = GetCurrentObject(hDC, OBJ_PAL) == palette;
        realized += !bIts ? "?" : WindowFromDC(hDC) == picture.GetHandle() ? "window " : "memory ";
        return nChanged;
    });
    const CFakeCall<int(HDC, int)> caps("GetDeviceCaps", [&](HDC hDC, int nIndex) {
        return nIndex == RASTERCAPS ? nCaps : caps.Original(hDC, nIndex);
    });
    const auto send = [&](UINT message, HWND hChanged) {
        UpdateWindow(picture);
        realized.clear();
        const LRESULT answer = SendMessageA(frame, message, reinterpret_cast<WPARAM>(hChanged), 0);
        return Text("%ld %s%d", answer, realized.c_str(), GetUpdateRect(picture, nullptr, FALSE));
    };
    EXPECT_EQ("0 0", send(WM_QUERYNEWPALETTE, nullptr));
    picture.SetPalette(palette);
    EXPECT_EQ("1 window 1", send(WM_QUERYNEWPALETTE, nullptr));
    realized.clear();
    UpdateWindow(picture);
    EXPECT_EQ("window memory ", realized) << "painted";
    EXPECT_EQ("0 0", send(WM_PALETTECHANGED, picture));
    EXPECT_EQ("0 window 1", send(WM_PALETTECHANGED, frame));
    nChanged = 0;
    EXPECT_EQ("0 window 0", send(WM_PALETTECHANGED, frame));
    nCaps = 0;
    EXPECT_EQ("0 0", send(WM_QUERYNEWPALETTE, nullptr)) << "no such screen";
}

TEST(FrameWindow, LeavesNothingBehind)
{
    const CTestSettings settings;
    const auto make = [&] {
        CFullFrame frame;
        frame.ShowKept("Test", SW_HIDE);
        frame.SetFullScreen(true);
    };
    make();
    const CHeapWatch heap;
    make();
    const auto count = [] { return Text("%d %d", WindowCount(), CHeapWatch::Live()); };
    const int nGdi = GdiCount();
    const std::string before = count();
    for (int i = 0; i < 30; ++i)
        make();
    EXPECT_NEAR(nGdi, GdiCount(), 1);
    EXPECT_EQ(before, count());
}
