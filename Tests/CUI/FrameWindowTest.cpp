// A frame, its children and what the user and the system do to it.
#include <set>

#include "Base/GdiGuards.h"
#include "CUI/Button.h"
#include "CUI/Choosers.h"
#include "CUI/CommandMap.h"
#include "CUI/ControlBar.h"
#include "CUI/LayoutWindow.h"
#include "CUI/Menu.h"
#include "CUI/NotifyIcon.h"
#include "CUI/StatusBar.h"
#include "FrameFixture.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TestCommand.h"
#include "Support/TestControl.h"
#include "Support/Times.h"

namespace {

// With all that a frame can have.
struct CFullFrame : CTestFrame
{
    CFullFrame()
    {
        for (CCUIControlBar &bar : m_bars) {
            bar.CreateBar(*this, 1);
            bar.AddButton(1700, 0);
            AddBar(&bar);
        }
        m_status.CreateBar(*this, 2);
        SetStatusBar(&m_status);
        m_client.Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 0, 0}, *this, 3);
        SetClient(&m_client);
        m_button.SetCommand(1700);
        m_button.CreateControl(m_client, 1700, "&Open");
        SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
        SetAccelerators(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700));
    }
    CCUIControlBar m_bars[2];
    CCUIStatusBar m_status;
    CCUILayoutWindow m_client{CCUILayoutWindow::Row};
    CCUIButton m_button;
};

struct FrameWindow : testing::Test
{
    const CTestSettings settings;
    CTestCommand command{1700};
};

}  // namespace

// First, before the libraries are there.
TEST_F(FrameWindow, DoesWithoutLibrariesAndFunctionsThatOldSystemsLack)
{
    CDumped dumped;
    const CFakeCall<HMODULE(LPCSTR, HANDLE, DWORD)> load(
        "LoadLibraryExA", [](auto...) { return SetLastError(ERROR_MOD_NOT_FOUND), HMODULE(); });
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> find(
        "GetProcAddress", [](auto...) { return SetLastError(ERROR_PROC_NOT_FOUND), FARPROC(); });
    CFullFrame frame;
    CCUINotifyIcon icon;
    CCUString sPath;
    frame.Show(true);
    PumpWaiting();
    Send(frame.m_bars[0], WM_MOUSEMOVE, 0, MAKELPARAM(12, 8));
    EXPECT_FALSE(CUIChooseOpenFile(&frame, sPath));
    EXPECT_EQ(DWORD(ERROR_MOD_NOT_FOUND), GetLastError());
    EXPECT_FALSE(CUIChooseFolder(&frame, sPath) || icon.Add(LoadIconA(nullptr, IDI_HAND), "tip"));
    Send(frame, WM_DROPFILES, WPARAM(GlobalAlloc(GHND, 40)));
    for (const char *text : {"common controls", "icon", "GetOpenFileNameA", "SHBrowse", "dropped"})
        EXPECT_NE(std::string::npos, dumped.m_text.find(text)) << text << ": " << dumped.m_text;
    Click(frame.m_bars[1], 12, 8);
    Click(frame.m_button);
    EXPECT_EQ("0 0 ", command.Done());
    frame.SetFullScreen(true);
}

