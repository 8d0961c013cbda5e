#include "CUI/SystemControl.h"

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "CUI/LayoutWindow.h"
#include "SystemControls/CommonControls.h"
#include "Window/OwnThread.h"

#define CU_SOURCE "SystemControl"

namespace {

// Characters: the first buffer that an item's text is read into, and the last.
const int SHORT_TEXT = 256;
const int LONGEST_TEXT = 1 << 24;

// The units of dialogs: parts of the font's average character.
const int UNITS_X = 4;
const int UNITS_Y = 8;

const char LETTERS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const int LETTER_COUNT = 52;

// As the system itself measures for dialogs.
SIZE AverageCharacter(HWND hWnd, HFONT hFont)
{
    const CCUIWindowDC hDC(hWnd);
    const CCUISelect font(hDC, hFont);
    SIZE size = {};
    GetTextExtentPoint32A(hDC, LETTERS, LETTER_COUNT, &size);
    return {(size.cx / (LETTER_COUNT / 2) + 1) / 2, size.cy};
}

}  // namespace

// Something that the control tells, on the stack: until it has been heard the control may not go.
class CCUISystemControl::CNotice : public CCUIWindow::CWatch
{
public:
    explicit CNotice(CCUISystemControl *pControl) : CWatch(pControl), m_pControl(pControl)
    {
        ++pControl->m_nNotices;
    }
    ~CNotice()
    {
        if (!IsGone())
            --m_pControl->m_nNotices;
    }

private:
    CCUISystemControl *const m_pControl;
};

CCUISystemControl::CCUISystemControl(const CCUISystemClass &systemClass)
    : m_class(systemClass),
      m_hSharedFont(nullptr),
      m_crText(CUI_NO_WINDOW_COLOR),
      m_crBrush(0),
      m_hBrush(nullptr),
      m_nNotices(0),
      m_bMade(false),
      m_bRedrawOff(false)
{
    if (m_class.bCommon)
        CUILoadCommonControls();
}

CCUISystemControl::~CCUISystemControl()
{
    if (!m_bMade) {
        Unbind();
    } else if (m_nNotices) {
        // The control goes on with what it was doing when it has told this.
        const HWND hWnd = Unbind();
        ShowWindow(hWnd, SW_HIDE);
        PostMessageA(hWnd, WM_CLOSE, 0, 0);
    } else {
        CCUIWindow::Destroy();
    }
    if (m_hBrush)
        DeleteObject(m_hBrush);
}

int CCUISystemControl::PreCreate(CREATESTRUCTA *pCreate)
{
    if (!pCreate->lpszClass)
        pCreate->lpszClass = m_class.pszName;
    m_bMade = true;
    m_bRedrawOff = false;
    return CCUIControlWindow::PreCreate(pCreate);
}

int CCUISystemControl::CreateControl(HWND hParent, UINT nID, const char *pszText, DWORD dwStyle,
                                     const RECT *prc)
{
    const RECT rect = prc ? *prc : RECT{0, 0, 0, 0};
    const char *const pszClass = m_class.pszName;
    CWatch watch(this);
    if (!CreateEx(m_class.dwExStyle, nullptr, pszText,
                  WS_CHILD | WS_VISIBLE | (dwStyle ? dwStyle : m_class.dwStyle), rect.left,
                  rect.top, CUIWidth(rect), CUIHeight(rect), hParent, reinterpret_cast<HMENU>(nID)))
    {
        CUDump("No control of class %s, gle: %lu\n", pszClass, GetLastError());
        return 0;
    }
    if (watch.IsGone())
        return 0;
    UseSharedFont();
    if (!prc && !watch.IsGone() && m_hWnd) {
        SIZE size = {};
        GetNaturalSize(size);
        SetWindowPos(m_hWnd, nullptr, 0, 0, size.cx, size.cy,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    return 1;
}

void CCUISystemControl::GetNaturalSize(SIZE &size)
{
    // Some have no text, and keep no font.
    const HFONT hFont = GetFont();
    const SIZE character = AverageCharacter(m_hWnd, hFont ? hFont : m_hSharedFont);
    size = {MulDiv(m_class.cx, character.cx, UNITS_X), MulDiv(m_class.cy, character.cy, UNITS_Y)};
}

long CCUISystemControl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == CUI_WM_NATURALSIZE) {
        GetNaturalSize(*reinterpret_cast<SIZE *>(lParam));
        return 1;
    }
    CWatch watch(this);
    const long nResult = CCUIControlWindow::OnMessage(message, wParam, lParam);
    if ((message == WM_SETFONT || message == WM_SETTEXT || message == STM_SETIMAGE) &&
        !watch.IsGone())
        NaturalSizeChanged();
    return nResult;
}

