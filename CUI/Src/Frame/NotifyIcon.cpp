#include "CUI/NotifyIcon.h"

#include "Base/SystemLibrary.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "CUI/CommandMap.h"
#include "CUI/Menu.h"
#include "Frame/ShellNotify.h"

namespace {

// What the shell sends, with a message of the mouse as lParam.
const UINT SHELL_MESSAGE = WM_USER + 1;
const UINT ICON_ID = 1;
// A click on a balloon, in the place of a mouse message (NIN_BALLOONUSERCLICK).
const UINT BALLOON_CLICK = WM_USER + 5;
const UINT BALLOON_MILLISECONDS = 10000;

// The records that shells before 5.0, and those from then on, take.
const DWORD FIRST_SIZE = 88;
const DWORD BALLOON_SIZE = FIELD_OFFSET(NOTIFYICONDATAA, guidItem);
const int FIRST_TIP = 64;

template <size_t N>
void Copy(char (&szTo)[N], const char *pszFrom, int nRoom = N)
{
    lstrcpynA(szTo, pszFrom ? pszFrom : "", nRoom);
}

NOTIFYICONDATAA Record(HWND hWnd, UINT nFlags)
{
    NOTIFYICONDATAA data = {};
    data.cbSize = CUIShellNotify().bBalloons ? BALLOON_SIZE : FIRST_SIZE;
    data.hWnd = hWnd;
    data.uID = ICON_ID;
    data.uFlags = nFlags;
    return data;
}

int Send(DWORD nMessage, NOTIFYICONDATAA &data)
{
    if (CUIShellNotify().notify(nMessage, &data))
        return 1;
    CUDump("Notification icon refused, message %lu, gle: %lu\n", nMessage, GetLastError());
    return 0;
}

// The shell's word to all top-level windows that it has started.
UINT ShellStarted()
{
    static UINT s_nStarted;
    if (!s_nStarted)
        s_nStarted = CURegisterMessageId("TaskbarCreated");
    return s_nStarted;
}

// From Windows Vista on a program with an administrator's rights hears of it only if it says so.
void AllowShellStarted()
{
    typedef BOOL WINAPI ChangeFilter(UINT, DWORD);
    const auto allow = CUFindFunction<ChangeFilter>("user32.dll", "ChangeWindowMessageFilter");
    const DWORD nAdd = 1;
    if (allow)
        allow(ShellStarted(), nAdd);
}

HICON LoadSmall(HINSTANCE hInstance, const char *name)
{
    const HANDLE hIcon = LoadImageA(hInstance, name, IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                                    GetSystemMetrics(SM_CYSMICON), LR_DEFAULTCOLOR);
    if (!hIcon)
        CUDump("Unable to load a notification icon, gle: %lu\n", GetLastError());
    return static_cast<HICON>(hIcon);
}

}  // namespace

CCUINotifyIcon::CCUINotifyIcon()
    : m_hIcon(nullptr),
      m_bOwned(false),
      m_bAdded(false),
      m_bDoubleClick(false),
      m_bInMenu(false),
      m_hTarget(nullptr),
      m_nDefault(0)
{
    // Popups of the menu are refreshed.
    RouteCommands(true);
}

CCUINotifyIcon::~CCUINotifyIcon()
{
    Remove();
}

// --- The icon ---

int CCUINotifyIcon::Tell(DWORD nMessage, UINT nFlags)
{
    NOTIFYICONDATAA data = Record(m_hWnd, nFlags);
    data.uCallbackMessage = SHELL_MESSAGE;
    data.hIcon = m_hIcon;
    Copy(data.szTip, m_sTip, CUIShellNotify().bBalloons ? sizeof data.szTip : FIRST_TIP);
    return Send(nMessage, data);
}

// A shell that is busy may answer no although it has the icon then.
int CCUINotifyIcon::Show()
{
    const UINT nAll = NIF_MESSAGE | NIF_ICON | NIF_TIP;
    return Tell(NIM_ADD, nAll) || Tell(NIM_MODIFY, nAll);
}

// The old one goes when the shell shows the new one.
int CCUINotifyIcon::ReplaceIcon(HICON hIcon, bool bOwned)
{
    const HICON hOld = m_bOwned && m_hIcon != hIcon ? m_hIcon : nullptr;
    m_hIcon = hIcon;
    m_bOwned = bOwned;
    const int nResult = m_bAdded ? Tell(NIM_MODIFY, NIF_ICON) : 0;
    if (hOld)
        DestroyIcon(hOld);
    return nResult;
}

int CCUINotifyIcon::AddIcon(HICON hIcon, bool bOwned, const char *pszTip)
{
    if (!hIcon)
        return 0;
    const int bIcon = ReplaceIcon(hIcon, bOwned);
    if (m_bAdded)
        return SetTip(pszTip) && bIcon;
    const RECT rcNone = {0, 0, 0, 0};
    if (!m_hWnd && !Create(nullptr, "", WS_POPUP, rcNone, nullptr, 0))
        return 0;
    AllowShellStarted();
    m_sTip = pszTip;
    m_bAdded = true;
    return Show();
}

