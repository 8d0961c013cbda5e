#include "CUI/StatusBar.h"

#include <commctrl.h>

#include "CU/Assert.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Command/CommandText.h"
#include "Drawing/BufferedPaint.h"
#include "Drawing/Look.h"
#include "Frame/StatusPane.h"
#include "Window/Mirrored.h"
#include "Window/OwnThread.h"

#define CU_SOURCE "StatusBar"

namespace {

// No window is wider; sums of sizes and weights stay in an int.
const int MOST_SIZE = 32767;

// What the parent hears of a message of the mouse; 0: nothing.
UINT ClickOf(UINT message)
{
    switch (message) {
    case WM_LBUTTONUP: return NM_CLICK;
    case WM_LBUTTONDBLCLK: return NM_DBLCLK;
    case WM_RBUTTONUP: return NM_RCLICK;
    case WM_RBUTTONDBLCLK: return NM_RDBLCLK;
    default: return 0;
    }
}

// The corner with the grip, as the system calls it.
long CornerOf(HWND hWnd)
{
    return CUIIsMirrored(hWnd) ? HTBOTTOMLEFT : HTBOTTOMRIGHT;
}

}  // namespace

CCUIStatusBar::CCUIStatusBar() : m_pPanes(new CCUIStatusPanes), m_bHelp(false), m_bGrip(false)
{
    CCUIStatusBar::AddPane(CUI_PANE_STRETCH, 1);
}

CCUIStatusBar::~CCUIStatusBar()
{
    delete m_pPanes;
}

int CCUIStatusBar::CreateBar(HWND hParent, UINT nID)
{
    const RECT rcNone = {0, 0, 0, 0};
    return Create(nullptr, "", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, rcNone, hParent, nID);
}

// --- Panes ---

CCUIStatusPane *CCUIStatusBar::Pane(int nPane) const
{
    // While this thread paints, it would read what another one has half written.
    CU_ASSERT_TEXT(CUIIsOwnThread(m_hWnd), "IsOwnThread()");
    CCUIStatusPane *const pPane =
        nPane >= 0 && nPane < m_pPanes->Count() ? &(*m_pPanes)[nPane] : nullptr;
    CU_ASSERT(pPane);
    return pPane;
}

int CCUIStatusBar::GetPaneCount() const
{
    return m_pPanes->Count();
}

int CCUIStatusBar::AddPane(CUIPaneWidth width, int nSize)
{
    m_pPanes->Add(CCUIStatusPane());
    const int nPane = m_pPanes->Count() - 1;
    SetPaneWidth(nPane, width, nSize);
    return nPane;
}

void CCUIStatusBar::SetPaneWidth(int nPane, CUIPaneWidth width, int nSize)
{
    CCUIStatusPane *const pPane = Pane(nPane);
    if (!pPane)
        return;
    const int nLeast = width == CUI_PANE_STRETCH ? 1 : 0;
    pPane->width = width;
    pPane->nSize = nSize < nLeast ? nLeast : nSize > MOST_SIZE ? MOST_SIZE : nSize;
    Layout();
}

void CCUIStatusBar::RemovePane(int nPane)
{
    CCUIStatusPane *const pPane = Pane(nPane);
    if (!pPane || m_pPanes->Count() == 1)
        return;
    Repaint(pPane->rc);
    m_pPanes->Remove(nPane, 1);
    Layout();
    SetFixedSize(m_pPanes->NaturalHeight());
}

RECT CCUIStatusBar::GetPaneRect(int nPane) const
{
    const CCUIStatusPane *const pPane = Pane(nPane);
    return pPane ? pPane->rc : RECT{0, 0, 0, 0};
}

int CCUIStatusBar::HitTest(const POINT &point) const
{
    for (int i = 0; i < m_pPanes->Count(); ++i) {
        if (PtInRect(&(*m_pPanes)[i].rc, point))
            return i;
    }
    return -1;
}

void CCUIStatusBar::SetText(int nPane, const char *pszText)
{
    CCUIStatusPane *const pPane = Pane(nPane);
    const CCUString sText(pszText);
    if (!pPane || pPane->sText == sText)
        return;
    pPane->sText = sText;
    pPane->cxContent = -1;
    Repaint(*pPane, true);
}

CCUString CCUIStatusBar::GetText(int nPane) const
{
    const CCUIStatusPane *const pPane = Pane(nPane);
    return pPane ? pPane->sText : CCUString();
}

void CCUIStatusBar::SetPicture(int nPane, const CCUIBitmap &bitmap, int nDpi)
{
    CCUIStatusPane *const pPane = Pane(nPane);
    if (!pPane || (pPane->given.GetData() == bitmap.GetData() && pPane->nDpi == nDpi))
        return;
    const int nHeight = pPane->picture.Height();
    pPane->given = bitmap;
    pPane->nDpi = nDpi;
    pPane->RefreshPicture();
    const bool bHigher = pPane->picture.Height() != nHeight;
    pPane->cxContent = -1;
    Repaint(*pPane, true);
    if (bHigher)
        Remeasure();
}

