// What buttons do; how they look stands in ButtonPaint.cpp.

#include "CUI/Button.h"

#include "CUI/Data.h"
#include "CUI/Menu.h"
#include "Control/ButtonParts.h"
#include "Drawing/Look.h"
#include "Menu/MenuClosing.h"
#include "Window/Mirrored.h"

namespace {

// In the wParam of a BM_CLICK: the button repeats it.
const WPARAM REPEATED = 1;

// The style bits of BM_SETSTYLE that tell the kind.
const WPARAM KIND_BITS = 0x0F;

LONG StyleOf(HWND hWnd)
{
    return GetWindowLongA(hWnd, GWL_STYLE);
}

// The siblings of a group, in a circle; null for a window that is gone.
HWND NextInGroup(HWND hWnd)
{
    if (!IsWindow(hWnd))
        return nullptr;
    const HWND hNext = GetWindow(hWnd, GW_HWNDNEXT);
    if (hNext && !(StyleOf(hNext) & WS_GROUP))
        return hNext;
    HWND hFirst = hWnd;
    while (!(StyleOf(hFirst) & WS_GROUP)) {
        const HWND hPrevious = GetWindow(hFirst, GW_HWNDPREV);
        if (!hPrevious)
            break;
        hFirst = hPrevious;
    }
    return hFirst;
}

bool IsRadio(HWND hWnd)
{
    return (SendMessageA(hWnd, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0;
}

// Milliseconds until the first repetition, as the user has set it: 0 to 3 are quarters of a second.
long RepeatDelay()
{
    int nDelay = 1;
    SystemParametersInfoA(SPI_GETKEYBOARDDELAY, 0, &nDelay, 0);
    return (nDelay + 1) * 250L;
}

// Milliseconds from one repetition to the next: from 0, 2.5 a second, to 31, 30 a second.
long RepeatInterval()
{
    DWORD nSpeed = 31;
    SystemParametersInfoA(SPI_GETKEYBOARDSPEED, 0, &nSpeed, 0);
    return 400 - static_cast<long>(nSpeed) * 367 / 31;
}

}  // namespace

CCUIButton::CCUIButton(CUIButtonKind kind)
    : m_kind(kind),
      m_place(CUI_PICTURE_LEFT),
      m_xPicture(0),
      m_picture{0, 0},
      m_crKey(CUI_NO_KEY_COLOR),
      m_pMenu(nullptr),
      m_bFlat(false),
      m_bOpen(false)
{
    UpdateLook();
}

CCUIButton::~CCUIButton() = default;

bool CCUIButton::IsCheckable() const
{
    return m_kind == CUI_BUTTON_CHECK || m_kind == CUI_BUTTON_RADIO;
}

bool CCUIButton::HasMark() const
{
    return IsCheckable() && !m_bFlat;
}

bool CCUIButton::HasArrow() const
{
    return m_kind == CUI_BUTTON_DROPDOWN || m_kind == CUI_BUTTON_SPLIT;
}

bool CCUIButton::IsRaised() const
{
    return !m_bFlat && !IsCheckable();
}

void CCUIButton::UpdateLook()
{
    m_bOpaque = IsRaised();
    m_bFocusOnClick = !m_bFlat;
    m_nShownStates = m_bFlat ? ~0u : ~static_cast<unsigned int>(CUI_STATE_HOT);
    Repaint();
}

void CCUIButton::SetFlat(bool bFlat)
{
    m_bFlat = bFlat;
    UpdateLook();
}

void CCUIButton::SetPicture(const CCUIBitmap &bitmap, int nIndex, int cx, COLORREF crKey, int nDpi)
{
    int cxPicture = cx > 0 ? cx : bitmap.Width();
    m_bitmap = CUIScaledPictures(bitmap, cxPicture, nDpi);
    m_picture.cx = cxPicture;
    m_picture.cy = m_bitmap.Height();
    m_xPicture = nIndex * m_picture.cx;
    m_crKey = crKey;
    ContentChanged();
}

void CCUIButton::SetPicturePlace(CUIPicturePlace place)
{
    m_place = place;
    ContentChanged();
}

int CCUIButton::OnCreate(CREATESTRUCTA *pCreate)
{
    CWatch watch(this);
    const int nResult = CCUIControl::OnCreate(pCreate);
    if (nResult == -1 || watch.IsGone() || !IsInDialog())
        return nResult;
    const LRESULT nDefault = SendMessageA(GetParent(m_hWnd), DM_GETDEFID, 0, 0);
    if (HIWORD(nDefault) == DC_HASDEFID && !watch.IsGone() &&
        LOWORD(nDefault) == GetDlgCtrlID(m_hWnd))
        SetState(CUI_STATE_DEFAULT, true);
    return nResult;
}

// --- Checks and radio buttons ---

UINT CCUIButton::GetCheck() const
{
    if (GetState() & CUI_STATE_MIXED)
        return BST_INDETERMINATE;
    return (GetState() & CUI_STATE_CHECKED) ? BST_CHECKED : BST_UNCHECKED;
}

void CCUIButton::SetCheck(UINT nCheck)
{
    SetState(CUI_STATE_CHECKED, nCheck == BST_CHECKED);
    SetState(CUI_STATE_MIXED, nCheck == BST_INDETERMINATE);
    if (m_kind != CUI_BUTTON_RADIO || !HasWindow())
        return;
    const LONG nStyle = StyleOf(m_hWnd);
    const LONG nTabStop = nCheck == BST_CHECKED ? static_cast<LONG>(WS_TABSTOP) : 0;
    SetWindowLongA(m_hWnd, GWL_STYLE, (nStyle & ~static_cast<LONG>(WS_TABSTOP)) | nTabStop);
}

void CCUIButton::UncheckGroup()
{
    CWatch watch(this);
    const HWND hOwn = m_hWnd;
    HWND hNext = nullptr;
    for (HWND hWnd = NextInGroup(hOwn); hWnd && hWnd != hOwn; hWnd = hNext) {
        hNext = NextInGroup(hWnd);
        if (IsRadio(hWnd))
            SendMessageA(hWnd, BM_SETCHECK, BST_UNCHECKED, 0);
        if (watch.IsGone() || m_hWnd != hOwn)
            return;
    }
}

bool CCUIButton::MoveInGroup(bool bForward)
{
    HWND hFound = nullptr;
    for (HWND hWnd = NextInGroup(m_hWnd); hWnd && hWnd != m_hWnd; hWnd = NextInGroup(hWnd)) {
        if (!IsWindowVisible(hWnd) || !IsWindowEnabled(hWnd) || !IsRadio(hWnd))
            continue;
        hFound = hWnd;
        if (bForward)
            break;
    }
    if (!hFound)
        return false;
    SetFocus(hFound);
    SendMessageA(hFound, BM_CLICK, 0, 0);
    return true;
}

// --- Clicks ---

void CCUIButton::OnClick()
{
    if (m_kind == CUI_BUTTON_DROPDOWN) {
        DropDown();
        return;
    }
    // Of a command the handler says how it stands.
    if (IsCheckable() && !GetCommand()) {
        CWatch watch(this);
        const bool bCheck = m_kind == CUI_BUTTON_RADIO || !(GetState() & CUI_STATE_CHECKED);
        SetCheck(bCheck ? BST_CHECKED : BST_UNCHECKED);
        if (m_kind == CUI_BUTTON_RADIO)
            UncheckGroup();
        if (watch.IsGone() || !m_hWnd)
            return;
    }
    CCUIControl::OnClick();
}

void CCUIButton::OnPress()
{
    if (m_kind != CUI_BUTTON_REPEAT)
        return;
    CWatch watch(this);
    Click();
    if (!watch.IsGone() && IsHeld())
        SetAlarm(RepeatDelay());
}

void CCUIButton::Repeat()
{
    CWatch watch(this);
    // It may have been let go since the timer asked for it.
    if (IsHeld() && (GetState() & CUI_STATE_PRESSED))
        Click();
    if (!watch.IsGone() && IsHeld())
        SetAlarm(RepeatInterval());
}

void CCUIButton::OnRelease()
{
    if (m_kind != CUI_BUTTON_REPEAT)
        CCUIControl::OnRelease();
}

void CCUIButton::TimeOut(long nNow)
{
    if (m_kind != CUI_BUTTON_REPEAT || !IsHeld())
        CCUIControl::TimeOut(nNow);
    else if (GetState() & CUI_STATE_PRESSED)
        PostMessageA(m_hWnd, BM_CLICK, REPEATED, 0);  // a timer is no place for what may be modal
    else
        SetAlarm(RepeatInterval());
}

long CCUIButton::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case BM_GETCHECK: return static_cast<long>(GetCheck());
    case BM_SETCHECK: SetCheck(static_cast<UINT>(wParam)); return 0;
    case BM_GETSTATE:
        return static_cast<long>(GetCheck() | ((GetState() & CUI_STATE_PRESSED) ? BST_PUSHED : 0) |
                                 ((GetState() & CUI_STATE_FOCUSED) ? BST_FOCUS : 0));
    case BM_SETSTATE: SetState(CUI_STATE_PRESSED, wParam != 0); return 0;
    case BM_SETSTYLE:
        SetState(CUI_STATE_DEFAULT, (wParam & KIND_BITS) == BS_DEFPUSHBUTTON);
        return 0;
    case BM_CLICK:
        if (wParam != REPEATED)
            return CCUIControl::OnMessage(message, wParam, lParam);
        Repeat();
        return 0;
    default: return CCUIControl::OnMessage(message, wParam, lParam);
    }
}

