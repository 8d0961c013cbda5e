#include "Canvas/Canvas.h"

#include <algorithm>

#include "Model/SkinEntry.h"
#include "Resource.h"

namespace {

const int ZOOMS[] = {50, 75, 100, 150, 200, 300, 400};

// How far the drawing of a text reaches over its size: the edge of a lit line, slanted letters.
const int OVERHANG = 8;
// The same of the marks of what is selected, in client pixels.
const int MARK_REACH = 8;

const UINT JOIN_NUDGES = 1;

}  // namespace

CCanvas::CCanvas(CDocument &document, CCanvasHost &host)
    : m_document(document), m_host(host), m_face(document)
{
}

CCanvas::~CCanvas() = default;

int CCanvas::CreateCanvas(HWND hParent, UINT nID)
{
    return CreateEx(WS_EX_CLIENTEDGE, nullptr, "",
                    WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_HSCROLL | WS_VSCROLL, 0, 0, 0, 0,
                    hParent, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID)));
}

// --- What is shown ---

bool CCanvas::Shows(const SkinPart &part) const
{
    if (part.m_kind == SkinPart::Picture)
        return true;
    const SkinEntry *const pEntry =
        part.m_kind == SkinPart::Entry ? FindSkinEntry(part.m_nID) : nullptr;
    return pEntry && pEntry->m_bUsed && pEntry->m_kind != EntryCommand &&
           pEntry->m_nID != IDS_CAPTION && part.m_nLanguage == m_document.Language();
}

void CCanvas::Read(const SkinPart *pPart)
{
    if (pPart && !Shows(*pPart))
        return;
    const SkinEntry *const pEntry =
        pPart && pPart->m_kind == SkinPart::Entry ? FindSkinEntry(pPart->m_nID) : nullptr;
    if (!pPart)
        m_face.ReadAll();
    else
        m_face.Read(*pPart);
    if (pEntry && (pEntry->m_kind == EntryPoint || pEntry->m_kind == EntryRect))
        ReadRects();
    else
        DrawAll();
}