TEST_F(FrameWindow, HasCommandsAsTheyStandWhenItIsShown)
{
    auto pFrame = std::make_unique<CFullFrame>();
    command.m_nState = 0;
    ShowWindow(*pFrame, SW_SHOWMAXIMIZED);
    EXPECT_FALSE(IsWindowEnabled(pFrame->m_button));
    // They are asked once for Alt and a character, by which all windows look for a button, and
    // once for a menu.
    std::string asked;
    command.m_onState = [&] { asked += "state "; };
    command.m_onUpdate = [&] { asked += "update "; };
    CCUICommandMap::IdleUpdate();
    const std::string pass = std::exchange(asked, "");
    EXPECT_FALSE(PressKey('z', pFrame->m_button, WM_SYSCHAR));
    EXPECT_EQ(pass, std::exchange(asked, ""));
    POINT at = {60, 60};
    CCUIMenu menu;
    menu.Append(1700, "item");
    PostMessageA(*pFrame, WM_KEYDOWN, VK_ESCAPE, 1);
    pFrame->DisplayPopupMenu(&menu, 0, at, nullptr);
    EXPECT_EQ("state update state ", asked);
    EXPECT_EQ(0, Send(*pFrame, WM_USER + 0x35, 7));
    EXPECT_EQ("state7", pFrame->Told());
    pFrame->Show(false);
    // Handlers that show it themselves, and that delete it.
    command.m_onUpdate = [&] { pFrame->Show(true); };
    pFrame->Show(true);
    pFrame->Show(false);
    command.m_onUpdate = [&] { pFrame.reset(); };
    pFrame->Show(true);
    EXPECT_EQ(nullptr, pFrame);
}

TEST_F(FrameWindow, PutsBarsAroundItsClient)
{
    CTestFrame frame(WS_POPUP);
    CTestControl top(frame, 30), hidden(frame, 10, 4, WS_CHILD), left(frame, 40), right(frame, 7),
        below(frame, 5), status(frame, 20), client(frame, 0);
    frame.AddBar(&top, CUI_BAR_TOP), frame.AddBar(&hidden, CUI_BAR_TOP);
    frame.AddBar(&left, CUI_BAR_LEFT), frame.AddBar(&right, CUI_BAR_RIGHT);
    frame.AddBar(&below, CUI_BAR_BOTTOM);
    frame.SetStatusBar(&status, nullptr);
    frame.SetClient(&client);
    EXPECT_EQ("0,280,400,300 40,275,393,280", PlaceOf(status) + " " + PlaceOf(below));
    const std::pair<const char *, std::function<void()>> steps[] = {
        {"50,30,393,275", [&] { left.SetFixedSize(50); }},
        {"50,40,393,275", [&] { ShowWindow(hidden, SW_SHOWNA), PumpWaiting(); }},
        {"50,30,393,275", [&] { hidden.Destroy(); }},
        {"0,80,393,275", [&] { frame.AddBar(&left, CUI_BAR_TOP); }},
        {"0,30,393,275", [&] { frame.RemoveBar(&left); }},
        {"0,280,393,280", [&] { top.SetFixedSize(5000); }},
    };
    for (const auto &[place, act] : steps) {
        act();
        EXPECT_EQ(place, PlaceOf(client));
    }
    const RECT suggested = {30, 40, 330, 240};
    SendMessageA(frame, 0x02E0, 0, reinterpret_cast<LPARAM>(&suggested));  // WM_DPICHANGED
    EXPECT_EQ(Of(suggested), PlaceOf(frame));
}

TEST_F(FrameWindow, SurvivesWhateverGoesMeanwhile)
{
    CReports reports;
    auto frame = std::make_unique<CTestFrame>();
    auto bar = std::make_unique<CTestControl>(*frame),
         client = std::make_unique<CTestControl>(*frame),
         detached = std::make_unique<CTestControl>(*frame);
    frame->AddBar(bar.get(), CUI_BAR_TOP);
    frame->SetClient(client.get());
    frame->AddBar(detached.get(), CUI_BAR_TOP);
    detached->Detach();
    detached.reset();
    bar.reset();
    EXPECT_EQ(0, RectOf(*client).top);
    client->m_on[WM_SIZE] = [&] { return frame.reset(), 0; };
    MoveWindow(*frame, 0, 0, 300, 200, FALSE);
    EXPECT_FALSE(frame || client->Exist());
    for (const UINT message : {UINT{WM_CLOSE}, UINT{WM_QUERYENDSESSION}}) {
        const CHeapWatch heap;
        frame = std::make_unique<CTestFrame>();
        frame->m_onQuery = [&] { return frame.reset(), true; };
        Send(*frame, message);
        EXPECT_FALSE(frame);
    }
    EXPECT_EQ(0, reports.Total());
}

