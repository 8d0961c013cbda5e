// How a canvas paints itself.
#include <algorithm>

#include "Base/GdiGuards.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/OffScreenDC.h"
#include "Canvas/Canvas.h"

namespace {

int Greatest(int a, int b)
{
    while (b) {
        const int nRest = a % b;
        a = b;
        b = nRest;
    }
    return a;
}

void Frame(HDC hDC, const RECT &rect, int nSysColor)
{
    CUIDCDrawRect(hDC, &rect, GetSysColor(nSysColor));
}

// Seen on any picture: a frame in the colour of what is selected, in a lighter one.
void MarkFrame(HDC hDC, RECT rect)
{
    InflateRect(&rect, 1, 1);
    Frame(hDC, rect, COLOR_HIGHLIGHT);
    InflateRect(&rect, 1, 1);
    Frame(hDC, rect, COLOR_HIGHLIGHTTEXT);
}

void Label(HDC hDC, const RECT &at, const CCUString &sText)
{
    SIZE size;
    GetTextExtentPoint32A(hDC, sText, sText.GetLength(), &size);
    RECT rect = {at.left, at.top - size.cy - 2, at.left + size.cx + 6, at.top};
    if (rect.top < 0)
        OffsetRect(&rect, 0, at.bottom - rect.top);
    CUIDCFillSolidRect(hDC, &rect, GetSysColor(COLOR_INFOBK));
    Frame(hDC, rect, COLOR_INFOTEXT);
    TextOutA(hDC, rect.left + 3, rect.top + 1, sText, sText.GetLength());
}

}  // namespace

void CCanvas::OnPaint(HDC)
{
    if (!IsRectEmpty(&m_dirty)) {
        m_picture.DrawPart(m_face.Face(), m_nHotSpot, m_dirty);
        SetRectEmpty(&m_dirty);
    }
    PAINTSTRUCT paint;
    const HDC hDC = BeginPaint(m_hWnd, &paint);
    const RECT &part = paint.rcPaint;
    const HPALETTE hPalette = m_face.Face().Background();
    if (hPalette) {
        SelectPalette(hDC, hPalette, FALSE);
        RealizePalette(hDC);
    }
    // The marks stand over the face, so both are put together before they are shown.
    const HDC hMemDC = CUIGetOSDC()->GetDC(hDC, part.right, part.bottom);
    if (hMemDC) {
        const CCUISavedDC saved(hMemDC);
        IntersectClipRect(hMemDC, part.left, part.top, part.right, part.bottom);
        PaintAll(hMemDC, part);
        BitBlt(hDC, part.left, part.top, part.right - part.left, part.bottom - part.top, hMemDC,
               part.left, part.top, SRCCOPY);
    }
    CUIGetOSDC()->ReleaseDC();
    EndPaint(m_hWnd, &paint);
}

void CCanvas::PaintAll(HDC hDC, const RECT &part)
{
    const RECT face = ToClient({0, 0, m_picture.Size().cx, m_picture.Size().cy});
    const COLORREF crAround = GetSysColor(COLOR_APPWORKSPACE);
    const RECT around[] = {{part.left, part.top, part.right, std::min(part.bottom, face.top)},
                           {part.left, std::max(part.top, face.bottom), part.right, part.bottom},
                           {part.left, part.top, std::min(part.right, face.left), part.bottom},
                           {std::max(part.left, face.right), part.top, part.right, part.bottom}};
    for (const RECT &rect : around) {
        if (rect.left < rect.right && rect.top < rect.bottom)
            CUIDCFillSolidRect(hDC, &rect, crAround);
    }
    PaintFace(hDC, part);
    const CCUISelect font(hDC, CUIGetWinData()->hStatusFont);
    SetBkMode(hDC, TRANSPARENT);
    if (m_bZones)
        PaintZones(hDC);
    PaintMarks(hDC);
}

