// The frame: its life, what is inside and where, menu and keys, title, focus, its end.

#include "CUI/FrameWindow.h"

#include "Base/Array.h"
#include "Base/GdiGuards.h"
#include "Base/SystemLibrary.h"
#include "CU/Assert.h"
#include "CUI/Accelerators.h"
#include "CUI/CommandMap.h"
#include "CUI/Control.h"
#include "CUI/ControlBar.h"
#include "CUI/RecentFiles.h"
#include "CUI/WindowClass.h"
#include "Command/CommandText.h"
#include "Frame/FrameDocks.h"
#include "Frame/Paths.h"
#include "Menu/MenuClosing.h"
#include "Menu/MenuHooks.h"
#include "Window/Input.h"

#define CU_SOURCE "FrameWindow"

namespace {

// A child that changes its size whenever it is laid out would have the frame lay out for ever.
const int MOST_PASSES = 4;

CCUIFrameWindow *s_pMainFrame;

// Whether the screen has a palette. The messages of palettes come on all others as well.
bool HasPalette()
{
    const CCUIWindowDC screen(nullptr);
    return (GetDeviceCaps(screen, RASTERCAPS) & RC_PALETTE) != 0;
}

// The first window inside that has a palette gets the one in front.
BOOL CALLBACK OfferPaletteTo(HWND hWnd, LPARAM lParam)
{
    auto &bTaken = *reinterpret_cast<bool *>(lParam);
    bTaken = SendMessageA(hWnd, WM_QUERYNEWPALETTE, 0, 0) != 0;
    return !bTaken;
}

bool OfferPalette(HWND hFrame)
{
    bool bTaken = false;
    if (HasPalette())
        EnumChildWindows(hFrame, OfferPaletteTo, reinterpret_cast<LPARAM>(&bTaken));
    return bTaken;
}

bool CanFocus(HWND hFrame, HWND hWnd)
{
    return hWnd && IsChild(hFrame, hWnd) && IsWindowVisible(hWnd) && IsWindowEnabled(hWnd);
}

void DestroyBar(HMENU hMenu)
{
    if (!hMenu)
        return;
    CUIMenuGoes(hMenu);
    DestroyMenu(hMenu);
}

// GUITHREADINFO, and who fills it: Windows 98 and NT 4 with a service pack.
struct CThreadInfo
{
    DWORD cbSize, dwFlags;
    HWND hActive, hFocus, hCapture, hMenuOwner, hMoved, hCaret;
    RECT rcCaret;
};
typedef BOOL WINAPI GetThreadInfoCall(DWORD, CThreadInfo *);

// The window whose menu the user has open, of a popup in Wine 8 that itself; null: none, or it is
// not known.
HWND MenuOwner()
{
    static GetThreadInfoCall *s_getInfo;
    if (!s_getInfo)
        s_getInfo = CUFindFunction<GetThreadInfoCall>("user32.dll", "GetGUIThreadInfo");
    CThreadInfo info = {};
    info.cbSize = sizeof info;
    return s_getInfo && s_getInfo(GetCurrentThreadId(), &info) ? info.hMenuOwner : nullptr;
}

// Whether the window is a combo box, or the field of one, whose list is open: Escape closes it. No
// other window knows the message.
bool HasOpenList(HWND hWnd)
{
    return SendMessageA(hWnd, CB_GETDROPPEDSTATE, 0, 0) ||
           SendMessageA(GetParent(hWnd), CB_GETDROPPEDSTATE, 0, 0);
}

}  // namespace

CCUIFrameWindow::CCUIFrameWindow()
    : m_pDocks(new CCUIFrameDocks),
      m_pRecentFiles(nullptr),
      m_before(),
      m_nStyleBefore(0),
      m_hMenuBefore(nullptr),
      m_hFocus(nullptr),
      m_bModified(false),
      m_bFullScreen(false),
      m_bCovering(false),
      m_bSwitching(false),
      m_bAsking(false),
      m_bLayingOut(false),
      m_bLayOutAgain(false),
      m_bRefreshing(false)
{
    RouteCommands(true);
}

// The base destroys the window, if there still is one, without this class's hearing of it.
CCUIFrameWindow::~CCUIFrameWindow()
{
    End();
    if (m_pRecentFiles)
        m_pRecentFiles->m_pFrame = nullptr;
    delete m_pDocks;
}

// --- Beginning and end ---

