// A frame, its children and what the user and the system do to it.
#include <set>

#include "Base/GdiGuards.h"
#include "CUI/Button.h"
#include "CUI/Choosers.h"
#include "CUI/CommandMap.h"
#include "CUI/ControlBar.h"
#include "CUI/LayoutWindow.h"
#include "CUI/MessageBox.h"
#include "CUI/NotifyIcon.h"
#include "CUI/Printer.h"
#include "CUI/StatusBar.h"
#include "CUI/TreeView.h"
#include "FrameFixture.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TestCommand.h"
#include "Support/TestControl.h"

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

}  // namespace

// First, before the libraries are there.
TEST(FrameWindow, DoesWithoutLibrariesAndFunctionsThatOldSystemsLack)
{
    CDumped dumped;
    const CFakeCall<HMODULE(LPCSTR, HANDLE, DWORD)> load(
        "LoadLibraryExA", [](auto...) { return SetLastError(ERROR_MOD_NOT_FOUND), HMODULE(); });
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> find(
        "GetProcAddress", [](auto...) { return SetLastError(ERROR_PROC_NOT_FOUND), FARPROC(); });
    // Wine 8 would load the library for its classes.
    using Create =
        HWND(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE, void *);
    const CFakeCall<Create> create("CreateWindowExA", [&](DWORD nStyle, LPCSTR name, auto... more) {
        const bool bThere = HIWORD(name) == 0 || !strstr(name, "32");
        return bThere ? create.Original(nStyle, name, more...) : nullptr;
    });
    const CTestSettings settings;
    CTestCommand command(1700);
    CFullFrame frame;
    const auto traces = [&](const char *text, auto act) {
        dumped.m_text.clear();
        act();
        EXPECT_NE(std::string::npos, dumped.m_text.find(text)) << text << ": " << dumped.m_text;
    };
    CCUITreeView tree;
    CCUINotifyIcon icon;
    CCUIPrinter printer;
    CCUString sPath;
    COLORREF cr = 0;
    LOGFONTA font = {};
    frame.ShowKept("Test");
    traces("No tooltips", [&] { Send(frame.m_bars[0], WM_MOUSEMOVE, 0, MAKELPARAM(12, 8)); });
    traces("SysTreeView32", [&] { EXPECT_FALSE(tree.CreateControl(frame.m_client, 9)); });
    traces("icon", [&] { EXPECT_FALSE(icon.Add(LoadIconA(nullptr, IDI_APPLICATION), "tip")); });
    traces("GetOpenFileNameA", [&] { EXPECT_FALSE(CUIChooseOpenFile(&frame, sPath)); });
    traces("SHBrowse", [&] { EXPECT_FALSE(CUIChooseFolder(&frame, sPath)); });
    traces("ChooseColorA", [&] { EXPECT_FALSE(CUIChooseColor(&frame, cr)); });
    traces("ChooseFontA", [&] { EXPECT_FALSE(CUIChooseFont(&frame, font)); });
    traces("PrintDlgA", [&] { EXPECT_FALSE(printer.Choose(&frame)); });
    traces("dropped", [&] { Send(frame, WM_DROPFILES, WPARAM(GlobalAlloc(GHND, 40))); });
    frame.m_on[WM_APP] = [&] { return Send(GetLastActivePopup(frame), WM_CLOSE); };
    PostMessageA(frame, WM_APP, 0, 0);
    EXPECT_EQ(IDOK, CUIMessageBox(&frame, "text"));
    for (const bool bFull : {true, false}) {
        frame.SetFullScreen(bFull);
        PumpWaiting();
    }
    Click(frame.m_bars[1], 12, 8);
    Click(frame.m_button);
    EXPECT_EQ("0 0 ", command.Done());
}

