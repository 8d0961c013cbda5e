#include "CUI/MessageBox.h"

#include "Base/Module.h"
#include "CU/CU.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "Dialog/MessageContent.h"
#include "Dialog/MessageCopy.h"
#include "Dialog/MessageLayout.h"
#include "Frame/Paths.h"

namespace {

const UINT MOUSE_WHEEL = 0x020A;

// On Windows 95 and its successors controls have less than 64 KiB for their text.
const int MOST_ON_WIN9X = 0x7F00;

// Whether a message means that the user is at the box.
bool IsTouch(UINT message)
{
    switch (message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
    case WM_NCLBUTTONDOWN:
    case WM_NCRBUTTONDOWN:
    case WM_NCMBUTTONDOWN:
    case MOUSE_WHEEL: return true;
    default: return false;
    }
}

bool IsCopyKey(const MSG &msg)
{
    return msg.message == WM_KEYDOWN && (msg.wParam == 'C' || msg.wParam == VK_INSERT) &&
           GetKeyState(VK_CONTROL) < 0 && GetKeyState(VK_SHIFT) >= 0 && GetKeyState(VK_MENU) >= 0;
}

}  // namespace

CCUIMessageBox::CCUIMessageBox(const char *pszText, const char *pszCaption, UINT nFlags)
    : CCUIDialog(CUInstance(), static_cast<const char *>(nullptr)),
      m_pContent(new CCUIMessageContent(pszText, pszCaption, nFlags))
{
}

CCUIMessageBox::~CCUIMessageBox()
{
    delete m_pContent;
}

// --- What it shows ---

int CCUIMessageBox::AddButton(int nID, const char *pszCaption)
{
    return m_pContent->AddOwnButton(nID, pszCaption) ? 1 : 0;
}

void CCUIMessageBox::SetDefaultButton(int nID)
{
    m_pContent->m_nDefault = nID;
}

void CCUIMessageBox::SetCancelButton(int nID)
{
    m_pContent->m_nCancel = nID;
}

void CCUIMessageBox::SetIcon(HICON hIcon)
{
    m_pContent->m_hIcon = hIcon;
    m_pContent->m_bOwnIcon = true;
}

void CCUIMessageBox::SetDontAsk(const char *pszName, const char *pszCheck)
{
    m_pContent->m_sAnswerName = pszName;
    m_pContent->m_sCheckText = pszCheck;
}

void CCUIMessageBox::SetCountdown(int nSeconds)
{
    const int nMost = CCUIMessageContent::LONGEST_COUNTDOWN;
    m_pContent->m_nSeconds = nSeconds < 0 ? 0 : nSeconds > nMost ? nMost : nSeconds;
}

const DLGTEMPLATE *CCUIMessageBox::GetTemplate()
{
    return m_pContent->MakeTemplate();
}

unsigned long CCUIMessageBox::GetWindowStyle()
{
    return m_pContent->Style();
}

int CCUIMessageBox::GetCaption(CCUString &sCaption)
{
    const HWND hOwner = m_hWnd ? GetWindow(m_hWnd, GW_OWNER) : nullptr;
    sCaption = m_pContent->m_sCaption;
    if (m_pContent->m_bNoCaption && hOwner) {
        GetWindowTextA(hOwner, sCaption.GetBuffer(MAX_PATH), MAX_PATH);
        sCaption.ReleaseBuffer();
    }
    if (m_pContent->m_bNoCaption && sCaption.IsEmpty())
        sCaption = CUIProgramName();
    return 1;
}

// --- Its run ---

int CCUIMessageBox::DoModal(CCUIWindow *pParent)
{
    const int nKept = m_pContent->KeptAnswer();
    if (nKept)
        return nKept;
    CWatch watch(this);
    m_pContent->m_bMade = false;
    const int nAnswer = DoModalIndirect(GetTemplate(), pParent);
    if (!watch.IsGone() && !m_pContent->m_bMade)
        CUDump("Unable to show a message: %.1000s\n", m_pContent->m_sText.GetString());
    return nAnswer;
}

