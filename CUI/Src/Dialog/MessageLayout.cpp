#include "Dialog/MessageLayout.h"

#include "Base/GdiGuards.h"
#include "Base/Module.h"
#include "Base/Wrap.h"
#include "Dialog/DialogPlace.h"
#include "Dialog/MessageCopy.h"
#include "Window/Screen.h"

namespace {

// A longer text scrolls without being measured, which would take a while.
const int MOST_MEASURED = 0x4000;

// As the system draws a static text that breaks long words, too.
const UINT TEXT_FORMAT = DT_WORDBREAK | DT_EXPANDTABS | DT_NOPREFIX | DT_EDITCONTROL;

class CArrangement
{
public:
    CArrangement(HWND hBox, const CCUIMessageContent &content);
    void Arrange();

private:
    SIZE Units(int cx, int cy) const;
    SIZE Measure(const char *pszText, int nWidth, UINT nFormat) const;
    int CaptionWidth() const;
    void MeasureButtons();
    void MeasureCheck();
    void MeasureText();
    int BodyWidth() const;
    SIZE Place();
    void PlaceButtons(int nBody, int yTop) const;
    void PlaceControl(UINT nID, int x, int y, SIZE size) const;
    void Scroll() const;
    void PlaceBox(SIZE client) const;

    const HWND m_hBox;
    const CCUIMessageContent &m_content;
    const HFONT m_hFont;
    const CCUIWindowDC m_dc;
    const CCUISelect m_select;
    RECT m_work;
    SIZE m_frame;   // what the box is larger than its client area
    SIZE m_most;    // of the client area, without margins
    SIZE m_margin;  // around the box, and between what belongs apart
    SIZE m_gap;     // between what belongs together
    SIZE m_icon;
    int m_nColumn;  // from the margin to the text
    SIZE m_text;
    bool m_bScrolls;
    SIZE m_check;
    SIZE m_button;
    int m_nPerRow;
};

CArrangement::CArrangement(HWND hBox, const CCUIMessageContent &content)
    : m_hBox(hBox),
      m_content(content),
      m_hFont(reinterpret_cast<HFONT>(SendMessageA(hBox, WM_GETFONT, 0, 0))),
      m_dc(hBox),
      m_select(m_dc, m_hFont ? m_hFont : GetStockObject(SYSTEM_FONT)),
      m_work(),
      m_margin(Units(7, 7)),
      m_gap(Units(4, 4)),
      m_icon(),
      m_nColumn(0),
      m_text(),
      m_bScrolls(false),
      m_check(),
      m_button(),
      m_nPerRow(1)
{
    const HWND hOwner = GetWindow(hBox, GW_OWNER);
    RECT window;
    RECT client;
    m_work = hOwner && GetWindowRect(hOwner, &window) ? CUIScreenOf(window).work
                                                      : CUIPrimaryScreen().work;
    GetWindowRect(hBox, &window);
    GetClientRect(hBox, &client);
    m_frame = {window.right - window.left - client.right,
               window.bottom - window.top - client.bottom};
    m_most = {m_work.right - m_work.left - m_frame.cx - 2 * m_margin.cx,
              m_work.bottom - m_work.top - m_frame.cy - 2 * m_margin.cy};
    if (m_content.Icon()) {
        m_icon = {GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)};
        m_nColumn = m_icon.cx + m_margin.cx;
    }
}

// Pixels of dialog units.
SIZE CArrangement::Units(int cx, int cy) const
{
    RECT rect = {0, 0, cx, cy};
    MapDialogRect(m_hBox, &rect);
    return {rect.right, rect.bottom};
}

SIZE CArrangement::Measure(const char *pszText, int nWidth, UINT nFormat) const
{
    // Without text the width would stay.
    RECT rect = {0, 0, *pszText ? nWidth : 0, 0};
    DrawTextA(m_dc, pszText, -1, &rect, nFormat | DT_CALCRECT);
    return {rect.right, rect.bottom};
}

