// What the mouse does on a canvas.
#include <stdlib.h>

#include <algorithm>

#include "Canvas/Canvas.h"
#include "Canvas/Snap.h"

namespace {

// Grips from the top left corner on, clockwise: how much of the room is left of and above each.
const struct
{
    int x, y;  // halves
    const char *m_pszCursor;
} GRIPS[] = {{0, 0, IDC_SIZENWSE}, {1, 0, IDC_SIZENS}, {2, 0, IDC_SIZENESW}, {2, 1, IDC_SIZEWE},
             {2, 2, IDC_SIZENWSE}, {1, 2, IDC_SIZENS}, {0, 2, IDC_SIZENESW}, {0, 1, IDC_SIZEWE}};

const int GRIP_REACH = 3;   // client pixels to each side
const int CLICK_REACH = 2;  // what the mouse may move in a click
const int SNAP_REACH = 4;   // client pixels
const int LEAST_SIZE = 4;   // of the description, in pixels

}  // namespace

bool CCanvas::HasGrips() const
{
    return m_selection.size() == 1 && m_selection[0] == ItemAbout;
}

RECT CCanvas::GripRect(int nGrip) const
{
    const RECT rect = ToClient(m_rects[m_selection[0]]);
    const LONG x = rect.left + (rect.right - rect.left) * GRIPS[nGrip].x / 2;
    const LONG y = rect.top + (rect.bottom - rect.top) * GRIPS[nGrip].y / 2;
    return {x - GRIP_REACH, y - GRIP_REACH, x + GRIP_REACH + 1, y + GRIP_REACH + 1};
}

int CCanvas::GripAt(const POINT &client) const
{
    for (int i = 0; HasGrips() && i < 8; ++i) {
        const RECT grip = GripRect(i);
        if (PtInRect(&grip, client))
            return i;
    }
    return -1;
}

int CCanvas::OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage)
{
    if (nHitTest != HTCLIENT)
        return CCUIControlWindow::OnSetCursor(hWnd, nHitTest, nMessage);
    POINT point;
    GetCursorPos(&point);
    ScreenToClient(m_hWnd, &point);
    const int nGrip = m_drag == DragSize ? m_nGrip : GripAt(point);
    const bool bItem = m_drag == DragMove || (m_drag == DragNone && ItemAt(point) != ItemNone);
    SetCursor(LoadCursorA(nullptr, nGrip >= 0 ? GRIPS[nGrip].m_pszCursor
                                   : bItem    ? IDC_SIZEALL
                                              : IDC_ARROW));
    return 1;
}

// --- The line under the mouse ---

void CCanvas::SetHot(int nHotSpot)
{
    if (nHotSpot == m_nHotSpot)
        return;
    for (const int nLine : {m_nHotSpot, nHotSpot}) {
        for (int i = 0; i < FaceItemCount && nLine != HotSpotNone; ++i) {
            const FaceItemInfo &info = FaceItemInfoOf(static_cast<FaceItem>(i));
            if (info.m_nLine == nLine && !info.m_bBullet)
                MarkItem(static_cast<FaceItem>(i), m_rects[i]);
        }
    }
    m_nHotSpot = nHotSpot;
    UpdateWindow(m_hWnd);
}

void CCanvas::OnMouseLeave()
{
    SetHot(HotSpotNone);
}

void CCanvas::OnMouseMove(UINT, POINT &point)
{
    if (m_drag != DragNone) {
        DragTo(point);
        return;
    }
    TrackMouseLeave();
    SetHot(m_face.Face().HitTest(ToFace(point)));
}

// --- Buttons ---

void CCanvas::OnLButtonDown(UINT nFlags, POINT &point)
{
    CWatch watch(this);
    SetFocus(m_hWnd);
    if (watch.IsGone() || m_drag != DragNone)
        return;
    m_nGrip = GripAt(point);
    if (m_nGrip >= 0) {
        BeginDrag(DragSize, point);
        return;
    }
    const FaceItem item = ItemAt(point);
    if (item == ItemNone) {
        SetSelection({});
        BeginDrag(DragFrame, point);
    } else if (nFlags & MK_CONTROL) {
        Toggle(item);
    } else {
        if (!IsSelected(item))
            SetSelection({item});
        BeginDrag(DragMove, point);
    }
}

void CCanvas::OnLButtonDblClk(UINT, POINT &point)
{
    const FaceItem item = ItemAt(point);
    if (item != ItemNone)
        m_host.OnCanvasActivate(item);
}

void CCanvas::OnRButtonDown(UINT nFlags, POINT &point)
{
    const FaceItem item = ItemAt(point);
    if (m_drag == DragNone && item != ItemNone && !IsSelected(item))
        SetSelection({item});
    CCUIControlWindow::OnRButtonDown(nFlags, point);
}

void CCanvas::OnLButtonUp(UINT, POINT &point)
{
    if (m_drag == DragNone)
        return;
    DragTo(point);
    EndDrag(true);
}

