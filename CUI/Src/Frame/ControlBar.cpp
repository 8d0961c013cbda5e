// The bar as its owner sees it: what is in it, where it is, what of it is painted.

#include "CUI/ControlBar.h"

#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "CUI/Settings.h"
#include "CUI/WindowClass.h"
#include "Command/CommandText.h"
#include "Control/ControlTip.h"
#include "Drawing/BufferedPaint.h"
#include "Frame/BarItems.h"
#include "Window/OwnThread.h"

#define CU_SOURCE "ControlBar"

namespace {

// What of a command's state can be seen of its button.
const unsigned short SEEN = CUI_COMMAND_ACTIVE | CUI_COMMAND_CHECKED;

}  // namespace

// An item that shows its command in the bar.
class CCUIControlBar::CItem final : public CCUIBarItem
{
public:
    explicit CItem(CCUIControlBar *pBar) : m_pBar(pBar) {}

protected:
    void OnCommandChanged(unsigned short nNewState, const CCUString &sNewText) override
    {
        m_pBar->ShowCommand(*this, nNewState, sNewText);
    }

private:
    CCUIControlBar *const m_pBar;
};

CCUIControlBar *CCUIControlBar::s_pFirst;

CCUIControlBar::CCUIControlBar()
    : m_pItems(new CCUIBarItems),
      m_pNext(s_pFirst),
      m_side(CUI_BAR_TOP),
      m_bShown(true),
      m_bDragging(false),
      m_bTracking(false),
      m_hTarget(nullptr),
      m_nHot(-1),
      m_nPressed(-1),
      m_bInside(false),
      m_bFilling(false)
{
    s_pFirst = this;
    // Commands of the windows inside, and of menus that a button opens.
    RouteCommands(true);
    m_propData.nFixedSize = m_pItems->Thickness(false);
}

CCUIControlBar::~CCUIControlBar()
{
    CCUIControlBar **ppBar = &s_pFirst;
    while (*ppBar != this)
        ppBar = &(*ppBar)->m_pNext;
    *ppBar = m_pNext;
    CUIHideControlTip(m_hWnd);
    delete m_pItems;
}

CCUIControlBar *CCUIControlBar::Find(HWND hWnd)
{
    CCUIControlBar *pBar = s_pFirst;
    while (pBar && (!hWnd || pBar->m_hWnd != hWnd))
        pBar = pBar->m_pNext;
    return pBar;
}

int CCUIControlBar::PreCreate(CREATESTRUCTA *pCreate)
{
    if (!pCreate->lpszClass) {
        CU_ASSERT(CUIWindowClassRegister(CUI_CLASS_CONTROLBAR));
        pCreate->lpszClass = CUIWindowClassName(CUI_CLASS_CONTROLBAR);
    }
    return CCUIControlWindow::PreCreate(pCreate);
}

int CCUIControlBar::CreateBar(HWND hParent, UINT nID, const char *pszName, CUIBarSide side)
{
    m_side = side;
    m_sName = pszName;
    LoadState();
    m_propData.nFixedSize = m_pItems->Thickness(IsVertical());
    const DWORD nStyle = WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN;
    const RECT rcNone = {0, 0, 0, 0};
    return Create(nullptr, "", nStyle | (m_bShown ? WS_VISIBLE : 0), rcNone, hParent, nID);
}

// --- Items ---

void CCUIControlBar::SetButtons(const unsigned int *pnIDs, int nCount)
{
    CWatch watch(this);
    RemoveAll();
    if (watch.IsGone())
        return;
    m_bFilling = true;
    int nPicture = 0;
    for (int i = 0; i < nCount && !watch.IsGone(); ++i)
        Append(pnIDs[i], pnIDs[i] ? nPicture++ : -1, nullptr);
    if (!watch.IsGone())
        ItemsFilled();
}

// SetCommand asks the command's handler, which may change or delete the bar.
void CCUIControlBar::Append(unsigned int nID, int nPicture, HWND hControl)
{
    CU_ASSERT_TEXT(CUIIsOwnThread(m_hWnd), "IsOwnThread()");
    CWatch watch(this);
    auto *const pItem = new CItem(this);
    pItem->nPicture = nPicture;
    pItem->hControl = hControl;
    if (hControl) {
        RECT rect = {};
        GetWindowRect(hControl, &rect);
        pItem->size = {CUIWidth(rect), CUIHeight(rect)};
    }
    m_pItems->Add(pItem);
    const bool bAlone = !m_bFilling;
    m_bFilling = true;
    pItem->SetCommand(nID);
    if (!watch.IsGone() && bAlone)
        ItemsFilled();
}

void CCUIControlBar::ItemsFilled()
{
    m_bFilling = false;
    ItemsChanged();
}

void CCUIControlBar::AddButton(unsigned int nID, int nPicture)
{
    Append(nID, nPicture, nullptr);
}

void CCUIControlBar::AddSeparator()
{
    Append(0, -1, nullptr);
}