int CCUINotifyIcon::Add(HICON hIcon, const char *pszTip)
{
    return AddIcon(hIcon, false, pszTip);
}

int CCUINotifyIcon::Add(HINSTANCE hInstance, const char *name, const char *pszTip)
{
    return AddIcon(LoadSmall(hInstance, name), true, pszTip);
}

int CCUINotifyIcon::SetIcon(HICON hIcon)
{
    return hIcon && m_bAdded ? ReplaceIcon(hIcon, false) : 0;
}

int CCUINotifyIcon::SetIcon(HINSTANCE hInstance, const char *name)
{
    const HICON hIcon = m_bAdded ? LoadSmall(hInstance, name) : nullptr;
    return hIcon ? ReplaceIcon(hIcon, true) : 0;
}

int CCUINotifyIcon::SetTip(const char *pszTip)
{
    if (!m_bAdded)
        return 0;
    m_sTip = pszTip;
    return Tell(NIM_MODIFY, NIF_TIP);
}

int CCUINotifyIcon::ShowBalloon(const char *pszTitle, const char *pszText, CUIBalloonIcon icon)
{
    if (!m_bAdded || !CUIShellNotify().bBalloons)
        return 0;
    const UINT nInfo = 0x10;  // NIF_INFO
    NOTIFYICONDATAA data = Record(m_hWnd, nInfo);
    Copy(data.szInfo, pszText);
    Copy(data.szInfoTitle, pszTitle);
    data.uTimeout = BALLOON_MILLISECONDS;
    data.dwInfoFlags = static_cast<DWORD>(icon);
    return Send(NIM_MODIFY, data);
}

void CCUINotifyIcon::Remove()
{
    if (m_bAdded) {
        m_bAdded = false;
        Tell(NIM_DELETE, 0);
    }
    if (m_bOwned)
        DestroyIcon(m_hIcon);
    m_hIcon = nullptr;
    m_bOwned = false;
    m_bDoubleClick = false;
    if (m_hWnd)
        Destroy();
}

// Somebody else's doing: the icon would stay without a window.
void CCUINotifyIcon::OnDestroy()
{
    if (m_bAdded) {
        m_bAdded = false;
        Tell(NIM_DELETE, 0);
    }
    CCUIWindow::OnDestroy();
}

// --- What the shell tells ---

long CCUINotifyIcon::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == SHELL_MESSAGE) {
        OnShellMessage(static_cast<UINT>(lParam));
        return 0;
    }
    if (m_bAdded && message == ShellStarted()) {
        Show();
        return 0;
    }
    return CCUIWindow::OnMessage(message, wParam, lParam);
}

void CCUINotifyIcon::OnShellMessage(UINT message)
{
    // The button goes up once more after a double click.
    const bool bClick = message == WM_LBUTTONUP && !m_bDoubleClick;
    const bool bDoubleClick = message == WM_LBUTTONDBLCLK;
    const bool bMenu = message == WM_RBUTTONUP || message == WM_CONTEXTMENU;
    if (message == WM_LBUTTONUP)
        m_bDoubleClick = false;
    if (message == BALLOON_CLICK) {
        OnBalloonClick();
        return;
    }
    if ((!bClick && !bDoubleClick && !bMenu) || WaitsForDialog())
        return;
    if (bClick) {
        OnIconClick();
    } else if (bDoubleClick) {
        m_bDoubleClick = true;
        OnIconDoubleClick();
    } else {
        POINT point = {0, 0};
        GetCursorPos(&point);
        OnIconMenu(point);
    }
}

// Whether a modal dialog must end first; then it comes to the front.
bool CCUINotifyIcon::WaitsForDialog()
{
    if (!m_hTarget || !IsWindow(m_hTarget) || IsWindowEnabled(m_hTarget))
        return false;
    SetForegroundWindow(GetLastActivePopup(m_hTarget));
    return true;
}

void CCUINotifyIcon::SendCommand(unsigned int nID)
{
    if (m_hTarget)
        SendMessageA(m_hTarget, WM_COMMAND, MAKEWPARAM(nID, 0), 0);
    else
        CCUICommandMap::Execute(nID);
}

void CCUINotifyIcon::OnIconClick() {}

void CCUINotifyIcon::OnIconDoubleClick()
{
    if (m_nDefault)
        SendCommand(m_nDefault);
}

void CCUINotifyIcon::OnBalloonClick() {}

void CCUINotifyIcon::OnIconMenu(POINT &point)
{
    if (!GetContextMenu() || m_bInMenu)
        return;
    CWatch watch(this);
    m_bInMenu = true;
    // A menu closes on a click elsewhere if its window is in front; and it does so the second time,
    // too, if a message follows it. All systems are that way.
    SetForegroundWindow(m_hWnd);
    const int nCommand =
        DisplayPopupMenu(GetContextMenu(), TPM_RETURNCMD | TPM_RIGHTBUTTON, point, nullptr);
    if (watch.IsGone())
        return;
    m_bInMenu = false;
    if (m_hWnd)
        PostMessageA(m_hWnd, WM_NULL, 0, 0);
    if (nCommand)
        SendCommand(static_cast<unsigned int>(nCommand));
}
