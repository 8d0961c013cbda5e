#include "Window/PropertyGrid.h"

#include <algorithm>

#include "Base/GdiGuards.h"
#include "CUI/Data.h"
#include "Model/SkinEntry.h"
#include "Resource.h"
#include "Window/Scaled.h"

namespace {

const UINT ID_EDIT = 1;
const UINT ID_BUTTON = 2;
const UINT JOIN_TYPING = 0x10000;
const int LEAST_COLUMN = 40;
const int DIVIDER_REACH = 3;

}  // namespace

CPropertyGrid::CPropertyGrid(CDocument &document, CPropertyHost &host)
    : m_document(document), m_host(host)
{
}

CPropertyGrid::~CPropertyGrid() = default;

int CPropertyGrid::CreateGrid(HWND hParent, UINT nID)
{
    return CreateEx(WS_EX_CLIENTEDGE | WS_EX_CONTROLPARENT, nullptr, "",
                    WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_CLIPCHILDREN | WS_TABSTOP, 0, 0, 0, 0,
                    hParent, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID)));
}

int CPropertyGrid::OnCreate(CREATESTRUCTA *pCreate)
{
    const RECT nowhere = {0, 0, 0, 0};
    m_edit.CreateControl(m_hWnd, ID_EDIT, "", ES_AUTOHSCROLL, &nowhere);
    SetWindowLongA(m_edit, GWL_EXSTYLE, 0);
    m_edit.SetFont(CUIGetWinData()->hMenuFont);
    SendMessageA(m_edit, EM_SETMARGINS, EC_LEFTMARGIN, 0);  // in line with the other rows
    m_button.CreateControl(m_hWnd, ID_BUTTON, "...", &nowhere);
    ShowWindow(m_button, SW_HIDE);
    m_edit.Show(false);
    m_cxNames = Scaled(134);
    MeasureRows();
    return CCUIControlWindow::OnCreate(pCreate);
}

void CPropertyGrid::MeasureRows()
{
    const CCUIWindowDC hDC(m_hWnd);
    const CCUISelect font(hDC, CUIGetWinData()->hMenuFont);
    TEXTMETRICA metric;
    GetTextMetricsA(hDC, &metric);
    m_cyRow = metric.tmHeight + Scaled(6);
}

// --- What is shown ---

void CPropertyGrid::Read(const SkinPart *pPart)
{
    if (!pPart) {
        m_rows = MakePropertyRows(m_document.Skin());
        m_problems.assign(m_rows.size(), false);
        if (m_nSelected >= RowCount() || m_nSelected < 0)
            m_nSelected = NextRow(-1, 1);
        else if (Row(m_nSelected).m_kind == PropertyRow::Heading)
            m_nSelected = NextRow(m_nSelected, 1);  // a row above has come or gone
        KeepBefore();
        Rearrange();
        LoadEditor(false);
        InvalidateRect(m_hWnd, nullptr, FALSE);
        return;
    }
    for (int i = 0; i < RowCount(); ++i) {
        if (!(RowPart(m_document, Row(i)) == *pPart) || Row(i).m_kind == PropertyRow::Heading)
            continue;
        InvalidateRow(i);
        if (i == m_nSelected && !m_bTaking)
            LoadEditor(false);
        else if (i == m_nSelected)
            m_host.OnPropertyRow(Row(i), false);
        return;
    }
}

void CPropertyGrid::SetProblems(const CProblems &problems)
{
    std::vector<bool> marks(m_rows.size(), false);
    for (const CProblem &problem : problems) {
        const bool bShown = problem.m_nEntry && m_document.IsShown(problem);
        const int nRow = bShown ? FindRow(problem.m_nEntry) : -1;
        if (nRow >= 0 && problem.m_weight != ProblemNote)
            marks[static_cast<size_t>(nRow)] = true;
    }
    for (int i = 0; i < RowCount(); ++i) {
        if (marks[static_cast<size_t>(i)] != m_problems[static_cast<size_t>(i)])
            InvalidateRow(i);
    }
    m_problems = marks;
}

