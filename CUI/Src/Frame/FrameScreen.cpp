// Where a frame stands: the place that the settings keep, full screen, other screens.

#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CUI/Data.h"
#include "CUI/FrameWindow.h"
#include "CUI/Settings.h"
#include "Frame/FrameDocks.h"
#include "Frame/Placement.h"
#include "Window/Screen.h"

namespace {

const char PLACEMENT[] = "Placement";

// What a full screen has not. The system restores WS_MAXIMIZE itself.
const LONG FRAME_STYLE = WS_CAPTION | WS_THICKFRAME;

void GetPlacement(HWND hWnd, WINDOWPLACEMENT &placement)
{
    placement.length = sizeof placement;
    GetWindowPlacement(hWnd, &placement);
}

int ScreenDpi()
{
    return CUIGetWinData()->cyPixelsPerInch;
}

// For as long as it lives, nothing of the window is drawn that changes, and at its end all of it is
// due. A hidden window is left alone: the system would show it.
class CNoRedraw
{
public:
    explicit CNoRedraw(HWND hWnd) : m_hWnd(IsWindowVisible(hWnd) ? hWnd : nullptr) { Set(FALSE); }
    ~CNoRedraw()
    {
        Set(TRUE);
        if (m_hWnd)
            RedrawWindow(m_hWnd, nullptr, nullptr,
                         RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    }
    CNoRedraw(const CNoRedraw &) = delete;
    CNoRedraw &operator=(const CNoRedraw &) = delete;

private:
    void Set(WPARAM bRedraw) const
    {
        if (m_hWnd)
            SendMessageA(m_hWnd, WM_SETREDRAW, bRedraw, 0);
    }

    HWND m_hWnd;
};

// SetWindowPlacement would show it in its normal place first. Of a window that is maximised already
// it sets that place alone; but Wine 8 moves it.
void ShowMaximized(HWND hWnd, WINDOWPLACEMENT placement)
{
    ShowWindow(hWnd, SW_SHOWMAXIMIZED);
    const CNoRedraw noRedraw(hWnd);
    RECT rect;
    GetWindowRect(hWnd, &rect);
    placement.showCmd = SW_HIDE;  // as it is, while nothing is drawn
    placement.ptMaxPosition = {-1, -1};
    SetWindowPlacement(hWnd, &placement);
    SetWindowPos(hWnd, nullptr, rect.left, rect.top, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

void CCUIFrameWindow::ShowKept(const char *pszSection, int nShow)
{
    if (!Exist())
        return;
    m_sSection = pszSection;
    CCURegistry registry;
    CCUString sKept;
    CCUIPlacement kept = {};
    if (CUIOpenSettings(registry, m_sSection) && registry.GetString(PLACEMENT, sKept) &&
        CUIReadPlacement(sKept, kept))
    {
        CUIFitPlacement(kept, ScreenDpi());
        const WINDOWPLACEMENT placement = CUIToShow(kept, nShow);
        SetWindowPlacement(m_hWnd, &placement);
    } else {
        ShowWindow(m_hWnd, nShow);
    }
}

void CCUIFrameWindow::KeepPlacement()
{
    CCURegistry registry;
    if (m_sSection.IsEmpty() || !CUIOpenSettings(registry, m_sSection, false))
        return;
    WINDOWPLACEMENT placement = m_before;
    if (!m_bCovering)
        GetPlacement(m_hWnd, placement);
    CCUIPlacement kept = CUIPlacementOf(placement);
    kept.nDpi = ScreenDpi();
    if (!registry.SetString(PLACEMENT, CUIPlacementText(kept)))
        CUDump("Unable to keep the place of %s, gle: %lu\n", m_sSection.GetString(),
               GetLastError());
}

void CCUIFrameWindow::BringToFront()
{
    if (!Exist())
        return;
    CWatch watch(this);
    const HWND hWnd = m_hWnd;
    if (IsIconic(hWnd))
        ShowWindow(hWnd, SW_RESTORE);
    else if (!IsWindowVisible(hWnd))
        ShowWindow(hWnd, SW_SHOW);
    SetForegroundWindow(GetLastActivePopup(hWnd));
}

// What is asked for while the frame goes there or back follows afterwards.
int CCUIFrameWindow::SetFullScreen(bool bFull)
{
    if (!Exist())
        return 0;
    m_bFullScreen = bFull;
    if (m_bSwitching)
        return 1;
    CWatch watch(this);
    m_bSwitching = true;
    while (m_hWnd && m_bFullScreen != m_bCovering) {
        if (CloseMenu() && m_bFullScreen != m_bCovering)
            m_bCovering ? LeaveFullScreen() : EnterFullScreen();
        if (watch.IsGone())
            return 1;
    }
    m_bSwitching = false;
    // A bar that has gone had it.
    if (m_hWnd && GetFocus() == m_hWnd)
        FocusClient();
    return 1;
}

// Both ways the frame is first made what it will be, unseen, and then gets its place.
void CCUIFrameWindow::EnterFullScreen()
{
    CWatch watch(this);
    if (IsIconic(m_hWnd))
        ShowWindow(m_hWnd, SW_RESTORE);
    if (watch.IsGone() || !m_hWnd)
        return;
    GetPlacement(m_hWnd, m_before);
    m_hMenuBefore = ::GetMenu(m_hWnd);
    m_nStyleBefore = GetWindowLongA(m_hWnd, GWL_STYLE) & FRAME_STYLE;
    m_bCovering = true;
    {
        const CNoRedraw noRedraw(m_hWnd);
        m_pDocks->ShowBars(false);
        if (!watch.IsGone() && m_bCovering)
            OnFullScreen(true);
        if (watch.IsGone() || !m_bCovering)
            return;
        const LONG nStyle = GetWindowLongA(m_hWnd, GWL_STYLE);
        SetWindowLongA(m_hWnd, GWL_STYLE, nStyle & ~(FRAME_STYLE | WS_MAXIMIZE));
        ::SetMenu(m_hWnd, nullptr);
    }
    if (!watch.IsGone() && m_bCovering)
        CoverScreen();
}

void CCUIFrameWindow::CoverScreen()
{
    if (IsIconic(m_hWnd)) {
        WINDOWPLACEMENT placement;
        GetPlacement(m_hWnd, placement);
        CCUIPlacement restored = CUIPlacementOf(placement);
        restored.rect = CUIScreenOf(restored.rect).all;
        placement = CUIToShow(restored, SW_SHOWMINNOACTIVE);
        SetWindowPlacement(m_hWnd, &placement);
        return;
    }
    RECT rect;
    GetWindowRect(m_hWnd, &rect);
    rect = CUIScreenOf(rect).all;
    SetWindowPos(m_hWnd, HWND_TOP, rect.left, rect.top, CUIWidth(rect), CUIHeight(rect),
                 SWP_FRAMECHANGED | SWP_NOOWNERZORDER);
}

void CCUIFrameWindow::LeaveFullScreen()
{
    CWatch watch(this);
    const HWND hWnd = m_hWnd;
    WINDOWPLACEMENT before = m_before;
    if (!IsWindowVisible(hWnd))
        before.showCmd = SW_HIDE;
    {
        const CNoRedraw noRedraw(hWnd);
        m_pDocks->ShowBars(true);
        if (!watch.IsGone() && m_hWnd == hWnd)
            OnFullScreen(false);
        if (watch.IsGone() || m_hWnd != hWnd)
            return;
        const HMENU hMenu = m_hMenuBefore;
        m_bCovering = false;
        SetWindowLongA(hWnd, GWL_STYLE, GetWindowLongA(hWnd, GWL_STYLE) | m_nStyleBefore);
        ::SetMenu(hWnd, hMenu);
        SetWindowPos(hWnd, nullptr, 0, 0, 0, 0,
                     SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (before.showCmd == SW_SHOWMAXIMIZED)
        ShowMaximized(hWnd, before);
    else
        SetWindowPlacement(hWnd, &before);
}

void CCUIFrameWindow::OnFullScreen(bool) {}

void CCUIFrameWindow::OnDisplayChange(UINT nBitsPerPixel, int cx, int cy)
{
    CWatch watch(this);
    if (m_bCovering)
        CoverScreen();
    if (!watch.IsGone() && m_hWnd)
        CCUIWindow::OnDisplayChange(nBitsPerPixel, cx, cy);
}

void CCUIFrameWindow::OnDpiChanged(UINT, const RECT *pSuggested)
{
    if (m_bCovering)
        CoverScreen();
    else if (pSuggested)
        SetWindowPos(m_hWnd, nullptr, pSuggested->left, pSuggested->top, CUIWidth(*pSuggested),
                     CUIHeight(*pSuggested), SWP_NOZORDER | SWP_NOACTIVATE);
}