TEST_F(FrameWindow, ClosesWhenAskedAndEndsTheProgramAsTheMainFrame)
{
    CTestFrame main, other;
    // Not below a dialog, which comes to the front, and not while it is asked.
    other.m_onQuery = [&] { return Send(other, WM_QUERYENDSESSION) != 0; };
    for (const BOOL bEnabled : {FALSE, TRUE}) {
        EnableWindow(other, bEnabled);
        Send(other, WM_CLOSE);
        EXPECT_EQ(bEnabled ? "close?" : "", other.m_told);
        EXPECT_TRUE(IsWindowVisible(other));
    }
    other.m_onQuery = main.m_onQuery;
    Send(other, WM_CLOSE);
    EXPECT_FALSE(other.Exist() || CTestFrame::TakeQuit());
    Send(main, WM_CLOSE);
    EXPECT_TRUE(CTestFrame::TakeQuit());
    other.m_on[WM_CREATE] = [] { return -1; };
    EXPECT_FALSE(other.CreateFrame("x") || CTestFrame::TakeQuit());
    // As a program does that begins with a new text.
    other.m_on[WM_CREATE] = [&] { return other.SetDocument(""), 0; };
    other.CreateFrame("Editor");
    EXPECT_EQ("Editor", TextOf(other));
}

TEST_F(FrameWindow, KeepsItsPlaceAndFindsAScreenForIt)
{
    // A system that looks at how long the record is.
    const CFakeCall<BOOL(HWND, WINDOWPLACEMENT *)> get("GetWindowPlacement", [&](HWND h, auto *p) {
        return p->length == sizeof *p && get.Original(h, p);
    });
    const RECT work = WorkArea();
    const int NORMAL = SW_SHOWNORMAL;
    const std::tuple<const char *, std::string, int> rows[] = {
        {"100,90,400,290,1,96", "100,90,400,290,1", SW_SHOWMINIMIZED},
        {"100,90,400,290,0,96", "100,90,400,290,1", SW_SHOWMAXIMIZED},
        {"100,90,400,290,1,96", "100,90,400,290,1", SW_SHOWDEFAULT},
        {"-200,90,100,290,0,96", "-200,90,100,290,0", NORMAL},
        {"724,90,924,290,0,48", Text("%ld,90,%ld,490,0", work.right - 400, work.right), NORMAL},
        {"100,90,400,9000,0,96", Text("100,%ld,400,%ld,0", work.top, work.bottom), NORMAL},
        {"-290,90,10,290,0,96", "0,90,300,290,0", NORMAL},
        {"5000,-30,19000,9000,0,96", Of(work) + ",0", NORMAL},
        {"100,90,400,290,0,0", "40,50,440,350,0", NORMAL},
    };
    for (const auto &[kept, place, nShow] : rows) {
        CTestSettings::Set("Placement", kept);
        CTestFrame frame;
        frame.ShowKept("Test", nShow);
        EXPECT_EQ(nShow == SW_SHOWMINIMIZED, IsIconic(frame) != 0);
        frame.BringToFront();
        Send(frame, WM_ENDSESSION, FALSE);
        EXPECT_TRUE(IsWindowVisible(frame));
        Send(frame, WM_ENDSESSION, TRUE);
        EXPECT_FALSE(frame.Exist());
        EXPECT_EQ(place + ",96", CTestSettings::Get("Placement"));
    }
    CDumped dumped;
    CTestFrame frame;
    frame.ShowKept("Test");
    const CFakeCall<LONG(HKEY, LPCSTR, DWORD, DWORD, const BYTE *, DWORD)> refuse(
        "RegSetValueExA", [](auto...) { return ERROR_ACCESS_DENIED; });
    frame.Destroy();
    EXPECT_EQ("Unable to keep the place of Test, gle: 5\n", dumped.m_text);
}