int CCUIFrameWindow::CreateFrame(const char *pszProgram)
{
    return CreateEx(0, nullptr, pszProgram, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                    CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr);
}

int CCUIFrameWindow::PreCreate(CREATESTRUCTA *pCreate)
{
    if (!pCreate->lpszClass) {
        CU_ASSERT_TEXT(CUIWindowClassRegister(CUI_CLASS_FRAMEWINDOW),
                       "CUIWindowClassRegister(CUI_CLASS_FRAMEWINDOW)");
        pCreate->lpszClass = CUIWindowClassName(CUI_CLASS_FRAMEWINDOW);
    }
    pCreate->style |= WS_CLIPCHILDREN;
    // Before OnCreate, in which a derived class may name its document before it calls this one.
    TakeProgram(pCreate);
    return CCUIWindow::PreCreate(pCreate);
}

void CCUIFrameWindow::TakeProgram(const CREATESTRUCTA *pCreate)
{
    if (!CUIResourceName::IsID(pCreate->lpszName))
        m_sProgram = pCreate->lpszName;
}

int CCUIFrameWindow::OnCreate(CREATESTRUCTA *pCreate)
{
    TakeProgram(pCreate);
    if (!m_sDocument.IsEmpty())
        UpdateTitle();
    return CCUIWindow::OnCreate(pCreate);
}

// Not in OnCreate: a creation that fails must not end the program.
void CCUIFrameWindow::PostCreate()
{
    if (!s_pMainFrame)
        MakeMainFrame();
}

CCUIFrameWindow *CCUIFrameWindow::GetMainFrame()
{
    return s_pMainFrame;
}

void CCUIFrameWindow::MakeMainFrame()
{
    s_pMainFrame = this;
}

void CCUIFrameWindow::OnDestroy()
{
    End();
    CCUIWindow::OnDestroy();
}

// What is due when the window goes. The object may get another one.
void CCUIFrameWindow::End()
{
    if (Exist())
        KeepPlacement();
    if (m_bCovering)
        DestroyBar(m_hMenuBefore);
    m_bFullScreen = false;
    m_bCovering = false;
    m_hFocus = nullptr;
    if (s_pMainFrame == this) {
        s_pMainFrame = nullptr;
        PostQuitMessage(0);
    }
}

bool CCUIFrameWindow::QueryClose()
{
    return true;
}

// Asks once at a time: while a question is open nothing has been decided.
bool CCUIFrameWindow::Ask()
{
    if (m_bAsking)
        return false;
    CWatch watch(this);
    m_bAsking = true;
    const bool bMayClose = QueryClose();
    if (watch.IsGone())
        return false;
    m_bAsking = false;
    return bMayClose;
}

void CCUIFrameWindow::OnClose()
{
    // A dialog of the frame is open, and must be answered first.
    if (!IsWindowEnabled(m_hWnd)) {
        BringToFront();
        return;
    }
    if (Ask())
        Destroy();
}

int CCUIFrameWindow::OnQueryEndSession(UINT)
{
    return Ask();
}

// The process may be ended before its windows are destroyed: what is kept at their end would not
// be.
void CCUIFrameWindow::OnEndSession(int bEnding, UINT nReason)
{
    if (bEnding)
        Destroy();
    else
        CCUIWindow::OnEndSession(bEnding, nReason);
}

// --- Menu and keys ---

HMENU CCUIFrameWindow::GetMenu() const
{
    return m_bCovering ? m_hMenuBefore : ::GetMenu(m_hWnd);
}

int CCUIFrameWindow::SetMenu(HMENU hMenu)
{
    if (!Exist() || (hMenu && !IsMenu(hMenu)))
        return 0;
    if (hMenu != GetMenu() && !CloseMenu())
        return 0;
    const HMENU hOld = GetMenu();
    if (m_bCovering)
        m_hMenuBefore = hMenu;
    else if (!::SetMenu(m_hWnd, hMenu))
        return 0;
    if (hOld != hMenu)
        DestroyBar(hOld);
    return 1;
}

// The menu that is open in the frame would stay behind where it was, or lose its items. False: the
// frame has gone.
bool CCUIFrameWindow::CloseMenu()
{
    CWatch watch(this);
    const HWND hOwner = MenuOwner();
    HWND hWnd = hOwner;
    while (hWnd && hWnd != m_hWnd) {
        // Of an owned window that is no popup GetParent does not tell the owner.
        const HWND hOwns = GetWindow(hWnd, GW_OWNER);
        hWnd = hOwns ? hOwns : GetParent(hWnd);
    }
    if (hWnd)
        SendMessageA(hOwner, WM_CANCELMODE, 0, 0);
    return !watch.IsGone() && m_hWnd;
}