void CCUISystemControl::UseSharedFont()
{
    CWatch watch(this);
    const auto hParentFont =
        reinterpret_cast<HFONT>(SendMessageA(GetParent(m_hWnd), WM_GETFONT, 0, 0));
    if (watch.IsGone())
        return;
    m_hSharedFont = hParentFont ? hParentFont : CUIGetWinData()->hMenuFont;
    SetFont(m_hSharedFont);
}

// The fonts of the system's settings have been made anew; the old ones are gone.
void CCUISystemControl::OnWinIniChange(WPARAM nAction, const char *section)
{
    const HFONT hFont = GetFont();
    CWatch watch(this);
    if (m_hSharedFont && (!hFont || hFont == m_hSharedFont))
        UseSharedFont();
    if (watch.IsGone())
        return;
    CCUIControlWindow::OnWinIniChange(nAction, section);
}

bool CCUISystemControl::IsOfClass(HWND hWnd) const
{
    char szClass[64] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    return lstrcmpiA(szClass, m_class.pszName) == 0 ||
           (m_class.nProbe && SendMessageA(hWnd, m_class.nProbe, 0, 0));
}

int CCUISystemControl::Bind(HWND hDialog, UINT nID)
{
    CU_ASSERT_TEXT(!HasWindow(), "m_hWnd == 0");
    const HWND hWnd = GetDlgItem(hDialog, static_cast<int>(nID));
    if (!CUIIsOwnWindow(hWnd)) {
        CUDump("No control %u of this thread to be bound.\n", nID);
        return 0;
    }
    const bool bFits = IsOfClass(hWnd);
    CU_ASSERT_TEXT(bFits, "IsOfClass(hWnd)");
    if (!bFits || m_hWnd)
        return 0;
    Attach(hWnd);
    if (!m_hWnd)
        return 0;
    m_bMade = false;
    m_bRedrawOff = false;
    m_hSharedFont = nullptr;
    PublishLayoutData(m_hWnd);
    // A parent that was of Unicode before it was a framework window has other notifications.
    if (m_class.bCommon)
        Send(WM_NOTIFYFORMAT, FromPointer<WPARAM>(GetParent(m_hWnd)), NF_REQUERY);
    return 1;
}

HWND CCUISystemControl::Unbind()
{
    if (!HasWindow())
        return nullptr;
    PublishLayoutData(nullptr);
    return Detach();
}

void CCUISystemControl::Enable(bool bEnable)
{
    CWatch watch(this);
    if (!bEnable && m_hWnd && GetFocus() && (GetFocus() == m_hWnd || IsChild(m_hWnd, GetFocus())))
        PassFocusOn();
    if (!watch.IsGone())
        EnableWindow(m_hWnd, bEnable);
}

