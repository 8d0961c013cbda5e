#include "CUI/PrintPreview.h"

#include "Base/Wrap.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/ScrollBar.h"
#include "Layout/WheelStep.h"

namespace {

// Pixels at 96 dots per inch.
const int GAP = 10;    // around the page
const int SHADOW = 3;  // of the page
const int ARROW = 40;  // that an arrow scrolls by
const int LEAST = 10;  // per cent
const int MOST = 400;

int Limited(int n, int nLeast, int nMost)
{
    return n > nMost ? nMost : n < nLeast ? nLeast : n;
}

}  // namespace

CCUIPrintPreview::CCUIPrintPreview()
    : m_pPages(nullptr),
      m_paper(),
      m_nPages(0),
      m_nPage(0),
      m_nPercent(0),
      m_nWheel(0),
      m_view(),
      m_page(),
      m_at(),
      m_bArranging(false)
{
    m_nShownStates = 0;
    m_bOpaque = true;
}

CCUIPrintPreview::~CCUIPrintPreview() = default;

int CCUIPrintPreview::PreCreate(CREATESTRUCTA *pCreate)
{
    pCreate->style |= WS_HSCROLL | WS_VSCROLL;
    return CCUIControl::PreCreate(pCreate);
}

void CCUIPrintPreview::SetPages(CCUIPages *pPages, const CUIPaper &paper)
{
    CWatch watch(this);
    const int nPages = pPages ? pPages->GetPageCount() : 0;
    if (watch.IsGone())
        return;
    m_pPages = pPages;
    m_paper = paper;
    m_nPages = CUILarger(nPages, 0);
    m_nPage = Limited(m_nPage, 0, m_nPages ? m_nPages - 1 : 0);
    Arrange();
}

void CCUIPrintPreview::SetPage(int nPage)
{
    m_nPage = Limited(nPage, 0, m_nPages ? m_nPages - 1 : 0);
    m_at.y = 0;
    Arrange();
}

// In pixels at 100 per cent.
SIZE CCUIPrintPreview::PaperSize() const
{
    const CUIData *const pData = CUIGetWinData();
    const int cx = MulDiv(m_paper.size.cx, pData->cxPixelsPerInch, CUI_PAPER_INCH);
    const int cy = MulDiv(m_paper.size.cy, pData->cyPixelsPerInch, CUI_PAPER_INCH);
    return {cx > 0 ? cx : 1, cy > 0 ? cy : 1};
}

void CCUIPrintPreview::SetZoom(int nPercent)
{
    const int nOld = m_nPercent;
    m_nPercent = nPercent ? Limited(nPercent, LEAST, MOST) : 0;
    if (!m_hWnd || m_nPercent == nOld)
        return;
    const POINT place = PagePlace();
    const SIZE page = m_page;
    const double x = page.cx ? (m_view.cx / 2. - place.x) / page.cx : 0;
    const double y = page.cy ? (m_view.cy / 2. - place.y) / page.cy : 0;
    CWatch watch(this);
    Arrange();
    if (watch.IsGone())
        return;
    // The view has another size now, too.
    const POINT moved = PagePlace();
    m_at.x += moved.x + static_cast<LONG>(x * m_page.cx) - m_view.cx / 2;
    m_at.y += moved.y + static_cast<LONG>(y * m_page.cy) - m_view.cy / 2;
    Arrange();
}

int CCUIPrintPreview::GetZoom() const
{
    return m_nPercent ? m_nPercent : MulDiv(m_page.cx, 100, PaperSize().cx);
}

void CCUIPrintPreview::StepZoom(bool bLarger)
{
    static const int STEPS[] = {LEAST, 25, 50, 75, 100, 150, 200, 300, MOST};
    const int nNow = GetZoom();
    int nNext = 0;
    for (const int nStep : STEPS) {
        const bool bNext = bLarger ? nNext == 0 && nStep > nNow : nStep < nNow;
        nNext = bNext ? nStep : nNext;
    }
    // A page as large as there is room may be larger, or smaller, than all of them.
    if (nNext)
        SetZoom(nNext);
}

// The page's size in the view that there is.
void CCUIPrintPreview::Measure()
{
    const RECT client = GetClientArea();
    m_view = {client.right, client.bottom};
    const SIZE paper = PaperSize();
    if (m_nPercent) {
        m_page = {MulDiv(paper.cx, m_nPercent, 100), MulDiv(paper.cy, m_nPercent, 100)};
        return;
    }
    const int cx = Limited(m_view.cx - 2 * Scaled(GAP), 1, m_view.cx + 1);
    const int cy = Limited(m_view.cy - 2 * Scaled(GAP), 1, m_view.cy + 1);
    const int cxFitting = MulDiv(paper.cx, cy, paper.cy);
    m_page = cxFitting <= cx ? SIZE{cxFitting, cy} : SIZE{cx, MulDiv(paper.cy, cx, paper.cx)};
}

// False: the object has gone.
bool CCUIPrintPreview::SetBar(int nBar, int nAll, int nView, LONG &nAt)
{
    const int nMost = nAll > nView ? nAll - nView : 0;
    nAt = Limited(nAt, 0, nMost);
    const SCROLLINFO info = {sizeof info,
                             SIF_RANGE | SIF_PAGE | SIF_POS,
                             0,
                             nMost ? nAll - 1 : 0,
                             nMost ? static_cast<UINT>(nView) : 1,
                             static_cast<int>(nAt),
                             0};
    CWatch watch(this);
    SetScrollInfo(m_hWnd, nBar, &info, TRUE);
    return !watch.IsGone();
}