int CCUIFrameWindow::SetMenu(HINSTANCE hInstance, const char *name)
{
    const HMENU hMenu = LoadMenuA(hInstance, name);
    if (!hMenu)
        return 0;
    if (SetMenu(hMenu))
        return 1;
    DestroyMenu(hMenu);
    return 0;
}

int CCUIFrameWindow::SetAccelerators(HINSTANCE hInstance, const char *name)
{
    const CCUIAccelerators keys(hInstance, name);
    return keys.GetCount() > 0 && SetAccelerators(keys.GetKeys(), keys.GetCount());
}

int CCUIFrameWindow::PreTranslateMessage(MSG *pMsg)
{
    if (!CUIIsKeyMessage(pMsg->message))
        return CCUIWindow::PreTranslateMessage(pMsg);
    // Keys of a dialog that the frame waits for come by as well, on their way up.
    if (!IsWindowEnabled(m_hWnd))
        return 0;
    CWatch watch(this);
    if (CCUIWindow::PreTranslateMessage(pMsg) || watch.IsGone())
        return 1;
    const bool bOwn = pMsg->hwnd == m_hWnd || IsChild(m_hWnd, pMsg->hwnd);
    return bOwn && TranslateOwnKey(*pMsg);
}

bool CCUIFrameWindow::TranslateOwnKey(const MSG &msg)
{
    if (msg.message == WM_SYSCHAR)
        return CUITranslateMnemonic(m_hWnd, &msg) != 0;
    if (msg.message != WM_KEYDOWN)
        return false;
    if (msg.wParam == VK_F6)
        return CCUIControlBar::ActivateNext(m_hWnd, GetKeyState(VK_SHIFT) < 0);
    if (msg.wParam != VK_ESCAPE || !m_bFullScreen || HasOpenList(msg.hwnd))
        return false;
    SetFullScreen(false);
    return true;
}

void CCUIFrameWindow::OnInitMenuPopup(HMENU hMenu, UINT nIndex, int bSystemMenu)
{
    if (m_pRecentFiles && !bSystemMenu)
        m_pRecentFiles->FillMenu(hMenu);
    CCUIWindow::OnInitMenuPopup(hMenu, nIndex, bSystemMenu);
}

void CCUIFrameWindow::OnMenuSelect(UINT nItem, UINT nFlags, HMENU hMenu)
{
    CWatch watch(this);
    if (m_pDocks->GetHelp()) {
        const bool bClosed = nFlags == CUI_MENU_CLOSED && !hMenu;
        const CCUString sHelp = bClosed ? CCUString() : CUICommandHelp(nItem, nFlags);
        // The handler may have changed what there is.
        CCUIHelpText *const pHelp = watch.IsGone() ? nullptr : m_pDocks->GetHelp();
        if (pHelp && bClosed)
            pHelp->ClearHelp();
        else if (pHelp)
            pHelp->ShowHelp(sHelp);
    }
    if (!watch.IsGone() && m_hWnd)
        CCUIWindow::OnMenuSelect(nItem, nFlags, hMenu);
}

// --- What is inside ---

int CCUIFrameWindow::AddBar(CCUIControlWindow *pBar, CUIBarSide side)
{
    return AddBar(pBar, side, nullptr);
}

int CCUIFrameWindow::AddBar(CCUIControlWindow *pBar, CUIBarSide side, SideOf *pSideOf)
{
    if (!pBar || !CCUIFrameDocks::IsIn(m_hWnd, *pBar))
        return 0;
    m_pDocks->AddBar(pBar, side, pSideOf);
    Layout();
    return 1;
}

void CCUIFrameWindow::RemoveBar(CCUIControlWindow *pBar)
{
    if (pBar && m_pDocks->Remove(*pBar))
        Layout();
}

void CCUIFrameWindow::SetStatusBar(CCUIControlWindow *pStatusBar, CCUIHelpText *pHelp)
{
    m_pDocks->SetStatusBar(pStatusBar, pHelp);
    Layout();
}