void CCUIStatusBar::SetProgress(int nPane, int nValue, int nMost)
{
    CCUIStatusPane *const pPane = Pane(nPane);
    if (!pPane)
        return;
    // Only what lies between the old end and the new one changes.
    RECT rcChanged = pPane->ProgressRect();
    const LONG nOld = rcChanged.right;
    pPane->nMost = nMost > 0 ? nMost : 0;
    pPane->nProgress = nValue < 0 ? 0 : nValue > pPane->nMost ? pPane->nMost : nValue;
    const LONG nNew = pPane->ProgressRect().right;
    if (nNew == nOld)
        return;
    rcChanged.left = nNew < nOld ? nNew : nOld;
    rcChanged.right = nNew < nOld ? nOld : nNew;
    Repaint(rcChanged);
    // Who counts does not come to his messages.
    if (m_hWnd)
        UpdateWindow(m_hWnd);
}

// --- Help ---

void CCUIStatusBar::SetHelp(bool bHelp, const CCUString &sText)
{
    CU_ASSERT_TEXT(CUIIsOwnThread(m_hWnd), "IsOwnThread()");
    if (m_bHelp == bHelp && m_sHelp == sText)
        return;
    m_bHelp = bHelp;
    m_sHelp = sText;
    Repaint((*m_pPanes)[0], false);
}

void CCUIStatusBar::ShowCommandHelp(UINT nID, UINT nFlags)
{
    CWatch watch(this);
    const CCUString sText = CUICommandHelp(nID, nFlags);
    if (watch.IsGone())
        return;
    if (sText.IsEmpty())
        ClearHelp();
    else
        ShowHelp(sText);
}

// --- Places ---

void CCUIStatusBar::Repaint(const RECT &rect)
{
    // Of thousands of panes few have room.
    if (m_hWnd && !IsRectEmpty(&rect))
        InvalidateRect(m_hWnd, &rect, FALSE);
}

// Repaints one pane whose content has changed, and with it perhaps its width.
void CCUIStatusBar::Repaint(const CCUIStatusPane &pane, bool bWidth)
{
    Repaint(pane.rc);
    if (bWidth && pane.width == CUI_PANE_FIT)
        Layout();
}

// The font or a picture is another one.
void CCUIStatusBar::Remeasure()
{
    m_pPanes->ForgetWidths();
    Layout();
    SetFixedSize(m_pPanes->NaturalHeight());
}

// What stands where it stood is not painted again.
void CCUIStatusBar::Layout()
{
    if (!m_hWnd)
        return;
    RECT client;
    GetClientRect(m_hWnd, &client);
    m_bGrip = SizingWindow() != nullptr;
    m_pPanes->Layout(m_bGrip ? GripRect().left : client.right, client.bottom);
    for (int i = 0; i < m_pPanes->Count(); ++i) {
        const CCUIStatusPane &pane = (*m_pPanes)[i];
        if (EqualRect(&pane.rc, &pane.rcBefore))
            continue;
        Repaint(pane.rcBefore);
        Repaint(pane.rc);
    }
}

// The window that is sized by the grip, or null where there must be none: it can be sized now, and
// the corners of both are the same.
HWND CCUIStatusBar::SizingWindow() const
{
    HWND hTop = m_hWnd;
    while (hTop && (GetWindowLongA(hTop, GWL_STYLE) & WS_CHILD))
        hTop = GetParent(hTop);
    if (!hTop || hTop == m_hWnd || !(GetWindowLongA(hTop, GWL_STYLE) & WS_THICKFRAME) ||
        IsZoomed(hTop))
        return nullptr;
    RECT rcTop;
    RECT rcBar;
    GetClientRect(hTop, &rcTop);
    GetClientRect(m_hWnd, &rcBar);
    MapWindowPoints(m_hWnd, hTop, reinterpret_cast<POINT *>(&rcBar), 2);
    const int nNear = CUIScale(3);
    return rcTop.right - rcBar.right <= nNear && rcTop.bottom - rcBar.bottom <= nNear ? hTop
                                                                                      : nullptr;
}

RECT CCUIStatusBar::GripRect() const
{
    RECT rect;
    GetClientRect(m_hWnd, &rect);
    const int nSize = CUIGetWinData()->cxVScroll;
    rect.left = rect.right - nSize;
    rect.top = rect.bottom > nSize ? rect.bottom - nSize : 0;
    return rect;
}