// Of whole pixels of the face, so that they come out the same whatever part is painted.
void CCanvas::PaintFace(HDC hDC, const RECT &part) const
{
    const HDC hFace = m_picture.GetDC();
    const POINT first = ToFace({part.left, part.top}), last = ToFace({part.right, part.bottom});
    const int nStep = 100 / Greatest(m_nZoom, 100);
    RECT face = {first.x - nStep, first.y - nStep, last.x + 2 * nStep, last.y + 2 * nStep};
    const RECT all = {0, 0, m_picture.Size().cx, m_picture.Size().cy};
    if (!hFace || !IntersectRect(&face, &face, &all))
        return;
    face.left -= face.left % nStep;
    face.top -= face.top % nStep;
    const RECT to = ToClient(face);
    const int cx = face.right - face.left, cy = face.bottom - face.top;
    if (m_nZoom == 100) {
        BitBlt(hDC, to.left, to.top, cx, cy, hFace, face.left, face.top, SRCCOPY);
        return;
    }
    // Smaller than it is, a face can only be read when pixels are mixed, which Windows 95 cannot.
    SetStretchBltMode(hDC, m_nZoom < 100 && CUIGetWinData()->bWinNT ? HALFTONE : COLORONCOLOR);
    SetBrushOrgEx(hDC, m_origin.x, m_origin.y, nullptr);
    StretchBlt(hDC, to.left, to.top, to.right - to.left, to.bottom - to.top, hFace, face.left,
               face.top, cx, cy, SRCCOPY);
}

void CCanvas::PaintMarks(HDC hDC)
{
    for (const FaceItem item : m_selection)
        MarkFrame(hDC, ToClient(m_rects[item]));
    // The one that others are aligned to has its corners filled.
    const bool bGrips = HasGrips();
    for (int nGrip = 0; nGrip < 8 && !m_selection.empty(); ++nGrip) {
        if (!bGrips && (nGrip % 2 || (m_selection.size() < 2 && !m_bFocus)))
            continue;
        const RECT grip = GripRect(nGrip);
        CUIDCFillSolidRect(hDC, &grip, GetSysColor(bGrips ? COLOR_WINDOW : COLOR_HIGHLIGHT));
        Frame(hDC, grip, COLOR_HIGHLIGHT);
    }
    const SIZE size = ZoomedSize();
    const COLORREF crGuide = RGB(255, 0, 255);
    if (m_nGuideX != NO_GUIDE)
        CUIDCFillSolidRect(hDC, ToClientX(m_nGuideX), m_origin.y, 1, size.cy, crGuide);
    if (m_nGuideY != NO_GUIDE)
        CUIDCFillSolidRect(hDC, m_origin.x, ToClientY(m_nGuideY), size.cx, 1, crGuide);
    if (m_drag == DragFrame && m_bDragged) {
        const RECT frame = {
            std::min(m_dragStart.x, m_dragEnd.x), std::min(m_dragStart.y, m_dragEnd.y),
            std::max(m_dragStart.x, m_dragEnd.x) + 1, std::max(m_dragStart.y, m_dragEnd.y) + 1};
        DrawFocusRect(hDC, &frame);
    }
}

// What reacts to the mouse in red, the rest in grey; on each its size.
void CCanvas::PaintZones(HDC hDC) const
{
    SetTextColor(hDC, GetSysColor(COLOR_INFOTEXT));
    for (int i = 0; i < FaceItemCount; ++i) {
        const FaceItemInfo &info = FaceItemInfoOf(static_cast<FaceItem>(i));
        const bool bZone = info.m_nLine != HotSpotNone && !info.m_bBullet;
        const RECT rect = ToClient(m_rects[i]);
        CUIDCDrawRect(hDC, &rect, bZone ? RGB(255, 0, 0) : RGB(128, 128, 128));
    }
    for (int i = 0; i < FaceItemCount; ++i) {
        const RECT &rect = m_rects[i];
        CCUString sSize;
        sSize.Format("%ld x %ld", rect.right - rect.left, rect.bottom - rect.top);
        if (!FaceItemInfoOf(static_cast<FaceItem>(i)).m_bBullet)
            Label(hDC, ToClient(rect), sSize);
    }
}