void CCUIButton::OnLButtonDown(UINT nFlags, POINT &point)
{
    RECT client;
    CParts parts;
    GetClientRect(m_hWnd, &client);
    Arrange(client, parts);
    const bool bDrop = m_kind == CUI_BUTTON_DROPDOWN || PtInRect(&parts.rcArrow, point);
    if (!bDrop) {
        CCUIControl::OnLButtonDown(nFlags, point);
        return;
    }
    CWatch watch(this);
    if (m_bFocusOnClick && GetFocus() != m_hWnd)
        SetFocus(m_hWnd);
    if (!watch.IsGone())
        DropDown();
}

void CCUIButton::OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    const bool bMirrored = CUIIsMirrored(m_hWnd);
    const bool bForward = nKey == VK_DOWN || nKey == (bMirrored ? VK_LEFT : VK_RIGHT);
    const bool bBackward = nKey == VK_UP || nKey == (bMirrored ? VK_RIGHT : VK_LEFT);
    if (m_kind == CUI_BUTTON_RADIO && (bForward || bBackward) && MoveInGroup(bForward))
        return;
    if (HasArrow() && nKey == VK_F4)
        DropDown();
    else
        CCUIControl::OnKeyDown(nKey, nRepeat, nFlags);
}

void CCUIButton::OnSysKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    if (HasArrow() && nKey == VK_DOWN)
        DropDown();
    else
        CCUIControl::OnSysKeyDown(nKey, nRepeat, nFlags);
}