// To a control that is hidden, WM_SETREDRAW would say that it is shown.
void CCUISystemControl::SetRedraw(bool bRedraw)
{
    if (bRedraw != m_bRedrawOff || (!bRedraw && !IsShown()))
        return;
    m_bRedrawOff = !bRedraw;
    Send(WM_SETREDRAW, bRedraw);
    if (bRedraw)
        RedrawWindow(m_hWnd, nullptr, nullptr,
                     RDW_ERASE | RDW_FRAME | RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void CCUISystemControl::SetTextColor(DWORD crText)
{
    m_crText = crText;
    if (m_hWnd)
        InvalidateRect(m_hWnd, nullptr, TRUE);
}

int CCUISystemControl::PreTranslateMessage(MSG *pMsg)
{
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN && IsReturnFor(pMsg->hwnd)) {
        CWatch watch(this);
        if (OnReturn() || watch.IsGone())
            return 1;
    }
    return CCUIControlWindow::PreTranslateMessage(pMsg);
}

int CCUISystemControl::OnReflectedMessage(UINT message, WPARAM wParam, LPARAM lParam, long &result)
{
    const CNotice notice(this);
    switch (message) {
    case WM_COMMAND: return OnControlCommand(HIWORD(wParam));
    case WM_HSCROLL:
    case WM_VSCROLL: return OnControlScroll(LOWORD(wParam));
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORSTATIC:
        result = GetColors(message, reinterpret_cast<HDC>(wParam));
        return result != 0;
    default: return CCUIControlWindow::OnReflectedMessage(message, wParam, lParam, result);
    }
}

// The brush of a control with colours of its own; 0: it has none.
long CCUISystemControl::GetColors(UINT message, HDC hDC)
{
    const COLORREF crWindow = m_propData.crWindow;
    if (crWindow == CUI_NO_WINDOW_COLOR && m_crText == CUI_NO_WINDOW_COLOR)
        return 0;
    const CUIData &data = *CUIGetWinData();
    LRESULT nBrush = DefWindowProcA(GetParent(m_hWnd), message, FromPointer<WPARAM>(hDC),
                                    FromPointer<LPARAM>(m_hWnd));
    if (crWindow != CUI_NO_WINDOW_COLOR) {
        // One that the screen has, or the brush would mix others, which the text's ground cannot.
        const COLORREF cr = GetNearestColor(hDC, data.ResolveColor(crWindow));
        if (!m_hBrush || cr != m_crBrush) {
            if (m_hBrush)
                DeleteObject(m_hBrush);
            m_hBrush = CreateSolidBrush(cr);
            m_crBrush = cr;
        }
        SetBkColor(hDC, cr);
        nBrush = FromPointer<LRESULT>(m_hBrush);
    }
    if (m_crText != CUI_NO_WINDOW_COLOR)
        ::SetTextColor(hDC, data.ResolveColor(m_crText));
    return nBrush;
}

int CCUISystemControl::OnReflectedNotification(UINT, NMHDR *pHeader, long &result)
{
    const CNotice notice(this);
    return OnControlNotify(pHeader, result);
}

CCUString CCUISystemControl::FetchText(UINT nLengthMessage, UINT nTextMessage, WPARAM nItem) const
{
    CCUString sText;
    const LRESULT nLength = Send(nLengthMessage, nItem);
    if (nLength > 0) {
        char *const pszText = sText.GetBuffer(nLength);
        Send(nTextMessage, nItem, pszText);
        pszText[nLength] = '\0';
        sText.ReleaseBuffer();
    }
    return sText;
}

CCUString CCUISystemControl::FetchText(UINT nMessage, WPARAM wParam, void *pItem, char *&pszText,
                                       int &nMax) const
{
    CCUString sText;
    for (int nRoom = SHORT_TEXT;; nRoom *= 4) {
        char *const pszRoom = sText.GetBuffer(nRoom);
        *pszRoom = '\0';
        pszText = pszRoom;
        nMax = nRoom + 1;
        Send(nMessage, wParam, pItem);
        // The control may have put a text of its own in the place of the buffer.
        if (pszText && pszText != pszRoom)
            lstrcpynA(pszRoom, pszText, nRoom + 1);
        sText.ReleaseBuffer();
        if (sText.GetLength() < nRoom || nRoom >= LONGEST_TEXT)
            return sText;
    }
}