void CCUIFrameWindow::SetClient(CCUIWindow *pClient)
{
    CWatch watch(this);
    m_pDocks->SetClient(pClient);
    Layout();
    if (!watch.IsGone() && m_hWnd && GetFocus() == m_hWnd)
        FocusClient();
}

void CCUIFrameWindow::FocusClient()
{
    const HWND hClient = m_pDocks->GetClient();
    if (CanFocus(m_hWnd, hClient))
        SetFocus(hClient);
}

void CCUIFrameWindow::Layout()
{
    m_bLayOutAgain = true;
    if (m_bLayingOut || !m_hWnd || IsIconic(m_hWnd))
        return;
    CWatch watch(this);
    m_bLayingOut = true;
    for (int i = 0; m_hWnd && m_bLayOutAgain && i < MOST_PASSES; ++i) {
        m_bLayOutAgain = false;
        CCUIMoveBatch moves(m_hWnd);
        m_pDocks->Plan(m_hWnd, moves);
        moves.Perform();
        if (watch.IsGone())
            return;
    }
    m_bLayingOut = false;
}

void CCUIFrameWindow::OnSize(UINT nType, int cx, int cy)
{
    CWatch watch(this);
    if (!CloseMenu())
        return;
    Layout();
    if (!watch.IsGone() && m_hWnd)
        CCUIWindow::OnSize(nType, cx, cy);
}

long CCUIFrameWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case CUI_WM_LAYOUT: Layout(); return 0;
    case WM_WINDOWPOSCHANGING:
        if ((reinterpret_cast<const WINDOWPOS *>(lParam)->flags & SWP_SHOWWINDOW) &&
            !RefreshCommands())
            return 0;
        return CCUIWindow::OnMessage(message, wParam, lParam);
    case WM_QUERYNEWPALETTE: return OfferPalette(m_hWnd);
    case WM_PALETTECHANGED:
        if (HasPalette())
            SendMessageToDescendants(m_hWnd, message, wParam, lParam, nullptr);
        return 0;
    default: return CCUIWindow::OnMessage(message, wParam, lParam);
    }
}

// The frame is about to be seen, and what shows commands with it: the idle pass of the loop comes
// after the first painting. False: the frame has gone.
bool CCUIFrameWindow::RefreshCommands()
{
    if (m_bRefreshing)
        return true;
    CWatch watch(this);
    m_bRefreshing = true;
    CCUICommandMap::IdleUpdate();
    if (watch.IsGone())
        return false;
    m_bRefreshing = false;
    return m_hWnd != nullptr;
}

void CCUIFrameWindow::OnParentNotify(UINT nEvent, UINT nID, LPARAM lParam)
{
    CWatch watch(this);
    if (nEvent == WM_DESTROY && m_pDocks->Remove(reinterpret_cast<HWND>(lParam)))
        Layout();
    if (!watch.IsGone() && m_hWnd)
        CCUIWindow::OnParentNotify(nEvent, nID, lParam);
}

// --- Title ---

void CCUIFrameWindow::SetDocument(const char *pszPath)
{
    m_sDocument = pszPath;
    UpdateTitle();
}

void CCUIFrameWindow::SetModified(bool bModified)
{
    if (bModified == m_bModified)
        return;
    m_bModified = bModified;
    UpdateTitle();
}

void CCUIFrameWindow::UpdateTitle()
{
    if (!m_hWnd)
        return;
    CCUString sTitle = CUIFileName(m_sDocument);
    if (sTitle.IsEmpty())
        sTitle = m_sProgram;
    else
        sTitle = sTitle + (m_bModified ? "* - " : " - ") + m_sProgram;
    SetWindowTextA(m_hWnd, sTitle);
}

// --- Focus ---

void CCUIFrameWindow::OnActivate(UINT nState, UINT nMinimized, HWND hOther)
{
    if (nState == WA_INACTIVE) {
        const HWND hFocus = GetFocus();
        m_hFocus = IsChild(m_hWnd, hFocus) ? hFocus : nullptr;
    }
    CCUIWindow::OnActivate(nState, nMinimized, hOther);
}

void CCUIFrameWindow::OnSetFocus(HWND hOld)
{
    const HWND hBefore = m_hFocus;
    m_hFocus = nullptr;
    const HWND hFocus = CanFocus(m_hWnd, hBefore) ? hBefore : m_pDocks->GetClient();
    if (CanFocus(m_hWnd, hFocus))
        SetFocus(hFocus);
    else
        CCUIWindow::OnSetFocus(hOld);
}
