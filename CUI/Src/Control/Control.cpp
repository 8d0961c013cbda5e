// Own-drawn controls: window, text, commands and painting. Mouse and keyboard stand in
// ControlInput.cpp.

#include "CUI/Control.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/Data.h"
#include "CUI/LayoutWindow.h"
#include "Control/ControlTip.h"
#include "Drawing/BufferedPaint.h"
#include "Drawing/Look.h"
#include "Window/OwnThread.h"

namespace {

// Of Windows 2000: whether the marks of the keyboard are to be shown.
const UINT UPDATE_UI_STATE = 0x0128;
const UINT QUERY_UI_STATE = 0x0129;
const LRESULT HIDE_FOCUS = 1;
const LRESULT HIDE_UNDERLINES = 2;
const UINT HIDE_PREFIX = 0x00100000;

const LONG REPLACED_STYLES =
    static_cast<LONG>(WS_CHILD | WS_VISIBLE | WS_DISABLED | WS_GROUP | WS_TABSTOP);

const LONG RTL_READING = static_cast<LONG>(WS_EX_RTLREADING);

}  // namespace

CCUIControl::CCUIControl()
    : m_nShownStates(~0u),
      m_bFocusOnClick(true),
      m_bOpaque(false),
      m_nState(0),
      m_hFont(nullptr),
      m_hPalette(nullptr),
      m_crText(CUIGetWinData()->crSys[COLOR_BTNTEXT]),
      m_crBack(0),
      m_textSize{-1, 0},
      m_press(PressNone)
{
}

CCUIControl::~CCUIControl()
{
    CUIHideControlTip(m_hWnd);
}

// --- The window ---

int CCUIControl::PreCreate(CREATESTRUCTA *pCreate)
{
    if (!pCreate->lpszName)
        pCreate->lpszName = m_sText;
    if (m_nState & CUI_STATE_DISABLED)
        pCreate->style |= static_cast<LONG>(WS_DISABLED);
    if (GetCommand() && (pCreate->style & WS_CHILD))
        pCreate->hMenu = reinterpret_cast<HMENU>(GetCommand());
    return CCUIControlWindow::PreCreate(pCreate);
}