bool CPropertyGrid::HasFault(int nRow) const
{
    return m_problems[static_cast<size_t>(nRow)] || !RowFault(m_document, Row(nRow)).IsEmpty();
}

// Of what problems call so; -1: there is none.
int CPropertyGrid::FindRow(UINT nEntry) const
{
    for (int i = 0; i < RowCount(); ++i) {
        if (nEntry && RowEntry(Row(i)) == nEntry)
            return i;
    }
    return -1;
}

const PropertyRow *CPropertyGrid::Selected() const
{
    return m_nSelected >= 0 ? &Row(m_nSelected) : nullptr;
}

// --- Places ---

RECT CPropertyGrid::RowRect(int nRow) const
{
    RECT client;
    GetClientRect(m_hWnd, &client);
    return {0, nRow * m_cyRow - m_nPos, client.right, (nRow + 1) * m_cyRow - m_nPos};
}

int CPropertyGrid::RowAt(int y) const
{
    const int nRow = (y + m_nPos) / m_cyRow;
    return nRow >= 0 && nRow < RowCount() ? nRow : -1;
}

bool CPropertyGrid::IsOnDivider(const POINT &point) const
{
    return point.x >= m_cxNames - DIVIDER_REACH && point.x <= m_cxNames + DIVIDER_REACH;
}

// The next row that is no heading; the last one there is.
int CPropertyGrid::NextRow(int nFrom, int nBy) const
{
    const int nStep = nBy < 0 ? -1 : 1;
    int nTo = std::min(std::max(nFrom + nBy, 0), RowCount() - 1);
    while (nTo >= 0 && nTo < RowCount() && Row(nTo).m_kind == PropertyRow::Heading)
        nTo += nStep;
    return nTo >= 0 && nTo < RowCount() ? nTo : nFrom;
}

void CPropertyGrid::Rearrange()
{
    if (!m_hWnd)
        return;
    RECT client;
    GetClientRect(m_hWnd, &client);
    const int nLength = RowCount() * m_cyRow;
    m_nPos = std::max(0, std::min<int>(m_nPos, nLength - client.bottom));
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    info.nMax = nLength - 1;
    info.nPage = static_cast<UINT>(client.bottom);
    info.nPos = m_nPos;
    SetScrollInfo(m_hWnd, SB_VERT, &info, TRUE);
    PlaceEditor();
}