void CCUIControlBar::AddControl(HWND hControl, unsigned int nID)
{
    CU_ASSERT(m_hWnd);
    CWatch watch(this);
    if (m_hWnd && CUIIsOwnWindow(hControl) && GetParent(hControl) != m_hWnd)
        SetParent(hControl, m_hWnd);
    if (watch.IsGone() || !m_hWnd)
        return;
    if (CUIIsOwnWindow(hControl) && GetParent(hControl) == m_hWnd)
        Append(nID, -1, hControl);
    else
        CUDump("Window %p cannot be put into a bar, gle: %lu\n", static_cast<void *>(hControl),
               GetLastError());
}

void CCUIControlBar::RemoveAll()
{
    CU_ASSERT_TEXT(CUIIsOwnThread(m_hWnd), "IsOwnThread()");
    CWatch watch(this);
    m_nHot = m_nPressed = -1;
    while (!watch.IsGone() && m_pItems->Count() > 0) {
        const HWND hControl = (*m_pItems)[m_pItems->Count() - 1].hControl;
        m_pItems->Remove(m_pItems->Count() - 1);
        if (hControl)
            ShowWindow(hControl, SW_HIDE);
    }
    if (!watch.IsGone())
        ItemsChanged();
}

void CCUIControlBar::SetDropDown(unsigned int nID, CCUIMenu *pMenu)
{
    for (int i = 0; i < m_pItems->Count(); ++i) {
        CCUIBarItem &item = (*m_pItems)[i];
        if (item.GetCommand() == nID && item.IsButton())
            item.pMenu = pMenu;
    }
    m_pItems->ForgetSizes();
    ItemsChanged();
}

void CCUIControlBar::SetPictures(const CCUIBitmap &strip, int cxPicture, int nDpi)
{
    if (strip.Width() < cxPicture)
        CUDump("CCUIControlBar: no picture comes from a strip of %d pixels\n", strip.Width());
    m_pItems->SetPictures(strip, cxPicture, nDpi);
    TextsChanged();
}

void CCUIControlBar::ShowTexts(bool bShow)
{
    m_pItems->m_bTexts = bShow;
    TextsChanged();
}

// Buttons with a picture have not asked for their text.
void CCUIControlBar::TextsChanged()
{
    CU_ASSERT_TEXT(CUIIsOwnThread(m_hWnd), "IsOwnThread()");
    CWatch watch(this);
    m_pItems->ForgetSizes();
    m_bFilling = true;
    for (int i = 0; !watch.IsGone() && i < m_pItems->Count(); ++i)
        AskText((*m_pItems)[i]);
    if (!watch.IsGone())
        ItemsFilled();
}

// --- Commands ---

void CCUIControlBar::RefreshCommands()
{
    CWatch watch(this);
    for (int i = 0; !watch.IsGone() && i < m_pItems->Count(); ++i)
        (*m_pItems)[i].UpdateCommand();
}

// What is done last may be the end of the item and of the bar.
void CCUIControlBar::ShowCommand(CCUIBarItem &item, unsigned short nState, const CCUString &sText)
{
    const auto nSeen = static_cast<unsigned short>(nState & SEEN);
    const bool bOther = nSeen != item.nState;
    item.nState = nSeen;
    if (item.hControl) {
        EnableControl(item.hControl, (nState & CUI_COMMAND_ACTIVE) != 0);
        return;
    }
    if (bOther)
        Repaint(&item.rc);
    if (nState & CUI_COMMAND_TEXT)
        SetItemText(item, sText);
    else
        AskText(item);
}

// A handler that does not say that its text changes is asked once.
void CCUIControlBar::AskText(CCUIBarItem &item)
{
    const unsigned int nID = item.GetCommand();
    if (!m_pItems->HasText(item) || !item.sText.IsEmpty())
        return;
    CCUICommandHandler *const pHandler = CUIFindCommand(nID);
    if (!pHandler)
        return;
    CWatch watch(this);
    const CCUString sText = pHandler->GetShortTT(nID);
    if (!watch.IsGone() && m_pItems->Has(&item, nID))
        SetItemText(item, sText);
}

void CCUIControlBar::SetItemText(CCUIBarItem &item, const CCUString &sText)
{
    const CCUString sPlain = CUIPlainCommandText(sText);
    if (item.sText == sPlain)
        return;
    item.sText = sPlain;
    if (!m_pItems->HasText(item))
        return;
    item.size.cx = 0;
    if (!m_bFilling)
        ItemsChanged();
}

// --- Places ---

RECT CCUIControlBar::GetItemRect(int nItem) const
{
    const CCUIBarItem *const pItem = m_pItems->At(nItem);
    return pItem ? pItem->rc : RECT{0, 0, 0, 0};
}

RECT CCUIControlBar::GetOverflowRect() const
{
    return m_pItems->Place(m_pItems->Count());
}

void CCUIControlBar::Repaint(const RECT *pRect)
{
    if (m_hWnd && !(pRect && IsRectEmpty(pRect)))
        InvalidateRect(m_hWnd, pRect, FALSE);
}

void CCUIControlBar::RepaintItem(int nItem)
{
    if (nItem >= 0)
        Repaint(&m_pItems->Place(nItem));
}