void CCanvas::OnCancelMode()
{
    EndDrag(false);
    CCUIControlWindow::OnCancelMode();
}

void CCanvas::OnCaptureChanged(HWND)
{
    EndDrag(false);
}

// --- Dragging ---

void CCanvas::BeginDrag(DragMode mode, const POINT &client)
{
    m_drag = mode;
    m_bDragged = false;
    m_dragStart = m_dragEnd = client;
    m_dragRects.clear();
    for (const FaceItem item : m_selection)
        m_dragRects.push_back(m_rects[item]);
    SetHot(HotSpotNone);
    if (mode != DragFrame)
        m_document.BeginStep();
    SetCapture(m_hWnd);
}

void CCanvas::DragTo(const POINT &client)
{
    const bool bFar =
        abs(client.x - m_dragStart.x) > CLICK_REACH || abs(client.y - m_dragStart.y) > CLICK_REACH;
    if (!m_bDragged && !bFar)
        return;
    m_bDragged = true;
    const POINT from = ToFace(m_dragStart), to = ToFace(client);
    const POINT by = {to.x - from.x, to.y - from.y};
    if (m_drag == DragMove)
        MoveTo(by);
    else if (m_drag == DragSize)
        SizeTo(by);
    else
        InvalidateRect(m_hWnd, nullptr, FALSE);
    m_dragEnd = client;
    UpdateWindow(m_hWnd);
}

void CCanvas::EndDrag(bool bKeep)
{
    if (m_drag == DragNone)
        return;
    const DragMode mode = m_drag;
    m_drag = DragNone;
    m_nGuideX = m_nGuideY = NO_GUIDE;
    if (GetCapture() == m_hWnd)
        ReleaseCapture();
    InvalidateRect(m_hWnd, nullptr, FALSE);
    if (mode == DragFrame) {
        if (bKeep && m_bDragged)
            SelectFrame();
    } else if (bKeep) {
        m_document.EndStep();
    } else {
        m_document.CancelStep();
    }
}

// The edges of what stays where it is, and of the face.
std::vector<LONG> CCanvas::SnapLines(bool bAcross) const
{
    const SIZE &size = m_picture.Size();
    std::vector<LONG> lines = {0, bAcross ? size.cx : size.cy};
    for (int i = 0; i < FaceItemCount; ++i) {
        if (IsSelected(static_cast<FaceItem>(i)) || Follows(static_cast<FaceItem>(i)))
            continue;
        const RECT &rect = m_rects[i];
        lines.push_back(bAcross ? rect.left : rect.top);
        lines.push_back(bAcross ? rect.right : rect.bottom);
    }
    return lines;
}

void CCanvas::MoveTo(POINT by)
{
    LONG nGuideX = NO_GUIDE, nGuideY = NO_GUIDE;
    if (m_bSnap && GetKeyState(VK_MENU) >= 0) {
        const RECT &first = m_dragRects[0];
        const int nReach = std::max(1, SNAP_REACH * 100 / m_nZoom);
        const SnapResult x = Snap(first.left + by.x, first.right + by.x, SnapLines(true), nReach);
        const SnapResult y = Snap(first.top + by.y, first.bottom + by.y, SnapLines(false), nReach);
        by = {by.x + x.m_nBy, by.y + y.m_nBy};
        nGuideX = x.m_bSnaps ? x.m_nAt : NO_GUIDE;
        nGuideY = y.m_bSnaps ? y.m_nAt : NO_GUIDE;
    }
    if (nGuideX != m_nGuideX || nGuideY != m_nGuideY) {
        const SIZE &size = m_picture.Size();
        for (const LONG x : {m_nGuideX, nGuideX}) {
            if (x != NO_GUIDE)
                Invalidate({x, 0, x + 1, size.cy});
        }
        for (const LONG y : {m_nGuideY, nGuideY}) {
            if (y != NO_GUIDE)
                Invalidate({0, y, size.cx, y + 1});
        }
        m_nGuideX = nGuideX;
        m_nGuideY = nGuideY;
    }
    const std::vector<FaceItem> items = m_selection;
    for (size_t i = 0; i < items.size() && i < m_dragRects.size(); ++i) {
        RECT rect = m_dragRects[i];
        OffsetRect(&rect, by.x, by.y);
        PutItem(items[i], rect);
    }
}

void CCanvas::SizeTo(const POINT &by)
{
    RECT rect = m_dragRects[0];
    if (GRIPS[m_nGrip].x == 0)
        rect.left = std::min(rect.left + by.x, rect.right - LEAST_SIZE);
    else if (GRIPS[m_nGrip].x == 2)
        rect.right = std::max(rect.right + by.x, rect.left + LEAST_SIZE);
    if (GRIPS[m_nGrip].y == 0)
        rect.top = std::min(rect.top + by.y, rect.bottom - LEAST_SIZE);
    else if (GRIPS[m_nGrip].y == 2)
        rect.bottom = std::max(rect.bottom + by.y, rect.top + LEAST_SIZE);
    PutItem(ItemAbout, rect);
}