void CPropertyGrid::OnSize(UINT nType, int cx, int cy)
{
    CCUIControlWindow::OnSize(nType, cx, cy);
    if (cx > 2 * LEAST_COLUMN)
        m_cxNames = std::min(m_cxNames, cx - LEAST_COLUMN);
    Rearrange();
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CPropertyGrid::ScrollTo(int nPos)
{
    const int nBefore = m_nPos;
    m_nPos = nPos;
    Rearrange();
    if (m_nPos != nBefore)
        InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CPropertyGrid::OnVScroll(UINT nCode, UINT, HWND hScrollBar)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    if (hScrollBar || !GetScrollInfo(m_hWnd, SB_VERT, &info))
        return;
    const int nPage = static_cast<int>(info.nPage);
    switch (nCode) {
    case SB_LINEUP: ScrollTo(m_nPos - m_cyRow); break;
    case SB_LINEDOWN: ScrollTo(m_nPos + m_cyRow); break;
    case SB_PAGEUP: ScrollTo(m_nPos - nPage); break;
    case SB_PAGEDOWN: ScrollTo(m_nPos + nPage); break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION: ScrollTo(info.nTrackPos); break;
    case SB_TOP: ScrollTo(0); break;
    case SB_BOTTOM: ScrollTo(info.nMax); break;
    default: break;
    }
}

void CPropertyGrid::OnMouseWheel(UINT, int nDelta, POINT &)
{
    m_nWheel += nDelta * 3;
    ScrollTo(m_nPos - m_nWheel / WHEEL_DELTA * m_cyRow);
    m_nWheel %= WHEEL_DELTA;
}

void CPropertyGrid::InvalidateRow(int nRow)
{
    const RECT rect = RowRect(nRow);
    InvalidateRect(m_hWnd, &rect, FALSE);
}

// --- The editor ---

void CPropertyGrid::PlaceEditor()
{
    if (m_nSelected < 0)
        return;
    const RECT rect = RowRect(m_nSelected);
    const int cxButton = HasRowButton(Row(m_nSelected)) ? m_cyRow : 0;
    const int x = m_cxNames + Scaled(4), nInset = Scaled(3);
    SetWindowPos(m_edit, nullptr, x, rect.top + nInset,
                 std::max<int>(0, rect.right - cxButton - x - 2), m_cyRow - nInset - 2,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowPos(m_button, nullptr, rect.right - cxButton, rect.top, cxButton, m_cyRow - 1,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void CPropertyGrid::LoadEditor(bool bChosen)
{
    if (m_nSelected < 0)
        return;
    const PropertyRow &row = Row(m_nSelected);
    const CCUString sText = RowEditText(m_document, row);
    m_bLoading = true;
    if (m_edit.GetText() != sText)
        m_edit.SetText(sText);
    m_edit.SetReadOnly(!IsRowText(row));
    m_bLoading = false;
    m_edit.Show(true);
    ShowWindow(m_button, HasRowButton(row) ? SW_SHOWNA : SW_HIDE);
    m_host.OnPropertyRow(row, bChosen);
}

void CPropertyGrid::SelectRow(int nRow)
{
    if (nRow < 0 || Row(nRow).m_kind == PropertyRow::Heading)
        return;
    if (nRow != m_nSelected) {
        m_document.Seal();
        InvalidateRow(m_nSelected);
        m_nSelected = nRow;
        InvalidateRow(nRow);
        KeepBefore();
        LoadEditor(true);
    } else {
        m_host.OnPropertyRow(Row(nRow), true);
    }
    RECT client;
    GetClientRect(m_hWnd, &client);
    const RECT rect = RowRect(nRow);
    if (rect.top < 0)
        ScrollTo(m_nPos + rect.top);
    else if (rect.bottom > client.bottom)
        ScrollTo(m_nPos + rect.bottom - client.bottom);
    PlaceEditor();
}

void CPropertyGrid::FocusEditor()
{
    m_document.Seal();
    SetFocus(m_edit);
    m_edit.SetSelection(0, -1);
}

void CPropertyGrid::SelectEntry(UINT nEntry, bool bEdit)
{
    const int nRow = FindRow(nEntry);
    if (nRow < 0)
        return;
    SelectRow(nRow);
    if (bEdit && IsRowText(Row(nRow)))
        FocusEditor();
}

void CPropertyGrid::TakeText()
{
    if (m_bLoading || m_nSelected < 0)
        return;
    const PropertyRow row = Row(m_nSelected);
    m_bTaking = true;
    {
        const CDocumentStep step(m_document, JOIN_TYPING + static_cast<UINT>(m_nSelected));
        SetRowText(m_document, row, m_edit.GetText());
    }
    m_bTaking = false;
    InvalidateRow(m_nSelected);
}

void CPropertyGrid::KeepBefore()
{
    const CWideText *const pBefore =
        m_nSelected >= 0 ? RowOwnText(m_document, Row(m_nSelected)) : nullptr;
    m_before.reset(pBefore ? new CWideText(*pBefore) : nullptr);
}

// What the row had, to the character: the field may not be able to show it.
void CPropertyGrid::PutBack()
{
    if (m_nSelected < 0 || !IsRowText(Row(m_nSelected)))
        return;
    const CDocumentStep step(m_document, JOIN_TYPING + static_cast<UINT>(m_nSelected));
    m_document.SetText(RowPart(m_document, Row(m_nSelected)), m_before.get());
}

void CPropertyGrid::PressButton()
{
    if (m_nSelected < 0 || !HasRowButton(Row(m_nSelected)))
        return;
    const PropertyRow row = Row(m_nSelected);
    m_document.Seal();
    m_host.OnPropertyButton(row);
}

void CPropertyGrid::OnCommand(UINT nCode, UINT nID, HWND hControl)
{
    if (nID == ID_EDIT && nCode == EN_CHANGE)
        TakeText();
    else if (nID == ID_BUTTON && nCode == BN_CLICKED)
        PressButton();
    else
        CCUIControlWindow::OnCommand(nCode, nID, hControl);
}

// --- Keyboard and mouse ---

void CPropertyGrid::OnSetFocus(HWND hOld)
{
    CCUIControlWindow::OnSetFocus(hOld);
    if (m_nSelected >= 0)
        FocusEditor();
}

bool CPropertyGrid::TranslateKey(WPARAM nKey)
{
    RECT client;
    GetClientRect(m_hWnd, &client);
    const int nPage = std::max(1, static_cast<int>(client.bottom) / m_cyRow - 1);
    switch (nKey) {
    case VK_UP: SelectRow(NextRow(m_nSelected, -1)); break;
    case VK_DOWN:
    case VK_RETURN: SelectRow(NextRow(m_nSelected, 1)); break;
    case VK_PRIOR: SelectRow(NextRow(m_nSelected, -nPage)); break;
    case VK_NEXT: SelectRow(NextRow(m_nSelected, nPage)); break;
    case VK_F4: PressButton(); return true;
    case VK_ESCAPE: PutBack(); break;
    default: return false;
    }
    FocusEditor();
    return true;
}

int CPropertyGrid::PreTranslateMessage(MSG *pMsg)
{
    const bool bKey = pMsg->message == WM_KEYDOWN && pMsg->hwnd == m_edit;
    if (bKey && GetKeyState(VK_CONTROL) >= 0 && GetKeyState(VK_SHIFT) >= 0 &&
        TranslateKey(pMsg->wParam))
        return 1;
    if (pMsg->message == WM_SYSKEYDOWN && pMsg->hwnd == m_edit && pMsg->wParam == VK_DOWN) {
        PressButton();
        return 1;
    }
    return CCUIControlWindow::PreTranslateMessage(pMsg);
}

void CPropertyGrid::OnLButtonDown(UINT, POINT &point)
{
    if (IsOnDivider(point)) {
        m_bDragging = true;
        SetCapture(m_hWnd);
        return;
    }
    const int nRow = RowAt(point.y);
    if (nRow < 0 || Row(nRow).m_kind == PropertyRow::Heading)
        return;
    SelectRow(nRow);
    FocusEditor();
}

void CPropertyGrid::OnLButtonDblClk(UINT nFlags, POINT &point)
{
    OnLButtonDown(nFlags, point);
    if (!m_bDragging && RowAt(point.y) == m_nSelected)
        PressButton();
}

void CPropertyGrid::OnMouseMove(UINT, POINT &point)
{
    if (!m_bDragging)
        return;
    RECT client;
    GetClientRect(m_hWnd, &client);
    m_cxNames = std::max<int>(LEAST_COLUMN, std::min<int>(point.x, client.right - LEAST_COLUMN));
    PlaceEditor();
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

void CPropertyGrid::OnLButtonUp(UINT, POINT &)
{
    if (m_bDragging)
        ReleaseCapture();
}

void CPropertyGrid::OnCaptureChanged(HWND)
{
    m_bDragging = false;
}

int CPropertyGrid::OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage)
{
    POINT point;
    GetCursorPos(&point);
    ScreenToClient(m_hWnd, &point);
    if (nHitTest != HTCLIENT || hWnd != m_hWnd || !(m_bDragging || IsOnDivider(point)))
        return CCUIControlWindow::OnSetCursor(hWnd, nHitTest, nMessage);
    SetCursor(LoadCursorA(nullptr, IDC_SIZEWE));
    return 1;
}
