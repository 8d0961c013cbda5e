// What a notification icon tells the shell, and what it makes of what the shell tells.
#include "CUI/NotifyIcon.h"

#include "../../CUI/Src/Frame/ShellNotify.h"
#include "CU/CU.h"
#include "CUI/Menu.h"
#include "Support/MenuItems.h"
#include "Support/TestCommand.h"

namespace {

// A shell that writes down what it is asked for: to add, modify or delete, with how long a record,
// and what it is told.
struct CShell
{
    explicit CShell(bool bBalloons) { CUIShellNotify() = {Notify, bBalloons}; }
    static BOOL WINAPI Notify(DWORD nMessage, NOTIFYICONDATAA *pData)
    {
        s_asked +=
            Text("%c%lu %u %.1s%u%s; ", "amd"[nMessage], pData -> cbSize, pData -> uFlags,
                 pData -> szTip, strlen(pData->szTip), pData -> cbSize > 88 ? pData -> szInfo : "");
        s_hWnd = pData->hWnd;
        return !s_bRefuses;
    }
    static void Tell(int message) { SendMessageA(s_hWnd, WM_USER + 1, 1, LPARAM(message)); }

    inline static std::string s_asked;
    inline static bool s_bRefuses;
    inline static HWND s_hWnd;
};

struct CIcon : CCUINotifyIcon
{
    void OnIconClick() override { m_told += "click "; }
    void OnBalloonClick() override { m_told += "balloon "; }
    std::string m_told;
};

const HICON ICON = LoadIconA(nullptr, MAKEINTRESOURCEA(32512));

}  // namespace

TEST(NotifyIcon, TellsTheShellWhatEachVersionTakesAndOwnsTheIconsItLoads)
{
    int nLoaded = 0;
    std::string destroyed;
    const CFakeCall<HANDLE(HINSTANCE, const char *, UINT, int, int, UINT)> load(
        "LoadImageA", [&](auto...) { return reinterpret_cast<HANDLE>(++nLoaded); });
    const CFakeCall<BOOL(HICON)> destroy(
        "DestroyIcon", [&](HICON h) { return destroyed += Text("%d ", int(h)), TRUE; });
    for (const bool bBalloons : {false, true}) {
        CShell shell(bBalloons);
        {
            CIcon icon;
            EXPECT_FALSE(icon.SetTip("none") || icon.Add(HICON(nullptr), "none"));
            // It is there with the shell, also where that refuses it at first.
            shell.s_bRefuses = true;
            EXPECT_FALSE(icon.Add(nullptr, "name", std::string(200, 'x').c_str()));
            shell.s_bRefuses = false;
            shell.s_asked.clear();
            Send(shell.s_hWnd, CURegisterMessageId("TaskbarCreated"));
            EXPECT_EQ(bBalloons, icon.ShowBalloon("title", "text") != 0);
            icon.SetIcon(nullptr, L"other");
            icon.SetIcon(ICON);
            icon.Add(nullptr, "third", "tip");
        }
        EXPECT_EQ(bBalloons ? "a488 7 x127; m488 16 0text; m488 2 x127; m488 2 x127; m488 2 x127; "
                              "m488 4 t3; d488 0 t3; "
                            : "a88 7 x63; m88 2 x63; m88 2 x63; m88 2 x63; m88 4 t3; d88 0 t3; ",
                  shell.s_asked);
    }
    EXPECT_EQ("1 2 3 4 5 6 ", destroyed);
}

TEST(NotifyIcon, BringsClicksAndCommandsToTheTarget)
{
    CShell shell(true);
    CTestCommand command(1000);
    CCUIMenu menu;
    menu.Append(1000, "item");
    auto icon = std::make_unique<CIcon>();
    icon->SetContextMenu(&menu);
    icon->SetDefaultCommand(1000);
    icon->Add(ICON, "tip");
    for (const int message :
         {WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP, WM_USER + 5, WM_LBUTTONUP})
        shell.Tell(message);
    EXPECT_EQ("click balloon click 0 ", icon->m_told + command.Done());
    // The menu's window is in front while it is open, and gets a message afterwards.
    HWND hFront = nullptr;
    CTestWindow target;
    target.m_on[WM_COMMAND] = [&] { return icon.reset(), 0; };
    const CFakeCall<BOOL(HWND)> front("SetForegroundWindow",
                                      [&](HWND hWnd) { return hFront = hWnd, TRUE; });
    const CFakePopup track("TrackPopupMenuEx", [&](HMENU, UINT, int, int, HWND hOwner, auto) {
        EXPECT_EQ(hOwner, hFront);
        shell.Tell(WM_RBUTTONUP);  // once at a time
        return 1000;
    });
    shell.Tell(WM_RBUTTONUP);
    EXPECT_EQ("0 ", command.Done());
    MSG msg;
    EXPECT_TRUE(PeekMessageA(&msg, *icon, WM_NULL, WM_NULL, PM_REMOVE));
    // A dialog of the target comes first; a command may end the icon.
    icon->SetCommandTarget(target);
    for (const BOOL bEnabled : {FALSE, TRUE}) {
        EnableWindow(target, bEnabled);
        shell.Tell(WM_RBUTTONUP);
        EXPECT_EQ(bEnabled, icon == nullptr);
        EXPECT_TRUE(bEnabled || hFront == target);
    }
}
