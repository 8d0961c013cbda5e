// What makes a layout window lay out, and how it does. The other sources have the way of the focus,
// scrolling and the moves of splitters.

#include "CUI/LayoutWindow.h"

#include "CU/Dump.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Layout/LayoutMover.h"
#include "Layout/Splitter.h"

namespace {

// What the window posts to itself as CUI_WM_LAYOUT: children have come or gone.
const LPARAM LAYOUT_DUE = 0;

// A child that changes its size when it is laid out asks for another round. This many at most, so
// that one which always does cannot hang the program.
const int MOST_ROUNDS = 8;

}  // namespace

CCUILayoutWindow::CCUILayoutWindow(Direction direction)
    : m_pItems(new CCUILayoutItems),
      m_rcMargins(),
      m_sizeTold(),
      m_hLastFocus(nullptr),
      m_direction(direction),
      m_nGap(0),
      m_nScrollPos(0),
      m_nScrollLength(0),
      m_nScrollPage(0),
      m_nScrollBarPos(0),
      m_nWheel(0),
      m_nSuspended(0),
      m_bScrolls(false),
      m_bStale(true),
      m_bPosted(false),
      m_bLayingOut(false),
      m_bAgain(false)
{
}

CCUILayoutWindow::~CCUILayoutWindow()
{
    // While the object is still one of this class: splitters call it when their windows go.
    m_pItems->Clear();
    DropOrphans();
    delete m_pItems;
}

int CCUILayoutWindow::PreCreate(CREATESTRUCTA *pCreate)
{
    pCreate->style |= WS_CLIPCHILDREN;
    pCreate->dwExStyle |= WS_EX_CONTROLPARENT;
    return CCUIControlWindow::PreCreate(pCreate);
}

// --- Settings ---

void CCUILayoutWindow::Put(int &nSetting, int nValue)
{
    if (nSetting == nValue)
        return;
    nSetting = nValue;
    Layout();
}

void CCUILayoutWindow::SetDirection(Direction direction)
{
    if (direction == m_direction)
        return;
    m_direction = direction;
    CWatch watch(this);
    HideScrollBars();
    if (!watch.IsGone())
        Layout();
}

void CCUILayoutWindow::SetGap(int nGap)
{
    Put(m_nGap, CUIInRange(nGap));
}

void CCUILayoutWindow::SetMargins(const RECT &rcMargins)
{
    if (EqualRect(&rcMargins, &m_rcMargins))
        return;
    m_rcMargins = {CUIInRange(rcMargins.left), CUIInRange(rcMargins.top),
                   CUIInRange(rcMargins.right), CUIInRange(rcMargins.bottom)};
    Layout();
}

void CCUILayoutWindow::Suspend()
{
    ++m_nSuspended;
}

void CCUILayoutWindow::Resume()
{
    if (m_nSuspended > 0 && --m_nSuspended == 0 && m_bAgain)
        Layout();
}

// --- What others tell ---

long CCUILayoutWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto hChild = reinterpret_cast<HWND>(wParam);
    switch (message) {
    case CUI_WM_LAYOUT: HearLayout(hChild, lParam); return 1;
    case CUI_WM_NATURALSIZE: *reinterpret_cast<SIZE *>(lParam) = GetMinimumSize(); return 1;
    case CUI_WM_TABKEY: return MoveFocus(hChild);
    case CUI_WM_CHILDFOCUS: HearFocus(hChild); return 1;
    case WM_NEXTDLGCTL: return HandOnFocus(wParam, lParam);
    default: return CCUIControlWindow::OnMessage(message, wParam, lParam);
    }
}

// What was posted comes late: the child may be gone, or laid out already.
void CCUILayoutWindow::HearLayout(HWND hChild, LPARAM nCode)
{
    if (nCode == LAYOUT_DUE) {
        m_bPosted = false;
        Layout();
        return;
    }
    CCUILayoutItem *const pItem = hChild ? m_pItems->Find(hChild) : nullptr;
    const bool bVisible = (GetWindowLongA(hChild, GWL_STYLE) & WS_VISIBLE) != 0;
    bool bChanged = m_bStale;
    if (nCode == CUI_LAYOUT_ALL || (!pItem && GetParent(hChild) == m_hWnd))
        bChanged = m_bStale = true;
    else if (pItem && nCode == CUI_LAYOUT_CHANGED)
        bChanged = CCUILayoutItems::Reload(*pItem) || bChanged;
    else if (pItem)
        bChanged = pItem->bPlaced != (bVisible || pItem->Has(CUI_PLACE_KEEP)) || bChanged;
    if (bChanged)
        Layout();
}