TEST(FrameWindow, HasCommandsAsTheyStandWhenItIsShown)
{
    CTestCommand command(1700);
    auto pFrame = std::make_unique<CFullFrame>();
    for (const int nShow : {SW_SHOWMAXIMIZED, SW_SHOWNORMAL, SW_SHOWNA}) {
        command.m_nState = command.m_nState ? 0 : CUI_COMMAND_ACTIVE;
        ShowWindow(*pFrame, nShow);
        EXPECT_EQ(command.m_nState != 0, IsWindowEnabled(pFrame->m_button) != 0) << nShow;
        ShowWindow(*pFrame, SW_HIDE);
    }
    // Handlers that show it themselves, and that delete it.
    int nUpdates = 0;
    command.m_onUpdate = [&] { ++nUpdates, pFrame->Show(true); };
    pFrame->Show(true);
    EXPECT_EQ(1, nUpdates);
    pFrame->Show(false);
    command.m_onUpdate = [&] { pFrame.reset(); };
    pFrame->Show(true);
    EXPECT_EQ(nullptr, pFrame);
}

TEST(FrameWindow, PutsBarsAroundItsClient)
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

TEST(FrameWindow, SurvivesWhateverGoesMeanwhile)
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
        frame = std::make_unique<CTestFrame>();
        frame->m_onQuery = [&] { return frame.reset(), true; };
        SendMessageA(*frame, message, 0, 0);
    }
    EXPECT_EQ(0, reports.Total());
}

TEST(FrameWindow, NamesItsDocumentClosesWhenAskedAndEndsTheProgramAsTheMainFrame)
{
    CTestFrame main, other;
    main.SetDocument("C:\\a.b\\Letter.txt");
    main.SetModified(true);
    EXPECT_EQ("Letter.txt* - Program", TextOf(main));
    EnableWindow(other, FALSE);
    SendMessageA(other, WM_CLOSE, 0, 0);
    EXPECT_EQ("", other.m_told) << "disabled";
    EXPECT_TRUE(IsWindowVisible(other)) << "and in front";
    EnableWindow(other, TRUE);
    other.m_onQuery = [&] { return SendMessageA(other, WM_QUERYENDSESSION, 0, 0) != 0; };
    SendMessageA(other, WM_CLOSE, 0, 0);
    EXPECT_EQ("close?", other.m_told) << "not while it is asked";
    EXPECT_TRUE(other.Exist());
    other.m_onQuery = main.m_onQuery;
    SendMessageA(other, WM_CLOSE, 0, 0);
    EXPECT_FALSE(other.Exist() || CTestFrame::TakeQuit());
    SendMessageA(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(CTestFrame::TakeQuit());
    CScripted<CCUIFrameWindow> later;
    later.m_on[WM_CREATE] = [] { return -1; };
    EXPECT_FALSE(later.CreateFrame("x") || CTestFrame::TakeQuit());
    // As a program does that begins with a new text.
    later.m_on[WM_CREATE] = [&] { return later.SetDocument(""), 0; };
    later.CreateFrame("Editor");
    EXPECT_EQ("Editor", TextOf(later));
}

TEST(FrameWindow, KeepsItsPlaceAndFindsAScreenForIt)
{
    const CTestSettings settings;
    RECT work;
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    const struct
    {
        const char *kept;
        std::string place;
        bool bMaximized;
        int nShow;
    } rows[] = {
        {"100,90,400,290,1,96", "100,90,400,290", true, SW_SHOWMINIMIZED},
        {"100,90,400,290,0,96", "100,90,400,290", true, SW_SHOWMAXIMIZED},
        {"100,90,400,290,1,96", "100,90,400,290", true, SW_SHOWDEFAULT},
        {"100,90,250,190,0,48", "100,90,400,290", false, SW_SHOWNORMAL},
        {"-200,90,100,290,0,96", "-200,90,100,290", false, SW_SHOWNORMAL},
        {"724,90,924,290,0,48", Text("%ld,90,%ld,490", work.right - 400, work.right), false,
         SW_SHOWNORMAL},
        {"100,90,400,9000,0,96", Text("100,%ld,400,%ld", work.top, work.bottom), false,
         SW_SHOWNORMAL},
        {"-290,90,10,290,0,96", "0,90,300,290", false, SW_SHOWNORMAL},
        {"5000,-30,19000,9000,0,96", Of(work), false, SW_SHOWNORMAL},
        {"100,90,90,290,0,96", "40,50,440,350", false, SW_SHOWNORMAL},
        {"100,90,400,290,0,0", "40,50,440,350", false, SW_SHOWNORMAL},
    };
    for (const auto &row : rows) {
        CTestSettings::Set("Placement", row.kept);
        CTestFrame frame;
        frame.ShowKept("Test", row.nShow);
        EXPECT_EQ(row.nShow == SW_SHOWMINIMIZED, IsIconic(frame) != 0);
        frame.BringToFront();
        EXPECT_TRUE(IsWindowVisible(frame) && row.bMaximized == (IsZoomed(frame) != 0));
        SendMessageA(frame, WM_ENDSESSION, FALSE, 0);
        EXPECT_TRUE(frame.Exist());
        SendMessageA(frame, WM_ENDSESSION, TRUE, 0);
        EXPECT_FALSE(frame.Exist());
        EXPECT_EQ(row.place + Text(",%d,96", row.bMaximized), CTestSettings::Get("Placement"));
    }
}

TEST(FrameWindow, CoversTheScreenAndComesBackAsItWas)
{
    const CTestSettings settings;
    CTestCommand command(1700);
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
        EXPECT_EQ(before + "full|back|0 ", look() + frame.m_told + command.Done());
        EXPECT_EQ(std::set<std::string>{PlaceOf(frame) + " 1"}, seen);
        frame.m_on.clear();
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
        EXPECT_EQ(hMenu, frame.GetMenu());
        EXPECT_TRUE(frame.SetMenu(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(700)));
        EXPECT_FALSE(IsMenu(hMenu) || GetMenu(frame));
        const HMENU hLast = frame.GetMenu();
        frame.Destroy();
        EXPECT_EQ(kept, CTestSettings::Get("Placement"));
        EXPECT_FALSE(IsMenu(hLast) || frame.SetMenu(hLast));
    }
}

