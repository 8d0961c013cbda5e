// How buttons look.

#include "Base/Wrap.h"
#include "CUI/BmpBlt.h"
#include "CUI/Button.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "Control/ButtonParts.h"
#include "Drawing/Look.h"

namespace {

// Pixels at 96 dots per inch.
const int EDGE = 3;          // from the border to the content
const int FLAT_EDGE = 3;     // the same of a flat button
const int SIDES = 6;         // further room beside a raised button's content
const int GAP = 5;           // between picture, mark and text
const int MARK = 13;         // box and circle
const int ARROW = 13;        // the room of the arrow
const int ARROW_ROWS = 4;    // its height
const int LEAST_WIDTH = 75;  // of a raised button with text alone

// A rectangle of that size in the middle of another one; not above and left of its corner.
RECT Centered(const RECT &rect, const SIZE &size)
{
    const int x = rect.left + CUILarger(0, (CUIWidth(rect) - size.cx) / 2);
    const int y = rect.top + CUILarger(0, (CUIHeight(rect) - size.cy) / 2);
    return {x, y, x + size.cx, y + size.cy};
}

COLORREF Between(COLORREF a, COLORREF b)
{
    return RGB((GetRValue(a) + GetRValue(b)) / 2, (GetGValue(a) + GetGValue(b)) / 2,
               (GetBValue(a) + GetBValue(b)) / 2);
}

}  // namespace

bool CCUIButton::IsDown() const
{
    return (GetState() & CUI_STATE_PRESSED) || (m_bOpen && m_kind == CUI_BUTTON_DROPDOWN);
}

// --- Sizes ---

// Of picture and text.
SIZE CCUIButton::GetContentSize()
{
    const bool bText = !GetText().IsEmpty();
    SIZE size = bText ? GetTextSize() : SIZE{0, 0};
    const int nGap = bText && m_picture.cx ? Scaled(GAP) : 0;
    if (m_place == CUI_PICTURE_LEFT || m_place == CUI_PICTURE_RIGHT) {
        size.cx += m_picture.cx + nGap;
        size.cy = CUILarger(size.cy, m_picture.cy);
    } else {
        size.cx = CUILarger(size.cx, m_picture.cx);
        size.cy += m_picture.cy + nGap;
    }
    return size;
}

void CCUIButton::GetNaturalSize(SIZE &size)
{
    size = GetContentSize();
    if (HasMark()) {
        size.cx += Scaled(MARK) + Scaled(GAP) + 2;
        size.cy = CUILarger(size.cy + 2, Scaled(MARK));
        return;
    }
    const int nEdge = 2 * (m_bFlat ? Scaled(FLAT_EDGE) : Scaled(EDGE) + 2);
    size.cx += nEdge + (m_bFlat ? 0 : 2 * Scaled(SIDES));
    size.cy += nEdge;
    if (IsRaised() && !m_picture.cx)
        size.cx = CUILarger(size.cx, Scaled(LEAST_WIDTH));
    if (HasArrow())
        size.cx += Scaled(ARROW);
}

void CCUIButton::Arrange(const RECT &client, CParts &parts)
{
    parts = {client, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}};
    RECT content = client;
    if (HasMark()) {
        const SIZE mark = {Scaled(MARK), Scaled(MARK)};
        parts.rcMark = Centered({0, client.top, mark.cx, client.bottom}, mark);
        content.left += mark.cx + Scaled(GAP);
    } else if (HasArrow()) {
        parts.rcArrow = client;
        parts.rcArrow.left = CUILarger(0, client.right - Scaled(ARROW));
        content.right = parts.rcArrow.left;
        if (m_kind == CUI_BUTTON_SPLIT)
            parts.rcFace = content;
    }
    PlaceContent(content, parts);
}

// Picture and text in the middle; beside a mark they begin at the left.
void CCUIButton::PlaceContent(RECT rect, CParts &parts)
{
    const SIZE size = GetContentSize();
    if (!HasMark())
        InflateRect(&rect, m_bFlat ? -2 : -3, m_bFlat ? -2 : -3);
    RECT block = Centered(rect, size);
    if (HasMark())
        OffsetRect(&block, rect.left + 1 - block.left, 0);
    IntersectRect(&block, &block, &rect);
    parts.rcText = block;
    if (!m_picture.cx)
        return;
    const int nGap = GetText().IsEmpty() ? 0 : Scaled(GAP);
    RECT line = block;
    switch (m_place) {
    case CUI_PICTURE_LEFT:
        line.right = line.left + m_picture.cx;
        parts.rcText.left = line.right + nGap;
        break;
    case CUI_PICTURE_RIGHT:
        line.left = line.right - m_picture.cx;
        parts.rcText.right = line.left - nGap;
        break;
    case CUI_PICTURE_ABOVE:
        line.bottom = line.top + m_picture.cy;
        parts.rcText.top = line.bottom + nGap;
        break;
    case CUI_PICTURE_BELOW:
        line.top = line.bottom - m_picture.cy;
        parts.rcText.bottom = line.top - nGap;
        break;
    }
    parts.rcPicture = Centered(line, m_picture);
}

// --- Painting ---