void CCUILayoutWindow::OnParentNotify(UINT nEvent, UINT nID, LPARAM lParam)
{
    const bool bComesOrGoes = nEvent == WM_CREATE || nEvent == WM_DESTROY;
    if (bComesOrGoes && GetParent(reinterpret_cast<HWND>(lParam)) == m_hWnd) {
        m_bStale = true;
        LayoutSoon();
    }
    CCUIControlWindow::OnParentNotify(nEvent, nID, lParam);
}

void CCUILayoutWindow::LayoutSoon()
{
    if (!m_bPosted)
        m_bPosted = PostMessageA(m_hWnd, CUI_WM_LAYOUT, 0, LAYOUT_DUE) != 0;
}

void CCUILayoutWindow::OnSize(UINT nType, int cx, int cy)
{
    CWatch watch(this);
    CCUIControlWindow::OnSize(nType, cx, cy);
    if (!watch.IsGone() && nType != SIZE_MINIMIZED)
        Layout();
}

void CCUILayoutWindow::OnDestroy()
{
    m_pItems->Clear();
    m_bStale = true;
    m_bPosted = false;
    m_hLastFocus = nullptr;
    m_sizeTold = {};
    m_nScrollPos = m_nScrollLength = m_nScrollPage = m_nScrollBarPos = 0;
    CWatch watch(this);
    if (DropOrphans())
        CCUIControlWindow::OnDestroy();
}

int CCUILayoutWindow::OnEraseBkgnd(HDC hDC)
{
    RECT rect;
    GetClientRect(m_hWnd, &rect);
    // Screens of 256 colours mix the brush of colours that they do not have, as controls inside do.
    if (m_propData.crWindow == CUI_NO_WINDOW_COLOR)
        FillRect(hDC, &rect, CUIGetWinData()->hbrBtnFace);
    else
        CUIDCFillSolidRect(hDC, &rect, CUIGetWinData()->ResolveColor(m_propData.crWindow));
    return 1;
}

// --- Laying out ---

void CCUILayoutWindow::Layout()
{
    if (m_bLayingOut || m_nSuspended || !m_hWnd) {
        m_bAgain = true;
        return;
    }
    CWatch watch(this);
    m_bLayingOut = true;
    int nRounds = 0;
    do {
        m_bAgain = false;
        LayoutOnce();
        if (watch.IsGone())
            return;
    } while (m_bAgain && m_hWnd && !m_nSuspended && ++nRounds < MOST_ROUNDS);
    m_bLayingOut = false;
    if (nRounds == MOST_ROUNDS)
        CUDump("A layout does not come to rest: a child changes whenever it is laid out.\n");
}

// Each step may end the window or the object, and answers false then.
bool CCUILayoutWindow::LayoutOnce()
{
    if (!Refresh())
        return false;
    Measure();
    if (!TellParent() || !MakeSplitters() || !UpdateScrollBar())
        return false;
    RECT rcClient;
    GetClientRect(m_hWnd, &rcClient);
    const SIZE client = CUISizeOf(rcClient);
    const int nBefore = IsRow() ? m_rcMargins.left : m_rcMargins.top;
    const int nBehind = IsRow() ? m_rcMargins.right : m_rcMargins.bottom;
    m_pItems->Distribute(nBefore, CUIAlong(IsRow(), client) - nBefore - nBehind);
    return MoveChildren();
}

void CCUILayoutWindow::Measure()
{
    const int nSplitter = CCUISplitter::Width();
    m_pItems->Measure(m_hWnd, IsRow(), m_nGap, m_nGap > nSplitter ? m_nGap : nSplitter);
}

// Reads what has become stale.
bool CCUILayoutWindow::Refresh()
{
    if (m_bStale) {
        m_bStale = false;
        m_pItems->Load(m_hWnd);
    }
    return DropOrphans() && Ask();
}

bool CCUILayoutWindow::DropOrphans()
{
    CWatch watch(this);
    while (!watch.IsGone() && m_pItems->m_pOrphan) {
        CCUISplitter *const pSplitter = m_pItems->m_pOrphan;
        m_pItems->m_pOrphan = pSplitter->m_pNext;
        pSplitter->Destroy();
        delete pSplitter;
    }
    return !watch.IsGone();
}