int CCUIMessageBox::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    CWatch watch(this);
    m_pContent->m_bMade = true;
    SetTexts();
    CUIArrangeMessage(m_hWnd, *m_pContent);
    CCUIDialog::OnInitDialog(hFocus, lParam);
    if (watch.IsGone() || !m_hWnd)
        return 0;
    SetFocus(GetDlgItem(m_hWnd, static_cast<int>(m_pContent->ControlOf(m_pContent->Default()))));
    MessageBeep(m_pContent->m_nFlags & MB_ICONMASK);
    if (!watch.IsGone() && m_hWnd)
        StartCountdown();
    return 0;
}

void CCUIMessageBox::SetTexts()
{
    if (CUIGetWinData()->bWin9x)
        m_pContent->m_sText = m_pContent->m_sText.Left(MOST_ON_WIN9X);
    CCUString sCaption;
    GetCaption(sCaption);
    SetWindowTextA(m_hWnd, sCaption);
    SetDlgItemTextA(m_hWnd, CCUIMessageContent::TEXT_ID, m_pContent->m_sText);
    SetDlgItemTextA(m_hWnd, CCUIMessageContent::CHECK_ID, m_pContent->CheckText());
    SendDlgItemMessageA(m_hWnd, CCUIMessageContent::ICON_ID, STM_SETICON,
                        reinterpret_cast<WPARAM>(m_pContent->Icon()), 0);
    for (int i = 0; i < m_pContent->m_nButtons; ++i) {
        const CCUIMessageButton &button = m_pContent->m_buttons[i];
        SetDlgItemTextA(m_hWnd, static_cast<int>(m_pContent->ControlOf(button)), button.sCaption);
    }
    if (!m_pContent->CancelID())
        RemoveMenu(GetSystemMenu(m_hWnd, FALSE), SC_CLOSE, MF_BYCOMMAND);
}

void CCUIMessageBox::OnCommand(UINT nCode, UINT nID, HWND hControl)
{
    const CCUIMessageButton *const pButton = m_pContent->FindControl(nID);
    if (pButton && nCode == BN_CLICKED)
        Answer(pButton->nID);
    else if (nID != IDOK && nID != IDCANCEL)
        CCUIDialog::OnCommand(nCode, nID, hControl);
}

void CCUIMessageBox::Answer(int nID)
{
    if (nID == IDHELP) {
        OnHelp();
        return;
    }
    if (SendDlgItemMessageA(m_hWnd, CCUIMessageContent::CHECK_ID, BM_GETCHECK, 0, 0) == BST_CHECKED)
        m_pContent->KeepAnswer(nID);
    EndDialog(static_cast<unsigned>(nID));
}

void CCUIMessageBox::OnHelp()
{
    HELPINFO info = {};
    info.cbSize = sizeof info;
    info.iContextType = HELPINFO_WINDOW;
    info.iCtrlId = IDHELP;
    info.hItemHandle = m_hWnd;
    GetCursorPos(&info.MousePos);
    const HWND hOwner = GetWindow(m_hWnd, GW_OWNER);
    if (hOwner)
        SendMessageA(hOwner, WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
}

// --- Messages ---

// On screens of 256 colours the brush may be dithered, which the colour behind text is not: so that
// is not drawn, and the text that scrolls, which needs it, stands on the colour of windows.
long CCUIMessageBox::OnColor(HDC hDC, HWND hControl)
{
    if (GetWindowLongA(hControl, GWL_STYLE) & WS_VSCROLL) {
        SetTextColor(hDC, GetSysColor(COLOR_WINDOWTEXT));
        SetBkColor(hDC, GetSysColor(COLOR_WINDOW));
        return reinterpret_cast<long>(CUIGetWinData()->hbrWindow);
    }
    SetTextColor(hDC, GetSysColor(COLOR_BTNTEXT));
    SetBkMode(hDC, TRANSPARENT);
    return CCUIDialog::WindowProc(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hDC),
                                  reinterpret_cast<LPARAM>(hControl));
}