void CCanvas::DrawAll()
{
    m_picture.Draw(m_face.Face(), m_nHotSpot);
    SetRectEmpty(&m_dirty);
    m_title = m_picture.Measure(m_face.Face().TitleFont(), m_face.Face().Title());
    for (int i = 0; i < FaceItemCount; ++i)
        m_rects[i] = FaceItemRect(m_face.Face(), m_title, static_cast<FaceItem>(i));
    Rearrange();
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

// Draws again where items were and where they are now.
void CCanvas::ReadRects()
{
    for (int i = 0; i < FaceItemCount; ++i) {
        const FaceItem item = static_cast<FaceItem>(i);
        const RECT rect = FaceItemRect(m_face.Face(), m_title, item);
        if (EqualRect(&rect, &m_rects[i]))
            continue;
        MarkItem(item, m_rects[i]);
        MarkItem(item, rect);
        m_rects[i] = rect;
    }
}

void CCanvas::MarkItem(FaceItem item, const RECT &rect)
{
    RECT reach = rect;
    if (FaceItemInfoOf(item).m_nText)
        InflateRect(&reach, OVERHANG + (rect.bottom - rect.top) / 4, OVERHANG);
    MarkFace(reach);
}

void CCanvas::MarkFace(RECT rect)
{
    Invalidate(rect);
    const RECT all = {0, 0, m_picture.Size().cx, m_picture.Size().cy};
    if (IntersectRect(&rect, &rect, &all))
        UnionRect(&m_dirty, &m_dirty, &rect);
}

void CCanvas::Invalidate(const RECT &face)
{
    if (m_bZones) {
        // Labels stand beside the items.
        InvalidateRect(m_hWnd, nullptr, FALSE);
        return;
    }
    RECT rect = ToClient(face);
    InflateRect(&rect, MARK_REACH, MARK_REACH);
    InvalidateRect(m_hWnd, &rect, FALSE);
}

void CCanvas::InvalidateItem(FaceItem item)
{
    Invalidate(m_rects[item]);
}

// --- Places ---

int CCanvas::ToClientX(LONG x) const
{
    return static_cast<int>(static_cast<long long>(x) * m_nZoom / 100) + m_origin.x;
}

int CCanvas::ToClientY(LONG y) const
{
    return static_cast<int>(static_cast<long long>(y) * m_nZoom / 100) + m_origin.y;
}

RECT CCanvas::ToClient(const RECT &face) const
{
    return {ToClientX(face.left), ToClientY(face.top), ToClientX(face.right),
            ToClientY(face.bottom)};
}

POINT CCanvas::ToFace(const POINT &client) const
{
    const auto down = [this](int n) { return (n * 100 - (n < 0 ? m_nZoom - 1 : 0)) / m_nZoom; };
    return {down(client.x - m_origin.x), down(client.y - m_origin.y)};
}

FaceItem CCanvas::ItemAt(const POINT &client) const
{
    return FaceItemAt(m_face.Face(), m_title, ToFace(client));
}

SIZE CCanvas::ZoomedSize() const
{
    return {MulDiv(m_picture.Size().cx, m_nZoom, 100), MulDiv(m_picture.Size().cy, m_nZoom, 100)};
}

int CCanvas::NextZoom(int nSteps) const
{
    if (nSteps > 0) {
        const int *const p = std::upper_bound(std::begin(ZOOMS), std::end(ZOOMS), m_nZoom);
        return p == std::end(ZOOMS) ? m_nZoom : *p;
    }
    const int *const p = std::lower_bound(std::begin(ZOOMS), std::end(ZOOMS), m_nZoom);
    return p == std::begin(ZOOMS) ? m_nZoom : p[-1];
}

void CCanvas::ZoomBy(int nSteps)
{
    SetZoom(NextZoom(nSteps));
}

void CCanvas::SetZoom(int nPercent)
{
    nPercent = std::min(std::max(nPercent, ZOOMS[0]), *(std::end(ZOOMS) - 1));
    if (nPercent == m_nZoom)
        return;
    // What is in the middle stays there.
    RECT client;
    GetClientRect(m_hWnd, &client);
    const POINT middle = ToFace({client.right / 2, client.bottom / 2});
    m_nZoom = nPercent;
    m_scroll = {MulDiv(middle.x, m_nZoom, 100) - client.right / 2,
                MulDiv(middle.y, m_nZoom, 100) - client.bottom / 2};
    Rearrange();
    InvalidateRect(m_hWnd, nullptr, FALSE);
    m_host.OnCanvasZoom();
}

void CCanvas::ShowZones(bool bShow)
{
    m_bZones = bShow;
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CCanvas::OnSize(UINT nType, int cx, int cy)
{
    CCUIControlWindow::OnSize(nType, cx, cy);
    Rearrange();
}

// Scroll bars, and the face in the middle of a larger window. A bar takes room from the other
// direction.
void CCanvas::Rearrange()
{
    if (!m_hWnd)
        return;
    const POINT before = m_origin;
    const SIZE size = ZoomedSize();
    RECT client;
    for (int i = 0; i < 2; ++i) {
        GetClientRect(m_hWnd, &client);
        int x = m_scroll.x, y = m_scroll.y;
        UpdateScrollBar(SB_HORZ, size.cx, client.right, x);
        UpdateScrollBar(SB_VERT, size.cy, client.bottom, y);
        m_scroll = {x, y};
    }
    GetClientRect(m_hWnd, &client);
    m_origin.x = size.cx <= client.right ? (client.right - size.cx) / 2 : -m_scroll.x;
    m_origin.y = size.cy <= client.bottom ? (client.bottom - size.cy) / 2 : -m_scroll.y;
    if (m_origin.x != before.x || m_origin.y != before.y)
        InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CCanvas::UpdateScrollBar(int nBar, int nLength, int nPage, int &nPos)
{
    nPos = std::max(0, std::min(nPos, nLength - nPage));
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = nLength > 0 ? nLength - 1 : 0;
    info.nPage = static_cast<UINT>(nPage);
    info.nPos = nPos;
    SetScrollInfo(m_hWnd, nBar, &info, TRUE);
}

void CCanvas::ScrollTo(int x, int y)
{
    m_scroll = {x, y};
    Rearrange();
}

void CCanvas::Scroll(int nBar, UINT nCode)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(m_hWnd, nBar, &info);
    const int nLine = 16, nPage = static_cast<int>(info.nPage);
    int nTo = info.nPos;
    switch (nCode) {
    case SB_LINEUP: nTo -= nLine; break;
    case SB_LINEDOWN: nTo += nLine; break;
    case SB_PAGEUP: nTo -= nPage; break;
    case SB_PAGEDOWN: nTo += nPage; break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: nTo = info.nTrackPos; break;
    case SB_TOP: nTo = 0; break;
    case SB_BOTTOM: nTo = info.nMax; break;
    default: return;
    }
    ScrollTo(nBar == SB_HORZ ? nTo : m_scroll.x, nBar == SB_HORZ ? m_scroll.y : nTo);
}

void CCanvas::OnHScroll(UINT nCode, UINT, HWND)
{
    Scroll(SB_HORZ, nCode);
}

void CCanvas::OnVScroll(UINT nCode, UINT, HWND)
{
    Scroll(SB_VERT, nCode);
}

void CCanvas::OnMouseWheel(UINT nFlags, int nDelta, POINT &)
{
    if (nFlags & MK_CONTROL) {
        m_nWheel += nDelta;
        const int nSteps = m_nWheel / WHEEL_DELTA;
        m_nWheel %= WHEEL_DELTA;
        if (nSteps)
            ZoomBy(nSteps);
    } else if (nFlags & MK_SHIFT) {
        ScrollTo(m_scroll.x - nDelta / 2, m_scroll.y);
    } else {
        ScrollTo(m_scroll.x, m_scroll.y - nDelta / 2);
    }
}

void CCanvas::ScrollIntoView(const RECT &face)
{
    RECT client;
    GetClientRect(m_hWnd, &client);
    const RECT rect = ToClient(face);
    const auto by = [](LONG nFirst, LONG nLast, LONG nRoom) {
        return nFirst < 0 ? nFirst : nLast > nRoom ? std::min(nFirst, nLast - nRoom) : 0;
    };
    const LONG x = by(rect.left, rect.right, client.right);
    const LONG y = by(rect.top, rect.bottom, client.bottom);
    if (x || y)
        ScrollTo(m_scroll.x + x, m_scroll.y + y);
}

// --- Selection ---

bool CCanvas::IsSelected(FaceItem item) const
{
    return std::find(m_selection.begin(), m_selection.end(), item) != m_selection.end();
}

void CCanvas::SetSelection(const std::vector<FaceItem> &items)
{
    if (items == m_selection)
        return;
    for (const FaceItem item : m_selection)
        InvalidateItem(item);
    m_selection = items;
    for (const FaceItem item : m_selection)
        InvalidateItem(item);
    m_document.Seal();
    m_host.OnCanvasSelection();
}

void CCanvas::Select(FaceItem item)
{
    SetSelection(item == ItemNone ? std::vector<FaceItem>() : std::vector<FaceItem>{item});
    if (item != ItemNone)
        ScrollIntoView(m_rects[item]);
}

void CCanvas::SelectAll()
{
    std::vector<FaceItem> items(FaceItemCount);
    for (int i = 0; i < FaceItemCount; ++i)
        items[static_cast<size_t>(i)] = static_cast<FaceItem>(i);
    SetSelection(items);
}

void CCanvas::Toggle(FaceItem item)
{
    std::vector<FaceItem> items = m_selection;
    const auto found = std::find(items.begin(), items.end(), item);
    if (found == items.end())
        items.push_back(item);
    else
        items.erase(found);
    SetSelection(items);
}

// What the frame touches.
void CCanvas::SelectFrame()
{
    const POINT from = ToFace(m_dragStart), to = ToFace(m_dragEnd);
    const RECT frame = {std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x) + 1,
                        std::max(from.y, to.y) + 1};
    std::vector<FaceItem> items;
    for (int i = 0; i < FaceItemCount; ++i) {
        RECT both;
        if (IntersectRect(&both, &frame, &m_rects[i]))
            items.push_back(static_cast<FaceItem>(i));
    }
    SetSelection(items);
}

void CCanvas::StepSelection(bool bBack, bool &bLeft)
{
    const int nAt = m_selection.empty() ? (bBack ? FaceItemCount : -1) : m_selection[0];
    const int nTo = bBack ? nAt - 1 : nAt + 1;
    bLeft = nTo < 0 || nTo >= FaceItemCount;
    if (!bLeft)
        Select(static_cast<FaceItem>(nTo));
}

bool CCanvas::CanArrange(Arrangement arrangement) const
{
    return ::CanArrange(arrangement, m_selection.size());
}

void CCanvas::ArrangeSelection(Arrangement arrangement)
{
    if (!CanArrange(arrangement))
        return;
    std::vector<RECT> rects;
    for (const FaceItem item : m_selection)
        rects.push_back(m_rects[item]);
    ::Arrange(arrangement, rects);
    const std::vector<FaceItem> items = m_selection;
    const CDocumentStep step(m_document);
    for (size_t i = 0; i < items.size(); ++i)
        PutItem(items[i], rects[i]);
}

void CCanvas::Nudge(int x, int y)
{
    const std::vector<FaceItem> items = m_selection;
    const CDocumentStep step(m_document, JOIN_NUDGES);
    for (const FaceItem item : items) {
        RECT rect = m_rects[item];
        OffsetRect(&rect, x, y);
        PutItem(item, rect);
    }
}

// Whether it is the bullet of a line that is moved, and not moved by itself.
bool CCanvas::Follows(FaceItem item) const
{
    POINT place;
    return FaceItemInfoOf(item).m_bBullet && !IsSelected(item) &&
           IsSelected(static_cast<FaceItem>(item - 1)) &&
           ParsePoint(m_document.Entry(FaceItemInfoOf(item).m_nPlace), place);
}

void CCanvas::PutItem(FaceItem item, const RECT &rect)
{
    const FaceItem bullet = BulletOf(item);
    if (bullet != ItemNone && Follows(bullet)) {
        const RECT &from = m_rects[item], &at = m_rects[bullet];
        m_document.SetEntry(
            FaceItemInfoOf(bullet).m_nPlace,
            FormatPoint({at.left + rect.left - from.left, at.top + rect.top - from.top}));
    }
    const UINT nPlace = FaceItemInfoOf(item).m_nPlace;
    m_document.SetEntry(nPlace,
                        item == ItemAbout ? FormatRect(rect) : FormatPoint({rect.left, rect.top}));
}

// --- Keyboard ---

UINT CCanvas::OnGetDlgCode(const MSG *)
{
    return DLGC_WANTARROWS;
}

int CCanvas::PreTranslateMessage(MSG *pMsg)
{
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_TAB && GetKeyState(VK_CONTROL) >= 0) {
        if (m_drag != DragNone)
            return 1;  // what is dragged stays selected
        bool bLeft;
        StepSelection(GetKeyState(VK_SHIFT) < 0, bLeft);
        if (!bLeft)
            return 1;
    }
    return CCUIControlWindow::PreTranslateMessage(pMsg);
}