// Asks the children that fit for their sizes.
bool CCUILayoutWindow::Ask()
{
    CWatch watch(this);
    for (int i = 0; i < m_pItems->Count(); ++i) {
        const HWND hChild = (*m_pItems)[i].hWnd;
        if (!(*m_pItems)[i].bAsk)
            continue;
        (*m_pItems)[i].bAsk = false;
        SIZE size = {};
        const LRESULT nKnown =
            SendMessageA(hChild, CUI_WM_NATURALSIZE, 0, reinterpret_cast<LPARAM>(&size));
        if (watch.IsGone() || !m_hWnd)
            return false;
        RECT rect = {};
        if (!nKnown && GetWindowRect(hChild, &rect))
            size = CUIMakeSize(IsRow(), 0, CUIAcross(IsRow(), CUISizeOf(rect)));
        if (i < m_pItems->Count() && (*m_pItems)[i].hWnd == hChild)
            (*m_pItems)[i].natural = size;
    }
    return true;
}

SIZE CCUILayoutWindow::GetMinimumSize()
{
    // While the window lays out all is known.
    if (m_hWnd && !m_bLayingOut) {
        CWatch watch(this);
        m_bLayingOut = true;
        const bool bStands = Refresh();
        if (watch.IsGone())
            return {};
        m_bLayingOut = false;
        if (!bStands)
            return {};
        if (m_bAgain)
            LayoutSoon();
        Measure();
    }
    SIZE size = CUIMakeSize(IsRow(), m_pItems->m_size.cx, m_pItems->m_size.cy);
    RECT rcWindow = {}, rcClient = {};
    GetWindowRect(m_hWnd, &rcWindow);
    GetClientRect(m_hWnd, &rcClient);
    const SIZE window = CUISizeOf(rcWindow), client = CUISizeOf(rcClient);
    size.cx += m_rcMargins.left + m_rcMargins.right + window.cx - client.cx;
    size.cy += m_rcMargins.top + m_rcMargins.bottom + window.cy - client.cy;
    return size;
}

bool CCUILayoutWindow::TellParent()
{
    const SIZE size = GetMinimumSize();
    if (!m_hWnd || (size.cx == m_sizeTold.cx && size.cy == m_sizeTold.cy))
        return m_hWnd != nullptr;
    m_sizeTold = size;
    const HWND hParent = GetParent(m_hWnd);
    if (!hParent || m_propData.bColorChanging)
        return true;
    CWatch watch(this);
    SendMessageA(hParent, CUI_WM_LAYOUT, reinterpret_cast<WPARAM>(m_hWnd), CUI_LAYOUT_CHANGED);
    return !watch.IsGone() && m_hWnd;
}

bool CCUILayoutWindow::MakeSplitters()
{
    for (int i = 0; i < m_pItems->Count(); ++i) {
        CCUILayoutItem &item = (*m_pItems)[i];
        const bool bWanted =
            item.bShown && item.Has(CUI_PLACE_SPLITTER) && m_pItems->NextShown(item);
        if (!bWanted)
            m_pItems->Abandon(item.pSplitter);
        if (bWanted && !item.pSplitter && !MakeSplitter(item.hWnd))
            return false;
        if (i < m_pItems->Count() && (*m_pItems)[i].pSplitter)
            (*m_pItems)[i].pSplitter->FollowChild();
    }
    return DropOrphans() && m_hWnd;
}

bool CCUILayoutWindow::MakeSplitter(HWND hChild)
{
    CWatch watch(this);
    auto *const pSplitter = new CCUISplitter(*this, hChild);
    const bool bMade = pSplitter->Make();
    CCUILayoutItem *const pItem = watch.IsGone() ? nullptr : m_pItems->Find(hChild);
    if (bMade && pItem) {
        pItem->pSplitter = pSplitter;
        return true;
    }
    if (!bMade)
        CUDump("Unable to make a splitter, gle: %lu\n", GetLastError());
    delete pSplitter;
    return !watch.IsGone() && m_hWnd;
}

bool CCUILayoutWindow::MoveChildren()
{
    CWatch watch(this);
    CCUILayoutMover(m_hWnd, *m_pItems, IsRow(), m_rcMargins, m_nScrollPos).Perform();
    return !watch.IsGone();
}