TEST_F(FrameWindow, CoversTheScreenAndComesBackAsItWas)
{
    const std::string screen =
        Text("0,0,%d,%d ", GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN));
    for (const char *const kept : {"100,90,400,290,0,96", "100,90,400,290,1,96"}) {
        CTestSettings::Set("Placement", kept);
        CFullFrame frame;
        frame.ShowKept("Test");
        const HMENU hMenu = GetMenu(frame);
        const auto look = [&] {
            PumpWaiting();
            return PlaceOf(frame) + " " + PlaceOf(frame.m_client) +
                   Text(" %d%d%d %lx", GetMenu(frame) == hMenu, IsWindowVisible(frame.m_bars[0]),
                        IsWindowVisible(frame.m_status),
                        GetWindowLongA(frame, GWL_STYLE) & WS_CAPTION);
        };
        const std::string before = look();
        // No look but the last is seen.
        std::set<std::string> seen;
        frame.m_on[WM_NCPAINT] = [&] {
            if (IsWindowVisible(frame))
                seen.insert(PlaceOf(frame) + Text(" %d", GetMenu(frame) == hMenu));
            return 0;
        };
        frame.SetFullScreen(true);
        EXPECT_EQ(screen + screen + "000 0", look());
        EXPECT_EQ(std::set<std::string>{screen + "0"}, seen);
        PressKey(VK_F7, frame.m_client);
        // Escape first closes a list.
        const HWND hCombo = MakePlain("COMBOBOX", frame.m_client, 0, WS_VISIBLE | CBS_DROPDOWN);
        SendMessageA(hCombo, CB_SHOWDROPDOWN, TRUE, 0);
        EXPECT_FALSE(PressKey(VK_ESCAPE, GetWindow(hCombo, GW_CHILD)));
        DestroyWindow(hCombo);
        seen.clear();
        PressKey(VK_ESCAPE, frame.m_client);
        EXPECT_EQ(before + "0 ", look() + command.Done());
        EXPECT_EQ(std::set<std::string>{PlaceOf(frame) + " 1"}, seen);
        // Whoever is told asks for the other one.
        frame.m_onFull = [&] { frame.SetFullScreen(false); };
        frame.SetFullScreen(true);
        EXPECT_EQ(before, look());
        frame.m_onFull = [] {};
        frame.SetFullScreen(true);
        ShowWindow(frame, SW_MINIMIZE);
        SendMessageA(frame, WM_DISPLAYCHANGE, 32, 0);
        EXPECT_TRUE(IsIconic(frame));
        ShowWindow(frame, SW_RESTORE);
        EXPECT_EQ(screen + screen + "000 0", look());
        EXPECT_TRUE(frame.SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700)));
        EXPECT_FALSE(IsMenu(hMenu) || GetMenu(frame) || frame.SetMenu(hMenu));
        const HMENU hLast = frame.GetMenu();
        frame.Destroy();
        EXPECT_EQ(kept, CTestSettings::Get("Placement"));
        EXPECT_FALSE(IsMenu(hLast) || frame.SetMenu(hLast));
    }
}