// After a change of their number, sizes or order.
void CCUIControlBar::ItemsChanged()
{
    CWatch watch(this);
    const int nThickness = m_pItems->Thickness(IsVertical());
    Layout();
    if (watch.IsGone())
        return;
    Repaint();
    SetFixedSize(nThickness);
}

void CCUIControlBar::Layout()
{
    if (!m_hWnd)
        return;
    for (int i = m_pItems->Count() - 1; i >= 0; --i) {
        const HWND hControl = (*m_pItems)[i].hControl;
        if (hControl && GetParent(hControl) != m_hWnd) {
            m_pItems->Remove(i);
            m_nHot = m_nPressed = -1;
        }
    }
    RECT client;
    GetClientRect(m_hWnd, &client);
    m_pItems->Layout(IsVertical(), client.right, client.bottom);
    CWatch watch(this);
    for (int i = 0; !watch.IsGone() && i < m_pItems->Count(); ++i) {
        const CCUIBarItem &item = (*m_pItems)[i];
        if (!item.hControl)
            continue;
        const UINT nFlags = SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
        if (IsRectEmpty(&item.rc))
            ShowWindow(item.hControl, SW_HIDE);
        else
            SetWindowPos(item.hControl, nullptr, item.rc.left, item.rc.top, 0, 0,
                         nFlags | SWP_SHOWWINDOW);
    }
}

// After a change of the bar's length. The first items stay where they are: what is painted again
// begins with the first that has moved.
void CCUIControlBar::Relayout()
{
    CWatch watch(this);
    Layout();
    RECT rcMoved = {};
    for (int i = 0; !watch.IsGone() && i <= m_pItems->Count(); ++i) {
        if (m_pItems->HasMoved(i)) {
            UnionRect(&rcMoved, &rcMoved, &m_pItems->PlaceBefore(i));
            UnionRect(&rcMoved, &rcMoved, &m_pItems->Place(i));
        }
    }
    if (!watch.IsGone())
        Repaint(&rcMoved);
}

void CCUIControlBar::SetSide(CUIBarSide side)
{
    if (side == m_side)
        return;
    m_side = side;
    m_propData.nFixedSize = m_pItems->Thickness(IsVertical());
    if (!m_bDragging)
        SaveState();
    if (!m_hWnd)
        return;
    CWatch watch(this);
    const HWND hParent = GetParent(m_hWnd);
    if (!m_propData.bColorChanging)
        SendMessageA(hParent, CUI_WM_LAYOUT, 0, CUI_LAYOUT_ALL);
    if (watch.IsGone() || !m_hWnd)
        return;
    Layout();
    if (!watch.IsGone())
        Repaint();
}

void CCUIControlBar::SetDockable(bool bDockable)
{
    m_pItems->m_bGrip = bDockable;
    ItemsChanged();
}

void CCUIControlBar::ShowBar(bool bShow)
{
    m_bShown = bShow;
    SaveState();
    if (m_hWnd)
        ShowWindow(m_hWnd, bShow ? SW_SHOWNA : SW_HIDE);
}

// --- Settings ---

void CCUIControlBar::LoadState()
{
    CCURegistry registry;
    if (m_sName.IsEmpty() || !CUIOpenSettings(registry, "Bars\\" + m_sName))
        return;
    int nValue = 0;
    if (registry.GetInt("Side", nValue) && nValue >= CUI_BAR_TOP && nValue <= CUI_BAR_RIGHT)
        m_side = static_cast<CUIBarSide>(nValue);
    if (registry.GetInt("Shown", nValue))
        m_bShown = nValue != 0;
}

void CCUIControlBar::SaveState() const
{
    CCURegistry registry;
    if (m_sName.IsEmpty() || !CUIOpenSettings(registry, "Bars\\" + m_sName, false))
        return;
    const bool bSide = registry.SetInt("Side", m_side);
    if (!registry.SetInt("Shown", m_bShown) || !bSide)
        CUDump("Unable to keep the state of bar %s, gle: %lu\n", m_sName.GetString(),
               GetLastError());
}

// --- Painting ---

void CCUIControlBar::OnPaint(HDC hDC)
{
    const CUIData *const pData = CUIGetWinData();
    CCUIBufferedPaint paint(m_hWnd, hDC);
    const HDC hPicture = paint.Begin(pData->hMenuFont);
    FillRect(hPicture, &paint.Area(), pData->hbrBtnFace);
    RECT client;
    GetClientRect(m_hWnd, &client);
    m_pItems->DrawGrip(hPicture, IsVertical(), client.right, client.bottom);
    const bool bEnabled = IsWindowEnabled(m_hWnd) != 0;
    for (int i = 0; i <= m_pItems->Count(); ++i) {
        if (!paint.Touches(m_pItems->Place(i)))
            continue;
        const CCUIBarLook look = i == m_nPressed && m_bInside ? CUI_LOOK_PRESSED
                                 : i == m_nHot                ? CUI_LOOK_HOT
                                                              : CUI_LOOK_PLAIN;
        m_pItems->Draw(hPicture, i, look, bEnabled);
    }
}