// Of the box's title with what stands beside it.
int CArrangement::CaptionWidth() const
{
    NONCLIENTMETRICSA metrics;
    metrics.cbSize = sizeof metrics;
    if (!SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0))
        return 0;
    const CCUIOwned<HFONT> font(CreateFontIndirectA(&metrics.lfCaptionFont));
    const CCUISelect select(m_dc, font);
    char szCaption[MAX_PATH] = "";
    GetWindowTextA(m_hBox, szCaption, MAX_PATH);
    return Measure(szCaption, 0, DT_SINGLELINE | DT_NOPREFIX).cx + metrics.iCaptionWidth +
           m_margin.cx;
}

void CArrangement::MeasureButtons()
{
    const SIZE least = Units(50, 14);
    const SIZE around = Units(8, 5);
    m_button = least;
    for (int i = 0; i < m_content.m_nButtons; ++i) {
        const CCUIMessageButton &button = m_content.m_buttons[i];
        const bool bCounts = m_content.m_nSeconds && &button == &m_content.Default();
        const CCUString sCaption =
            bCounts ? m_content.CountdownCaption(m_content.m_nSeconds) : button.sCaption;
        const SIZE size = Measure(sCaption, 0, DT_SINGLELINE);
        m_button.cx = CUILarger(m_button.cx, size.cx + around.cx);
        m_button.cy = CUILarger(m_button.cy, size.cy + around.cy);
    }
    m_button.cx = CUISmaller(m_button.cx, m_most.cx);
    const int nFits = (m_most.cx + m_gap.cx) / (m_button.cx + m_gap.cx);
    m_nPerRow = CUISmaller(CUILarger(nFits, 1), m_content.m_nButtons);
}

void CArrangement::MeasureCheck()
{
    if (m_content.m_sAnswerName.IsEmpty())
        return;
    const int nMark = GetSystemMetrics(SM_CXMENUCHECK) + m_gap.cx;
    const int nRoom = CUISmaller(Units(280, 0).cx, m_most.cx - m_nColumn) - nMark;
    m_check = Measure(m_content.CheckText(), nRoom, DT_WORDBREAK);
    // A long word sticks out of its line. What the screen has no room for is cut off.
    m_check.cx = CUISmaller(m_check.cx, m_most.cx - m_nColumn - nMark) + nMark;
    m_check.cy = CUISmaller(CUILarger(m_check.cy + 2, Units(0, 10).cy), m_most.cy / 4);
}

// Lines of a length that reads well; longer ones, if that would fill half of the screen.
void CArrangement::MeasureText()
{
    const CCUString &sText = m_content.m_sText;
    const int nRows = (m_content.m_nButtons + m_nPerRow - 1) / m_nPerRow;
    const int nOther = nRows * (m_button.cy + m_gap.cy) + m_margin.cy + m_check.cy + m_gap.cy;
    const int nRoom = CUILarger(m_most.cy - nOther, Units(0, 24).cy);
    const int nWide =
        CUILarger(MulDiv(m_most.cx, 5, 8), CUISmaller(Units(200, 0).cx, m_most.cx)) - m_nColumn;
    const int nNarrow = CUISmaller(Units(280, 0).cx, nWide);
    m_bScrolls = sText.GetLength() > MOST_MEASURED;
    if (!m_bScrolls)
        m_text = Measure(sText, nNarrow, TEXT_FORMAT);
    if (!m_bScrolls && m_text.cy > nRoom / 2)
        m_text = Measure(sText, nWide, TEXT_FORMAT);
    m_bScrolls = m_bScrolls || m_text.cy > nRoom;
    if (m_bScrolls)
        m_text = {nWide, MulDiv(nRoom, 3, 4)};
}

int CArrangement::BodyWidth() const
{
    const int nButtons = m_nPerRow * (m_button.cx + m_gap.cx) - m_gap.cx;
    const int nText = m_nColumn + CUILarger(m_text.cx, m_check.cx);
    const int nCaption = CUISmaller(CaptionWidth(), m_most.cx / 2);
    return CUILarger(CUILarger(nButtons, nText), nCaption);
}