// Each scroll bar takes room from the other one, so that which are there now says nothing.
void CCUIPrintPreview::Arrange()
{
    if (m_bArranging || !m_hWnd)
        return;
    m_bArranging = true;
    Measure();
    const CUIData *const pData = CUIGetWinData();
    const LONG nStyle = GetWindowLongA(m_hWnd, GWL_STYLE);
    SIZE room = {m_view.cx + (nStyle & WS_VSCROLL ? pData->cxVScroll : 0),
                 m_view.cy + (nStyle & WS_HSCROLL ? pData->cyHScroll : 0)};
    SIZE all = {0, 0};
    if (m_nPercent)
        all = {m_page.cx + 2 * Scaled(GAP), m_page.cy + 2 * Scaled(GAP)};
    const bool bAcross = all.cx > room.cx;
    const bool bDown = all.cy > room.cy - (bAcross ? pData->cyHScroll : 0);
    room.cx -= bDown ? pData->cxVScroll : 0;
    room.cy -= all.cx > room.cx ? pData->cyHScroll : 0;
    if (!SetBar(SB_HORZ, all.cx, room.cx, m_at.x) || !SetBar(SB_VERT, all.cy, room.cy, m_at.y))
        return;
    Measure();
    m_bArranging = false;
    Repaint();
}

POINT CCUIPrintPreview::PagePlace() const
{
    const int nGap = Scaled(GAP);
    const int x = (m_view.cx - m_page.cx) / 2, y = (m_view.cy - m_page.cy) / 2;
    return {(x > nGap ? x : nGap) - m_at.x, (y > nGap ? y : nGap) - m_at.y};
}

void CCUIPrintPreview::Paint(HDC hDC, const RECT &rect)
{
    Fill(hDC, rect, GetSysColor(COLOR_APPWORKSPACE));
    if (!m_pPages || m_nPages == 0)
        return;
    const POINT place = PagePlace();
    const RECT page = {place.x, place.y, place.x + m_page.cx, place.y + m_page.cy};
    RECT shadow = page;
    OffsetRect(&shadow, Scaled(SHADOW), Scaled(SHADOW));
    Fill(hDC, shadow, GetSysColor(COLOR_3DDKSHADOW));
    CUIDCFillSolidRect(hDC, &page, RGB(255, 255, 255));
    CUIDCDrawRect(hDC, &page, 0);
    IntersectClipRect(hDC, page.left, page.top, page.right, page.bottom);
    SetMapMode(hDC, MM_ANISOTROPIC);
    SetWindowExtEx(hDC, m_paper.size.cx, m_paper.size.cy, nullptr);
    SetViewportExtEx(hDC, m_page.cx, m_page.cy, nullptr);
    SetViewportOrgEx(hDC, page.left, page.top, nullptr);
    m_pPages->DrawPage(hDC, m_nPage);
}

void CCUIPrintPreview::OnSize(UINT nType, int cx, int cy)
{
    CWatch watch(this);
    CCUIControl::OnSize(nType, cx, cy);
    if (!watch.IsGone())
        Arrange();
}

void CCUIPrintPreview::OnHScroll(UINT nCode, UINT, HWND)
{
    if (CUIFollowScrollBar(m_hWnd, SB_HORZ, nCode, Scaled(ARROW))) {
        m_at.x = GetScrollPos(m_hWnd, SB_HORZ);
        Repaint();
    }
}

void CCUIPrintPreview::OnVScroll(UINT nCode, UINT, HWND)
{
    if (CUIFollowScrollBar(m_hWnd, SB_VERT, nCode, Scaled(ARROW))) {
        m_at.y = GetScrollPos(m_hWnd, SB_VERT);
        Repaint();
    }
}

void CCUIPrintPreview::OnMouseWheel(UINT nFlags, int nDelta, POINT &)
{
    m_nWheel += nDelta;
    const int nNotches = m_nWheel / WHEEL_DELTA;
    m_nWheel %= WHEEL_DELTA;
    if (nNotches == 0)
        return;
    if (nFlags & MK_CONTROL)
        StepZoom(nNotches > 0);
    else
        ScrollOrTurn(-nNotches * CUIWheelStep(m_view.cy));
}

// Down or up; from the end of a page to the next one. 0: not at all, which users may set of the
// wheel.
void CCUIPrintPreview::ScrollOrTurn(int nBy)
{
    if (nBy == 0)
        return;
    const int nNext = m_nPage + (nBy > 0 ? 1 : -1);
    const LONG nOld = m_at.y;
    m_at.y += nBy;
    CWatch watch(this);
    Arrange();
    if (watch.IsGone() || m_at.y != nOld || nNext < 0 || nNext >= m_nPages)
        return;
    SetPage(nNext);
    if (watch.IsGone() || nBy > 0)
        return;
    m_at.y = m_page.cy;
    Arrange();
}

void CCUIPrintPreview::OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    switch (nKey) {
    case VK_UP: ScrollOrTurn(-Scaled(ARROW)); break;
    case VK_DOWN: ScrollOrTurn(Scaled(ARROW)); break;
    case VK_PRIOR: ScrollOrTurn(-CUILarger(1, m_view.cy)); break;
    case VK_NEXT: ScrollOrTurn(CUILarger(1, m_view.cy)); break;
    case VK_HOME: SetPage(0); break;
    case VK_END: SetPage(m_nPages); break;
    case VK_LEFT: OnHScroll(SB_LINELEFT, 0, nullptr); break;
    case VK_RIGHT: OnHScroll(SB_LINERIGHT, 0, nullptr); break;
    default: CCUIControl::OnKeyDown(nKey, nRepeat, nFlags);
    }
}

UINT CCUIPrintPreview::OnGetDlgCode(const MSG *)
{
    return DLGC_WANTARROWS;
}