void CCUIButton::Paint(HDC hDC, const RECT &rect)
{
    CParts parts;
    Arrange(rect, parts);
    COLORREF crFace = GetBackColor();
    if (HasMark()) {
        PaintMark(hDC, parts.rcMark);
    } else {
        if (m_kind == CUI_BUTTON_SPLIT)
            PaintFace(hDC, parts.rcArrow, m_bOpen, crFace);
        PaintFace(hDC, parts.rcFace, IsDown(), crFace);
        if (IsDown()) {
            OffsetRect(&parts.rcPicture, 1, 1);
            OffsetRect(&parts.rcText, 1, 1);
        }
    }
    PaintPicture(hDC, parts.rcPicture, crFace);
    const bool bOneLine = GetText().Find('\n') < 0;
    if (!GetText().IsEmpty())
        PaintText(hDC, parts.rcText,
                  bOneLine ? (HasMark() ? DT_LEFT : DT_CENTER) | DT_SINGLELINE | DT_VCENTER |
                                 DT_END_ELLIPSIS
                           : DT_CENTER);
    PaintArrow(hDC, parts.rcArrow);
    RECT focus = HasMark() ? parts.rcText : parts.rcFace;
    if (HasMark())
        InflateRect(&focus, 1, 1);
    else
        InflateRect(&focus, m_bFlat ? -2 : -4, m_bFlat ? -2 : -4);
    PaintFocus(hDC, focus);
}

// A raised or flat button's surface and edge. crFace gets the colour of the surface.
void CCUIButton::PaintFace(HDC hDC, const RECT &rect, bool bDown, DWORD &crFace)
{
    RECT edge = rect;
    const bool bChecked = (GetState() & (CUI_STATE_CHECKED | CUI_STATE_MIXED)) != 0;
    const bool bHot = (GetState() & CUI_STATE_HOT) || m_bOpen;
    crFace = GetBackColor();
    const bool bLit = bChecked && !bDown && !IsHighContrast();
    if (bLit)
        crFace = Between(crFace, GetSysColor(COLOR_BTNHIGHLIGHT));
    if (bLit || IsRaised())
        Fill(hDC, edge, crFace);
    if (m_bFlat) {
        if (bDown || bChecked)
            DrawEdge(hDC, &edge, BDR_SUNKENOUTER, BF_RECT);
        else if (bHot)
            DrawEdge(hDC, &edge, BDR_RAISEDINNER, BF_RECT);
        return;
    }
    const bool bFrame = (GetState() & (CUI_STATE_DEFAULT | CUI_STATE_FOCUSED)) != 0;
    if (bFrame) {
        CUIDCDrawRect(hDC, &edge, GetSysColor(COLOR_WINDOWFRAME));
        InflateRect(&edge, -1, -1);
    }
    DrawEdge(hDC, &edge, bDown || bChecked ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_SOFT);
}

void CCUIButton::PaintMark(HDC hDC, RECT rect)
{
    const unsigned int nState = GetState();
    UINT nLook = m_kind == CUI_BUTTON_RADIO ? DFCS_BUTTONRADIO : DFCS_BUTTONCHECK;
    if (nState & CUI_STATE_MIXED)
        nLook = DFCS_BUTTON3STATE | DFCS_CHECKED;
    if (nState & CUI_STATE_CHECKED)
        nLook |= DFCS_CHECKED;
    if (nState & CUI_STATE_PRESSED)
        nLook |= DFCS_PUSHED;
    if (nState & CUI_STATE_DISABLED)
        nLook |= DFCS_INACTIVE;
    DrawFrameControl(hDC, &rect, DFC_BUTTON, nLook);
}

void CCUIButton::PaintPicture(HDC hDC, const RECT &rect, COLORREF crFace)
{
    if (IsRectEmpty(&rect))
        return;
    const CUIData &data = *CUIGetWinData();
    const COLORREF crKey =
        m_crKey == CUI_NO_KEY_COLOR ? data.ResolveColor(CUI_COLOR_BTNFACE) : m_crKey;
    const bool bDisabled = (GetState() & CUI_STATE_DISABLED) != 0;
    if (!bDisabled && crKey == crFace) {
        CUIBmpBitBlt(hDC, rect.left, rect.top, m_bitmap, m_xPicture, 0, m_picture.cx, m_picture.cy,
                     m_bitmap, TRUE);
    } else {
        SetBkColor(hDC, crFace);
        CUIDrawStatePicture(hDC, rect.left, rect.top, m_bitmap,
                            {m_xPicture, 0, m_xPicture + m_picture.cx, m_picture.cy}, crKey,
                            bDisabled);
    }
}

// A triangle that points down.
void CCUIButton::PaintArrow(HDC hDC, const RECT &rect)
{
    if (IsRectEmpty(&rect))
        return;
    const bool bDisabled = (GetState() & CUI_STATE_DISABLED) != 0;
    const COLORREF cr = bDisabled ? GetSysColor(COLOR_GRAYTEXT) : GetTextColor();
    const int nRows = Scaled(ARROW_ROWS);
    const int nShift = m_bOpen ? 1 : 0;
    const int x = rect.left + CUIWidth(rect) / 2 - nRows + nShift;
    const int y = rect.top + (CUIHeight(rect) - nRows) / 2 + nShift;
    CUIDrawTriangle(hDC, x, y, nRows, true, cr);
}