void CCUIStatusBar::OnSized()
{
    Layout();
    // All that was to the right of the panes, and may still show the grip.
    RECT rcRest;
    GetClientRect(m_hWnd, &rcRest);
    rcRest.left = (*m_pPanes)[m_pPanes->Count() - 1].rc.right;
    Repaint(rcRest);
}

// --- Painting ---

void CCUIStatusBar::OnPaint(HDC hDC)
{
    const CUIData *const pData = CUIGetWinData();
    CCUIBufferedPaint paint(m_hWnd, hDC);
    const HDC hPicture = paint.Begin(pData->hStatusFont);
    const unsigned long crWindow = m_propData.crWindow;
    const DWORD crText = pData->crSys[IsWindowEnabled(m_hWnd) ? COLOR_BTNTEXT : COLOR_GRAYTEXT];
    // With the brush where there can be one: of few colours it mixes what the frame around has.
    if (crWindow == CUI_NO_WINDOW_COLOR)
        FillRect(hPicture, &paint.Area(), pData->hbrBtnFace);
    else
        CUIDCFillSolidRect(hPicture, &paint.Area(), pData->ResolveColor(crWindow));
    for (int i = 0; i < m_pPanes->Count(); ++i) {
        const CCUIStatusPane &pane = (*m_pPanes)[i];
        if (paint.Touches(pane.rc))
            pane.Draw(hPicture, m_bHelp && i == 0 ? &m_sHelp : nullptr,
                      pData->ResolveColor(crText));
    }
    RECT rcGrip = GripRect();
    if (m_bGrip && paint.Touches(rcGrip))
        DrawFrameControl(hPicture, &rcGrip, DFC_SCROLL, DFCS_SCROLLSIZEGRIP);
}

void CCUIStatusBar::ReloadPictures()
{
    for (int i = 0; i < m_pPanes->Count(); ++i)
        (*m_pPanes)[i].RefreshPicture();
}

// --- The mouse ---

int CCUIStatusBar::OnPaneClick(int nPane, int nCode, POINT &point)
{
    CUIPaneNotification notification = {{m_hWnd, 0, 0}, nPane, point};
    notification.header.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(m_hWnd));
    notification.header.code = static_cast<UINT>(nCode);
    return SendMessageA(GetParent(m_hWnd), WM_NOTIFY, notification.header.idFrom,
                        reinterpret_cast<LPARAM>(&notification));
}

// Whether the click is done with.
bool CCUIStatusBar::PaneClicked(UINT nCode, POINT point)
{
    CWatch watch(this);
    return OnPaneClick(HitTest(point), static_cast<int>(nCode), point) != 0 || watch.IsGone() ||
           !m_hWnd;
}

bool CCUIStatusBar::IsInGrip(POINT screen) const
{
    MapWindowPoints(nullptr, m_hWnd, &screen, 1);
    const RECT rcGrip = GripRect();
    return SizingWindow() && PtInRect(&rcGrip, screen);
}

// What a message does before the base class gets it. True: it was all, the base does not get it.
bool CCUIStatusBar::Handle(UINT message, WPARAM wParam, LPARAM lParam, long &result)
{
    const POINT point = {static_cast<SHORT>(LOWORD(lParam)), static_cast<SHORT>(HIWORD(lParam))};
    HWND hSizing = nullptr;
    switch (message) {
    case WM_CREATE: m_propData.nFixedSize = m_pPanes->NaturalHeight(); return false;
    case WM_SYSCOLORCHANGE: ReloadPictures(); return false;
    case WM_ERASEBKGND: result = 1; return true;
    case WM_NCHITTEST: result = IsInGrip(point) ? CornerOf(m_hWnd) : HTNOWHERE; return result != 0;
    case WM_NCLBUTTONDOWN:
        // By default the system would size this window.
        hSizing = wParam == static_cast<WPARAM>(CornerOf(m_hWnd)) ? SizingWindow() : nullptr;
        if (hSizing)
            result = SendMessageA(hSizing, message, wParam, lParam);
        return hSizing != nullptr;
    default: break;
    }
    // By default the system asks for the context menu when the right button goes up.
    const UINT nClick = ClickOf(message);
    return nClick && PaneClicked(nClick, point);
}

long CCUIStatusBar::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    CWatch watch(this);
    long result = 0;
    if (Handle(message, wParam, lParam, result))
        return result;
    result = CCUIControlWindow::WindowProc(message, wParam, lParam);
    if (watch.IsGone() || !m_hWnd)
        return result;
    const bool bSettings = message == WM_WININICHANGE;
    if (bSettings || message == WM_SYSCOLORCHANGE || message == WM_ENABLE)
        InvalidateRect(m_hWnd, nullptr, FALSE);
    if (message == WM_SIZE)
        OnSized();
    else if (bSettings)
        Remeasure();
    return result;
}