void CCanvas::OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags)
{
    const int nBy = GetKeyState(VK_SHIFT) < 0 ? 10 : 1;
    switch (nKey) {
    case VK_LEFT: Nudge(-nBy, 0); break;
    case VK_RIGHT: Nudge(nBy, 0); break;
    case VK_UP: Nudge(0, -nBy); break;
    case VK_DOWN: Nudge(0, nBy); break;
    case VK_RETURN:
        if (!m_selection.empty())
            m_host.OnCanvasActivate(m_selection[0]);
        break;
    case VK_ESCAPE:
        if (m_drag != DragNone)
            EndDrag(false);
        else
            Select(ItemNone);
        break;
    default: CCUIControlWindow::OnKeyDown(nKey, nRepeat, nFlags); return;
    }
    UpdateWindow(m_hWnd);
}

void CCanvas::OnSetFocus(HWND hOld)
{
    m_bFocus = true;
    InvalidateRect(m_hWnd, nullptr, FALSE);
    CCUIControlWindow::OnSetFocus(hOld);
}

void CCanvas::OnKillFocus(HWND hNew)
{
    m_bFocus = false;
    m_document.Seal();
    InvalidateRect(m_hWnd, nullptr, FALSE);
    CCUIControlWindow::OnKillFocus(hNew);
}

long CCanvas::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    // Alt is for dragging without snapping here, not for the menu.
    if (message == WM_SYSKEYUP && wParam == VK_MENU && m_drag != DragNone)
        return 0;
    return CCUIControlWindow::OnMessage(message, wParam, lParam);
}

// --- Painting ---

int CCanvas::OnEraseBkgnd(HDC)
{
    return 1;
}