int CCUIControl::CreateControl(HWND hParent, UINT nID, const char *pszText, const RECT *prc)
{
    RECT rect = {0, 0, 0, 0};
    if (pszText && !HasWindow())
        SetText(pszText);
    CWatch watch(this);
    if (!Create(nullptr, nullptr, WS_CHILD | WS_VISIBLE | WS_TABSTOP, prc ? *prc : rect, hParent,
                nID))
        return 0;
    if (!prc && !watch.IsGone()) {
        SIZE size = {0, 0};
        GetNaturalSize(size);
        SetWindowPos(m_hWnd, nullptr, 0, 0, size.cx, size.cy,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return 1;
}

int CCUIControl::ReplaceControl(HWND hDialog, UINT nID)
{
    const HWND hOld = GetDlgItem(hDialog, static_cast<int>(nID));
    if (!CUIIsOwnWindow(hOld)) {
        CUDump("No control %u of this thread to be replaced.\n", nID);
        return 0;
    }
    RECT rect;
    GetWindowRect(hOld, &rect);
    MapWindowPoints(nullptr, hDialog, reinterpret_cast<POINT *>(&rect), 2);
    const bool bFocus = GetFocus() == hOld;
    // One that has a window stays as it is: the creation reports it.
    if (!HasWindow()) {
        m_hFont = reinterpret_cast<HFONT>(SendMessageA(hOld, WM_GETFONT, 0, 0));
        m_textSize.cx = -1;
    }
    const LONG nStyle = GetWindowLongA(hOld, GWL_STYLE) & REPLACED_STYLES;
    const LONG nExStyle = GetWindowLongA(hOld, GWL_EXSTYLE) & RTL_READING;
    CWatch watch(this);
    if (!CreateEx(static_cast<DWORD>(nExStyle), nullptr, TextOf(hOld), static_cast<DWORD>(nStyle),
                  rect.left, rect.top, CUIWidth(rect), CUIHeight(rect), hDialog,
                  reinterpret_cast<HMENU>(nID)) ||
        watch.IsGone())
        return 0;
    const HWND hWnd = m_hWnd;
    SetWindowPos(hWnd, hOld, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    if (bFocus)
        SetFocus(hWnd);
    // Of this thread, it can only have gone by itself.
    DestroyWindow(hOld);
    return 1;
}

int CCUIControl::OnCreate(CREATESTRUCTA *pCreate)
{
    CWatch watch(this);
    const int nResult = CCUIControlWindow::OnCreate(pCreate);
    if (nResult == -1 || watch.IsGone())
        return nResult;
    if (!ReadText())
        return nResult;
    SetState(CUI_STATE_DISABLED, (pCreate->style & static_cast<LONG>(WS_DISABLED)) != 0);
    ReadCues();
    // The command was heard of before there was a window to be enabled and to have a text.
    if (const unsigned int nCommand = GetCommand()) {
        CCUICommandView::SetCommand(0);
        CCUICommandView::SetCommand(nCommand);
    }
    return nResult;
}

void CCUIControl::OnDestroy()
{
    CWatch watch(this);
    SetHot(false);
    if (watch.IsGone() || !m_hWnd)
        return;
    m_press = PressNone;
    m_nState &= CUI_STATE_DISABLED | CUI_STATE_CHECKED | CUI_STATE_MIXED | CUI_STATE_DEFAULT;
    KillAlarm();
    CCUIControlWindow::OnDestroy();
}

long CCUIControl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_SETTEXT:
    case UPDATE_UI_STATE: return FollowDefault(message);
    case WM_SETFONT: SetFont(reinterpret_cast<HFONT>(wParam)); return 0;
    case WM_GETFONT: return reinterpret_cast<long>(m_hFont);
    case CUI_WM_NATURALSIZE: GetNaturalSize(*reinterpret_cast<SIZE *>(lParam)); return 1;
    case WM_PRINTCLIENT: OnPaint(reinterpret_cast<HDC>(wParam)); return 0;
    case BM_CLICK: FocusAndClick(); return 0;
    case WM_QUERYNEWPALETTE: return Realize(false) != GDI_ERROR;
    case WM_PALETTECHANGED:
        // In front once more, two controls with palettes would take turns for ever.
        if (reinterpret_cast<HWND>(wParam) != m_hWnd)
            Realize(true);
        return 0;
    default: return CCUIControlWindow::OnMessage(message, wParam, lParam);
    }
}

// The system keeps text and cues; what it has now is shown.
long CCUIControl::FollowDefault(UINT message)
{
    CWatch watch(this);
    const long nResult = Default();
    if (watch.IsGone() || !m_hWnd)
        return nResult;
    if (message != WM_SETTEXT)
        ReadCues();
    else if (ReadText())
        ContentChanged();
    return nResult;
}

// As of the system's buttons.
void CCUIControl::FocusAndClick()
{
    CWatch watch(this);
    if (m_bFocusOnClick && !(m_nState & (CUI_STATE_DISABLED | CUI_STATE_FOCUSED)))
        SetFocus(m_hWnd);
    if (!watch.IsGone())
        Click();
}

// False: the control or its window went meanwhile.
bool CCUIControl::ReadText()
{
    CWatch watch(this);
    const CCUString sText = m_hWnd ? TextOf(m_hWnd) : CCUString();
    if (watch.IsGone() || !m_hWnd)
        return false;
    m_sText = sText;
    m_textSize.cx = -1;
    return true;
}

void CCUIControl::ReadCues()
{
    // 0 from systems that know nothing of it.
    const LRESULT nCues = SendMessageA(m_hWnd, QUERY_UI_STATE, 0, 0);
    SetState(CUI_STATE_NO_FOCUS_MARK, (nCues & HIDE_FOCUS) != 0);
    SetState(CUI_STATE_NO_UNDERLINE, (nCues & HIDE_UNDERLINES) != 0);
}

// --- Text, font, colours ---

void CCUIControl::SetText(const char *pszText)
{
    if (m_sText == pszText)
        return;
    if (HasWindow()) {
        SetWindowTextA(m_hWnd, pszText);
        return;
    }
    m_sText = pszText;
    ContentChanged();
}

void CCUIControl::ContentChanged()
{
    m_textSize.cx = -1;
    Repaint();
    NaturalSizeChanged();
}

void CCUIControl::SetFont(HFONT hFont)
{
    m_hFont = hFont;
    ContentChanged();
}

void CCUIControl::SetTextColor(DWORD crText)
{
    m_crText = crText;
    Repaint();
}

COLORREF CCUIControl::GetTextColor() const
{
    return CUIGetWinData()->ResolveColor(m_crText);
}

void CCUIControl::OnSysColorChange()
{
    Repaint();
    CCUIControlWindow::OnSysColorChange();
}

void CCUIControl::OnWinIniChange(WPARAM nAction, const char *section)
{
    CWatch watch(this);
    ContentChanged();
    if (!watch.IsGone() && m_hWnd)
        CCUIControlWindow::OnWinIniChange(nAction, section);
}

const SIZE &CCUIControl::GetTextSize()
{
    if (m_textSize.cx < 0)
        m_textSize =
            CUIMeasureText(m_hWnd, m_hFont ? m_hFont : CUIGetWinData()->hMenuFont, m_sText, 0);
    return m_textSize;
}

void CCUIControl::GetNaturalSize(SIZE &size)
{
    size = GetTextSize();
}

bool CCUIControl::IsHighContrast()
{
    return CUIIsHighContrast();
}

int CCUIControl::Scaled(int nPixels)
{
    return CUIScale(nPixels);
}

// --- Commands ---

void CCUIControl::SetCommand(unsigned int nID)
{
    CWatch watch(this);
    // Under the mouse, help and tip of the one command go and those of the other come.
    const bool bHot = nID != GetCommand() && (m_nState & CUI_STATE_HOT);
    if (bHot)
        SetHot(false);
    if (watch.IsGone())
        return;
    if (nID && HasWindow())
        SetWindowLongA(m_hWnd, GWL_ID, static_cast<LONG>(nID));
    CCUICommandView::SetCommand(nID);
    if (bHot && !watch.IsGone() && m_hWnd)
        SetHot(true);
}

void CCUIControl::FollowCommand(unsigned short nState, const CCUString &sText)
{
    CWatch watch(this);
    SetState(CUI_STATE_CHECKED, (nState & CUI_COMMAND_CHECKED) != 0);
    if (nState & CUI_COMMAND_TEXT) {
        // What follows the tab is a menu's shortcut.
        const int nTab = sText.Find('\t');
        SetText(nTab < 0 ? sText : sText.Left(nTab));
    }
    if (!watch.IsGone())
        Enable((nState & CUI_COMMAND_ACTIVE) != 0);
}

void CCUIControl::Enable(bool bEnable)
{
    const bool bWindow = HasWindow();
    if (bEnable == !(m_nState & CUI_STATE_DISABLED))
        return;
    CWatch watch(this);
    if (!bEnable && bWindow && GetFocus() == m_hWnd)
        PassFocusOn();
    if (watch.IsGone())
        return;
    if (m_hWnd && bWindow)
        EnableWindow(m_hWnd, bEnable);
    else
        SetState(CUI_STATE_DISABLED, !bEnable);
}

void CCUIControl::OnEnable(int bEnable)
{
    CWatch watch(this);
    SetState(CUI_STATE_DISABLED, !bEnable);
    if (!bEnable) {
        SetHot(false);
        if (watch.IsGone())
            return;
        CancelPress();
    }
    if (!watch.IsGone() && m_hWnd)
        CCUIControlWindow::OnEnable(bEnable);
}

void CCUIControl::Click()
{
    if (HasWindow() && !(m_nState & CUI_STATE_DISABLED))
        OnClick();
}

void CCUIControl::OnClick()
{
    TellParent(BN_CLICKED);
}

void CCUIControl::TellParent(UINT nCode)
{
    const CCUIWindow *const pRouter = GetCommand() ? FindRouter() : nullptr;
    const HWND hTarget = pRouter ? pRouter->GetHandle() : GetParent(m_hWnd);
    if (hTarget)
        SendMessageA(hTarget, WM_COMMAND,
                     MAKEWPARAM(static_cast<UINT>(GetDlgCtrlID(m_hWnd)), nCode),
                     reinterpret_cast<LPARAM>(m_hWnd));
}

void CCUIControl::SetToolTip(const char *pszText)
{
    m_sToolTip = pszText;
}

CCUString CCUIControl::GetTipText()
{
    const unsigned int nID = GetCommand();
    CCUICommandHandler *const pHandler = nID >= 1000 ? CCUICommandMap::Lookup(nID) : nullptr;
    if (!pHandler || !m_sToolTip.IsEmpty())
        return m_sToolTip;
    // A tip that says what the control says is noise.
    const CCUString sText = pHandler->GetShortTT(nID);
    return sText == m_sText ? CCUString() : sText;
}

// --- Painting ---

void CCUIControl::SetState(unsigned int nBits, bool bOn)
{
    const unsigned int nOld = m_nState;
    m_nState = bOn ? nOld | nBits : nOld & ~nBits;
    if ((nOld ^ m_nState) & m_nShownStates)
        Repaint();
}

void CCUIControl::Repaint()
{
    if (m_hWnd)
        InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CCUIControl::OnSize(UINT nType, int cx, int cy)
{
    Repaint();
    CCUIControlWindow::OnSize(nType, cx, cy);
}

int CCUIControl::OnEraseBkgnd(HDC)
{
    return 1;
}

void CCUIControl::OnPaint(HDC hDC)
{
    CCUIBufferedPaint paint(m_hWnd, hDC);
    RECT client;
    if (!GetClientRect(m_hWnd, &client) || IsRectEmpty(&client))
        return;
    CWatch watch(this);
    const HBRUSH hBrush = GetBackground(paint.Target());
    if (watch.IsGone())
        return;
    const HDC hPicture = paint.Begin(m_hFont ? m_hFont : CUIGetWinData()->hMenuFont, m_hPalette);
    if (hBrush)
        FillRect(hPicture, &client, hBrush);
    else if (!m_bOpaque)
        Fill(hPicture, client, m_crBack);
    ::SetTextColor(hPicture, GetTextColor());
    Paint(hPicture, client);
}

void CCUIControl::SetPalette(HPALETTE hPalette)
{
    m_hPalette = hPalette;
    Realize(false);
    Repaint();
}

// How many colours of the screen are others now; GDI_ERROR where there is no palette to realise.
UINT CCUIControl::Realize(bool bBehind)
{
    if (!m_hPalette || !m_hWnd)
        return GDI_ERROR;
    const CCUIWindowDC hDC(m_hWnd);
    const HPALETTE hOld = SelectPalette(hDC, m_hPalette, bBehind);
    const UINT nChanged = RealizePalette(hDC);
    SelectPalette(hDC, hOld, TRUE);
    if (nChanged != 0 && nChanged != GDI_ERROR)
        Repaint();
    return nChanged;
}

// The brush of the parent, which may have colours of its own; null for the window's own colour,
// which is then in m_crBack.
HBRUSH CCUIControl::GetBackground(HDC hDC)
{
    if (m_propData.crWindow != CUI_NO_WINDOW_COLOR) {
        m_crBack = CUIGetWinData()->ResolveColor(m_propData.crWindow);
        return nullptr;
    }
    m_crBack = CUIGetWinData()->ResolveColor(CUI_COLOR_BTNFACE);
    if (m_bOpaque)
        return nullptr;
    CWatch watch(this);
    SetBkColor(hDC, m_crBack);
    const LRESULT nBrush =
        SendMessageA(GetParent(m_hWnd), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(hDC),
                     reinterpret_cast<LPARAM>(m_hWnd));
    if (!watch.IsGone())
        m_crBack = GetBkColor(hDC);
    return reinterpret_cast<HBRUSH>(nBrush);
}

void CCUIControl::Fill(HDC hDC, const RECT &rect, COLORREF cr)
{
    const CUIData &data = *CUIGetWinData();
    if (cr == data.ResolveColor(CUI_COLOR_BTNFACE)) {
        FillRect(hDC, &rect, data.hbrBtnFace);
    } else {
        const CCUIOwned<HBRUSH> brush(CreateSolidBrush(cr));
        FillRect(hDC, &rect, brush);
    }
}

void CCUIControl::PaintText(HDC hDC, const RECT &rect, UINT nFormat)
{
    if (m_nState & CUI_STATE_NO_UNDERLINE)
        nFormat |= HIDE_PREFIX;
    if (GetWindowLongA(m_hWnd, GWL_EXSTYLE) & RTL_READING)
        nFormat |= DT_RTLREADING;
    CUIDrawStateText(hDC, m_sText, rect, nFormat, GetTextColor(),
                     (m_nState & CUI_STATE_DISABLED) != 0);
}

void CCUIControl::Paint(HDC hDC, const RECT &rect)
{
    PaintText(hDC, rect, DT_CENTER | CUI_TEXT_LINE);
}

void CCUIControl::PaintFocus(HDC hDC, const RECT &rect)
{
    const bool bShown = (m_nState & CUI_STATE_FOCUSED) && !(m_nState & CUI_STATE_NO_FOCUS_MARK);
    if (!bShown)
        return;
    // It inverts with the DC's colours.
    ::SetTextColor(hDC, RGB(0, 0, 0));
    SetBkColor(hDC, RGB(255, 255, 255));
    DrawFocusRect(hDC, &rect);
}