TEST(FrameWindow, LeadsHelpKeysAndFocusBetweenItsParts)
{
    CTestCommand command(1700);
    CFullFrame frame;
    frame.BringToFront();
    frame.m_bars[1].SetSide(CUI_BAR_LEFT);
    const RECT rc = RectOf(frame.m_status);
    EXPECT_EQ(
        Of({frame.m_bars[1].GetFixedSize(), frame.m_bars[0].GetFixedSize(), rc.right, rc.top}),
        PlaceOf(frame.m_client));
    // What is lit in a menu or a bar has its help in the status bar.
    const auto look = [&] { return WindowPixels(frame.m_status, {0, 0, 200, 18}); };
    const CPixelMap ready = look();
    frame.m_status.ShowHelp("Long help");
    const CPixelMap help = look();
    const auto select = [&](int nItem, int nFlags) {
        SendMessageA(frame, WM_MENUSELECT, MAKEWPARAM(nItem, nFlags), nFlags != 0xFFFF);
        return look();
    };
    EXPECT_EQ(help, select(1700, 0));
    EXPECT_EQ(ready, select(0, 0xFFFF));
    EXPECT_FALSE(help == select(1700, MF_POPUP));
    const HWND order[] = {frame.m_bars[0], frame.m_bars[1], frame.m_button};
    for (const HWND hExpected : order) {
        PressKey(VK_F6);
        EXPECT_EQ(hExpected, GetFocus());
        EXPECT_EQ(hExpected == frame.m_button ? ready : help, look());
    }
    BYTE keys[256] = {};
    keys[VK_SHIFT] = 0x80;
    SetKeyboardState(keys);
    PressKey(VK_F6);
    keys[VK_SHIFT] = 0;
    SetKeyboardState(keys);
    EXPECT_EQ(frame.m_bars[1].GetHandle(), GetFocus());
    CCUICommandMap::IdleUpdate();
    EXPECT_TRUE(PressKey('o', frame.m_bars[0], WM_SYSCHAR));
    EXPECT_EQ("0 ", command.Done());
    // Whoever had the focus has it again after other windows.
    CTestWindow other(nullptr, WS_POPUP | WS_VISIBLE);
    const HWND focused[] = {frame.m_button, frame.m_client};
    for (const HWND hExpected : focused) {
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

TEST(FrameWindow, OpensWhatIsDroppedAndWhatACommandLineNames)
{
    CTestFrame frame;
    // As the shell sends it: where the names begin, a point, two flags, the names.
    const std::string longName = "D:\\" + std::string(400, 'n');
    const std::string drop = "\x14" + std::string(19, 0) + "C:\\one.txt" + '\0' + longName;
    SendMessageA(frame, WM_DROPFILES, 0x1234, 0);
    const LONG nPlain = GetWindowLongA(frame, GWL_EXSTYLE);
    for (const bool bAccept : {true, false}) {
        frame.AcceptFiles(bAccept);
        EXPECT_EQ(nPlain | (bAccept ? WS_EX_ACCEPTFILES : 0), GetWindowLongA(frame, GWL_EXSTYLE));
    }
    for (const BOOL bEnabled : {FALSE, TRUE}) {
        EXPECT_EQ("", frame.m_told) << "a dialog is open";
        EnableWindow(frame, bEnabled);
        const HGLOBAL hDrop = GlobalAlloc(GHND, drop.size() + 2);
        memcpy(GlobalLock(hDrop), drop.data(), drop.size());
        GlobalUnlock(hDrop);
        SendMessageA(frame, WM_DROPFILES, reinterpret_cast<WPARAM>(hDrop), 0);
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

TEST(FrameWindow, PassesOnWhatIsSaidOfPalettes)
{
    const CCUIOwned<HPALETTE> palette(CreateHalftonePalette(nullptr));
    CTestFrame frame;
    CCUIControl plain, picture;
    const RECT rc = {0, 0, 20, 20};
    plain.CreateControl(frame, 1, "", &rc);
    picture.CreateControl(frame, 2, "", &rc);
    picture.SetPalette(palette);
    frame.BringToFront();
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
        realized.clear();
        const LRESULT answer = SendMessageA(frame, message, reinterpret_cast<WPARAM>(hChanged), 0);
        UpdateWindow(picture);
        return std::to_string(answer) + " " + realized;
    };
    PumpWaiting();
    EXPECT_EQ("1 window window memory ", send(WM_QUERYNEWPALETTE, nullptr)) << "and painted";
    EXPECT_EQ("0 ", send(WM_PALETTECHANGED, picture));
    EXPECT_EQ("0 behind window window memory ", send(WM_PALETTECHANGED, frame));
}

TEST(FrameWindow, LeavesNothingBehind)
{
    const CTestSettings settings;
    CTestCommand command(1700);
    const auto make = [&] {
        CFullFrame frame;
        frame.ShowKept("Test");
        PumpWaiting();
        SendMessageA(frame.m_bars[0], WM_MOUSEMOVE, 0, MAKELPARAM(12, 8));
        frame.SetFullScreen(true);
    };
    make();
    const CHeapWatch heap;
    make();
    const auto count = [] { return Text("%d %d", WindowCount(), CHeapWatch::Live()); };
    const std::string before = count();
    const char *const pszTimes = getenv("TEST_FRAMES");
    ExpectNoGdiLeft(pszTimes ? atoi(pszTimes) : 30, make);
    EXPECT_EQ(before, count());
}