void CArrangement::PlaceControl(UINT nID, int x, int y, SIZE size) const
{
    SetWindowPos(GetDlgItem(m_hBox, static_cast<int>(nID)), nullptr, x, y, size.cx, size.cy,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// Puts a control in the place of the text that shows it with a scroll bar.
void CArrangement::Scroll() const
{
    const HWND hText = GetDlgItem(m_hBox, CCUIMessageContent::TEXT_ID);
    const DWORD nAlign = m_content.m_nFlags & MB_RIGHT ? ES_RIGHT : ES_LEFT;
    const DWORD nExStyle = static_cast<DWORD>(GetWindowLongA(hText, GWL_EXSTYLE));
    const HWND hEdit = CreateWindowExA(
        nExStyle | WS_EX_CLIENTEDGE, "EDIT", nullptr,
        WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | nAlign, 0, 0,
        0, 0, m_hBox, nullptr, CUInstance(), nullptr);
    if (!hEdit)
        return;
    SendMessageA(hEdit, WM_SETFONT, reinterpret_cast<WPARAM>(m_hFont), FALSE);
    SetWindowTextA(hEdit, CUIWithLineEnds(m_content.m_sText));
    SetWindowPos(hEdit, hText, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE);
    DestroyWindow(hText);
    SetWindowLongA(hEdit, GWL_ID, CCUIMessageContent::TEXT_ID);
}

void CArrangement::PlaceButtons(int nBody, int yTop) const
{
    const int nCount = m_content.m_nButtons;
    for (int i = 0; i < nCount; ++i) {
        const int nRow = i / m_nPerRow;
        const int nInRow = CUISmaller(nCount - nRow * m_nPerRow, m_nPerRow);
        const int nRowWidth = nInRow * (m_button.cx + m_gap.cx) - m_gap.cx;
        const int x = (nBody - nRowWidth) / 2 + i % m_nPerRow * (m_button.cx + m_gap.cx);
        PlaceControl(m_content.ControlOf(m_content.m_buttons[i]), m_margin.cx + x,
                     yTop + nRow * (m_button.cy + m_gap.cy), m_button);
    }
}

// All controls; gives the size of the client area.
SIZE CArrangement::Place()
{
    const int nBody = BodyWidth();
    // The last character may be drawn beyond the width that it is said to have. The margin has
    // room.
    const int nOverhang = Units(1, 0).cx;
    const bool bFills = m_bScrolls || (m_content.m_nFlags & MB_RIGHT);
    const SIZE text = {bFills ? nBody - m_nColumn : m_text.cx + nOverhang, m_text.cy};
    const int xText = m_margin.cx + m_nColumn;
    int y = m_margin.cy;
    PlaceControl(CCUIMessageContent::ICON_ID, m_margin.cx, y, m_icon);
    PlaceControl(CCUIMessageContent::TEXT_ID, xText, y + CUILarger(m_icon.cy - text.cy, 0) / 2,
                 text);
    y += CUILarger(m_icon.cy, text.cy);
    if (m_check.cy) {
        y += m_margin.cy;
        PlaceControl(CCUIMessageContent::CHECK_ID, xText, y, m_check);
        y += m_check.cy;
    }
    y += m_margin.cy + m_gap.cy / 2;
    PlaceButtons(nBody, y);
    const int nRows = (m_content.m_nButtons + m_nPerRow - 1) / m_nPerRow;
    return {nBody + 2 * m_margin.cx, y + nRows * (m_button.cy + m_gap.cy) - m_gap.cy + m_margin.cy};
}

// In the middle of the owner, or of the screen where no owner is to be seen.
void CArrangement::PlaceBox(SIZE client) const
{
    CUICenterOnOwner(m_hBox, {client.cx + m_frame.cx, client.cy + m_frame.cy});
}

void CArrangement::Arrange()
{
    MeasureButtons();
    MeasureCheck();
    MeasureText();
    if (m_bScrolls)
        Scroll();
    PlaceBox(Place());
}

}  // namespace

void CUIArrangeMessage(HWND hBox, const CCUIMessageContent &content)
{
    CArrangement(hBox, content).Arrange();
}