TEST_F(FrameWindow, ClosesAnOpenMenuBeforeItChanges)
{
    const HINSTANCE hModule = GetModuleHandleA(nullptr);
    const std::function<void(CTestFrame &)> changes[] = {
        [](CTestFrame &frame) { frame.SetFullScreen(true); },
        [&](CTestFrame &frame) { frame.SetMenu(hModule, MAKEINTRESOURCEA(700)); },
        [](CTestFrame &frame) { ShowWindow(frame, SW_MAXIMIZE); }};
    for (const auto &change : changes) {
        CFullFrame frame;
        CCUIMenu menu(hModule, MAKEINTRESOURCEA(700), CUI_MENU_BAR), own;
        frame.SetMenu(menu);
        own.Append(1, "own");
        frame.m_bars[0].SetDropDown(1700, &own);
        frame.BringToFront();
        PumpWaiting();
        const HMENU hMenu = menu.GetHandle();
        const auto popup = [] { return IsWindowVisible(FindWindowA("#32768", nullptr)); };
        frame.m_on[WM_CANCELMODE] = [&] {
            frame.m_on.erase(WM_CANCELMODE);
            frame.m_told += GetMenu(frame) == hMenu && IsMenu(hMenu) && popup() ? "ends " : "late ";
            return DefWindowProcA(frame, WM_CANCELMODE, 0, 0);
        };
        frame.m_on[WM_APP] = [&] {
            frame.m_told += popup() ? "open " : "none ";
            change(frame);
            return !PostMessageA(frame, WM_APP + 1, 0, 0);
        };
        frame.m_on[WM_APP + 1] = [&] { return popup() && (frame.m_told += "left ", EndMenu()); };
        frame.m_on[WM_ENTERIDLE] = [&] {
            frame.m_on.erase(WM_ENTERIDLE);
            return !PostMessageA(frame, WM_APP, 0, 0);
        };
        Send(frame, WM_SYSCOMMAND, SC_KEYMENU, 'f');
        PumpWaiting();
        EXPECT_EQ("open ends ", frame.Told());
        frame.SetFullScreen(false);
        ShowWindow(frame, SW_RESTORE);
        PostMessageA(frame, WM_APP, 0, 0);
        Click(frame.m_bars[0], 37, 8);
        PumpWaiting();
        EXPECT_EQ("open ", frame.Told()) << "the bar's own menu";
        frame.SetFullScreen(false);
        ShowWindow(frame, SW_RESTORE);
        PostMessageA(frame, WM_APP, 0, 0);
        const HWND hOwned = CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                            99, 99, frame, nullptr, nullptr, nullptr);
        TrackPopupMenu(own.GetHandle(), 0, 9, 9, 0, hOwned, nullptr);
        PumpWaiting();
        EXPECT_EQ("open ", frame.Told()) << "that of a window that it owns";
    }
}

TEST_F(FrameWindow, LeadsHelpKeysAndFocusBetweenItsParts)
{
    CFullFrame frame;
    frame.BringToFront();
    frame.m_bars[1].SetSide(CUI_BAR_LEFT);
    EXPECT_EQ(frame.m_bars[1].GetFixedSize(), RectOf(frame.m_client).left);
    // What is lit in a bar has its help in the status bar.
    const auto look = [&] { return WindowPixels(frame.m_status, {0, 0, 200, 18}); };
    const CPixelMap ready = look();
    frame.m_status.ShowHelp("Long help");
    const CPixelMap help = look();
    const HWND order[] = {frame.m_bars[0], frame.m_bars[1], frame.m_button, frame.m_bars[1]};
    for (const HWND hExpected : order) {
        PressKey(VK_F6);
        EXPECT_EQ(hExpected, GetFocus());
        EXPECT_EQ(hExpected == frame.m_button ? ready : help, look());
        HoldKey(hExpected == frame.m_button ? VK_SHIFT : 0);  // and back
    }
    EXPECT_TRUE(PressKey('o', frame.m_bars[0], WM_SYSCHAR));
    EXPECT_EQ("0 ", command.Done());
    // Whoever had the focus has it again after other windows.
    CTestWindow other(nullptr, WS_POPUP | WS_VISIBLE);
    for (const HWND hExpected : {frame.m_button.GetHandle(), frame.m_client.GetHandle()}) {
        SetForegroundWindow(other);
        EXPECT_EQ(other.GetHandle(), GetFocus());
        frame.m_button.Show(hExpected == frame.m_button);
        SetForegroundWindow(frame);
        EXPECT_EQ(hExpected, GetFocus());
    }
    EnableWindow(frame, FALSE);
    PressKey(VK_F7, frame.m_client);
    EXPECT_EQ("", command.Done()) << "a dialog is open";
}