long CCUIMessageBox::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_CTLCOLORSTATIC:
        return OnColor(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_COPY: CUICopyText(m_hWnd, GetCopyText()); return 0;
    case WM_HELP:
        if (m_pContent->Find(IDHELP))
            OnHelp();
        return 0;
    case MOUSE_WHEEL:
        return SendDlgItemMessageA(m_hWnd, CCUIMessageContent::TEXT_ID, message, wParam, lParam);
    default: return CCUIDialog::WindowProc(message, wParam, lParam);
    }
}

int CCUIMessageBox::PreTranslateMessage(MSG *pMsg)
{
    if (IsTouch(pMsg->message))
        StopCountdown();
    if (IsCopyKey(*pMsg) && !HasSelection(pMsg->hwnd)) {
        SendMessageA(m_hWnd, WM_COPY, 0, 0);
        return 1;
    }
    if (pMsg->message == WM_KEYDOWN && ScrollByKey(pMsg->wParam))
        return 1;
    return CCUIDialog::PreTranslateMessage(pMsg);
}

// Whether it is the text that scrolls, with a part of it marked: only that is copied then.
bool CCUIMessageBox::HasSelection(HWND hWnd) const
{
    if (hWnd != GetDlgItem(m_hWnd, CCUIMessageContent::TEXT_ID))
        return false;
    DWORD nFrom = 0;
    DWORD nTo = 0;
    SendMessageA(hWnd, EM_GETSEL, reinterpret_cast<WPARAM>(&nFrom), reinterpret_cast<LPARAM>(&nTo));
    return nFrom != nTo;
}

// Pages of the text while a button has the focus.
bool CCUIMessageBox::ScrollByKey(WPARAM nKey)
{
    const HWND hText = GetDlgItem(m_hWnd, CCUIMessageContent::TEXT_ID);
    const bool bPage = nKey == VK_PRIOR || nKey == VK_NEXT;
    if (!bPage || GetFocus() == hText)
        return false;
    SendMessageA(hText, EM_SCROLL, nKey == VK_PRIOR ? SB_PAGEUP : SB_PAGEDOWN, 0);
    return true;
}

// --- The countdown ---

void CCUIMessageBox::StartCountdown()
{
    CCUIMessageContent &content = *m_pContent;
    content.m_bCounting = content.m_nSeconds != 0;
    if (!content.m_bCounting) {
        KillAlarm();
        return;
    }
    content.m_nDeadline = CUGetTime() + static_cast<unsigned long>(content.m_nSeconds) * 1000;
    ShowCountdown(content.m_nSeconds);
    SetAlarm(1000);
}

void CCUIMessageBox::StopCountdown()
{
    if (!m_pContent->m_bCounting)
        return;
    m_pContent->m_bCounting = false;
    KillAlarm();
    ShowCountdown(0);
}

// 0: the caption alone.
void CCUIMessageBox::ShowCountdown(int nSeconds)
{
    const CCUIMessageButton &button = m_pContent->Default();
    SetDlgItemTextA(m_hWnd, static_cast<int>(m_pContent->ControlOf(button)),
                    nSeconds ? m_pContent->CountdownCaption(nSeconds) : button.sCaption);
}

void CCUIMessageBox::TimeOut(long)
{
    if (!m_hWnd || !m_pContent->m_bCounting)
        return;
    const long nLeft = static_cast<long>(m_pContent->m_nDeadline - CUGetTime());
    if (nLeft > 0) {
        const long nSeconds = (nLeft + 999) / 1000;
        ShowCountdown(static_cast<int>(nSeconds));
        SetAlarm(nLeft - (nSeconds - 1) * 1000);
        return;
    }
    // Not in here, where other timers wait: handlers of the owner may take their time.
    const UINT nControl = m_pContent->ControlOf(m_pContent->Default());
    PostMessageA(m_hWnd, WM_COMMAND, nControl,
                 reinterpret_cast<LPARAM>(GetDlgItem(m_hWnd, static_cast<int>(nControl))));
}

// --- In one call ---

int CUIMessageBox(CCUIWindow *pParent, const char *pszText, const char *pszCaption, UINT nFlags,
                  const char *pszDontAsk)
{
    CCUIMessageBox box(pszText, pszCaption, nFlags);
    box.SetDontAsk(pszDontAsk);
    return box.DoModal(pParent);
}