// --- The default button ---

void CCUIButton::SetDefault(bool bDefault)
{
    SetState(CUI_STATE_DEFAULT, bDefault);
    if (bDefault && IsInDialog())
        SendMessageA(GetParent(m_hWnd), DM_SETDEFID, static_cast<WPARAM>(GetDlgCtrlID(m_hWnd)), 0);
}

UINT CCUIButton::OnGetDlgCode(const MSG *)
{
    if (m_kind == CUI_BUTTON_RADIO)
        return DLGC_BUTTON | DLGC_RADIOBUTTON | DLGC_WANTARROWS;
    if (m_kind == CUI_BUTTON_CHECK)
        return DLGC_BUTTON;
    return DLGC_BUTTON |
           ((GetState() & CUI_STATE_DEFAULT) ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
}

// --- The menu ---

void CCUIButton::DropDown()
{
    if (m_bOpen || !HasWindow() || (GetState() & CUI_STATE_DISABLED))
        return;
    CWatch watch(this);
    const HWND hWnd = m_hWnd;
    m_bOpen = true;
    Repaint();
    UpdateWindow(hWnd);
    if (!watch.IsGone() && m_hWnd == hWnd)
        OnDropDown();
    if (watch.IsGone())
        return;
    m_bOpen = false;
    Repaint();
    RECT rect;
    if (m_hWnd == hWnd && GetWindowRect(hWnd, &rect))
        CUITakeClosingClick(hWnd, rect);
}

void CCUIButton::OnDropDown()
{
    CCUIWindow *pOwner = FindRouter();
    if (!pOwner)
        pOwner = FromHandle(GetParent(m_hWnd));
    RECT rect;
    GetWindowRect(m_hWnd, &rect);
    // The menu of a mirrored window begins at the right.
    POINT at = {CUIIsMirrored(m_hWnd) ? rect.right : rect.left, rect.bottom};
    (pOwner ? pOwner : this)->DisplayPopupMenu(m_pMenu, TPM_LEFTALIGN | TPM_VERTICAL, at, &rect);
}