TEST_F(FrameWindow, OpensWhatIsDroppedAndWhatACommandLineNames)
{
    CTestFrame frame;
    // As the shell sends it: where the names begin, a point, two flags, the names.
    const std::string longName = "D:\\" + std::string(400, 'n');
    const std::string drop = "\x14" + std::string(19, 0) + "C:\\one.txt" + '\0' + longName;
    SendMessageA(frame, WM_DROPFILES, 0x1234, 0);
    frame.AcceptFiles(true);
    for (const BOOL bEnabled : {FALSE, TRUE}) {
        frame.AcceptFiles(bEnabled != 0);
        EXPECT_EQ(bEnabled, (GetWindowLongA(frame, GWL_EXSTYLE) & WS_EX_ACCEPTFILES) != 0);
        EXPECT_EQ("", frame.m_told) << "a dialog is open";
        EnableWindow(frame, bEnabled);
        void *const pDrop = GlobalAlloc(GPTR, drop.size() + 2);
        memcpy(pDrop, drop.data(), drop.size());
        Send(frame, WM_DROPFILES, WPARAM(pDrop));
        frame.OnCommandLine(
            "\"C:\\my programs\\p.exe\"  \"a b.txt\" /x -y C:\\d\\..\\e.txt\t"
            "\\\\s\\t\\f \"\" q\"r s\".txt",
            "C:\\in");
    }
    EXPECT_EQ(
        "C:\\one.txt|" + longName + "|C:\\in\\a b.txt|C:\\e.txt|\\\\s\\t\\f|C:\\in\\qr s.txt|",
        frame.m_told);
    EXPECT_TRUE(IsWindowVisible(frame)) << "in front";
}

TEST_F(FrameWindow, PassesOnWhatIsSaidOfPalettes)
{
    const CCUIOwned<HPALETTE> palette(CreateHalftonePalette(nullptr));
    CTestFrame frame;
    CCUIControl plain, picture;
    const RECT rc = {0, 0, 20, 20};
    plain.CreateControl(frame, 1, "", &rc);
    picture.CreateControl(frame, 2, "", &rc);
    picture.SetPalette(palette);
    frame.BringToFront();
    PumpWaiting();
    std::string realized;
    const CFakeCall<HPALETTE(HDC, HPALETTE, BOOL)> select(
        "SelectPalette", [&](HDC hDC, HPALETTE hPalette, BOOL bBehind) {
            realized += bBehind && hPalette == palette ? "behind " : "";
            return select.Original(hDC, hPalette, bBehind);
        });
    const CFakeCall<UINT(HDC)> realize("RealizePalette", [&](HDC hDC) {
        const bool bIts = GetCurrentObject(hDC, OBJ_PAL) == palette;
        realized += !bIts ? "?" : WindowFromDC(hDC) == picture.GetHandle() ? "window " : "memory ";
        return 3;
    });
    const CFakeCall<int(HDC, int)> caps("GetDeviceCaps", [&](HDC hDC, int nIndex) {
        return nIndex == RASTERCAPS ? RC_PALETTE : caps.Original(hDC, nIndex);
    });
    const auto send = [&](UINT message, HWND hChanged) {
        realized += Text("%ld ", Send(frame, message, WPARAM(hChanged)));
        UpdateWindow(picture);
    };
    send(WM_QUERYNEWPALETTE, nullptr);
    send(WM_PALETTECHANGED, picture);
    send(WM_PALETTECHANGED, frame);
    EXPECT_EQ("window 1 window memory 0 behind window 0 window memory ", realized) << "and painted";
}

TEST_F(FrameWindow, LeavesNothingBehind)
{
    const auto make = [&] {
        CFullFrame frame;
        frame.ShowKept("Test");
        PumpWaiting();
        SendMessageA(frame.m_bars[0], WM_MOUSEMOVE, 0, MAKELPARAM(12, 8));
        frame.SetFullScreen(true);
    };
    const CHeapWatch heap;
    make();
    const auto count = [] { return Text("%d %d", WindowCount(), CHeapWatch::Live()); };
    const std::string before = count();
    ExpectNoGdiLeft(Times(30), make);
    EXPECT_EQ(before, count());
}
